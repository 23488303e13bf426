// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <filesystem>

#include "mav_platform/HMAVDsaJsonReader.h"
#include "mav_platform/HPLPlatform.h"
#include "support/Archives.h"

namespace {

using Mode = HMAVDsaJsonReader::Mode;
constexpr Mode AUTO = Mode::HW_METADATA_AUTO;
constexpr Mode PRIMARY = Mode::HW_METADATA_PRIMARY_JSON;
constexpr Mode XML = Mode::HW_METADATA_XML;

/// Parses one text and keeps the platform and the reports.
struct Parsed {
    explicit Parsed(const std::string& text) {
        platform.setPlatformFile("/somewhere/card.pka");
        ok = HMAVDsaJsonReader(&platform).parseJsonString(text);
    }
    CapturedMessages messages;
    HPLPlatform platform;
    bool ok = false;
};

/// Which member each mode reads is held by transcripts of the command.
TEST(HMAVDsaJsonReader, SaysWhetherAndWhatItCanParse) {
    const TempDir dir;
    const std::string both = packArchive(
        dir, "both.pka",
        {{"pka.json", metadata("", "primary")}, {"alt_pka.json", metadata("", "alternative")}});
    const CapturedMessages messages;
    HPLPlatform platform;
    std::string member;
    EXPECT_FALSE(HMAVDsaJsonReader(&platform).canParse(both, XML, member));
    EXPECT_TRUE(HMAVDsaJsonReader(&platform).canParse(both, PRIMARY, member));
    EXPECT_EQ(member, "alt_pka.json") << "PRIMARY wants the other to be there";
    EXPECT_FALSE(HMAVDsaJsonReader(&platform).parseHwEmuPKA(both, AUTO));
    EXPECT_EQ(messages.text(), "");
    ASSERT_TRUE(HMAVDsaJsonReader(&platform).parseDSA(both, AUTO));
    EXPECT_FALSE(HMAVDsaJsonReader(&platform).parseDSA("/nowhere/x.pka", AUTO));
    EXPECT_EQ(messages.text(), "@74-66@%s|/nowhere/x.pka\n");
    EXPECT_EQ(platform.getPlatformFile(), both);
}

TEST(HMAVDsaJsonReader, NamesTheFirstMissingIdentityKey) {
    const Parsed none("{}");
    EXPECT_FALSE(none.ok);
    EXPECT_EQ(none.messages.text(),
              "@74-63@%s%s|text|pka.json: 'vendor': the required key is missing\n");
    const Parsed late(R"({"vendor":"v","boardId":"","name":"n","versionMajor":"1"})");
    EXPECT_FALSE(late.ok);
    EXPECT_TRUE(late.messages.has("'versionMinor'"));
    EXPECT_EQ(late.platform.getVendor(), "v") << "what was read before stays";
    // An identity key with an empty text counts as present.
    EXPECT_TRUE(
        Parsed(R"({"vendor":"","boardId":"","name":"","versionMajor":"","versionMinor":""})").ok);
}

TEST(HMAVDsaJsonReader, ScalarsMayBeBareAndTheFirstOfEqualKeysCounts) {
    const Parsed bare(R"({"vendor": "v", "boardId": null, "name": "n", "versionMajor": 7,
        "versionMinor": 0, "usesNIFD": true, "name": "second"})");
    ASSERT_TRUE(bare.ok);
    EXPECT_EQ(bare.platform.getBoardId(), "null");
    EXPECT_EQ(bare.platform.getVersion(), "7.0");
    EXPECT_TRUE(bare.platform.usesNIFD());
    EXPECT_EQ(bare.platform.getName(), "n");
    EXPECT_EQ(bare.platform.getHostArch() + bare.platform.getAcceleratorBinaryFormat() +
                  bare.platform.getAcceleratorBinaryContent(),
              "unknownqclbin2bitstream")
        << "of absent keys";
    EXPECT_EQ(bare.platform.getDesignIDs(), nullptr);
    EXPECT_EQ(bare.messages.text(), "");
}

TEST(HMAVDsaJsonReader, NoValuesOfBinaryContentAreNone) {
    for (const char* nothing : {"null", "\"\"", "[]", "{}", "\", ,\""}) {
        const Parsed parsed(
            metadata(std::string(R"(, "validAcceleratorBinaryContentValues": )") + nothing));
        EXPECT_EQ(parsed.platform.getValidBinaryContentValuesAsStr(), "") << nothing;
    }
}

