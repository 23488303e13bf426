// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_platform/HMAVSoftwarePlatform.h"
#include "mav_platform/HMAVSoftwarePlatformXMLReader.h"
#include "support/Doubles.h"

namespace {

std::string configurations(const std::string& content) {
    return "<mav:platform><mav:systemConfigurations>" + content +
           "</mav:systemConfigurations></mav:platform>";
}

struct Parsed {
    explicit Parsed(const std::string& text) {
        HMAVSoftwarePlatformXMLReader reader(dir.write("s.spfm", text), platform);
        ok = reader.parseFile();
        error = reader.getErrorMsg();
    }
    TempDir dir;
    CapturedMessages messages;
    CapturedConsole console;
    std::shared_ptr<HMAVSoftwarePlatform> platform = std::make_shared<HMAVSoftwarePlatform>();
    bool ok = false;
    std::string error;
};

TEST(HMAVSoftwarePlatformXMLReader, SplitsRuntimesAndDropsEmptyPieces) {
    const Parsed parsed(
        configurations("<mav:configuration mav:name='a' mav:runtimes=' ocl;,cpp\n x '/>"));
    ASSERT_TRUE(parsed.ok) << parsed.error;
    HSTVector<std::string> keys{"kept"};
    parsed.platform->getSystemConfig()->getRuntimes(keys);
    EXPECT_EQ(keys, (HSTVector<std::string>{"kept", "ocl", "cpp", "x"}));
}

TEST(HMAVSoftwarePlatformXMLReader, RefusalsNameLineAndReasonAndLeaveThePlatformEmpty) {
    const std::pair<std::string, std::string> cases[] = {
        {"<mav:platform/>",
         "1. element 'mav:platform': required element 'mav:systemConfigurations' is missing"},
        {configurations("<mav:configuration mav:name='c'>\n<mav:bootImages><mav:image/><mav:image/>"
                        "</mav:bootImages></mav:configuration>"),
         "2. element 'mav:bootImages': element 'mav:image' occurs a second time"}};
    for (const auto& [text, report] : cases) {
        const Parsed parsed(text);
        EXPECT_FALSE(parsed.ok) << text;
        const std::string head =
            "Error parsing software platform file: " + parsed.dir.path("s.spfm");
        EXPECT_EQ(parsed.error, head + " Line number:" + report);
        EXPECT_EQ(parsed.console.text(), head + "\nLine number:" + report + "\n");
        EXPECT_EQ(parsed.messages.text(),
                  "@74-51@%s%d|" + parsed.dir.path("s.spfm") + "|" + report.substr(0, 1) + "\n");
        EXPECT_EQ(parsed.platform->getSystemConfig(), nullptr);
    }
}

}  // namespace
