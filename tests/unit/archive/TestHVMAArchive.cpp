// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HVMAArchive.h"
#include "support/Archives.h"
#include "support/Doubles.h"
#include "support/Kill.h"
#include "support/ZipFixture.h"

namespace {

/// An archive whose index is named as a test wants it.
class NamedIndex final : public HVMAArchive {
  public:
    NamedIndex(const std::string& file, std::string index)
        : HVMAArchive(file), index_(std::move(index)) {}
    std::string getJsonFileName() const override { return index_; }

  private:
    std::string index_;
};

std::string packIndex(const TempDir& dir, const std::string& index) {
    return packArchive(dir, "a.zip",
                       {{"vma.json", index},
                        {"bit/x.bit", "bits"},
                        {"bd/one.bd", "1"},
                        {"bd/sub/two.bd", "2"},
                        {"iprepo/ip/component.xml", "ip"}});
}

constexpr const char* INDEX = R"({"version": {"major": 9}, "instPath": "top/i", "hierName": "h",
    "files": [{"name": "old", "type": "FULL_BIT"}, {"name": "bit/x.bit", "type": "FULL_BIT"},
              {"name": "whatever", "type": "DR_BD"}, {"name": "iprepo", "type": "IP_REPO_PATH"},
              {"name": "gone", "type": "BOARD_REPO_PATH"}, {"name": "none", "type": "MMI"}]})";

}  // namespace

TEST(HVMAArchive, ReadsTheIndexAndWritesItBack) {
    const TempDir dir;
    HVMAArchive archive(packIndex(dir, INDEX));
    archive.registerFile("STALE", "stale");
    archive.setPfmName("stale");
    ASSERT_TRUE(archive.parse());
    EXPECT_EQ(archive.getInstPath(), "top/i");
    EXPECT_EQ(archive.getPfmName(), "");
    EXPECT_EQ(archive.getFiles().get("FULL_BIT"), "bit/x.bit") << "the last of a type counts";
    EXPECT_FALSE(archive.getFiles().has("STALE"));

    HVMAArchive made;
    made.setDrBdInstName("dr");
    made.registerFile("PDI", "b.pdi");
    made.registerFile("BIF", "a.bif");
    const std::string text = made.toJSONString();
    packIndex(dir, text);
    made.setFile(dir.path("a.zip"));
    ASSERT_TRUE(made.parse());
    EXPECT_EQ(made.toJSONString(), text);
    EXPECT_LT(text.find("BIF"), text.find("PDI"));
    EXPECT_NE(text.find(R"("major": "1")"), std::string::npos) << text;
}

TEST(HVMAArchive, AnIndexThatCannotBeReadIsReported) {
    const TempDir dir;
    const CapturedMessages messages;
    HVMAArchive archive(dir.path("none"));
    archive.setHierName("kept");
    EXPECT_FALSE(archive.parse());
    archive.setFile(dir.path());
    EXPECT_FALSE(archive.parse());
    archive.setFile(packArchive(dir, "b.zip", {{"x", "y"}}));
    EXPECT_FALSE(archive.parse());
    archive.setFile(packIndex(dir, "{\"files\": ["));
    EXPECT_FALSE(archive.parse());
    EXPECT_EQ(archive.getHierName(), "kept");
    EXPECT_EQ(messages.text().substr(0, messages.text().find("@74-64")),
              "@74-89@%s|" + dir.path("none") + "\n@74-89@%s|" + dir.path() +
                  "\n@74-67@%s%s|vma.json|" + dir.path("b.zip") + "\n");
    EXPECT_TRUE(messages.has("@74-64@%s%s%s|" + dir.path("a.zip") + "|vma.json|"));
}

