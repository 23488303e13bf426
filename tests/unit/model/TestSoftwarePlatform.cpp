// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_platform/HMAVSoftwarePlatform.h"
#include "support/Row.h"

namespace {

struct SoftwareModel : testing::Test {
    HMAVSoftwarePlatform platform;
};

HMAVSystemConfig& addConfig(HMAVSoftwarePlatform& platform, const char* name, const char* os = "") {
    HMAVSystemConfig* const config = platform.addSystemConfig();
    config->setName(name);
    if (*os != '\0') config->addProcessorGroup()->setOSName(os);
    return *config;
}

TEST(SystemConfig, NamesFallBackAndTheLastMatchWins) {
    HMAVSystemConfig config;
    EXPECT_EQ(config.getDefaultBootImgName() + config.getDefaultProcGrpName(), "");
    config.setName("c");
    EXPECT_EQ(config.getPrettyName(), "c");
    config.addBootImg()->setName("image");
    HMAVBootImg* const second = config.addBootImg();
    second->setName("image");
    EXPECT_EQ(config.getBootImgByName("image"), second);
    EXPECT_EQ(config.getBootImgByName("Image"), nullptr);
    EXPECT_EQ(config.getDefaultBootImgName(), "image");
    config.setDefaultBootImgName("stored");
    EXPECT_EQ(config.getDefaultBootImgName(), "stored");
    config.addProcessorGroup("recorded");
    HMAVProcessorGroup* const group = config.addProcessorGroup();
    group->setName("g");
    EXPECT_EQ(group->getPrettyName(), "g");
    EXPECT_EQ(config.getDefaultProcGrpName(), "g");
    EXPECT_EQ(appended([&](auto& list) { config.getProcessorGroups(list); }), "kept recorded ");
}

TEST_F(SoftwareModel, TheDefaultConfiguration) {
    EXPECT_EQ(platform.getDefaultSystemConfig(), nullptr);
    EXPECT_EQ(platform.getDefaultConfigName(), "");
    HMAVSystemConfig& first = addConfig(platform, "a");
    first.setPrettyName("b");
    HMAVSystemConfig& second = addConfig(platform, "c");
    EXPECT_EQ(platform.getDefaultConfigName(), "a");
    EXPECT_EQ(platform.getSystemConfigByName("b"), &first);
    EXPECT_EQ(platform.getSystemConfigByName("A"), nullptr);
    platform.setDefaultConfigName("c");
    EXPECT_EQ(platform.getDefaultSystemConfig(), &second);
    // A name that finds nothing makes the first one the default and is still what is answered.
    platform.setDefaultConfigName("none");
    EXPECT_EQ(platform.getDefaultSystemConfig(), &first);
    EXPECT_EQ(platform.getDefaultConfigName(), "none");
    addConfig(platform, "b");
    EXPECT_NE(platform.getSystemConfigByName("b"), &first) << "the last match wins";
}

TEST_F(SoftwareModel, Runtimes) {
    HMAVSystemConfig& first = addConfig(platform, "a");
    first.addRuntime("ocl");
    first.addRuntime("CPP");
    addConfig(platform, "b").addRuntime("ocl");
    addConfig(platform, "c");
    addConfig(platform, "d").addRuntime("other");
    EXPECT_EQ(appended([&](auto& list) { platform.getSupportedRuntimes(list); }),
              "kept ocl CPP other ");
    EXPECT_EQ(platform.getNumRuntimes(), 3U);
    EXPECT_EQ(appended([&](auto& list) { platform.getSupportedRuntimesByPrettyName(list); }),
              "kept C/C++ ")
        << "ocl has no name here";
    EXPECT_EQ(row(platform.isRuntimeSupported("OPENCL"), platform.isRuntimeSupported("other")),
              "true|false");
    EXPECT_EQ(row(platform.isSystemConfigSupported("a"), platform.isSystemConfigSupported("c"),
                  platform.isSystemConfigSupported("d"), platform.isSystemConfigSupported("none")),
              "true|true|false|false");
}

TEST_F(SoftwareModel, ConfigurationsByLibraryType) {
    addConfig(platform, "linux", "Linux");
    addConfig(platform, "bare", "standalone");
    addConfig(platform, "empty");
    const auto names = [&](const char* type) {
        return appended([&](auto& list) {
            const std::size_t count = platform.getSystemConfigNames(list, type);
            EXPECT_EQ(count, list.size());
        });
    };
    EXPECT_EQ(names("Shared"), "kept linux ");
    EXPECT_EQ(names("c-callable"), "kept bare ");
    EXPECT_EQ(names("static"), "kept linux bare ");
    EXPECT_EQ(names(""), "kept linux bare empty ");
    EXPECT_EQ(names("dynamic"), "kept ");
}

}  // namespace
