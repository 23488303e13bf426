// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>

#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "support/Doubles.h"
#include "support/Paths.h"

namespace {

/// Runs `work` in a forked process that ends normally; answers the text that it gave.
std::string inChild(const std::function<std::string()>& work) {
    const TempDir dir;
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        dir.write("report", work());
        std::exit(0);
    }
    int status = 1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    return dir.read("report");
}

TEST(HUTEnv, AppRootsComeFromTheVariableElseTheInstallation) {
    const std::string share = HUTFile::getCanonicalName(std::string(BINARY_DIR) + "/share/mav");
    const std::pair<std::optional<std::string>, HSTVector<std::string>> rows[] = {
        {"/b:/a::/c:", {"kept", "/b", "/a", "/c"}},
        {"", {"kept", share}},
        {std::nullopt, {"kept", share}},
    };
    for (const auto& [value, expected] : rows) {
        const EnvVar variable("MAV_APP_ROOT", value);
        HSTVector<std::string> roots{"kept"};
        HUTEnv::getRDIAppRootList(roots);
        EXPECT_EQ(roots, expected);
        EXPECT_EQ(HUTEnv::getHDIAppRoot(), expected[1]);
    }
}

TEST(HUTEnv, ReleaseIsTwoNumbers) {
    const std::pair<std::optional<std::string>, std::string> rows[] = {
        {std::nullopt, "2026.1"}, {"", "2026.1"},  {"2027.2", "2027.2"}, {"2027", "2027.0"},
        {"0.0", "0.0"},           {"none", "0.0"}, {"-3.1", "0.0"},      {"99999999999.1", "0.0"},
    };
    for (const auto& [value, expected] : rows) {
        const EnvVar variable("MAV_TOOL_RELEASE", value);
        EXPECT_EQ(std::to_string(HUTEnv::getMajor()) + "." + std::to_string(HUTEnv::getMinor()),
                  expected);
    }
}

TEST(HUTEnv, PinningTheTimeZoneChangesNoTimeAndNoChoice) {
    const std::time_t now = 1'700'000'000;
    const auto hour = [&] { return std::localtime(&now)->tm_hour; };
    {
        const EnvVar variable("TZ", std::nullopt);
        const int before = hour();
        HUTEnv::pinTimeZone();
        EXPECT_STREQ(::getenv("TZ"), ":/etc/localtime");
        EXPECT_EQ(hour(), before);
    }
    const EnvVar variable("TZ", "Asia/Tokyo");
    HUTEnv::pinTimeZone();
    EXPECT_STREQ(::getenv("TZ"), "Asia/Tokyo");
}

TEST(HUTEnv, TmpDirIsPrivateOnePerProcessAndMadeAgain) {
    const std::string dir = HUTEnv::getHDITmpDir();
    EXPECT_EQ(HUTEnv::getHDITmpDir(), dir);
    struct stat status {};
    ASSERT_EQ(::stat(dir.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFDIR | 0700U);
    const TempDir parent;
    const std::string report = inChild([&] {
        const EnvVar variable("TMPDIR", parent.path());
        const std::string own = HUTEnv::getHDITmpDir();
        return own + (HUTFile::isDir(own) ? " was there" : " was missing");
    });
    EXPECT_EQ(report.substr(0, parent.path().size()), parent.path());
    EXPECT_NE(report.find(" was there"), std::string::npos) << report;
    EXPECT_EQ(parent.list(), "") << "a child's goes with it";
    // A child that only inherited the directory leaves it alone.
    inChild([] { return std::string("done"); });
    EXPECT_TRUE(HUTFile::isDir(dir));
    ASSERT_TRUE(HUTFileUtils::removeDirs(dir));
    EXPECT_TRUE(HUTFile::isDir(HUTEnv::getHDITmpDir())) << "behind a cleaner";
}

TEST(HUTEnv, TmpDirOfSomebodyElseIsNotTaken) {
    using Change = std::function<void(const std::string&)>;
    const TempDir other;
    const Change changes[] = {
        [](const std::string& dir) { ::chmod(dir.c_str(), 0755); },
        [](const std::string& dir) {
            // One that was there before, so that the inode is another one.
            ASSERT_EQ(::mkdir((dir + "-new").c_str(), 0700), 0);
            ASSERT_EQ(::rmdir(dir.c_str()), 0);
            ASSERT_EQ(::rename((dir + "-new").c_str(), dir.c_str()), 0);
        },
        [&](const std::string& dir) {
            ASSERT_EQ(::rename(dir.c_str(), other.path("moved").c_str()), 0);
            ASSERT_EQ(::symlink(other.path("moved").c_str(), dir.c_str()), 0);
        },
    };
    for (const Change& change : changes) {
        HUTFileUtils::removeDirs(HUTEnv::getHDITmpDir());
        const std::string dir = HUTEnv::getHDITmpDir();
        change(dir);
        EXPECT_NE(HUTEnv::getHDITmpDir(), dir);
        HUTFile::rm(dir);
        HUTFileUtils::removeDirs(dir);
    }
}

TEST(HUTEnv, TmpDirThatCannotBeMadeNamesTheVariable) {
    const std::string text = inChild([] {
        const EnvVar variable("TMPDIR", "/no/such/parent");
        try {
            return HUTEnv::getHDITmpDir();
        } catch (const HEXUserException& error) {
            return std::string(error.what());
        }
    });
    EXPECT_EQ(
        text,
        "HUTEnv::getHDITmpDir() - no temporary directory can be made in '/no/such/parent': No "
        "such file or directory; set TMPDIR to a directory that can be written");
}

}  // namespace
