// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_platform/HPLPlatform.h"
#include "support/Archives.h"

namespace {

/// The example of the format's page.
std::string example() {
    std::ifstream file(MAV_SOURCE_DIR "/docs/formats/dpe_partitions.md");
    const std::string page(std::istreambuf_iterator<char>(file), {});
    const std::size_t start = page.find("```json\n") + 8;
    return page.substr(start, page.find("```", start) - start);
}

/// "name@start+columns/interface(sub-partitions)" of each partition.
std::string shape(const std::list<HMAVDpePartition>& partitions) {
    std::string text;
    for (const HMAVDpePartition& partition : partitions) {
        text += (partition.isRoot() ? "" : ".") + partition.dpeInst() + "@" +
                std::to_string(partition.startColumn()) + "+" +
                std::to_string(partition.numColumns()) + "/" + partition.plIntefaceID();
        if (partition.hasPartitions()) text += "(" + shape(partition.partitions()) + ")";
        text += " ";
    }
    return text;
}

class DpePartitions : public testing::Test {
  protected:
    /// The platform of an archive whose project holds `partitions`; without a text the project has
    /// no such file.
    void pack(const std::string& partitions, const std::string& name = "p") {
        packArchive(dir, "array.zip", {{"dpearchive/arch/dpe_partition.json", partitions}});
        platform.setPlatformFile(
            packArchive(dir, name + ".pka", {{"dpe/array.zip", dir.read("array.zip")}}));
        std::filesystem::remove(dir.path("array.zip"));
        platform.addFile("DPEPRJ", "dpe/array.zip");
    }
    TempDir dir;
    EnvVar tmp{"TMPDIR", dir.path()};
    CapturedMessages messages;
    HPLPlatform platform;
};

TEST_F(DpePartitions, ReadsTheExampleOfItsPage) {
    platform.parseDPEPartitions(dir.write("p.json", example()));
    EXPECT_EQ(shape(platform.getDpePartitions()),
              "array0@0+24/0x0003(.array0_left@0+10/0x0301 .array0_right@10+14/0x0302 ) ");
    EXPECT_TRUE(platform.hasDpePartition("0x0302"));
    EXPECT_FALSE(platform.hasDpePartition("array0"));
    EXPECT_FALSE(platform.hasDpePartition("0x0003")) << "that of a root partition does not count";
    EXPECT_TRUE(platform.findDpePartition("array0").isPartition());
    EXPECT_EQ(&platform.findDpePartition("spare"), &platform.findDpePartition("none"));
}

TEST_F(DpePartitions, EntriesWithoutColumnsAreSkippedWithAllBelow) {
    platform.parseDPEPartitions(dir.write("p.json", R"({"DPE": {
        "a": {"numColumns": 0, "partitions": {"x": {"numColumns": 1}}},
        "b": {"numColumns": "2x"}, "c": {"startColumn": 3}, "d": {"numColumns": -1}, "e": 5,
        "f": {"numColumns": "2", "startColumn": "1.5", "partitions": {
            "g": {"numColumns": 1, "partitions": {"h": {"numColumns": 1}}},
            "i": {"numColumns": 99999999999}}}}})"));
    EXPECT_EQ(shape(platform.getDpePartitions()), "f@0+2/(.g@0+1/ ) ");
}

TEST_F(DpePartitions, WhatEqualsOneThatIsThereIsNotAddedAgain) {
    const std::string file = dir.write("p.json", example());
    platform.addDpePartition(0, 24).dpeInst("array0");
    platform.parseDPEPartitions(file);
    EXPECT_EQ(platform.getDpePartitions().size(), 2U) << "the sub-partitions differ";
    platform.parseDPEPartitions(file);
    EXPECT_EQ(platform.getDpePartitions().size(), 2U);
    platform.parseDPEPartitions(
        dir.write("q.json", R"({"DPE": {"z": {"numColumns": 1}, "z": {"numColumns": 1}}})"));
    EXPECT_EQ(platform.getDpePartitions().size(), 3U);
}

