// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVPlatformXMLReader.h"
#include "mav_platform/HMAVReconfigurablePartition.h"
#include "support/Doubles.h"

namespace fs = std::filesystem;

namespace {

const char* const IDENTITY =
    "<mav:platform xmlns:mav='urn:mav:platform:1' mav:vendor='v' mav:library='l' mav:name='n' "
    "mav:version='1.0'>";

std::string file(const std::string& element, const std::string& path, const std::string& name) {
    return "<mav:" + element + " mav:path='" + path + "' mav:name='" + name + "'/>";
}

std::string description(const std::string& hardware, const std::string& rest = "") {
    return IDENTITY + ("\n<mav:hardwarePlatforms>" + hardware) + "</mav:hardwarePlatforms>" + rest +
           "</mav:platform>";
}

std::string partition(const std::string& id, const std::string& content) {
    return "<mav:reconfigurablePartition mav:id='" + id + "'>" + content +
           "</mav:reconfigurablePartition>";
}

std::string text(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

/// The fenced xml blocks of the format's page.
std::vector<std::string> documentedExamples() {
    const std::string page = text(fs::path(MAV_SOURCE_DIR) / "docs/formats/qpfm.md");
    const std::string fence = "```xml\n";
    std::vector<std::string> blocks;
    for (std::size_t at = page.find(fence); at != std::string::npos; at = page.find(fence, at)) {
        at += fence.size();
        blocks.push_back(page.substr(at, page.find("```", at) - at));
    }
    return blocks;
}

class TestHMAVPlatformXMLReader : public testing::Test {
  protected:
    /// Writes the description and reads it into `platform`.
    bool read(const std::string& content, HMAVPlatform& platform) {
        std::ofstream(path_, std::ios::binary) << content;
        HMAVPlatformXMLReader reader(path_, &platform);
        const bool parsed = reader.parseFile();
        error_ = reader.getErrorMsg();
        return parsed;
    }
    /// Reads `path` and expects every report of one refusal.
    static void expectRefused(const std::string& path, const std::string& lineAndText) {
        const CapturedMessages messages;
        const CapturedConsole console;
        HMAVPlatform platform;
        HMAVPlatformXMLReader reader(path, &platform);
        EXPECT_FALSE(reader.parseFile());
        const std::string head = "Error parsing platform file: " + path;
        EXPECT_EQ(console.text(), head + "\nLine number:" + lineAndText + "\n");
        EXPECT_EQ(reader.getErrorMsg(), head + "Line number:" + lineAndText + "\n");
        ASSERT_EQ(messages.all.size(), 1U);
        EXPECT_EQ(messages.all[0].level, 1);
        EXPECT_EQ(messages.all[0].group, "platform");
        EXPECT_EQ(messages.all[0].mask, 0x20000000U);
        EXPECT_EQ(messages.all[0].id, "@74-9@%s");
        EXPECT_EQ(messages.all[0].args, HSTVector<std::string>{path});
        EXPECT_EQ(platform.getPlatformFile(), "");
    }
    void expectRefusedText(const std::string& content, const std::string& lineAndText) {
        SCOPED_TRACE(content.substr(0, 200));
        std::ofstream(path_, std::ios::binary) << content;
        expectRefused(path_, lineAndText);
    }

    const TempDir temp_;
    const fs::path dir_ = temp_.path();
    const fs::path path_ = dir_ / "sample.qpfm";
    CapturedMessages messages_;
    CapturedConsole console_;
    std::string error_;
};

TEST_F(TestHMAVPlatformXMLReader, ReadsTheDocumentedExamples) {
    const std::vector<std::string> examples = documentedExamples();
    ASSERT_EQ(examples.size(), 2U);

    HMAVPlatform card;
    ASSERT_TRUE(read(examples[0], card)) << error_;
    EXPECT_EQ(card.getVendor(), "example.com");
    EXPECT_EQ(card.getLibrary(), "cards");
    EXPECT_EQ(card.getName(), "ridge200");
    EXPECT_EQ(card.getVersion(), "2.10");
    EXPECT_EQ(card.getDescription(), "Ridge 200 card with two memory banks");
    EXPECT_EQ(card.getPlatformFile(), path_);
    EXPECT_EQ(card.getHardwarePlatformFile(), dir_ / "hw/ridge200.pka");
    EXPECT_EQ(card.getHardwareEmuPlatformFile(), dir_ / "hw_emu/ridge200_emu.pka");
    EXPECT_EQ(card.getSoftwarePlatformFile(), dir_ / "sw/ridge200.spfm");
    EXPECT_FALSE(card.hasReconfigurablePartitions());

    HMAVPlatform split;
    ASSERT_TRUE(read(examples[1], split)) << error_;
    EXPECT_EQ(split.getDefaultRPId(), 2U);
    EXPECT_EQ(split.getHardwarePlatformFile(), "");
    EXPECT_EQ(split.getSoftwarePlatformFile(), "");
    HSTVector<HMAVReconfigurablePartition*> partitions;
    split.getReconfigurablePartitions(partitions);
    ASSERT_EQ(partitions.size(), 2U);
    EXPECT_EQ(partitions[0]->getID(), 1U);
    EXPECT_EQ(partitions[0]->getHardwarePlatformFile(), dir_ / "hw/left.pka");
    EXPECT_EQ(partitions[0]->getHardwareEmulationPlatformFile(), "");
    EXPECT_EQ(partitions[1]->getHardwarePlatformFile(), dir_ / "hw/right.pka");
    EXPECT_EQ(partitions[1]->getHardwareEmulationPlatformFile(), dir_ / "hw_emu/right.pka");
    EXPECT_TRUE(messages_.all.empty());
    EXPECT_EQ(console_.text() + error_, "");
}

TEST_F(TestHMAVPlatformXMLReader, MakesHardwareReferencesCanonicalAndSoftwareOnesNot) {
    const std::string software = "<mav:softwarePlatforms>" +
                                 file("softwarePlatform", "./../sw", "s.spfm") +
                                 "</mav:softwarePlatforms>";
    HMAVPlatform platform;
    ASSERT_TRUE(read(
        description(file("hardwarePlatform", "..", "h.pka") + file("hwEmuPlatform", ".", "e.pka"),
                    software),
        platform));
    EXPECT_EQ(platform.getHardwarePlatformFile(), dir_.parent_path() / "h.pka");
    EXPECT_EQ(platform.getHardwareEmuPlatformFile(), dir_ / "e.pka");
    EXPECT_EQ(platform.getSoftwarePlatformFile(), dir_.string() + "/./../sw/s.spfm");

    // The recorded file is the spelling that was passed; references follow its directory.
    const std::string spelling = (dir_ / "../" / dir_.filename() / "sample.qpfm").string();
    HMAVPlatform other;
    ASSERT_TRUE(HMAVPlatformXMLReader(spelling, &other).parseFile());
    EXPECT_EQ(other.getUniqueName(), spelling);
    EXPECT_EQ(other.getHardwarePlatformFile(), platform.getHardwarePlatformFile());

    const fs::path before = fs::current_path();
    fs::current_path(dir_);
    HMAVPlatform bare;
    EXPECT_TRUE(HMAVPlatformXMLReader("sample.qpfm", &bare).parseFile());
    fs::current_path(before);
    EXPECT_EQ(bare.getPlatformFile(), "sample.qpfm");
    EXPECT_EQ(bare.getHardwareEmuPlatformFile(), dir_ / "e.pka");
    EXPECT_EQ(bare.getSoftwarePlatformFile(), "././../sw/s.spfm");
}

TEST_F(TestHMAVPlatformXMLReader, ReadsEachAlternative) {
    HMAVPlatform emulation;
    ASSERT_TRUE(read(description(file("hwEmuPlatform", "e", "e.pka")), emulation));
    EXPECT_EQ(emulation.getHardwarePlatformFile(), dir_ / "e/e.pka");
    EXPECT_EQ(emulation.getHardwareEmuPlatformFile(), dir_ / "e/e.pka");

    HMAVPlatform partitions;
    ASSERT_TRUE(read(description(partition("3", file("hwEmuPlatform", "e", "a.pka")) +
                                 partition("0", file("hardwarePlatform", "h", "b.pka")) +
                                 partition(" +3 ", file("hardwarePlatform", "h", "c.pka"))),
                     partitions));
    EXPECT_EQ(partitions.getDefaultRPId(), 0U);
    HSTVector<HMAVReconfigurablePartition*> list;
    partitions.getReconfigurablePartitions(list);
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0]->getHardwarePlatformFile(), "");
    EXPECT_EQ(list[0]->getHardwareEmulationPlatformFile(), dir_ / "e/a.pka");
    EXPECT_EQ(partitions.getReconfigurablePartition(3), list[2]);
    EXPECT_EQ(partitions.getHardwarePlatformFile(), "");

