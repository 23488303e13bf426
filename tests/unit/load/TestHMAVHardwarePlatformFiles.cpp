// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "archive/metadataFiles.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HPLPlatform.h"
#include "mav_platform/HVMAArchive.h"
#include "mav_platform/PlatformLoader.h"
#include "support/Archives.h"
#include "support/Doubles.h"
#include "support/ZipFixture.h"

using mav_platform::withListedFile;

namespace {

std::string readMember(const std::string& archive, const std::string& member) {
    return mav_host::ZipArchive(archive).read(member, 1 << 20);
}

/// What a fresh load of the archive lists, a line each.
std::string listedFiles(const std::string& archive) {
    const auto loaded =
        mav_platform::PlatformLoader(archive, mav_platform::HwMetadataMode{}).load();
    if (!loaded) return "not loaded";
    std::string text;
    for (const HPLFile* file :
         dynamic_cast<const HPLPlatform&>(*loaded->getHardwarePlatform()).getFiles()) {
        text += file->getType() + "=" + file->getName() + "\n";
    }
    return text;
}

}  // namespace

TEST(MetadataFiles, AddsOneItemAndLeavesTheRestByteForByte) {
    const std::string item = R"({"name": "n", "type": "PDI"})";
    const auto added = [](const std::string& text) { return withListedFile(text, "PDI", "n"); };
    EXPECT_EQ(added("\xef\xbb\xbf { \"files\" : [ ] } "),
              "\xef\xbb\xbf { \"files\" : [" + item + " ] } ");
    EXPECT_EQ(added("{\n  \"a\": 1,\n  \"b\": -1e3\n}\n"),
              "{\n  \"a\": 1,\n  \"b\": -1e3,\n  \"files\": [" + item + "]\n}\n");
    EXPECT_EQ(added(R"({"x": {"files": [1]}, "t": "]},\"files\": [", "y": [[{}], "}"],
  "files": [
    {"name": "m", "type": "PDI"},
    {"name": "n", "type": "MMI"}
  ], "files": [], "z": null})"),
              R"({"x": {"files": [1]}, "t": "]},\"files\": [", "y": [[{}], "}"],
  "files": [
    {"name": "m", "type": "PDI"},
    {"name": "n", "type": "MMI"},
    )" + item + R"(
  ], "files": [], "z": null})");
    // What is empty is an empty list; a document in ISO-8859-1 becomes UTF-8.
    for (const char* empty : {"\"\"", "null", "\"n\\u0075ll\"", "{}", "{ }"}) {
        EXPECT_EQ(added(std::string("{\"files\":") + empty + ", \"a\": 1}"),
                  "{\"files\":[" + item + "], \"a\": 1}");
    }
    EXPECT_EQ(added("{\"a\": \"\xe9\"}"), "{\"a\": \"\xc3\xa9\",\"files\": [" + item + "]}");
    // A key may be escaped; the last item may be anything.
    for (const char* last : {"1", "\"a\\n\"", "[ [{ }], 2]", "{ \"\": \"}\"}", "[ ]"}) {
        const std::string start = std::string("{\"f\\u0069les\": [ {},\t") + last;
        EXPECT_EQ(added(start + "\r\n]}"), start + ",\t" + item + "\r\n]}");
    }
    const std::string listed = R"({"files": [{"type": "PDI", "name": "n"}]})";
    EXPECT_EQ(added(listed), listed);
    EXPECT_EQ(withListedFile("{}", "T", "a\"b\n/\xc3\xa9"), R"({"files": [{"name": "a\"b\n\/)"
                                                            "\xc3\xa9"
                                                            R"(", "type": "T"}]})");
}

TEST(MetadataFiles, RefusesWhatItCannotExtend) {
    const auto add = [](const std::string& text) { withListedFile(text, "PDI", "n"); };
    constexpr const char* START = "The metadata cannot take a file: ";
    EXPECT_THROW_MSG(add("[1]"), HEXAlgException, std::string(START) + "it is no JSON object");
    for (const char* text :
         {R"({"files": "none"})", R"({"files": {"a": {}}})", R"({"files": {"": {}}})"}) {
        EXPECT_THROW_MSG(add(text), HEXAlgException,
                         std::string(START) + "its \"files\" is no list");
    }
    EXPECT_THROW(add("{\"files\": ["), HEXAlgException);
    EXPECT_THROW_MSG(
        withListedFile("{}", "PDI", "\xe9"), HEXAlgException,
        std::string(START) + "the name or the type is not UTF-8; give the member another name");
}