TEST_F(DpePartitions, FilesThatAreNoDocumentThrow) {
    platform.parseDPEPartitions(dir.path("none.json"));
    platform.parseDPEPartitions(dir.path());
    platform.parseDPEPartitions(dir.write("other.json", R"({"dpe": {"a": {"numColumns": 1}}})"));
    EXPECT_FALSE(platform.hasDpePartitions());
    for (const std::string& text : {std::string(), std::string("{\"DPE\": "),
                                    std::string("{\"DPE\": {\"a\": {\"numColumns\": 1}}} x")}) {
        const std::string path = dir.write("bad.json", text);
        EXPECT_THROW_MSG(platform.parseDPEPartitions(path), HEXAlgException,
                         "An error occurred while parsing the dpe partitions json file: " + path);
    }
    EXPECT_FALSE(platform.hasDpePartitions());
}

TEST_F(DpePartitions, AreReadFromTheProjectOnTheFirstQuestion) {
    pack(example());
    EXPECT_FALSE(platform.findDpePartition("array0").isPartition())
        << "the search by name does not read";
    EXPECT_TRUE(platform.hasDpePartition("0x0301"));
    EXPECT_TRUE(platform.findDpePartition("array0").isPartition());
    std::filesystem::remove(platform.getPlatformFile());
    EXPECT_EQ(platform.getDpePartitions().size(), 1U) << "read once";
}

TEST_F(DpePartitions, AnExpandablePlatformNeverReads) {
    pack(example());
    platform.setExpandable(true);
    EXPECT_FALSE(platform.hasDpePartitions());
}

TEST_F(DpePartitions, AFailedReadIsNotRepeatedAndLeavesNothingBehind) {
    pack("no JSON");
    EXPECT_THROW(platform.getDpePartitions(), HEXAlgException);
    EXPECT_FALSE(platform.hasDpePartitions());
    EXPECT_EQ(messages.text(),
              "@74-64@%s%s%s|" + dir.path("p.pka") +
                  "|dpe/array.zip|its member 'dpearchive/arch/dpe_partition.json' is no JSON "
                  "document\n");
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(HUTEnv::getHDITmpDir())) {
        EXPECT_EQ(entry.path().filename().string().find("dpe_partitions"), std::string::npos);
    }
}

TEST_F(DpePartitions, ProjectsOfEqualNameStayApart) {
    pack(R"({"DPE": {"one": {"numColumns": 1}}})", "one");
    EXPECT_EQ(shape(platform.getDpePartitions()), "one@0+1/ ");
    HPLPlatform other;
    packArchive(dir, "array.zip",
                {{"dpearchive/arch/dpe_partition.json", R"({"DPE": {"two": {"numColumns": 2}}})"}});
    other.setPlatformFile(packArchive(dir, "two.pka", {{"dpe/array.zip", dir.read("array.zip")}}));
    other.addFile("DPEPRJ", "dpe/array.zip");
    EXPECT_EQ(shape(other.getDpePartitions()), "two@0+2/ ");
}

TEST_F(DpePartitions, ADamagedOrMissingProjectHasNone) {
    platform.setPlatformFile(packArchive(dir, "p.pka", {{"x", "y"}}));
    platform.addFile("DPEPRJ", "dpe/array.zip");
    EXPECT_FALSE(platform.hasDpePartitions());
    HPLPlatform damaged;
    damaged.setPlatformFile(packArchive(dir, "q.pka", {{"dpe/array.zip", "no zip"}}));
    damaged.addFile("DPEPRJ", "dpe/array.zip");
    EXPECT_FALSE(damaged.hasDpePartitions());
    EXPECT_EQ(messages.text(), "@74-64@%s%s%s|" + dir.path("p.pka") +
                                   "|dpe/array.zip|it is listed as DPEPRJ and absent from the "
                                   "archive\n@74-64@%s%s%s|" +
                                   dir.path("q.pka") +
                                   "|dpe/array.zip|it is listed as DPEPRJ and is no zip archive, "
                                   "or one that is cut off\n");
}

}  // namespace
