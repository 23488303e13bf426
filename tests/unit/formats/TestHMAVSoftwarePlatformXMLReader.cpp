// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_platform/HMAVSoftwarePlatform.h"
#include "mav_platform/HMAVSoftwarePlatformXMLReader.h"
#include "support/Doubles.h"

namespace {

/// The example of the format's page.
std::string example() {
    std::ifstream file(MAV_SOURCE_DIR "/docs/formats/spfm.md");
    const std::string page(std::istreambuf_iterator<char>(file), {});
    const std::size_t start = page.find("```xml\n") + 7;
    return page.substr(start, page.find("```", start) - start);
}

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
    const Parsed parsed(example());
    ASSERT_TRUE(parsed.ok) << parsed.error;
    EXPECT_EQ(parsed.platform->toJSONString(), R"({
    "defaultConfig": "linux",
    "systemConfigurations": [
        {
            "name": "linux",
            "prettyName": "Linux",
            "description": "Linux on the application processors",
            "defaultProcessorGroup": "apu",
            "defaultBootImage": "standard",
            "prebuiltData": "prebuilt\/linux",
            "qemu": "false",
            "processorGroups": [
                {
                    "name": "apu",
                    "prettyName": "Application processors",
                    "cpuType": "quad-a72",
                    "cpuInstance": "apu_0",
                    "osPrettyName": "Linux",
                    "osName": "linux",
                    "osIncludePaths": "linux\/include",
                    "osHypervisorGuest": "false"
                }
            ],
            "bootImages": [
                {
                    "name": "standard",
                    "bif": "boot\/linux.bif",
                    "data": "boot\/image",
                    "mountPath": "\/mnt",
                    "readMe": "boot\/README",
                    "qemuArgs": "qemu\/args.txt"
                }
            ],
            "runtimes": [
                "ocl",
                "cpp"
            ]
        },
        {
            "name": "bare",
            "prettyName": "bare",
            "defaultProcessorGroup": "rpu",
            "qemu": "false",
            "processorGroups": [
                {
                    "name": "rpu",
                    "prettyName": "rpu",
                    "osName": "standalone",
                    "osHypervisorGuest": "false"
                }
            ]
        }
    ]
}
)");
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
    const std::string os = "<mav:os mav:name='linux'/>";
    const struct {
        std::string text;
        const char* reason;
    } cases[] = {
        {"", "no element found"},
        {"<other/>", "mav:platform"},
        {"<mav:platform/>", "mav:systemConfigurations"},
        {configurations("<mav:configuration/>"), "mav:name"},
        {configurations("<mav:configuration mav:name='c'><mav:processorGroup>" + os +
                        "</mav:processorGroup></mav:configuration>"),
         "mav:name"},
        {configurations("<mav:configuration mav:name='c'><mav:processorGroup mav:name='g'/>"
                        "</mav:configuration>"),
         "mav:os"},
        {configurations("<mav:configuration mav:name='c'><mav:bootImages/></mav:configuration>"),
         "mav:image"},
        {configurations("<mav:configuration mav:name='c'><mav:bootImages><mav:image/><mav:image/>"
                        "</mav:bootImages></mav:configuration>"),
         "mav:image"},
        {"<!DOCTYPE x [<!ENTITY a 'b'>]>" + configurations(""), "DOCTYPE"},
    };
    for (const auto& test : cases) {
        const Parsed parsed(test.text);
        EXPECT_FALSE(parsed.ok) << test.text;
        EXPECT_NE(parsed.error.find(test.reason), std::string::npos) << parsed.error;
        EXPECT_EQ(parsed.platform->getSystemConfig(), nullptr);
    }
    const Parsed parsed(configurations("\n<mav:configuration/>"));
    const std::string path = parsed.dir.path("s.spfm");
    EXPECT_EQ(
        parsed.error.rfind("Error parsing software platform file: " + path + " Line number:2. ", 0),
        0U)
        << parsed.error;
    EXPECT_EQ(parsed.console.text(),
              "Error parsing software platform file: " + path +
                  "\nLine number:2. element 'mav:configuration': required attribute 'mav:name' is "
                  "missing\n");
    EXPECT_EQ(parsed.messages.text(), "@74-51@%s%d|" + path + "|2\n");
    EXPECT_EQ(parsed.messages.all.at(0).level, 2);
}

TEST(HMAVSoftwarePlatformXMLReader, EveryTruncationIsRefused) {
    const std::string whole = example();
    const std::size_t end = whole.rfind('>');
    for (std::size_t size = 0; size <= end; size += 7) {
        EXPECT_FALSE(Parsed(whole.substr(0, size)).ok) << size;
    }
}

}  // namespace
