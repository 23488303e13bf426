// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_platform/HMAVSoftwarePlatform.h"
#include "mav_platform/HMAVSoftwarePlatformXMLReader.h"
#include "support/Doubles.h"
#include "support/Json.h"
#include "support/Pages.h"

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

TEST(HMAVSoftwarePlatformXMLReader, ReadsTheExampleOfItsPage) {
    const Parsed parsed(documented("spfm.md"));
    ASSERT_TRUE(parsed.ok) << parsed.error;
    EXPECT_EQ(compactJson(*parsed.platform),
              R"({"defaultConfig":"linux","systemConfigurations":[{"name":"linux",)"
              R"("prettyName":"Linux","description":"Linux on the application processors",)"
              R"("defaultProcessorGroup":"apu","defaultBootImage":"standard",)"
              R"("prebuiltData":"prebuilt\/linux","qemu":"false","processorGroups":[{"name":"apu",)"
              R"("prettyName":"Application processors","cpuType":"quad-a72",)"
              R"("cpuInstance":"apu_0","osPrettyName":"Linux","osName":"linux",)"
              R"("osIncludePaths":"linux\/include","osHypervisorGuest":"false"}],)"
              R"("bootImages":[{"name":"standard","bif":"boot\/linux.bif",)"
              R"("data":"boot\/image","mountPath":"\/mnt","readMe":"boot\/README",)"
              R"("qemuArgs":"qemu\/args.txt"}],"runtimes":["ocl","cpp"]},{"name":"bare",)"
              R"("prettyName":"bare","defaultProcessorGroup":"rpu","qemu":"false",)"
              R"("processorGroups":[{"name":"rpu","prettyName":"rpu","osName":"standalone",)"
              R"("osHypervisorGuest":"false"}]}]})");
    EXPECT_EQ(parsed.console.text() + parsed.messages.text(), "");
}

TEST(HMAVSoftwarePlatformXMLReader, SplitsRuntimesAndDropsEmptyPieces) {
    const Parsed parsed(
        configurations("<mav:configuration mav:name='a' mav:runtimes=' ocl;,cpp\n x '/>"));
    ASSERT_TRUE(parsed.ok) << parsed.error;
    HSTVector<std::string> keys{"kept"};
    parsed.platform->getSystemConfig()->getRuntimes(keys);
    EXPECT_EQ(keys, (HSTVector<std::string>{"kept", "ocl", "cpp", "x"}));
}

TEST(HMAVSoftwarePlatformXMLReader, RefusalsNameLineAndReasonAndLeaveThePlatformEmpty) {
    const auto group = [](const std::string& attributes, const std::string& content) {
        return configurations("<mav:configuration mav:name='c'>\n<mav:processorGroup " +
                              attributes + ">" + content +
                              "</mav:processorGroup></mav:configuration>");
    };
    const auto images = [](const std::string& content) {
        return configurations("<mav:configuration mav:name='c'>\n<mav:bootImages>" + content +
                              "</mav:bootImages></mav:configuration>");
    };
    const std::pair<std::string, std::string> cases[] = {
        {"<mav:platform/>",
         "1. element 'mav:platform': required element 'mav:systemConfigurations' is missing"},
        {configurations("\n<mav:configuration/>"),
         "2. element 'mav:configuration': required attribute 'mav:name' is missing"},
        {group("", "<mav:os mav:name='linux'/>"),
         "2. element 'mav:processorGroup': required attribute 'mav:name' is missing"},
        {group("mav:name='g'", ""),
         "2. element 'mav:processorGroup': required element 'mav:os' is missing"},
        {images(""), "2. element 'mav:bootImages': required element 'mav:image' is missing"},
        {images("<mav:image/><mav:image/>"),
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