TEST(HMAVHardwarePlatformFiles, ArchivesAFileAndListsIt) {
    const TempDir dir;
    const std::string path =
        packArchive(dir, "p.pka",
                    {{"pka.json", metadata(R"(, "files": [{"name": "m", "type": "MMI"}])")},
                     {"alt_pka.json", metadata()},
                     {"hw_emu/pka.json", metadata()},
                     {"m", "old"}});
    const std::string source = dir.write("s", "new");
    HPLPlatform platform;
    platform.setPlatformFile(path);
    platform.archiveFile("PDI", "image/n.pdi", source);
    platform.archiveFile("PDI", "image/n.pdi", dir.write("s2", "newer"));
    platform.archiveFile("MMI", "m", source);
    EXPECT_EQ(platform.getFiles().size(), 2U) << "an equal item is listed once";
    EXPECT_EQ(platform.getFile(HMAVPfmFileTypes::PDI), "image/n.pdi");
    EXPECT_EQ(readMember(path, "image/n.pdi") + readMember(path, "m"), "newernew");
    EXPECT_EQ(readMember(path, "pka.json"),
              metadata(R"(, "files": [{"name": "m", "type": "MMI"},)"
                       R"({"name": "image\/n.pdi", "type": "PDI"}])"));
    EXPECT_EQ(listedFiles(path), "PDI=image/n.pdi\nMMI=m\n") << "the alternative one is read";
    EXPECT_EQ(HUTZip::verifyDigest(path), mav_host::DigestState::VALID);
    EXPECT_EQ(readMember(path, "hw_emu/pka.json"), metadata());

    platform.setIsChildHardwareEmuPlatform(true);
    const CapturedMessages messages;
    platform.archiveFile("SPARE", "e", source);
    EXPECT_EQ(messages.text(), "@74-271@%s|SPARE\n");
    EXPECT_EQ(readMember(path, "hw_emu/e"), "new");
    EXPECT_EQ(readMember(path, "hw_emu/pka.json"),
              metadata(R"(, "files": [{"name": "e", "type": "SPARE"}])"));
}

TEST(HMAVHardwarePlatformFiles, AnIndexIsKeptInStep) {
    const TempDir dir;
    HVMAArchive index;
    index.setPfmName("card");
    index.registerFile("PDI", "old.pdi");
    const std::string path =
        packArchive(dir, "p.pka", {{"pka.json", metadata()}, {"vma.json", index.toJSONString()}});
    HPLPlatform platform;
    platform.setPlatformFile(path);
    platform.archiveFile("PDI", "new.pdi", dir.write("s", "s"));
    HVMAArchive read(path);
    ASSERT_TRUE(read.parse());
    EXPECT_EQ(read.getFiles().get("PDI"), "new.pdi");
    EXPECT_EQ(read.getPfmName(), "card");

    platform.setPlatformFile(
        packArchive(dir, "q.pka", {{"pka.json", metadata()}, {"vma.json", "{"}}));
    const CapturedMessages messages;
    EXPECT_THROW_MSG(platform.archiveFile("PDI", "n", dir.path("s")), HEXAlgException,
                     "The index 'vma.json' of '" + dir.path("q.pka") + "' cannot be read");
    EXPECT_TRUE(messages.has("@74-64@%s%s%s|" + dir.path("q.pka") + "|vma.json|"));
}

TEST(HMAVHardwarePlatformFiles, RefusalsLeaveArchiveAndPlatformAlone) {
    const TempDir dir;
    const std::string source = dir.write("s", "s");
    HPLPlatform platform;
    const auto refused = [&](const std::string& name, const std::string& file,
                             const std::string& text) {
        EXPECT_THROW_MSG(platform.archiveFile("PDI", name, file), HEXAlgException, text);
    };
    const std::string head = "HMAVHardwarePlatform::archiveFile() - ";
    refused("n", source, head + "pkaFile is not set");
    platform.setPlatformFile(dir.path("none.pka"));
    refused("n", source, head + "pkaFile does not exist");
    platform.setPlatformFile(packArchive(dir, "noext", {{"x", "y"}}));
    refused("n", source, head + "jsonFile is not set");
    platform.setPlatformFile(packArchive(dir, "x.pka", {{"x", "y"}}));
    refused("n", source, "'" + dir.path("x.pka") + "' has no JSON metadata to list the file in");
    const std::string path = packArchive(dir, "p.pka", {{"pka.json", metadata()}});
    const std::string before = dir.read("p.pka");
    platform.setPlatformFile(path);
    refused("n", dir.path("none"), head + "Could not open file for reading: " + dir.path("none"));
    refused("../n", source, head + "Could not open file for streaming: " + path);
    {
        const HostKey key("k");
        EXPECT_THROW(platform.archiveFile("PDI", "n", source), mav_host::DigestRefusal);
    }
    refused("alt_pka.json", source,
            "'alt_pka.json' is the name of the metadata itself; choose another one");
    EXPECT_TRUE(platform.getFiles().empty());
    EXPECT_EQ(dir.read("p.pka"), before);
}