TEST(HVMAArchive, ExtractsByType) {
    const TempDir dir;
    HVMAArchive archive(packIndex(dir, INDEX));
    ASSERT_TRUE(archive.parse());
    const std::string out = dir.path("out/deep");
    EXPECT_EQ(archive.extract("FULL_BIT", out), out + "/bit/x.bit");
    EXPECT_EQ(dir.read("out/deep/bit/x.bit"), "bits");
    EXPECT_EQ(archive.extract("DR_BD", out), out + "/bd");
    EXPECT_EQ(dir.read("out/deep/bd/one.bd") + dir.read("out/deep/bd/sub/two.bd"), "12");
    EXPECT_EQ(archive.extract("IP_REPO_PATH", out), out + "/iprepo");
    EXPECT_EQ(dir.read("out/deep/iprepo/ip/component.xml"), "ip");
    EXPECT_EQ(archive.extract("PDI", dir.path("other")), "");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path("other")), {}), 0);
    EXPECT_THROW_MSG(archive.extract("FULL_BIT", ""), HEXUserException,
                     "HVMAArchive::extract() - destDir argument must not be empty");
    EXPECT_THROW_MSG(
        archive.extract("BOARD_REPO_PATH", out), HEXUserException,
        "HVMAArchive::_extractDir() - dir was not extracted to the expected location: " + out +
            "/gone");
    EXPECT_THROW_MSG(archive.extract("MMI", out), HEXUserException,
                     "HVMAArchive::_extractFile() - file was not extracted to the expected "
                     "location: " +
                         out + "/none");
    archive.registerFile("IP_REPO_PATH", "iprepo/");
    EXPECT_EQ(archive.extract("IP_REPO_PATH", dir.path("slash")), dir.path("slash/iprepo/"));
    EXPECT_EQ(dir.read("slash/iprepo/ip/component.xml"), "ip");
    archive.registerFile("PDI", "../../evil");
    EXPECT_THROW(archive.extract("PDI", out), HEXUserException);
}

TEST(HVMAArchive, AddsAMemberAndListsIt) {
    const TempDir dir;
    const std::string path = packArchive(dir, "a.zip", {{"x", "y"}});
    const std::string source = dir.write("new.pdi", "image");
    HVMAArchive archive(path);
    archive.setPfmName("p");
    archive.archive("PDI", "image/new.pdi", source);
    EXPECT_EQ(HUTZip::verifyDigest(path), mav_host::DigestState::VALID);
    HVMAArchive read(path);
    ASSERT_TRUE(read.parse());
    EXPECT_EQ(read.getPfmName(), "p");
    EXPECT_EQ(read.getFiles().getMap(), archive.getFiles().getMap());
    EXPECT_EQ(mav_host::ZipArchive(path).read("image/new.pdi", 100), "image");

    read.archiveFile("loose", source);
    EXPECT_EQ(HUTZip::verifyDigest(path), mav_host::DigestState::MISSING);
    EXPECT_EQ(read.getFiles().getMap().size(), 1U);
    EXPECT_TRUE(HUTZip::containsFile(path, "loose"));

    HVMAArchive unread(path);
    unread.setHierName("h");
    unread.archive("BIF", "b.bif", source);
    ASSERT_TRUE(read.parse());
    EXPECT_EQ(read.getPfmName() + read.getHierName(), "ph") << "texts are kept unless set anew";
    EXPECT_EQ(read.getFiles().getMap().size(), 2U);
    EXPECT_EQ(unread.toJSONString(), read.toJSONString());
}

TEST(HVMAArchive, KeepsWhatOthersListMeanwhile) {
    const TempDir dir;
    const std::string path = packIndex(dir, INDEX);
    const std::string source = dir.write("s", "s");
    HVMAArchive first(path);
    HVMAArchive second(path);
    ASSERT_TRUE(first.parse() && second.parse());
    first.archive("PDI", "first.pdi", source);
    first.archive("BIF", "first.bif", source);
    second.getFiles().clear();
    second.archive("BIF", "second.bif", source);
    HVMAArchive read(path);
    ASSERT_TRUE(read.parse());
    EXPECT_EQ(read.getFiles().getMap(),
              (std::map<std::string, std::string>{{"BIF", "second.bif"}, {"PDI", "first.pdi"}}))
        << "what the second one took out stays out";
    EXPECT_EQ(read.getFiles().getMap(), second.getFiles().getMap());

    second.archive("BIF", "newer.bif", source);
    read.registerFile("PDI", "ours.pdi");
    second.archive("PDI", "theirs.pdi", source);
    read.archive("MMI", "m", source);
    EXPECT_EQ(read.getFiles().getMap(),
              (std::map<std::string, std::string>{
                  {"BIF", "newer.bif"}, {"MMI", "m"}, {"PDI", "ours.pdi"}}))
        << "a replacement by others stays, unless the type was listed anew here";
}

