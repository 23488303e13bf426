// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HPLPlatform.h"
#include "mav_platform/PlatformDpeprjFileExtractor.h"
#include "mav_platform/PlatformFileExtractor.h"
#include "support/Archives.h"
#include "support/Doubles.h"
#include "support/ZipFixture.h"

namespace {

constexpr const char* LARCH = "dpearchive/corvel/logical_arch_dpe.larch";

/// Packs a platform archive whose array-engine project `project` holds one member.
void packProject(const TempDir& dir, HPLPlatform& platform, const std::string& archive,
                 const std::string& content, const std::string& project = "dpe/array.zip") {
    packArchive(dir, "inner.zip", {{LARCH, content}, {std::string("hw_emu/") + LARCH, "emu"}});
    const std::string inner = dir.read("inner.zip");
    platform.setPlatformFile(
        packArchive(dir, archive, {{project, inner}, {"hw_emu/" + project, inner}}));
    platform.addFile(HMAVPfmFileTypes::DPEPRJ, project);
}

}  // namespace

TEST(PlatformFileExtractor, CopiesOneMemberToAPath) {
    const TempDir dir;
    HPLPlatform platform;
    platform.setPlatformFile(
        packArchive(dir, "p.pka", {{"a/b.txt", "primary"}, {"hw_emu/a/b.txt", "emulation"}}));
    const PlatformFileExtractor extractor(platform);
    const std::string target = dir.path("new/dir/copy.txt");
    EXPECT_TRUE(extractor.extract("a/b.txt", target));
    EXPECT_EQ(dir.read("new/dir/copy.txt"), "primary");
    EXPECT_FALSE(extractor.extract("a", dir.path("none")));
    EXPECT_FALSE(HUTFile::exists(dir.path("none")));

    platform.setIsChildHardwareEmuPlatform(true);
    EXPECT_TRUE(extractor.extract("a/b.txt", target));
    EXPECT_EQ(dir.read("new/dir/copy.txt"), "emulation") << "the file is replaced";

    platform.setPlatformFile(dir.path("gone.pka"));
    EXPECT_FALSE(extractor.extract("a/b.txt", target));
    EXPECT_EQ(dir.read("new/dir/copy.txt"), "emulation");
}

TEST(PlatformFileExtractor, NeverFollowsLinksAndLeavesTheDestinationWhenItFails) {
    const TempDir dir;
    RawMember broken = storedMember("broken", "content");
    broken.crc ^= 1U;
    dir.write("p.pka", rawZip({storedMember("x", "new"), storedMember("../evil", "evil"),
                               storedMember("/abs", "evil"), broken}));
    HPLPlatform platform;
    platform.setPlatformFile(dir.path("p.pka"));
    const PlatformFileExtractor extractor(platform);

    dir.write("victim", "old");
    std::filesystem::create_symlink(dir.path("victim"), dir.path("out"));
    EXPECT_TRUE(extractor.extract("x", dir.path("out")));
    EXPECT_EQ(dir.read("victim") + dir.read("out"), "oldnew");
    EXPECT_FALSE(std::filesystem::is_symlink(dir.path("out")));

    for (const std::string name : {"../evil", "/abs"})
        EXPECT_THROW_MSG(extractor.extract(name, dir.path("sub/file")), HEXUserException,
                         "The member '" + name + "' of the archive '" + dir.path("p.pka") +
                             "' is not extracted: its name leads out of the directory");
    EXPECT_FALSE(HUTFile::exists(dir.path("sub"))) << "refused before anything is written";

    dir.write("sub/file", "old");
    EXPECT_THROW(extractor.extract("broken", dir.path("sub/file")), HEXDataException);
    EXPECT_EQ(dir.read("sub/file"), "old");
    EXPECT_THROW(extractor.extract("x", dir.path("sub/file/below")), HEXUserException);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path("sub")), {}), 1);
}

TEST(PlatformDpeprjFileExtractor, ReadsTheNestedProjectArchive) {
    const TempDir dir;
    HPLPlatform platform;
    const PlatformDpeprjFileExtractor extractor(platform);
    EXPECT_FALSE(extractor.extract(LARCH, dir.path("x"))) << "no project is listed";
    packProject(dir, platform, "p.pka", "arch");
    EXPECT_TRUE(extractor.extract(LARCH, dir.path("out/x.larch")));
    EXPECT_EQ(dir.read("out/x.larch"), "arch");
    EXPECT_FALSE(extractor.extractFile("dpearchive/none", dir.path("y")));
    platform.setIsChildHardwareEmuPlatform(true);
    EXPECT_TRUE(extractor.extractFile(LARCH, dir.path("out/x.larch")));
    EXPECT_EQ(dir.read("out/x.larch"), "emu");
}

TEST(PlatformDpeprjFileExtractor, TheCopyBelongsToTheArchiveThatItCameFrom) {
    using File = PlatformDpeprjFileExtractor::PlatformDPEPRJFile;
    const TempDir dir;
    HPLPlatform one;
    HPLPlatform two;
    packProject(dir, one, "one.pka", "first");
    packProject(dir, two, "two.pka", "second");
    const File copy(one);
    EXPECT_EQ(copy.getName(), "dpe/array.zip");
    EXPECT_NE(copy.getPath(), File(two).getPath());
    EXPECT_TRUE(PlatformDpeprjFileExtractor(one).extractFile(LARCH, dir.path("1")));
    EXPECT_TRUE(PlatformDpeprjFileExtractor(two).extractFile(LARCH, dir.path("2")));
    EXPECT_EQ(dir.read("1") + dir.read("2"), "firstsecond");

    ASSERT_TRUE(HUTFile::isFile(copy.getPath()));
    packArchive(dir, "marked.zip", {{LARCH, "reused"}});
    std::filesystem::copy_file(dir.path("marked.zip"), copy.getPath(),
                               std::filesystem::copy_options::overwrite_existing);
    EXPECT_TRUE(PlatformDpeprjFileExtractor(one).extractFile(LARCH, dir.path("1")));
    EXPECT_EQ(dir.read("1"), "reused") << "the copy is kept";

    packProject(dir, one, "one.pka", "changed");
    EXPECT_TRUE(PlatformDpeprjFileExtractor(one).extractFile(LARCH, dir.path("1")));
    EXPECT_EQ(dir.read("1"), "changed") << "the archive is another one now";
}

TEST(PlatformDpeprjFileExtractor, MissingAndDamagedProjects) {
    const TempDir dir;
    HPLPlatform platform;
    platform.addFile(HMAVPfmFileTypes::DPEPRJ, "array.zip");
    const PlatformDpeprjFileExtractor extractor(platform);
    for (const char* member : {"other", "array.zip"}) {
        platform.setPlatformFile(packArchive(dir, member, {{member, "no archive at all"}}));
        EXPECT_FALSE(extractor.extractFile(LARCH, dir.path("x")));
    }
    RawMember cut = storedMember("array.zip", "content");
    cut.size = 6;
    cut.packed = 6;
    platform.setPlatformFile(dir.write("cut.pka", rawZip({cut})));
    EXPECT_THROW(extractor.extractFile(LARCH, dir.path("x")), HEXDataException);
    EXPECT_FALSE(
        HUTFile::exists(PlatformDpeprjFileExtractor::PlatformDPEPRJFile(platform).getPath()))
        << "no part of it stays behind";
    EXPECT_FALSE(HUTFile::exists(dir.path("x")));
}
