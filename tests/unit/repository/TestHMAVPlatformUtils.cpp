// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVPlatformMgr.h"
#include "mav_platform/HMAVPlatformUtils.h"
#include "support/Platforms.h"

namespace {

namespace fs = std::filesystem;
using Utils = HMAVPlatformUtils;
using Texts = Utils::Texts;
using Platforms = Utils::Platforms;

/// The repository of the process, searched in the test's directory alone.
class PlatformUtils : public testing::Test {
  protected:
    void SetUp() override { delete HMAVPlatformMgr::getGlobalNoInit(); }
    void TearDown() override { delete HMAVPlatformMgr::getGlobalNoInit(); }

    void search() { mgr()->addPlatformsFromDirs({dir.path()}); }
    static HMAVPlatformMgr* mgr() { return HMAVPlatformMgr::getGlobalNoInit(); }
    static std::string names(const Platforms& platforms) {
        std::string text;
        for (const HMAVPlatform* platform : platforms)
            text += platform->getPlatformBaseName() + " ";
        return text;
    }
    template <class Argument>
    static std::string found(void (*question)(const Argument&, Platforms&),
                             const std::type_identity_t<Argument>& argument) {
        Platforms out;
        question(argument, out);
        return names(out);
    }
    static std::string nameOf(const HMAVPlatform* platform) {
        return platform != nullptr ? platform->getPlatformBaseName() : "null";
    }

    TempDir dir;
    EnvVar root{"MAV_APP_ROOT", dir.path("root")};
    CapturedMessages messages;
    CapturedConsole console;
};

std::string device(const std::string& part, const std::string& architecture) {
    return R"(, "devices": [{"name": "dev", "fpgaPart": ")" + part + R"(", "part": {"name": ")" +
           part + R"(", "architecture": ")" + architecture + R"(", "device": "d-)" + part +
           R"("}}])";
}

TEST_F(PlatformUtils, FieldsAreComparedExactlyPartsInAnyCaseAndEmptyTextsMatchAll) {
    described(dir, "c", identity("v1", "b1", "n", "1", "0", device("XC-1", "Fam")));
    described(dir, "b", identity("v1", "b2", "n", "1", "0", device("xc-1", "other")));
    described(dir, "a", identity("v2", "b1", "n", "1", "0"));
    search();
    EXPECT_EQ(found(&Utils::getPlatformsByVBNV, "v1:b1:n:1.0"), "c ");
    EXPECT_EQ(found(&Utils::getPlatformsByVBNV, "V1:b1:n:1.0"), "");
    EXPECT_EQ(found(&Utils::getPlatformsByVBNV, ""), "c b a ");
    EXPECT_EQ(found(&Utils::getPlatformsByPart, "Xc-1"), "c b ");
    const auto by = [](const char* category, const char* family, const char* vendor,
                       const char* board) {
        Platforms out;
        Utils::getPlatformsByCategoryFamilyVendorAndBoard(category, family, vendor, board, out);
        return names(out);
    };
    EXPECT_EQ(by("Acceleration", "FAM", "v1", ""), "c ");
    EXPECT_EQ(by("acceleration", "", "", ""), "");
    EXPECT_EQ(by("", "", "", "b1"), "c a ");

    const auto boards = [](const char* category, const char* family, const char* vendor) {
        Texts out;
        Utils::getBoardsByCategoryFamilyAndVendor(category, family, vendor, out);
        return out;
    };
    EXPECT_EQ(boards("", "", ""), (Texts{"b1", "b2"}));
    EXPECT_EQ(boards("", "other", "v1"), Texts{"b2"});
    Texts out{"kept"};
    Utils::getSupportedFpgaParts(out);
    Utils::getBoardsByPartAndVendor("XC-1", "v1", out);
    EXPECT_EQ(out, (Texts{"kept", "XC-1", "b1", "b2"}));

    EXPECT_EQ(Utils::getFpgaPart("C"), "XC-1");
    EXPECT_EQ(Utils::getDevice("c"), "d-XC-1");
    ASSERT_NE(Utils::getFpgaPartAsFields("c"), nullptr);
    EXPECT_EQ(Utils::getFpgaPartAsFields("c")->getArchitecture(), "Fam");
    EXPECT_EQ(Utils::getFpgaPartAsFields("a"), nullptr);
}

