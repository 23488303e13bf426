// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_platform/HMAVSoftwarePlatform.h"

namespace {

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
    HSTVector<std::string> names;
    config.getProcessorGroups(names);
    EXPECT_EQ(names, HSTVector<std::string>{"recorded"});
}

TEST(SoftwarePlatform, TheDefaultConfiguration) {
    HMAVSoftwarePlatform platform;
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

TEST(SoftwarePlatform, Runtimes) {
    HMAVSoftwarePlatform platform;
    HMAVSystemConfig& first = addConfig(platform, "a");
    first.addRuntime("ocl");
    first.addRuntime("CPP");
    addConfig(platform, "b").addRuntime("ocl");
    addConfig(platform, "c");
    addConfig(platform, "d").addRuntime("other");
    HSTVector<std::string> keys;
    platform.getSupportedRuntimes(keys);
    EXPECT_EQ(keys, (HSTVector<std::string>{"ocl", "CPP", "other"}));
    EXPECT_EQ(platform.getNumRuntimes(), 3U);
    HSTVector<std::string> names;
    platform.getSupportedRuntimesByPrettyName(names);
    EXPECT_EQ(names, HSTVector<std::string>{"C/C++"}) << "ocl has no name here";
    EXPECT_TRUE(HMAVSoftwarePlatform::isRuntimeSupported("OPENCL"));
    EXPECT_FALSE(HMAVSoftwarePlatform::isRuntimeSupported("other"));
    EXPECT_TRUE(platform.isSystemConfigSupported("a"));
    EXPECT_TRUE(platform.isSystemConfigSupported("c")) << "no runtimes";
    EXPECT_FALSE(platform.isSystemConfigSupported("d"));
    EXPECT_FALSE(platform.isSystemConfigSupported("none"));
}

TEST(SoftwarePlatform, ConfigurationsByLibraryType) {
    HMAVSoftwarePlatform platform;
    addConfig(platform, "linux", "Linux");
    addConfig(platform, "bare", "standalone");
    addConfig(platform, "empty");
    const auto names = [&](const char* type) {
        HSTVector<std::string> out{"kept"};
        const std::size_t count = platform.getSystemConfigNames(out, type);
        EXPECT_EQ(count, out.size());
        std::string text;
        for (const std::string& name : out) text += name + " ";
        return text;
    };
    EXPECT_EQ(names("Shared"), "kept linux ");
    EXPECT_EQ(names("c-callable"), "kept bare ");
    EXPECT_EQ(names("static"), "kept linux bare ");
    EXPECT_EQ(names(""), "kept linux bare empty ");
    EXPECT_EQ(names("dynamic"), "kept ");
}

}  // namespace