TEST(HMAVDsaJsonReader, ExpandableDecidesThoughItStandsBehind) {
    const Parsed expandable(metadata(
        R"(, "segmentedConfiguration": "true", "dynamicReload": "true", "expandablePlatform": "true")"));
    EXPECT_TRUE(expandable.platform.supportsSegmentedConfiguration());
    EXPECT_FALSE(expandable.platform.supportsDynamicReload());
    const Parsed fixed(metadata(R"(, "segmentedConfiguration": "true", "dynamicReload": "true")"));
    EXPECT_FALSE(fixed.platform.supportsSegmentedConfiguration());
    EXPECT_TRUE(fixed.platform.supportsDynamicReload());
}

TEST(HMAVDsaJsonReader, SmallRules) {
    const Parsed parsed(metadata(R"(, "usesPR": "true",
        "designIntent": {"usesPR": "false", "embedded": {"value": "true", "explicit": "true"}},
        "validAcceleratorBinaryContentValues": "bitstream, pdi,,dcp",
        "reconfigModuleName": "",
        "systemClocks": [{"name": "a", "id": "4", "default": "true"}, {"name": "b", "id": "4"}],
        "featureRoms": [{"ipBuildID": "18446744073709551615", "featureBitMap": "0x80000001"}],
        "memories": [{"name": "m", "lowAddress": "0x10", "highAddress": "31"}],
        "extensions": {"a.b": {"c": "1"}}, "hostInterface": ")"
                                 "caf\xE9\""));
    ASSERT_TRUE(parsed.ok) << parsed.messages.text();
    const HPLPlatform& platform = parsed.platform;
    EXPECT_FALSE(platform.usesPR()) << "the inner one wins";
    EXPECT_TRUE(platform.getDesignIntent().getEmbedded());
    EXPECT_EQ(platform.getValidBinaryContentValuesAsStr(), "bitstream,pdi,dcp");
    EXPECT_TRUE(platform.isRM()) << "presence counts, not the text";
    EXPECT_EQ(platform.getHostInterface(), "caf\xC3\xA9") << "not UTF-8, so ISO-8859-1";
    EXPECT_EQ(platform.getDefaultClockName(), "b") << "the last clock with the default id";
    HSTVector<HMAVHardwareFeatureRom*> roms;
    platform.getFeatureRoms(roms);
    EXPECT_EQ(roms.at(0)->getIpBuildID(), 18446744073709551615U);
    EXPECT_EQ(roms.at(0)->getFeatureBitMap(), 0x80000001U);
    EXPECT_EQ(platform.getMemories().at(0)->getLowAddress(), 16U);
    EXPECT_EQ(platform.getMemories().at(0)->getHighAddress(), 31U);
    EXPECT_EQ(platform.getExtMetaJsonAsPtree().front().first, "a.b");
}

TEST(HMAVDsaJsonReader, ArrayEnginePartitionsHaveTwoLevels) {
    const Parsed parsed(metadata(R"(, "dpeHardware": {"arch": "dpe", "npiBaseAddress": "12",
            "shimRows": {"start": "4294967295", "num": "1"}},
        "dpePartitions": [
            {"dpeInst": "none", "numColumns": "0", "partitions": [{"numColumns": "4"}]},
            {"dpeInst": "p", "startColumn": "2", "numColumns": "8", "partitions": [
                {"plInterfaceID": "9", "numColumns": "3", "partitions": [{"numColumns": "1"}]},
                {"numColumns": "0"}]}])"));
    ASSERT_TRUE(parsed.ok) << parsed.messages.text();
    EXPECT_EQ(parsed.platform.getDpeHardware().getArch(), HMAVDpeHardware::DPE_A);
    EXPECT_EQ(parsed.platform.getDpeHardware().getStartShimRow(), -1);
    ASSERT_EQ(parsed.platform.getDpePartitions().size(), 1U);
    const HMAVDpePartition& root = parsed.platform.findDpePartition("p");
    EXPECT_TRUE(root.isRoot());
    ASSERT_EQ(root.partitions().size(), 1U);
    EXPECT_FALSE(root.partitions().front().hasPartitions());
    EXPECT_TRUE(parsed.platform.hasDpePartition("9"));
    EXPECT_FALSE(parsed.platform.hasDpePartition("p")) << "names and interface ids are two things";
}

