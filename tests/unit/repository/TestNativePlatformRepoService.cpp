// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "mav_host/HUTEnv.h"
#include "mav_platform/HMAVEnv.h"
#include "mav_platform/NativePlatformRepoService.h"
#include "support/Doubles.h"

namespace {

namespace fs = std::filesystem;
using mav::platform::NativePlatformRepoService;
using Texts = std::vector<std::string>;

TEST(NativePlatformRepoService, DefaultDirectoriesExistAndAreCanonical) {
    const TempDir dir;
    fs::create_directories(dir.path("r/base_platforms"));
    fs::create_directories(dir.path("real"));
    fs::create_directory_symlink("../real", dir.path("r/platforms"));
    const std::string root = dir.path("r/../r");
    const EnvVar roots("MAV_APP_ROOT", root + ":" + dir.path("absent") + ":" + root);
    Texts expected{"kept"};
    if (fs::exists("/opt/tarvek/platforms")) {
        expected.push_back(fs::canonical("/opt/tarvek/platforms"));
    }
    for (int i = 0; i < 2; ++i) {
        expected.push_back(dir.path("real"));
        expected.push_back(dir.path("r/base_platforms"));
    }
    Texts out{"kept"};
    NativePlatformRepoService().getDefaultPlatformLookupDirs(out);
    EXPECT_EQ(out, expected);
}

TEST(NativePlatformRepoService, TheRepositoryPathHoldsEachDirectoryOnce) {
    struct OtherDefaults final : NativePlatformRepoService {
        explicit OtherDefaults(std::string dir) : dir_(std::move(dir)) {}
        void getDefaultPlatformLookupDirs(Texts& out) override { out.push_back(dir_); }
        std::string dir_;
    };
    const TempDir dir;
    for (const char* name : {"b", "a", "d"}) fs::create_directory(dir.path(name));
    dir.write("file", "");
    fs::create_directory_symlink("a", dir.path("link"));
    OtherDefaults service(dir.path("d"));
    Texts dirs{dir.path("b"),      dir.path("link"), dir.path("file"),
               dir.path("absent"), dir.path("a"),    dir.path("b/.")};
    const Texts given = dirs;
    EXPECT_EQ(service.getPlatformRepoPath(dirs, false), dir.path("b") + ":" + dir.path("a"));
    EXPECT_EQ(service.getPlatformRepoPath(dirs, true),
              dir.path("b") + ":" + dir.path("a") + ":" + dir.path("d"));
    EXPECT_EQ(dirs, given);
    dirs = {dir.path("file")};
    EXPECT_EQ(service.getPlatformRepoPath(dirs, false), "");
}

TEST(NativePlatformRepoService, DescriptionsAreFoundByStemAtAnyDepth) {
    const TempDir dir;
    const std::string top = dir.write("two/Card.qpfm", "");
    const std::string deep = dir.write("one/a/b/c/d/e/card.qpfm", "");
    dir.write("one/pipe.qpfm", "");
    dir.write("one/card.QPFM", "");
    fs::create_directory_symlink("../two", dir.path("one/link"));
    fs::create_directory_symlink("..", dir.path("two/up"));
    NativePlatformRepoService service;
    const auto found = [&](const std::string& name, const Texts& dirs, bool firstOnly) {
        Texts out;
        service.getQpfmFiles(name, dirs, firstOnly, out);
        std::string lines;
        for (const std::string& file : out) lines += file.substr(dir.path().size() + 1) + "\n";
        return lines;
    };
    const Texts dirs{dir.path("two"), dir.path("absent"), dir.path("one")};
    const std::string fromTwo = "two/Card.qpfm\ntwo/up/one/a/b/c/d/e/card.qpfm\n";
    const std::string fromOne = "one/a/b/c/d/e/card.qpfm\none/link/Card.qpfm\n";
    EXPECT_EQ(found("card", dirs, false), fromTwo + fromOne) << "loops of links end";
    EXPECT_EQ(found("CARD", dirs, true), "two/Card.qpfm\n");
    EXPECT_EQ(found("", {dir.path("one")}, false), fromOne + "one/pipe.qpfm\n");
    const OwnLetters letters;
    EXPECT_EQ(found("PIPE", {dir.path("one")}, true), "one/pipe.qpfm\n") << "in any locale";
    EXPECT_EQ(found(dir.path("one/../two/Card.qpfm"), dirs, false), "two/Card.qpfm\n");

    Texts out{"kept"};
    service.getQpfmFiles("card", dir.path("absent") + ":" + dir.path("one") + "/.:", out);
    EXPECT_EQ(out, (Texts{"kept", deep, dir.path("one/link/Card.qpfm")}));

    fs::create_directory(dir.path("one/locked"));
    fs::permissions(dir.path(), fs::perms::all);
    fs::permissions(dir.path("one/locked"), fs::perms::none);
    const Unprivileged rights;
    testing::internal::CaptureStderr();
    EXPECT_EQ(found("", {dir.path("one"), dir.path("two")}, true), fromOne.substr(0, 24));
    EXPECT_EQ(found("other", {dir.path("one"), dir.path("one")}, true), "");
    const std::string line = "Exception: The directory '" + dir.path("one/locked") +
                             "' cannot be read: Permission denied\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), line + line);
}

TEST(HMAVEnv, TheRootAndTheVariableAreLookedAtOnceAndASetNameComesFirst) {
    HUTEnv::setProductName("");
    const std::string name = HMAVEnv::getProductName();
    const bool gradle = HMAVEnv::isRunningAsGradleUnitTest();
    const EnvVar root("MAV_APP_ROOT", name == "mirra" ? "/opt/mav" : "/opt/mirra");
    const EnvVar variable("GRADLE_UNIT_TEST",
                          gradle ? std::nullopt : std::optional<std::string>(""));
    EXPECT_EQ(HMAVEnv::getProductName(), name);
    EXPECT_EQ(HMAVEnv::isRunningAsGradleUnitTest(), gradle);
    HUTEnv::setProductName("quorin");
    EXPECT_EQ(HMAVEnv::getProductName(), "quorin");
    HUTEnv::setProductName("");
}

TEST(HMAVEnvDeathTest, TheProductIsTheFirstWordOfTheTableInTheRoot) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto product = [](const char* root) {
        const EnvVar variable("MAV_APP_ROOT", root);
        std::cerr << "<" << HMAVEnv::getProductName() << ">";
        std::exit(0);
    };
    // A process each, because the root is looked at once.
    EXPECT_EXIT(product("/opt/MAV/2026/Mirra"), testing::ExitedWithCode(0), "<mirra>");
    EXPECT_EXIT(product("/opt/Mav:/mirra"), testing::ExitedWithCode(0), "<mav>");
    EXPECT_EXIT(product("/opt/other"), testing::ExitedWithCode(0), "<unknown>");
}

}  // namespace