TEST(HVMAArchive, RefusalsLeaveArchiveAndObjectAlone) {
    const TempDir dir;
    const std::string path = packArchive(dir, "a.zip", {{"x", "y"}});
    const std::string before = dir.read("a.zip");
    const std::string source = dir.write("s", "s");
    const std::string unset = "HVMAArchive::archive() - ";
    EXPECT_THROW_MSG(HVMAArchive().archive("PDI", "n", source), HEXAlgException,
                     unset + "vmaFile is not set");
    EXPECT_THROW_MSG(NamedIndex(path, "").archive("PDI", "n", source), HEXAlgException,
                     unset + "jsonFile is not set");
    EXPECT_THROW_MSG(HVMAArchive(dir.path()).archive("PDI", "n", source), HEXAlgException,
                     unset + "vmaFile does not exist");
    EXPECT_THROW_MSG(NamedIndex(path, "../x").archive("PDI", "n", source), HEXUserException,
                     "HVMAArchive::writeJSON() - Could not open file for streaming: " + path);
    HVMAArchive archive(path);
    const auto refused = [&](HVMAArchive& to, const std::string& name, const std::string& file,
                             const std::string& why) {
        EXPECT_THROW_MSG(to.archive("PDI", name, file), HEXUserException, "HVMAArchive::" + why);
    };
    const std::string closed = "archiveFile() - Could not open file for streaming: ";
    refused(archive, "n", dir.path("none"),
            "archiveFile() - Could not open file for reading: " + dir.path("none"));
    refused(archive, "vma.json", source,
            "archive() - 'vma.json' is the name of the index itself; give the member another name");
    refused(archive, "a/../../b", source, closed + path);
    refused(archive, std::string(65536, 'n'), source, closed + path);
    {
        const HostKey key("k");
        EXPECT_THROW(archive.archive("PDI", "n", source), mav_host::DigestRefusal);
    }
    EXPECT_TRUE(archive.getFiles().empty());
    EXPECT_EQ(dir.read("a.zip"), before);
}

TEST(HVMAArchive, AnIndexOfAnotherShapeIsNeitherReadNorReplaced) {
    const TempDir dir;
    const std::string source = dir.write("s", "s");
    const std::pair<const char*, const char*> rows[] = {
        {R"("x")", "holds the text 'x' where an object is expected"},
        {R"({"files": "x"})", "'files': holds the text 'x' where a list is expected"},
        {R"({"files": {"a": {}}})", "'files': holds an object where a list is expected"},
        {R"({"files": [{}, 1]})", "'files[1]': holds the text '1' where an object is expected"},
        {R"({"files": [{"name": ["a"]}]})",
         "'files[0].name': holds a list where a text is expected"},
        {R"({"pfmName": {"a": 1}})", "'pfmName': holds an object where a text is expected"},
        {"{\n\"files\"", "line 2: expected ':'"}};
    for (const auto& [index, fault] : rows) {
        const std::string path = packIndex(dir, index);
        const std::string before = dir.read("a.zip");
        const CapturedMessages messages;
        EXPECT_FALSE(HVMAArchive(path).parse());
        EXPECT_EQ(messages.text(), "@74-64@%s%s%s|" + path + "|vma.json|" + fault + "\n");
        EXPECT_THROW_MSG(HVMAArchive(path).archive("PDI", "n", source), HEXUserException,
                         "The index 'vma.json' of the archive '" + path +
                             "' has a fault: " + fault + "; correct it and pack the archive again");
        EXPECT_EQ(dir.read("a.zip"), before);
    }
    for (const char* empty : {"null", "\"\"", "[]", R"({"files": ""})"}) {
        EXPECT_TRUE(HVMAArchive(packIndex(dir, empty)).parse()) << empty;
    }
}

TEST(HVMAArchive, AKilledWriterLeavesTheOldOrTheNewArchive) {
    const TempDir dir;
    const std::string path = packIndex(dir, INDEX);
    const std::string source = dir.write("new.pdi", std::string(100000, 'n'));
    const auto work = [&] { HVMAArchive(path).archive("PDI", "new.pdi", source); };
    expectOldOrNew(path, work);
}
