// SPDX-License-Identifier: Apache-2.0
#include <boost/property_tree/ptree.hpp>

#include "mav_platform/HMAVNativeCatalogService.h"
#include "mav_platform/HMAVNativeObjectService.h"
#include "mav_platform/PlatformLoader.h"
#include "support/Archives.h"
#include "support/Paths.h"

namespace {

using boost::property_tree::ptree;
using mav::platform::NativeCatalogService;
using mav::platform::NativeObjectService;
using mav_platform::PlatformLoader;

const NativeCatalogService SERVICE;

const std::string SAMPLES = std::string(BINARY_DIR) + "/share/mav/samples/";

constexpr const char* HARDWARE =
    R"(, "unifiedPlatform": true, "platformState": "impl", "usesPR": true, "hardware": true,
    "systemClocks": [{"name": "c0"}, {"name": "c1"}], "files": [{"name": "a.hpfm", "type": "HPFM"}],
    "devices": [{"name": "fpga0", "part": {"architecture": "xqx"}}],
    "designIntent": {"serverManaged": {"value": true}}, "generatedVersion": "2026.1")";

ptree infoOf(const std::string& path, bool warranty, bool partitions) {
    PlatformLoader loader(path, PlatformLoader::HW_METADATA_AUTO);
    ptree info;
    info.put("old", "content");
    SERVICE.getPlatformInfo_(&loader, info, warranty, partitions);
    return info;
}

/// What the members are in their order is held by the command's summaries.
TEST(NativeCatalogService, SumsAnArchiveUp) {
    const CapturedMessages messages;
    const EnvVar release("MAV_TOOL_RELEASE", "2030.1");
    const TempDir dir;
    const std::string path =
        packArchive(dir, "a.pka", {{"pka.json", metadata(HARDWARE)}, {"a.hpfm", ""}});
    const ptree plain = infoOf(path, false, true);
    EXPECT_EQ(plain.get<std::string>("serverManaged"), "true");
    EXPECT_EQ(plain.get<std::string>("hpfmFile"), "<DSA>/a.hpfm");
    EXPECT_EQ(plain.count("old") + plain.count("warranty"), 0U);
    EXPECT_TRUE(messages.all.empty()) << "without the warranty no policy is run";
    EXPECT_EQ(infoOf(path, true, false).get<std::string>("warranty"), "false");
    EXPECT_EQ(NativeObjectService().readJson(SERVICE.getAsJsonStr(path, true, false)),
              infoOf(path, true, false));
}

TEST(NativeCatalogService, PartitionsAndEmulationPlatforms) {
    const ptree board = infoOf(SAMPLES + "tessomar_r2/tessomar_r2.qpfm", false, true);
    const auto& partitions = board.get_child("reconfigurablePartitions");
    EXPECT_EQ(partitions.front().second.get<std::string>("dpeArchitecture"), "DPE_A");
    for (const char* key : {"platformHwFile", "platformHwEmuFile"}) {
        EXPECT_EQ(board.get<std::string>(key), partitions.back().second.get<std::string>(key))
            << "that of the default partition";
    }
    EXPECT_EQ(infoOf(SAMPLES + "ostrivel_e7/ostrivel_e7.qpfm", false, false)
                  .get<std::string>("twoHwEmuBd"),
              "true");
    const ptree merged = infoOf(SAMPLES + "veltrin_h90/veltrin_h90.pka", false, false);
    EXPECT_EQ(merged.get<std::string>("hwEmuSystemClockCount"), "3");
    EXPECT_EQ(merged.get<std::string>("twoHwEmuBd"), "false") << "one archive holds both";
}

TEST(NativeCatalogService, SingleValues) {
    const TempDir dir;
    const std::string path = packArchive(dir, "a.pka", {{"pka.json", metadata(HARDWARE)}});
    PlatformLoader loader(path, PlatformLoader::HW_METADATA_AUTO);
    EXPECT_EQ(SERVICE.getValue(&loader, "systemClockCount"), "2");
    EXPECT_EQ(SERVICE.getValue(path, "hwEmuHpfmFile"), "");
    const EnvVar release("MAV_TOOL_RELEASE", "2026.1");
    const CapturedMessages messages;
    EXPECT_EQ(SERVICE.getValue(path, "warranty"), "true");
    for (const char* key : {"nothing", "", "warranty.more", "Hardware"})
        EXPECT_EQ(SERVICE.getValue(path, key),
                  std::string("error: key path '") + key + "' doens't exist");
    EXPECT_EQ(SERVICE.getValue(SAMPLES + "tessomar_r2/tessomar_r2.qpfm",
                               "reconfigurablePartitions[1].id"),
              "1");
}

TEST(NativeCatalogService, EveryPlatformBelowDirectories) {
    const CapturedMessages messages;
    const CapturedConsole console;
    const TempDir dir;
    dir.write("bad/a.qpfm", "<x/>");
    dir.write("bad/b.txt", "");
    std::filesystem::create_directory_symlink(dir.path(), dir.path("bad/loop"));
    std::filesystem::create_directory_symlink(SAMPLES + "ostrivel_e7", dir.path("bad/z"));
    const std::string text = SERVICE.getAllAsJsonStr(
        dir.path("bad") + ":" + SAMPLES + "tessomar_r2::/nowhere:" + SAMPLES, false, false);
    const ptree all = NativeObjectService().readJson(text);
    std::string names;
    for (const auto& [key, info] : all.get_child("platforms"))
        names += info.get<std::string>("baseName") + " ";
    EXPECT_EQ(names, "ostrivel_e7 ostrivel_e7_emu tessomar_r2 ");
    EXPECT_EQ(console.text().substr(console.text().rfind("Error: ")),
              "Error: failed to load platform\n");
    EXPECT_EQ(SERVICE.getAllAsJsonStr("", true, true), "{\n    \"platforms\": []\n}\n");
}

TEST(NativeCatalogService, NoPlatformNoSummary) {
    const CapturedMessages messages;
    const CapturedConsole console;
    EXPECT_TRUE(infoOf("/nowhere/a.pka", true, true).empty());
    EXPECT_EQ(SERVICE.getAsJsonStr("/nowhere/a.pka", false, false), "{\n}\n");
    EXPECT_EQ(console.text(), "Error: failed to load platform\nError: failed to load platform\n");
}

}  // namespace