TEST_F(PlatformUtils, PlatformsAreFoundByEachOfTheirNames) {
    const std::string b = described(dir, "x/Card");
    const std::string a = described(dir, "w/card");
    search();
    EXPECT_EQ(nameOf(Utils::getPlatform("card")), "Card") << "any case, the first in the list";
    EXPECT_EQ(nameOf(Utils::getPlatformByQpfmFileBaseName("card")), "card");
    EXPECT_EQ(nameOf(Utils::getPlatformByQpfmFileBaseName("")), "Card");
    EXPECT_EQ(nameOf(Utils::getPlatformByUniqueName(a)), "card");
    EXPECT_EQ(nameOf(Utils::getPlatformByUniqueName(dir.path("x/../w/card.qpfm"))), "null");
    EXPECT_EQ(found(&Utils::getPlatformsByUniqueName, b), "Card ");
    EXPECT_EQ(nameOf(Utils::getPlatformByFilePath("")), "null");
    EXPECT_EQ(nameOf(Utils::getPlatformByFilePath(dir.path("w/CARD.qpfm"))), "null");
    EXPECT_EQ(console.text(), "");
    const EnvVar variable("GET_PLATFORM_BY_PATH_DEBUG_VAR", "");
    EXPECT_EQ(nameOf(Utils::getPlatformByFilePath(dir.path("x/../w/card.qpfm"))), "card");
    EXPECT_EQ(console.text(), "sPlatFileCanonical is: " + b + "\nsQpfmFileCanonical is: " + a +
                                  "\nDoes not match\nsPlatFileCanonical is: " + a +
                                  "\nsQpfmFileCanonical is: " + a + "\nFound a match\n");
}

TEST_F(PlatformUtils, VersionsCompareByTwoNumbersWithinVendorBoardAndName) {
    const char* const majors[] = {"2024", "2024", "2019"};
    const char* const minors[] = {"9", "10", "12"};
    for (std::size_t i = 0; i < 3; ++i) {
        described(dir, std::string("p").append(std::to_string(3 - i)),
                  identity("v", "b", "n", majors[i], minors[i]));
    }
    described(dir, "other", identity("v", "b2", "n", "1", "0"));
    bareArchive(dir, "bare.pka", identity("v", "b2", "n", "2", "0"));
    search();
    Platforms all;
    mgr()->getPlatforms(all);
    ASSERT_EQ(names(all), "p3 p2 p1 other ");
    EXPECT_EQ(names(Utils::filterOutOldPlatforms(all)), "p2 other ");
    EXPECT_EQ(found(&Utils::getLatestPlatformsByVBNV, ""), "p2 other ");
    EXPECT_EQ(found(&Utils::getLatestPlatformsByVBNV, "v:b:n:2024.9"), "p3 ")
        << "compared with what was found";
    EXPECT_FALSE(Utils::isLatestVersion(all[0]));
    EXPECT_TRUE(Utils::isLatestVersion(all[1]));
    EXPECT_FALSE(Utils::isLatestVersion(all[3])) << "bare archives are asked too";
    EXPECT_TRUE(Utils::isLatestVersion(all[0], {all[0], all[0], all[2], nullptr}));
    EXPECT_FALSE(Utils::isLatestVersion(nullptr));
    const HMAVPlatform empty;
    EXPECT_TRUE(Utils::isLatestVersion(&empty));
}

TEST_F(PlatformUtils, OnlyTheInstallationDirectoryItselfMakesAFactoryPlatform) {
    const std::string card = described(dir, "root/platforms/card");
    described(dir, "root/platforms/below/nested");
    described(dir, "user/mine", metadata(R"(, "unifiedPlatform": "true")"));
    described(dir, "user/other");
    search();
    Texts install;
    Utils::getRootInstallPlatformDirs(install);
    const Texts expected{dir.path("root/platforms"), dir.path("root/base_platforms"),
                         "/opt/tarvek/platforms"};
    EXPECT_EQ(install, expected) << "whether they exist or not";
    EXPECT_TRUE(Utils::isInstallPlatformDir(dir.path("root/base_platforms")));
    EXPECT_FALSE(Utils::isInstallPlatformDir(dir.path("root/platforms/")));
    EXPECT_FALSE(Utils::isUserPlatform("card"));
    EXPECT_TRUE(Utils::isUserPlatform("nested"));
    EXPECT_FALSE(Utils::isUserPlatform("unknown"));
    Texts dirs;
    Utils::getAllFactoryPlatformDirs(dirs);
    EXPECT_EQ(dirs, Texts{dir.path("root/platforms")});
    dirs.clear();
    Utils::getAllUserPlatformDirs(dirs);
    EXPECT_EQ(dirs, (Texts{dir.path("user"), dir.path("user"), dir.path("root/platforms/below")}));
    dirs.clear();
    Utils::getUnifiedPlatformDirs(dirs);
    EXPECT_EQ(dirs, Texts{dir.path("user")});

    EXPECT_EQ(Utils::setUserPlatformDirs({}), "");
    Platforms left;
    mgr()->getPlatforms(left);
    EXPECT_EQ(names(left), "card ");
}