TEST(HMAVDsaJsonReader, RefusalsNameThePlace) {
    const struct {
        const char* more;
        const char* report;
    } cases[] = {
        {"[1]", "text|pka.json: holds a list where an object"},
        {R"(, "files": {"": "x"})", "'files': holds an object where a list is expected"},
        {R"(, "memories": [{}, ["x"]])", "'memories[1]': holds a list where an object"},
        {R"(, "systemClocks": "abc")", "'systemClocks': holds the text 'abc' where a list"},
        {R"(, "board": ["x"])", "'board': holds a list where an object"},
        {R"(, "idCode": {"a": "b"})", "'idCode': holds an object where a text"},
        {R"(, "memories": [{}, {"lowAddress": "12z"}])", "'memories[1].lowAddress': '12z' is no"},
        {R"(, "featureRoms": [{"uuid": "12"}])",
         "'featureRoms[0].uuid': Unable to convert string to Feature ROM UUID: '12'"},
        {R"(, "featureRoms": [{"featureBitMap": "0x100000000"}])", "does not fit into 32 bits"},
        {R"(, "files": [{"type": "HPFM"}])", "'files[0].name': the required key is missing"},
        {R"(, "dpeHardware": {"arch": "DPE_Z"})",
         "'dpeHardware.arch': HMAVDpeHardware::setArch() - Invalid dpe architecture specified: "
         "DPE_Z"},
        {R"(, "designIpInstances": [{"configuration": {"k": "1", "k": "2"}}])",
         "'designIpInstances[0].configuration': Attempt to readd Design IP Instance Config Param "
         "key: 'k' is not allowed!"},
    };
    for (const auto& test : cases) {
        const Parsed parsed(*test.more == ',' ? metadata(test.more) : test.more);
        EXPECT_FALSE(parsed.ok) << test.more;
        EXPECT_TRUE(parsed.messages.has("@74-63@%s%s|text|pka.json: ")) << parsed.messages.text();
        EXPECT_TRUE(parsed.messages.has(test.report)) << parsed.messages.text();
    }
}

TEST(HMAVDsaJsonReader, ObjectsAreObjectsWhateverTheirMembersAreCalled) {
    const std::string odd = R"({"": "x", "k": "y"})";
    const Parsed parsed("{\"\": 1," + metadata().substr(1, metadata().size() - 2) +
                        ", \"board\": " + odd + ", \"extensions\": " + odd +
                        ", \"designIpInstances\": [{\"configuration\": " + odd + "}]}");
    EXPECT_TRUE(parsed.ok) << parsed.messages.text();
    EXPECT_NE(parsed.platform.toJSONString().find("\"extensions\": {\n        \"\": \"x\""),
              std::string::npos);
    EXPECT_TRUE(Parsed(metadata(R"(, "board": [])")).ok);
    EXPECT_TRUE(Parsed(metadata(R"(, "memories": {}, "files": "", "flash": null)")).ok);
}

TEST(HMAVDsaJsonReader, ConversionsThatFallBackAreReportedAndGoOn) {
    const Parsed parsed(metadata(R"(, "generatedChangeList": "99999999999999999999",
        "busInterfaces": [{"name": "b", "dataWidth": "12abc", "numIdBits": "x"}],
        "files": [{"name": "n", "type": "EMU_HPFM"}], "systemClocks": null, "flash": "")"));
    ASSERT_TRUE(parsed.ok);
    EXPECT_EQ(parsed.messages.text(),
              "@74-268@%s|99999999999999999999\n@74-271@%s|EMU_HPFM\n@74-268@%s|x\n");
    EXPECT_EQ(parsed.platform.getBusInterfaceByName("b")->getDataWidth(), 12);
    EXPECT_TRUE(parsed.platform.hasFile("EMU_HPFM"));
}

TEST(HMAVDsaJsonReader, ReadsAFileOfItsOwn) {
    const TempDir dir;
    const std::string good = dir.write("good.json", metadata(R"(, "idCode": "7")"));
    const std::string huge = dir.write("huge.json", "");
    std::filesystem::resize_file(huge, HUTZip::MAX_METADATA_SIZE + 1);
    const CapturedMessages messages;
    HPLPlatform platform;
    HMAVDsaJsonReader reader(&platform);
    EXPECT_TRUE(reader.parseFile(good));
    EXPECT_EQ(platform.getIdCode(), "7");
    EXPECT_TRUE(messages.all.empty()) << messages.text();
    for (const std::string& path : {huge, dir.path(), dir.path("absent")}) {
        EXPECT_FALSE(reader.parseFile(path)) << path;
        EXPECT_TRUE(messages.has("|" + path + "|")) << messages.text();
    }
    EXPECT_TRUE(messages.has("the file is larger than 1073741824 bytes")) << messages.text();
    EXPECT_EQ(messages.all.size(), 3U);
    HPLPlatform nameless;
    EXPECT_FALSE(HMAVDsaJsonReader(&nameless).parseJsonString("[]"));
    EXPECT_TRUE(messages.has("|text|'vendor': the required key is missing")) << messages.text();
}

}  // namespace