TEST(HMAVHardwarePlatformFiles, ExtractsTheFileOfEachRole) {
    const TempDir dir;
    const std::string corvel = "dpearchive/corvel/";
    packArchive(dir, "inner.zip",
                {{corvel + "dpe_interface.dpeintfcst", "nested cst"},
                 {corvel + "dpe_interface.dpeintfsol", "sol"},
                 {corvel + "dpe_constraints.dpecst", "dpecst"},
                 {corvel + "dpeprj_meta_data.json", "meta"},
                 {corvel + "logical_arch_dpe.larch", "nested larch"}});
    HPLPlatform platform;
    const std::string out = dir.path("out");
    EXPECT_EQ(platform.extractHPFMFile(out) + platform.extractLARCHFile(out), "");
    platform.setPlatformFile(packArchive(dir, "p.pka",
                                         {{"dpe/array.zip", dir.read("inner.zip")},
                                          {"noc/t.nts", "nts"},
                                          {"noc/s.ncr", "ncr"},
                                          {"bd/d.bd", "bd"},
                                          {"me/own.larch", "own larch"}}));
    platform.addFile("NOC_TRAFFIC", "noc/t.nts");
    platform.addFile("NOC_SOLUTION", "noc/s.ncr");
    platform.addFile("DR_BD", "bd/d.bd");
    platform.addFile("ME_ARCHIVE", "dpe/array.zip");
    platform.addFile("HPFM", "gone.hpfm");
    platform.addFile("ME_LOGICAL_ARCH", "me/own.larch");
    const auto contents = [&] {
        std::string text;
        for (const std::string& path :
             {platform.extractNTSFile(out), platform.extractNCRFile(out),
              platform.extractDrBdFile(out), platform.extractHPFMFile(out),
              platform.extractLARCHFile(out), platform.extractINTFCSTFile(out),
              platform.extractINTFSOLFile(out), platform.extractDPECSTFile(out),
              platform.extractDPEMetadataFile(out)})
            text += (path.empty() ? "none" : dir.read(path.substr(dir.path().size()))) + "|";
        return text;
    };
    EXPECT_EQ(platform.extractNTSFile(out), out + "/t.nts");
    EXPECT_EQ(contents(), "nts|ncr|bd|none|own larch|none|none|none|none|");
    EXPECT_EQ(platform.extractDPEPRJFile(out), out + "/array.zip");
    EXPECT_EQ(dir.read("out/array.zip"), dir.read("inner.zip"));
    platform.addFile("DPEPRJ", "dpe/array.zip");
    platform.removeFile("ME_LOGICAL_ARCH");
    EXPECT_EQ(contents(), "nts|ncr|bd|none|nested larch|nested cst|sol|dpecst|meta|");
}

TEST(HMAVHardwarePlatformFiles, RewritesAnHpfmFileOnlyWhenAsked) {
    const TempDir dir;
    const std::string hpfm =
        "<qd:repository><qd:component><qd:busInterface qd:name='hbm_memory_subsystem'>"
        "<qd:addressSegment qd:auto='preferred'/><qd:addressSegment qd:auto='true'/>"
        "</qd:busInterface></qd:component></qd:repository>";
    HPLPlatform platform;
    platform.setPlatformFile(packArchive(dir, "p.pka", {{"x/p.hpfm", hpfm}}));
    platform.addFile("HPFM", "x/p.hpfm");
    const CapturedMessages messages;
    EXPECT_EQ(platform.extractHPFMFile(dir.path("out")), dir.path("out/p.hpfm"));
    EXPECT_EQ(dir.read("out/p.hpfm") + messages.text(), hpfm);
    platform.extractHPFMFile(dir.path("out"), true);
    EXPECT_TRUE(messages.has("@74-10@%s|" + dir.path("out/p.hpfm")));
    EXPECT_NE(dir.read("out/p.hpfm"), hpfm);
    EXPECT_EQ(readMember(dir.path("p.pka"), "x/p.hpfm"), hpfm) << "the archive stays as it was";
}
