// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <filesystem>

#include "FileDescriptor.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "support/Doubles.h"
#include "support/SmallDisk.h"

namespace {

namespace fs = std::filesystem;

mode_t modeOf(const std::string& path) {
    struct stat status {};
    ::stat(path.c_str(), &status);
    return status.st_mode & 07777U;
}

TEST(HUTFileUtils, MakesAndRemovesDirectories) {
    const TempDir dir;
    EXPECT_TRUE(HUTFileUtils::makeDirs(dir.path("a/b/c")));
    const std::string outside = dir.write("outside/kept", "x");
    fs::create_directory_symlink(dir.path("outside"), dir.path("a/b/link"));
    dir.write("a/b/file", "x");
    EXPECT_FALSE(HUTFileUtils::makeDirs(dir.path("a/b/file/below")));
    EXPECT_FALSE(HUTFileUtils::makeDirs(""));
    EXPECT_TRUE(HUTFileUtils::removeDirs(dir.path("a")));
    EXPECT_EQ(dir.list(), "outside\n");
    EXPECT_TRUE(HUTFile::isFile(outside));
}

TEST(HUTFileUtils, UniqueNamesAvoidWhateverIsThere) {
    const TempDir dir;
    EXPECT_EQ(HUTFileUtils::makeUniqueName(dir.path(), "x"), dir.path("x"));
    dir.write("x", "");
    fs::create_symlink("nowhere", dir.path("x_1"));
    EXPECT_EQ(HUTFileUtils::makeUniqueName(dir.path(), "x"), dir.path("x_2"));
}

TEST(HUTFileUtils, ListsNamesInOrderBehindWhatIsThere) {
    const TempDir dir;
    for (const char* const name : {"b", "a", "B", ".c"}) dir.write(name, "");
    HSTVector<std::string> names{"z"};
    HUTFileUtils::list(dir.path(), names);
    HUTFileUtils::list(dir.path("none"), names);
    EXPECT_EQ(names, (HSTVector<std::string>{"z", ".c", "B", "a", "b"}));
}

TEST(HUTFileUtils, WritesAFileAndKeepsItsPermissionsAndLinks) {
    const TempDir dir;
    const std::string file = dir.path("a");
    const std::string link = dir.path("link");
    const mode_t before = ::umask(027);
    HUTFileUtils::writeWhole(file, std::string("old\0and longer\n", 15));
    HUTFileUtils::writeWhole(dir.path("own"), "secret", {.ownerOnly = true});
    ::umask(before);
    EXPECT_EQ(dir.read("a"), std::string("old\0and longer\n", 15));
    EXPECT_EQ(modeOf(file), 0640U);
    EXPECT_EQ(modeOf(dir.path("own")), 0600U);
    ASSERT_EQ(::chmod(file.c_str(), 0604), 0);
    HUTFileUtils::writeWhole(file, "new");
    EXPECT_EQ(dir.read("a"), "new");
    EXPECT_EQ(modeOf(file), 0604U);
    fs::create_symlink("a", link);
    HUTFileUtils::writeWhole(link, "");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(dir.read("a"), "");
    HUTFileUtils::writeWhole(link, "own", {.replacesLinks = true});
    EXPECT_FALSE(fs::is_symlink(link));
    EXPECT_EQ(dir.read("a"), "") << "a link that was not followed";
    EXPECT_EQ(dir.list(), "a\nlink\nown\n");
}

TEST(HUTFileUtils, AFailedStepLeavesTheOldFileAndNothingElse) {
    const TempDir dir;
    dir.write("a", "old");
    dir.write("sub/a", "old");
    ASSERT_EQ(::mkfifo(dir.path("pipe").c_str(), 0600), 0);
    const std::string noFile = "looking at it): it is a directory or a device";
    const std::pair<std::string, std::string> rows[] = {
        {"a", "writing): File too large"},
        {"none/a", "making a file beside it): No such file or directory"},
        {"a/b", "making a file beside it): Not a directory"},
        {"sub", noFile},
        {"pipe", noFile},
    };
    for (const auto& [name, why] : rows) {
        const SmallDisk full(1000);
        EXPECT_THROW_MSG(
            HUTFileUtils::writeWhole(dir.path(name), std::string(5000, 'x')), HEXUserException,
            "The file '" + dir.path(name) + "' cannot be written (" + why + "; it is as it was");
    }
    EXPECT_EQ(dir.read("a"), "old");
    EXPECT_EQ(dir.list(), "a\npipe\nsub\n");
    EXPECT_TRUE(fs::is_fifo(dir.path("pipe")));
    EXPECT_THROW_MSG(
        HUTFileUtils::readWhole(dir.path("pipe"), 9), HEXUserException,
        "The file '" + dir.path("pipe") + "' cannot be read: it is not a regular file");
}

TEST(HUTFileUtils, NoRightPassesToWhoHadItNot) {
    struct stat before {};
    before.st_uid = 1;
    before.st_gid = 2;
    const struct {
        mode_t mode;
        uid_t owner;
        gid_t group;
        mode_t kept;
    } rows[] = {
        {06775, 1, 2, 06775}, {06775, 9, 2, 02775}, {06775, 1, 9, 04755},
        {06775, 9, 9, 0755},  {0660, 1, 9, 0600},   {01646, 1, 9, 01666},
    };
    for (const auto& row : rows) {
        before.st_mode = S_IFREG | row.mode;
        EXPECT_EQ(mav_host::keptMode(before, row.owner, row.group), row.kept)
            << std::oct << row.mode;
    }
    if (::geteuid() != 0) GTEST_SKIP() << "only root gives files away";
    const TempDir dir;
    const std::string file = dir.write("a", "old");
    ASSERT_EQ(::chown(file.c_str(), 1, 2), 0);
    HUTFileUtils::writeWhole(file, "new");
    ASSERT_EQ(::stat(file.c_str(), &before), 0);
    EXPECT_EQ(before.st_uid, 1U);
    EXPECT_EQ(before.st_gid, 2U);
}

TEST(HUTFileUtils, WhatDeadWritersLeftIsRemovedAndNothingElse) {
    const TempDir dir;
    dir.write("a.new-0123456789abcdef", "dead");
    const std::string living = dir.write("a.new-fedcba9876543210", "at work");
    dir.write("a.new-release", "somebody's");
    dir.write("b.new-0123456789abcdef", "another file's");
    const mav_host::FileDescriptor writer(::open(living.c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(::flock(writer.get(), LOCK_EX), 0);
    HUTFileUtils::writeWhole(dir.path("a"), "x");
    EXPECT_EQ(dir.list(), "a\na.new-fedcba9876543210\na.new-release\nb.new-0123456789abcdef\n");
}

}  // namespace
