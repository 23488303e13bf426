// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_platform/HPLPlatform.h"
#include "support/Archives.h"
#include "support/Pages.h"
#include "support/ZipFixture.h"

namespace {

std::string example() {
    return documented("dpe_partitions.md", "\n```json");
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
    /// Makes `given` the platform of an archive whose project holds `partitions`.
    void pack(HPLPlatform& given, const std::string& partitions, const std::string& name = "p") {
        packArchive(dir, "array.zip", {{"dpearchive/arch/dpe_partition.json", partitions}});
        given.setPlatformFile(
            packArchive(dir, name + ".pka", {{"dpe/array.zip", dir.read("array.zip")}}));
        std::filesystem::remove(dir.path("array.zip"));
        given.addFile("DPEPRJ", "dpe/array.zip");
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
    pack(platform, example());
    platform.setExpandable(true);
    EXPECT_FALSE(platform.hasDpePartitions()) << "an expandable platform never reads";
    platform.setExpandable(false);
    EXPECT_FALSE(platform.findDpePartition("array0").isPartition())
        << "the search by name does not read";
    EXPECT_TRUE(platform.hasDpePartition("0x0301"));
    EXPECT_TRUE(platform.findDpePartition("array0").isPartition());
    std::filesystem::remove(platform.getPlatformFile());
    EXPECT_EQ(platform.getDpePartitions().size(), 1U) << "read once";
}

TEST_F(DpePartitions, AFailedReadIsNotRepeatedAndLeavesNothingBehind) {
    pack(platform, "no JSON");
    EXPECT_THROW_MSG(platform.getDpePartitions(), HEXAlgException,
                     "An error occurred while parsing the dpe partitions json file: "
                     "'dpearchive/arch/dpe_partition.json' in the array-engine project "
                     "'dpe/array.zip' of '" +
                         dir.path("p.pka") + "'");
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

TEST_F(DpePartitions, ProjectsThatCannotBeReadHaveNone) {
    RawMember damaged = storedMember("damaged.zip", "x");
    damaged.crc = 0;
    const std::string path = dir.write(
        "bad.pka",
        rawZip({storedMember("../climbs.zip", "x"), damaged, storedMember("text.zip", "no zip")}));
    for (const std::string name : {"../climbs.zip", "damaged.zip", "absent.zip", "text.zip"}) {
        HPLPlatform bad;
        bad.setPlatformFile(path);
        bad.addFile("DPEPRJ", name);
        std::string head =
            "The array-engine project '" + name + "' of '" + path + "' cannot be read: The ";
        if (name == "absent.zip" || name == "text.zip") head.clear();
        std::string text;
        try {
            bad.getDpePartitions();
        } catch (const HEXAlgException& error) {
            text = error.what();
        }
        EXPECT_EQ(head.empty() ? text : text.substr(0, head.size()), head);
        EXPECT_FALSE(bad.hasDpePartitions());
    }
    EXPECT_EQ(messages.text(), "@74-34@%s%s|" + path + "|text.zip\n")
        << "one that is absent is silent, a refused one speaks by its exception";
}

}  // namespace