    // The default partition counts only where there are partitions.
    HMAVPlatform fixed;
    ASSERT_TRUE(read(std::string(IDENTITY) + "<mav:hardwarePlatforms mav:defaultRP='7'>" +
                         file("hardwarePlatform", "h", "h.pka") +
                         "</mav:hardwarePlatforms></mav:platform>",
                     fixed));
    EXPECT_EQ(fixed.getDefaultRPId(), 0U);
    EXPECT_EQ(fixed.getHardwareEmuPlatformFile(), "");
}

TEST_F(TestHMAVPlatformXMLReader, AcceptsOtherEditionsOfTheFormat) {
    HMAVPlatform platform;
    ASSERT_TRUE(
        read("<?xml version='1.0' encoding='ISO-8859-1'?><mav:platform mav:vendor='\xE9' "
             "mav:library='' mav:name=' n ' mav:version=' .5 ' mav:new='1'>"
             "<mav:softwarePlatforms>" +
                 file("softwarePlatform", "s", "s.spfm") +
                 "</mav:softwarePlatforms><mav:newer/><mav:hardwarePlatforms>" +
                 file("hardwarePlatform", "h", "h.pka") +
                 "</mav:hardwarePlatforms><mav:description> two\n lines "
                 "</mav:description></mav:platform>",
             platform))
        << error_;
    EXPECT_EQ(platform.getVendor(), "\xC3\xA9");
    EXPECT_EQ(platform.getName(), " n ");
    EXPECT_EQ(platform.getVersion(), ".5");
    EXPECT_EQ(platform.getDescription(), " two\n lines ");
}

