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

namespace {

std::string appRoots() {
    HSTVector<std::string> roots{"kept"};
    HUTEnv::getRDIAppRootList(roots);
    std::string text;
    for (const std::string& root : roots) text += root + "|";
    return text;
}

std::string release(const std::optional<std::string>& text) {
    const EnvVar variable("MAV_TOOL_RELEASE", text);
    return std::to_string(HUTEnv::getMajor()) + "." + std::to_string(HUTEnv::getMinor());
}

/// Runs `work` in a forked process that ends normally; answers the text that it gave.
std::string inChild(const std::function<std::string()>& work) {
    int ends[2];
    if (::pipe(ends) != 0) return "no pipe";
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        const std::string text = work();
        const bool sent = ::write(ends[1], text.data(), text.size()) >= 0;
        // Output that the parent still buffers is the parent's to write.
        std::exit(sent ? 0 : 1);
    }
    ::close(ends[1]);
    char buffer[4096];
    const ssize_t size = ::read(ends[0], buffer, sizeof(buffer));
    ::close(ends[0]);
    int status = 1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    return std::string(buffer, size > 0 ? static_cast<std::size_t>(size) : 0);
}

class FixedProvider final : public HUTEnvProvider {
  public:
    const char* getEnv(const std::string& name) const override {
        return name == "GIVEN" ? "value" : nullptr;
    }
    void getAppRootList(HSTVector<std::string>& out) const override {
        if (!root.empty()) out.push_back(root);
    }
    std::string getTmpDir() const override { return "/fixed/tmp"; }
    unsigned getMajor() const override { return 0; }
    unsigned getMinor() const override { return 7; }

    std::string root = "/fixed";
};

TEST(HUTEnv, AppRootsComeFromTheVariableInItsOrder) {
    const EnvVar roots("MAV_APP_ROOT", "/b:/a::/c:");
    EXPECT_EQ(appRoots(), "kept|/b|/a|/c|");
    EXPECT_EQ(HUTEnv::getHDIAppRoot(), "/b");
}

TEST(HUTEnv, WithoutTheVariableTheInstallationIsTheAppRoot) {
    const std::string share = HUTFile::getCanonicalName(MAV_BINARY_DIR "/share/mav");
    for (const auto& value : {std::optional<std::string>(), std::optional<std::string>("")}) {
        const EnvVar roots("MAV_APP_ROOT", value);
        EXPECT_EQ(appRoots(), "kept|" + share + "|");
    }
}

TEST(HUTEnv, ReleaseIsTwoNumbers) {
    EXPECT_EQ(release(std::nullopt), "2026.1");
    EXPECT_EQ(release(""), "2026.1");
    EXPECT_EQ(release("2027.2"), "2027.2");
    EXPECT_EQ(release("2027"), "2027.0");
    EXPECT_EQ(release("0.0"), "0.0");
    EXPECT_EQ(release("none"), "0.0");
    EXPECT_EQ(release("-3.1"), "0.0");
    EXPECT_EQ(release("99999999999.1"), "0.0");
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

TEST(HUTEnv, TmpDirIsPrivateAndOnePerProcess) {
    const std::string dir = HUTEnv::getHDITmpDir();
    EXPECT_EQ(HUTEnv::getHDITmpDir(), dir);
    struct stat status;
    ASSERT_EQ(::stat(dir.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFDIR | 0700U);
}

TEST(HUTEnv, TmpDirOfAChildIsItsOwnAndGoesWithIt) {
    const std::string dir = HUTEnv::getHDITmpDir();
    const TempDir parent;
    const std::string report = inChild([&] {
        const EnvVar variable("TMPDIR", parent.path());
        const std::string own = HUTEnv::getHDITmpDir();
        return own + (HUTFile::isDir(own) ? " was there" : " was missing");
    });
    EXPECT_EQ(report.substr(0, parent.path().size()), parent.path());
    EXPECT_NE(report.find(" was there"), std::string::npos) << report;
    EXPECT_EQ(parent.list(), "");
    // A child that only inherited the directory leaves it alone, too.
    inChild([] { return std::string("done"); });
    EXPECT_TRUE(HUTFile::isDir(dir));
}

TEST(HUTEnv, TmpDirIsMadeAgainWhenACleanerTookIt) {
    const std::string dir = HUTEnv::getHDITmpDir();
    ASSERT_TRUE(HUTFileUtils::removeDirs(dir));
    EXPECT_TRUE(HUTFile::isDir(HUTEnv::getHDITmpDir()));
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

TEST(HUTEnv, AProviderReplacesEverything) {
    FixedProvider fixed;
    HUTEnv::setProductName("before");
    ASSERT_EQ(HUTEnv::setProvider(&fixed), nullptr);
    EXPECT_EQ(HUTEnv::getProductName(), "");
    HUTEnv::setProductName("named");
    EXPECT_EQ(HUTEnv::getProductName(), "named");
    EXPECT_STREQ(HUTEnv::getEnv("GIVEN"), "value");
    EXPECT_EQ(HUTEnv::getEnv("PATH"), nullptr);
    EXPECT_EQ(HUTEnv::getHDIAppRoot(), "/fixed");
    EXPECT_EQ(HUTEnv::getHDITmpDir(), "/fixed/tmp");
    EXPECT_EQ(HUTEnv::getMajor(), 0U);
    EXPECT_EQ(HUTEnv::getMinor(), 7U);
    fixed.root.clear();
    EXPECT_EQ(HUTEnv::getHDIAppRoot(), "");
    EXPECT_EQ(HUTEnv::setProvider(nullptr), &fixed);
    EXPECT_EQ(HUTEnv::getProductName(), "");
    EXPECT_NE(HUTEnv::getEnv("PATH"), nullptr);
}

}  // namespace
