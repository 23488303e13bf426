// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVPlatformXMLReader.h"
#include "mav_platform/HMAVReconfigurablePartition.h"
#include "support/Doubles.h"
#include "support/Pages.h"

namespace {

const std::string IDENTITY =
    "<mav:platform xmlns:mav='urn:mav:platform:1' mav:vendor='v' mav:library='l' mav:name='n' "
    "mav:version='1.0'>";

std::string file(const std::string& element, const std::string& path, const std::string& name) {
    return "<mav:" + element + " mav:path='" + path + "' mav:name='" + name + "'/>";
}

const std::string HARDWARE = file("hardwarePlatform", "h", "h.pka");

std::string description(const std::string& hardware, const std::string& rest = "") {
    return IDENTITY + "\n<mav:hardwarePlatforms>" + hardware + "</mav:hardwarePlatforms>" + rest +
           "</mav:platform>";
}

std::string partition(const std::string& id, const std::string& content) {
    return "<mav:reconfigurablePartition mav:id='" + id + "'>" + content +
           "</mav:reconfigurablePartition>";
}

class TestHMAVPlatformXMLReader : public testing::Test {
  protected:
    /// Writes the description and reads it into `platform`.
    bool read(const std::string& content, HMAVPlatform& platform) {
        temp_.write("q/sample.qpfm", content);
        HMAVPlatformXMLReader reader(path_, &platform);
        const bool parsed = reader.parseFile();
        error_ = reader.getErrorMsg();
        return parsed;
    }
    /// All that a reader sets, "~" for the directory.
    std::string shown(const HMAVPlatform& platform) const {
        std::string text =
            platform.getVendor() + "|" + platform.getLibrary() + "|" + platform.getName() + "|" +
            platform.getVersion() + "|" + platform.getDescription() + "|" +
            platform.getPlatformFile() + "|" + platform.getHardwarePlatformFile() + "|" +
            platform.getHardwareEmuPlatformFile() + "|" + platform.getSoftwarePlatformFile() + "|" +
            std::to_string(platform.getDefaultRPId());
        HSTVector<HMAVReconfigurablePartition*> partitions;
        platform.getReconfigurablePartitions(partitions);
        for (const HMAVReconfigurablePartition* one : partitions) {
            text += "|" + std::to_string(one->getID()) + ":" + one->getHardwarePlatformFile() +
                    "," + one->getHardwareEmulationPlatformFile();
        }
        for (std::size_t at = 0; (at = text.find(temp_.path())) != std::string::npos;)
            text.replace(at, temp_.path().size(), "~");
        return text;
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
        EXPECT_EQ(messages.text(), "@74-9@%s|" + path + "\n");
        EXPECT_EQ(messages.all.at(0).level, 1);
        EXPECT_EQ(platform.getPlatformFile(), "");
    }