TEST_F(PlatformUtils, UserDirectoriesAreAddedAndTheirFaultsTold) {
    described(dir, "user/one");
    fs::create_directory(dir.path("empty"));
    dir.write("faulty/bad.qpfm", descriptionOf("absent.pka"));
    const std::string fault = "Hardware platform file " + dir.path("faulty/absent.pka") +
                              " for platform " + dir.path("faulty/bad.qpfm") +
                              " does not exist on disk. Unable to load platform.\n\n";
    EXPECT_EQ(Utils::setUserPlatformDirs({dir.path("faulty")}), "No Platforms Found.\n\n" + fault);
    EXPECT_EQ(Utils::setUserPlatformDirs({dir.path("empty")}), "No Platforms Found.\n\n");
    EXPECT_EQ(Utils::setUserPlatformDirs({dir.path("user")}), "");
    EXPECT_EQ(Utils::setUserPlatformDirs({dir.path("faulty")}), fault);
    EXPECT_EQ(mgr()->getNumPlatforms(), 1U) << "earlier ones stay";
    EXPECT_EQ(Utils::splitToFullDirs(dir.path("a/../b:/")), (Texts{dir.path("b"), "/"}));
    EXPECT_EQ(Utils::splitToFullDirs("/x::/y"), (Texts{"/x", "", "/y"}));
}

TEST_F(PlatformUtils, KindsOfPlatformsAreToldApart) {
    described(dir, "card", metadata(R"(, "unifiedPlatform": "true", "expandablePlatform": "true",
        "files": [{"name": "a.hpfm", "type": "HPFM"}],
        "designIntent": {"dataCenter": {"value": "true"}, "externalHost": {"value": "true"}})"));
    described(dir, "board", metadata(R"(, "designIntent": {"embedded": {"value": "true"}})"));
    search();
    const auto kind = [](const char* name) {
        std::string text;
        if (Utils::isFixedPlatform(name)) text += "fixed ";
        if (Utils::isExpandablePlatform(name)) text += "expandable ";
        if (Utils::isUnifiedPlatform(name)) text += "unified ";
        if (Utils::isKOBPlatform(name)) text += "kob ";
        if (Utils::isPelluxPlatform(name)) text += "pellux ";
        return text;
    };
    EXPECT_EQ(kind("card"), "expandable unified kob pellux ");
    EXPECT_EQ(kind("board"), "fixed ");
    EXPECT_EQ(kind("unknown"), "");
    HMAVDesignIntentStorage intent;
    EXPECT_EQ(found(&Utils::getPlatformsByDesignIntent, intent), "card board ");
    intent.setDataCenter(true, true);
    EXPECT_EQ(found(&Utils::getPlatformsByDesignIntent, intent), "card ");
    intent.setEmbedded(true, true);
    EXPECT_EQ(found(&Utils::getPlatformsByDesignIntent, intent), "");
}

TEST_F(PlatformUtils, SoftwareQuestionsAskTheSoftwarePlatform) {
    described(dir, "card");
    search();
    HMAVPlatform* const platform = Utils::getPlatform("card");
    ASSERT_NE(platform, nullptr);
    const auto answers = [] {
        Texts texts;
        Utils::getRuntimes("card", texts);
        Utils::getRuntimesByPrettyName("card", texts);
        std::string text = std::to_string(Utils::getNumRuntimes("card"));
        for (const std::string& one : texts) text += " " + one;
        if (Utils::supportsMultipleRuntimes("card")) text += " multiple";
        if (Utils::isProcessorGroupRelevant("card")) text += " group";
        if (Utils::isLinuxRootFSPathRelevant("card")) text += " rootfs";
        return text;
    };
    EXPECT_EQ(answers(), "0");
    const auto software = platform->createMutableSoftwarePlatform();
    platform->addSoftwarePlatform(software.get());
    HMAVSystemConfig* const config = software->addSystemConfig();
    config->addRuntime("cpp");
    EXPECT_EQ(answers(), "1 cpp C/C++");
    config->addProcessorGroup()->setOSName("Linux");
    software->addSystemConfig()->addRuntime("ocl");
    EXPECT_EQ(answers(), "2 cpp ocl C/C++ multiple group rootfs");
}

TEST(HMAVPlatformUtilsTexts, FixedVocabularies) {
    Texts out{"kept"};
    Utils::getAllLibraryTypes(out);
    Utils::getRuntimes(out);
    Utils::getRuntimesByPrettyName(out);
    EXPECT_EQ(out,
              (Texts{"kept", "c-callable", "shared", "static", "ocl", "cpp", "OpenCL", "C/C++"}));
    EXPECT_EQ(Utils::getPrettyNameForLibType("c-callable"), "C-Callable Library");
    EXPECT_EQ(Utils::getPrettyNameForLibType("shared"), "Shared Library");
    EXPECT_EQ(Utils::getPrettyNameForLibType("static"), "Static Library");
    EXPECT_EQ(Utils::getPrettyNameForProductType("pellux"), "Pellux");
    EXPECT_EQ(Utils::getPrettyNameForProductType("quorin"), "Quorin");
    EXPECT_EQ(Utils::getPrettyNameForProductType("Pellux"), "Mav");
}

}  // namespace