TEST_F(TestHMAVPlatformXMLReader, ThrowsWhereNothingExists) {
    HMAVPlatform platform;
    for (const std::string& path : {std::string(), (dir_ / "absent.qpfm").string()}) {
        try {
            HMAVPlatformXMLReader reader(path, &platform);
            FAIL() << "made for '" << path << "'";
        } catch (const HEXFileNotFoundException& error) {
            EXPECT_EQ(error.getPath(), path);
        }
    }
    EXPECT_TRUE(messages_.all.empty());
}

TEST_F(TestHMAVPlatformXMLReader, ReportsFilesThatCannotBeRead) {
    expectRefused(dir_, "0. the path is a directory, not a file");
    expectRefusedText("", "1. XML syntax error: no element found");
    // Exists, and cannot be read by anybody.
    expectRefused("/proc/self/mem", "0. the file cannot be read: Input/output error");
    if (geteuid() == 0) return;  // root reads every file
    fs::permissions(path_, fs::perms::none);
    expectRefused(path_, "0. the file cannot be opened: Permission denied");
}

TEST_F(TestHMAVPlatformXMLReader, ReportsDocumentsThatDoNotBind) {
    const std::string hardware = file("hardwarePlatform", "h", "h.pka");
    const std::string good = description(hardware);
    const auto edited = [&good](const std::string& from, const std::string& to) {
        std::string out = good;
        return out.replace(out.find(from), from.size(), to);
    };
    expectRefusedText(edited("</mav:hardwarePlatforms>", "\n</mav:hardwarePlatform>"),
                      "3. XML syntax error: mismatched tag");
    expectRefusedText("\n<platform/>",
                      "2. element 'platform': the root element must be 'mav:platform'");
    expectRefusedText(edited("<mav:platform", "<!DOCTYPE x [<!ENTITY e 'v'>]><mav:platform"),
                      "1. a document type declaration (DOCTYPE) is not allowed");
    for (const std::string name : {"vendor", "library", "name", "version"})
        expectRefusedText(
            edited("mav:" + name + "='", "mav:no" + name + "='"),
            "1. element 'mav:platform': required attribute 'mav:" + name + "' is missing");
    expectRefusedText(
        edited("mav:path='h'", ""),
        "2. element 'mav:hardwarePlatform': required attribute 'mav:path' is missing");
    expectRefusedText(
        edited("'1.0'", "'1.0b'"),
        "1. attribute 'mav:version' of element 'mav:platform': '1.0b' is not a decimal number");
    expectRefusedText(
        edited("hardwarePlatforms>", "hardwarePlatforms mav:defaultRP='-1'>"),
        "2. attribute 'mav:defaultRP' of element 'mav:hardwarePlatforms': '-1' is not "
        "an integer from 0 to 4294967295");
    expectRefusedText(
        description(partition("4294967296", hardware)),
        "2. attribute 'mav:id' of element 'mav:reconfigurablePartition': '4294967296' "
        "is not an integer from 0 to 4294967295");
    expectRefusedText(edited("</mav:platform>", "\n<mav:softwarePlatforms/></mav:platform>"),
                      "3. element 'mav:softwarePlatforms': required element 'mav:softwarePlatform' "
                      "is missing");
    std::string deep;
    for (int i = 0; i < 300; ++i) deep += "<mav:d>";
    expectRefusedText(edited("</mav:platform>", deep),
                      "2. element 'mav:d': nested deeper than 256 elements");
}