    const TempDir temp_;
    const std::string path_ = temp_.write("q/sample.qpfm", "");
    CapturedMessages messages_;
    CapturedConsole console_;
    std::string error_;
};

TEST_F(TestHMAVPlatformXMLReader, EachItemComesToItsPlace) {
    const std::string software = "<mav:softwarePlatforms>" +
                                 file("softwarePlatform", "./../sw", "s.spfm") +
                                 "</mav:softwarePlatforms>";
    const std::pair<std::string, std::string> rows[] = {
        {documented("qpfm.md"),
         "example.com|cards|ridge200|2.10|Ridge 200 card with two memory banks|~/q/sample.qpfm|"
         "~/q/hw/ridge200.pka|~/q/hw_emu/ridge200_emu.pka|~/q/sw/ridge200.spfm|0"},
        {documented("qpfm.md", "\nA platform of two"),
         "example.com|cards|ridge200_dfx|1.0||~/q/sample.qpfm||||2|1:~/q/hw/left.pka,|"
         "2:~/q/hw/right.pka,~/q/hw_emu/right.pka"},
        // Hardware references are made canonical, software ones are not.
        {description(file("hardwarePlatform", "..", "h.pka") + file("hwEmuPlatform", ".", "e.pka"),
                     software),
         "v|l|n|1.0||~/q/sample.qpfm|~/h.pka|~/q/e.pka|~/q/./../sw/s.spfm|0"},
        {description(file("hwEmuPlatform", "e", "e.pka")),
         "v|l|n|1.0||~/q/sample.qpfm|~/q/e/e.pka|~/q/e/e.pka||0"},
        {description(partition("3", file("hwEmuPlatform", "e", "a.pka")) +
                     partition("0", file("hardwarePlatform", "h", "b.pka")) +
                     partition(" +3 ", file("hardwarePlatform", "h", "c.pka"))),
         "v|l|n|1.0||~/q/sample.qpfm||||0|3:,~/q/e/a.pka|0:~/q/h/b.pka,|3:~/q/h/c.pka,"},
        // The default partition counts only where there are partitions.
        {IDENTITY + "<mav:hardwarePlatforms mav:defaultRP='7'>" + HARDWARE +
             "</mav:hardwarePlatforms></mav:platform>",
         "v|l|n|1.0||~/q/sample.qpfm|~/q/h/h.pka|||0"},
    };
    for (const auto& [content, expected] : rows) {
        HMAVPlatform platform;
        EXPECT_TRUE(read(content, platform)) << content;
        EXPECT_EQ(shown(platform), expected);
        const auto* three = platform.getReconfigurablePartition(3);
        EXPECT_TRUE(!three || three->getHardwareEmulationPlatformFile().empty())
            << "the last of an id";
    }
    EXPECT_EQ(messages_.text() + console_.text() + error_, "");
}

TEST_F(TestHMAVPlatformXMLReader, TheFileIsRecordedAsItIsSpelled) {
    temp_.write("q/sample.qpfm", description(HARDWARE));
    const std::string spelling = temp_.path("q/../q/sample.qpfm");
    HMAVPlatform other;
    ASSERT_TRUE(HMAVPlatformXMLReader(spelling, &other).parseFile());
    EXPECT_EQ(other.getUniqueName(), spelling);
    EXPECT_EQ(other.getHardwarePlatformFile(), temp_.path("q/h/h.pka"));

    for (const std::string& path : {std::string(), temp_.path("absent.qpfm")}) {
        EXPECT_THROW(HMAVPlatformXMLReader(path, &other), HEXFileNotFoundException);
    }
    EXPECT_TRUE(messages_.all.empty());
}

/// What is refused is compared with the schema elsewhere.
TEST_F(TestHMAVPlatformXMLReader, RefusalsNameLineAndReason) {
    const std::string two =
        "'mav:hardwarePlatform' and optionally 'mav:hwEmuPlatform', or 'mav:hwEmuPlatform'";
    const std::pair<std::string, std::string> rows[] = {
        {description(HARDWARE).substr(0, 150), "2. XML syntax error: unclosed token"},
        {"\n<platform/>", "2. element 'platform': the root element must be 'mav:platform'"},
        {description(""), "2. element 'mav:hardwarePlatforms': it must hold " + two +
                              ", or 'mav:reconfigurablePartition'"},
        {description(partition("1", "")),
         "2. element 'mav:reconfigurablePartition': it must hold " + two},
    };
    for (const auto& [content, report] : rows) {
        temp_.write("q/sample.qpfm", content);
        expectRefused(path_, report);
    }
    expectRefused(temp_.path(),
                  "0. the path is a directory, not a regular file; give the path of one");
}

TEST_F(TestHMAVPlatformXMLReader, KeepsWhatThePlatformReceivedBeforeTheError) {
    HMAVPlatform platform;
    EXPECT_FALSE(read("\n" + IDENTITY + "</mav:platform>", platform));
    EXPECT_EQ(error_, "Error parsing platform file: " + path_ +
                          "Line number:2. element 'mav:platform': required element "
                          "'mav:hardwarePlatforms' is missing\n");
    EXPECT_EQ(platform.getName(), "n");
    EXPECT_EQ(platform.getPlatformFile(), "");

    // A reader adds the text of each failure to those before.
    HMAVPlatformXMLReader reader(path_, &platform);
    EXPECT_FALSE(reader.parseFile());
    const std::string once = reader.getErrorMsg();
    EXPECT_FALSE(reader.parseFile());
    EXPECT_EQ(reader.getErrorMsg(), once + once);
}

}  // namespace
