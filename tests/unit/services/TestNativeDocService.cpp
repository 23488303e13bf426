// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>

#include "mav_platform/HMAVNativeDocService.h"
#include "mav_platform/HMAVNativeObjectService.h"
#include "support/Doubles.h"
#include "support/Paths.h"

namespace {

using boost::property_tree::ptree;
using mav::platform::NativeDocService;

const NativeDocService SERVICE;

/// The documentation that ships, without the application root of another test.
ptree shipped() {
    const EnvVar root("MAV_APP_ROOT", std::string(BINARY_DIR) + "/share/mav");
    ptree doc;
    EXPECT_TRUE(SERVICE.getFromFile(doc));
    return doc;
}

TEST(NativeDocService, BranchesByClassMemberAndPath) {
    const CapturedConsole console;
    ptree doc = shipped();
    const ptree clock = SERVICE.getDocKeyBranch(doc, "HMAVSystemClock.frequency");
    EXPECT_EQ(clock.get<std::string>("unit"), "MHz");
    for (const char* path :
         {"HMAVPlatform.hardwarePlatforms.hardwarePlatform.systemClocks[0].frequency",
          "hardwarePlatform.systemClocks[].frequency", "hardwarePlatform.systemClocks.frequency",
          "hardwarePlatforms.reconfigurablePartitions[1].hwEmuPlatform.systemClocks[*]."
          "frequency"}) {
        EXPECT_EQ(SERVICE.getDocKeyBranch(doc, path), clock) << path;
        EXPECT_TRUE(SERVICE.isValidDocKey(doc, path));
    }
    for (const char* path :
         {"hardwarePlatforms.hardwarePlatform.dpeHardware.archMap.0",
          "HMAVDpeHardware.archMap.a.b[2].c", "HMAVDesignIPInstance.configuration.X.Y",
          "hardwarePlatform.extensions.flow"}) {
        EXPECT_EQ(SERVICE.getDocKeyBranch(doc, path).get("type", ""), "object of any form") << path;
    }
    EXPECT_TRUE(SERVICE.isValidDocKey(doc, "all"));
    EXPECT_TRUE(SERVICE.isValidDocKey(doc, "list_keys"));
    EXPECT_EQ(console.text(), "");
    EXPECT_EQ(SERVICE.getDocKeyBranch(doc, "HMAVSystemClock.frequency.unit").data(), "MHz");
    for (const char* key : {"", "HMAVSystemClock.Frequency", "HMAVDpeHardware.arch.0"}) {
        EXPECT_TRUE(SERVICE.getDocKeyBranch(doc, key).empty()) << key;
        EXPECT_FALSE(SERVICE.isValidDocKey(doc, key));
    }
    bool found = false;
    const ptree node = SERVICE.getBranch(doc, "documentation_keys.PBlock", found);
    EXPECT_TRUE(found);
    EXPECT_EQ(mav::platform::NativeObjectService().readJson(SERVICE.getAsJsonStr(node)), node);
    EXPECT_TRUE(SERVICE.getBranch(doc, "PBlock", found).empty());
    EXPECT_FALSE(found);
}

TEST(NativeDocService, FilesThatAreMissingOrDamaged) {
    const TempDir dir;
    const EnvVar root("MAV_APP_ROOT", dir.path());
    const CapturedConsole console;
    const std::string file = dir.path("platforms/platform_keys_doc.json");
    ptree doc;
    EXPECT_FALSE(SERVICE.getFromFile(doc));
    EXPECT_FALSE(SERVICE.isValidDocKey(doc, "PBlock"));
    dir.write("platforms/platform_keys_doc.json", "{");
    EXPECT_FALSE(SERVICE.getFromFile(doc));
    EXPECT_TRUE(doc.empty());
    const std::string missing = "Could not find the <" + file +
                                " >. Check the install area.  Can not continue with this task.\n";
    EXPECT_EQ(console.text(), missing + missing + "Exception: Failed to read platform: " + file +
                                  "(1): expected key string\n");
    dir.write("platforms/platform_keys_doc.json", "[]");
    EXPECT_FALSE(SERVICE.getFromFile(doc));
    EXPECT_TRUE(console.text().ends_with("Exception: the documentation '" + file +
                                         "' has no member 'documentation_keys'; install the "
                                         "library anew\n"));
    dir.write("platforms/platform_keys_doc.json", R"({"documentation_keys":
        {"A": {"b": {"c": {"d": "1"}}, "b.c": {"d": "2"}}, "A.b": {"c": {"e": "3"}}}})");
    EXPECT_TRUE(SERVICE.isValidDocKey(doc, "A.b")) << "read when it is asked for";
    // The longest documented key wins; a shorter one serves where that leads nowhere.
    EXPECT_EQ(SERVICE.getDocKeyBranch(doc, "A.b.c.e").data(), "3");
    EXPECT_EQ(SERVICE.getDocKeyBranch(doc, "A.b.c.d").data(), "2");
}

}  // namespace