TEST_F(TestHMAVPlatformXMLReader, RefusesMixedAndEmptyAlternatives) {
    const std::string hardware = file("hardwarePlatform", "h", "h.pka");
    const std::string two =
        "'mav:hardwarePlatform' and optionally 'mav:hwEmuPlatform', or "
        "'mav:hwEmuPlatform'";
    const std::string three = two + ", or 'mav:reconfigurablePartition'";
    expectRefusedText(description(""), "2. element 'mav:hardwarePlatforms': it must hold " + three);
    expectRefusedText(description(hardware + "\n" + partition("1", hardware)),
                      "3. element 'mav:hardwarePlatforms': element 'mav:reconfigurablePartition' "
                      "does not go with the elements before it; allowed is " +
                          three);
    expectRefusedText(description(hardware + "\n" + hardware),
                      "3. element 'mav:hardwarePlatforms': element 'mav:hardwarePlatform' occurs a "
                      "second time");
    expectRefusedText(description(partition("1", "")),
                      "2. element 'mav:reconfigurablePartition': it must hold " + two);
}

TEST_F(TestHMAVPlatformXMLReader, KeepsWhatThePlatformReceivedBeforeTheError) {
    HMAVPlatform platform;
    EXPECT_FALSE(read(std::string("\n") + IDENTITY + "</mav:platform>", platform));
    EXPECT_EQ(error_, "Error parsing platform file: " + path_.string() +
                          "Line number:2. element 'mav:platform': required element "
                          "'mav:hardwarePlatforms' is missing\n");
    EXPECT_EQ(platform.getName(), "n");
    EXPECT_EQ(platform.getPlatformFile(), "");

    // Whatever the binding refuses has changed nothing.
    HMAVPlatform other;
    EXPECT_FALSE(read(description(file("hardwarePlatform", "h", "h.pka"), "<"), other));
    EXPECT_EQ(other.getName() + other.getHardwarePlatformFile(), "");

    // A reader adds the text of each failure to those before.
    HMAVPlatformXMLReader reader(path_, &other);
    EXPECT_FALSE(reader.parseFile());
    const std::string once = reader.getErrorMsg();
    EXPECT_FALSE(reader.parseFile());
    EXPECT_EQ(reader.getErrorMsg(), once + once);
}

TEST_F(TestHMAVPlatformXMLReader, RefusesEveryTruncation) {
    std::string sample = documentedExamples().at(0);
    sample.erase(sample.find_last_of('>') + 1);
    for (std::size_t length = 0; length < sample.size(); ++length) {
        HMAVPlatform platform;
        EXPECT_FALSE(read(sample.substr(0, length), platform)) << length;
        EXPECT_EQ(platform.getName(), "") << length;
    }
    EXPECT_EQ(messages_.all.size(), sample.size());
    HMAVPlatform platform;
    EXPECT_TRUE(read(sample, platform));
}

}  // namespace
