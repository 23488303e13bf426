// SPDX-License-Identifier: Apache-2.0
// The support decisions: each rule alone, which rule wins over which, and the exact texts.
#include <boost/property_tree/ptree.hpp>
#include <functional>

#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_host/xp.h"
#include "mav_platform/HMAVNativeCatalogService.h"
#include "mav_platform/PlatformLoader.h"
#include "mav_platform/PlatformParseException.h"
#include "support/Archives.h"
#include "support/ZipFixture.h"

namespace {

using mav::platform::NativeCatalogService;
using mav_platform::PlatformLoader;

constexpr const char* CARD = R"(, "designIntent": {"dataCenter": {"value": "true"}})";
constexpr const char* UNIFIED = R"(, "unifiedPlatform": true)";
const std::string YES = "+";
const std::string NO = "-";
const std::string NAME = "Platform 'a.pka'";

std::string created(const std::string& release) {
    return std::string(UNIFIED) + R"(, "generatedVersion": ")" + release + R"(")";
}
std::string warranty(const std::string& releases) {
    return R"(, "extensions": {"extended_warranty": )" + releases + "}";
}

std::string refusal(const std::string& platform, const std::string& tool, const std::string& why,
                    const std::string& subject = NAME) {
    return subject + " (version " + platform + ") is not supported by the current tool version (" +
           tool + "). By policy, " + why;
}
const std::string NEWER = "the platform version can not be newer than the current tool version";
const std::string OLDER = "the platform version can not be older than 2017.4";
const std::string RANGE =
    "platforms are supported for the remainder of the calendar year release plus the following "
    "calendar year release";
const std::string NOT_UNIFIED =
    " is not a unified platform. By policy, non-unified platforms are not supported by the current "
    "tool version";
const std::string EXTENDED =
    NAME + " has been explicitly enabled for this release with an extended warranty.";
const std::string GOOD = NAME + " has been explicitly enabled for this release.";
const std::string BAD = NAME + " has been marked unsupported due to known issues.";

/// A host with an application root, a key, captured messages and console.
class SupportPolicy : public testing::Test {
  protected:
    std::string platform(const std::string& more) const {
        return packArchive(dir_, "a.pka", {{"pka.json", metadata(more)}});
    }
    void putList(const std::string& content) const {
        HUTFileUtils::makeDirs(dir_.path("platforms"));
        isl::iostreams::xp::write(listPath(), content);
    }
    std::string listPath() const { return dir_.path("platforms/achromatic"); }

    /// "+" or "-" and the reason.
    using Ask = std::function<bool(PlatformLoader*, std::string&)>;
    static std::string judged(const std::string& path, const Ask& ask) {
        PlatformLoader loader(path, PlatformLoader::HW_METADATA_AUTO);
        std::string reason = "the last reason";
        const bool supported = ask(&loader, reason);
        return (supported ? YES : NO) + reason;
    }
    std::string warrantyOf(const std::string& more, const std::string& tool,
                           const std::string& product = "mav") {
        service_.setTestCompilerVersion_(tool);
        return judged(platform(more), [&](PlatformLoader* loader, std::string& reason) {
            return service_.isUnderWarranty(loader, reason, product);
        });
    }
    std::string preSynthOf(const std::string& more, const std::string& tool) {
        service_.setTestCompilerVersion_(tool);
        return judged(platform(more), [&](PlatformLoader* loader, std::string& reason) {
            return service_.isPreSynthPlatformSupported(loader, reason);
        });
    }
    std::string archiveOf(const std::string& more, const std::string& tool) {
        service_.setTestCompilerVersion_(tool);
        return judged(platform(more), [&](PlatformLoader* loader, std::string& reason) {
            return service_.canDsaBeOpened(loader, reason);
        });
    }

    TempDir dir_;
    EnvVar root_{"MAV_APP_ROOT", dir_.path()};
    HostKey key_{"a key"};
    CapturedMessages messages_;
    CapturedConsole console_;
    NativeCatalogService service_;
};

TEST_F(SupportPolicy, ReleaseRules) {
    struct Row {
        const char* platform;
        const char* tool;
        std::string answer;  ///< why not; empty for supported
    };
    const Row rows[] = {
        {"2026.1", "2026.1", ""},    {"2026.1", "2026.2", ""},
        {"2026.1", "2027.1", ""},    {"2026.4", "2027.1", ""},
        {"2026.1", "2028.1", RANGE}, {"2026.2", "2026.1", NEWER},
        {"2027.1", "2026.4", NEWER}, {"2026.10", "2026.9", NEWER},
        {"2026.9", "2026.10", ""},   {"2017.4", "2017.4", ""},
        {"2017.4", "2018.3", ""},    {"2017.4", "2019.1", RANGE},
        {"2017.3", "2017.4", OLDER}, {"2017.3", "2018.1", OLDER},
        {"2017.3", "2030.1", OLDER}, {"2016.4", "2016.4", OLDER},
        {"2018.1", "2018.1", ""},    {"unknown", "2026.1", OLDER},
        {"2026.1.9", "2026.1", ""},  {"2026", "2026.1", ""},
        {"2026.x", "2026.1", OLDER}, {"99999999999.1", "2026.1", OLDER},
    };
    for (const Row& row : rows) {
        const std::string expected =
            row.answer.empty() ? "+" : NO + refusal(row.platform, row.tool, row.answer);
        EXPECT_EQ(warrantyOf(CARD + created(row.platform), row.tool), expected)
            << row.platform << " with " << row.tool;
    }
    EXPECT_EQ(warrantyOf(std::string(CARD) + UNIFIED, "2026.1"),
              NO + refusal("0.0", "2026.1", OLDER));
}

TEST_F(SupportPolicy, KindComesBeforeReleases) {
    putList(R"({"white_list": [{"products": ["mav"], "key": "hardwarePlatform.name",
                                "value": "card"}]})");
    const std::string old = R"(, "generatedVersion": "2012.1")";
    EXPECT_EQ(warrantyOf(CARD + old, "2026.1"), NO + NAME + NOT_UNIFIED);
    EXPECT_EQ(warrantyOf(created("2030.1"), "2026.1"), "+") << "no intent is an embedded platform";
    for (const char* intent : {"dataCenter", "serverManaged", "externalHost"}) {
        const std::string more =
            std::string(R"(, "designIntent": {"embedded": {"value": true}, ")") + intent +
            R"(": {"value": true}})";
        EXPECT_EQ(warrantyOf(more + created("2030.1"), "2026.1"),
                  NO + refusal("2030.1", "2026.1", NEWER));
    }
    EXPECT_EQ(warrantyOf(R"(, "designIntent": {"embedded": {"value": true}})" + created("2030.1"),
                         "2026.1"),
              "+");
    EXPECT_TRUE(messages_.all.empty()) << messages_.text();
}

TEST_F(SupportPolicy, ExtendedWarranty) {
    const std::string old = CARD + created("2015.1");
    EXPECT_EQ(warrantyOf(old + warranty(R"(["2025.2", "2026.1"])"), "2026.1"), YES + EXTENDED);
    for (const char* other : {R"(["2025.1", "2026.2"])", R"([])", R"({"a": "2027.1"})"})
        EXPECT_EQ(warrantyOf(old + warranty(other), "2026.1"),
                  NO + refusal("2015.1", "2026.1", OLDER));
    EXPECT_EQ(warrantyOf(CARD + created("2026.2") + warranty(R"(["2026.1"])"), "2026.1"),
              NO + refusal("2026.2", "2026.1", NEWER))
        << "a newer platform is refused first";
    EXPECT_FALSE(messages_.has("@74-79@"));
    // A tool without a release year is not asked about extended warranties.
    EXPECT_EQ(warrantyOf(CARD + created("0.0") + warranty(R"(["0.0"])"), "nightly"),
              NO + refusal("0.0", "nightly", OLDER));
    EXPECT_EQ(warrantyOf(CARD + created("2026.1") + warranty(R"("2026.1")"), "2026.1"), "+");
    EXPECT_TRUE(
        messages_.has("@74-79@%s|'extended_warranty' is a text and must be a list of releases\n"));
}

TEST_F(SupportPolicy, SupportList) {
    const auto entry = [](const std::string& value, const std::string& more = "",
                          const std::string& products = R"(["other", "mav"])") {
        return R"({"products": )" + products + R"(, "key": "hardwarePlatform.name", "value": ")" +
               value + "\"" + more + "}";
    };
    const auto list = [&](const std::string& white, const std::string& black) {
        putList(R"({"white_list": [)" + white + R"(], "black_list": [)" + black + "]}");
    };
    const std::string fresh = CARD + created("2026.1");
    const std::string old = CARD + created("2015.1");
    const std::string oldRefused = NO + refusal("2015.1", "2026.1", OLDER);
    list(entry("card"), "");
    EXPECT_EQ(warrantyOf(old, "2026.1"), YES + GOOD);
    EXPECT_EQ(warrantyOf(old, "2026.1", "pellux"), oldRefused) << "a list of another product";
    EXPECT_EQ(warrantyOf(CARD + created("2026.2"), "2026.1"),
              NO + refusal("2026.2", "2026.1", NEWER));
    list("", entry("card"));
    EXPECT_EQ(warrantyOf(fresh, "2026.1"), NO + BAD);
    EXPECT_EQ(warrantyOf(fresh + warranty(R"(["2026.1"])"), "2026.1"), YES + EXTENDED)
        << "an extended warranty wins over the list";
    list(entry("card"), entry("Card") + "," + entry("card", R"(, "reason": "Clock drifts.")"));
    EXPECT_EQ(warrantyOf(fresh, "2026.1"), NO + BAD + " Reason: Clock drifts.")
        << "the black list is asked first wherever it stands; values are compared exactly";
    list(entry("card", R"(, "reason": "first")") + "," + entry("card", R"(, "reason": "second")"),
         entry("card", "", R"(["none"])"));
    EXPECT_EQ(warrantyOf(old, "2026.1"), YES + GOOD + " Reason: first");
    putList(R"({"white_list": [{"products": ["mav"], "key": "type", "value": "Pellux"}]})");
    EXPECT_EQ(warrantyOf(old, "2026.1"), YES + GOOD) << "any path of the document";
    putList(R"({"white_list": [{"products": ["mav"], "key": "no.such", "value": ""}]})");
    EXPECT_EQ(warrantyOf(old, "2026.1"), oldRefused);
    putList(R"({"white_list": []})");
    EXPECT_EQ(warrantyOf(fresh, "2026.1"), "+");
    EXPECT_FALSE(messages_.has("@74-49@") || messages_.has("@74-50@")) << messages_.text();
}

TEST_F(SupportPolicy, ListsThatCannotBeUsed) {
    const std::string fresh = CARD + created("2026.1");
    const auto told = [&](const std::string& id) {
        messages_.all.clear();
        EXPECT_EQ(warrantyOf(fresh, "2026.1"), "+");
        const std::string status = "@74-78@%s|2026.1\n";
        EXPECT_EQ(messages_.text(), id.empty() ? status : status + id + "|" + listPath() + "\n");
        EXPECT_EQ(messages_.all.front().mask, ComMsgMgr::STATUS);
        EXPECT_EQ(messages_.all.back().mask, id.empty() ? ComMsgMgr::STATUS : ComMsgMgr::WARNING);
        HUTFileUtils::removeDirs(dir_.path("platforms"));
    };
    constexpr const char* UNUSABLE = "@74-49@%s";
    constexpr const char* MALFORMED = "@74-50@%s";
    const std::string good = R"({"black_list": [{"products": ["mav"],
        "key": "hardwarePlatform.name", "value": "card"}]})";
    told("");
    HUTFileUtils::makeDirs(listPath());
    told(UNUSABLE);
    dir_.write("platforms/achromatic", good);
    told(UNUSABLE);
    for (const char* empty : {"", "{}", "[]", "{\"black_list\": ["}) {
        putList(empty);
        told(UNUSABLE);
    }
    putList(good);
    std::string tampered = dir_.read("platforms/achromatic");
    tampered[tampered.size() / 2] = static_cast<char>(tampered[tampered.size() / 2] ^ 1);
    dir_.write("platforms/achromatic", tampered);
    told(UNUSABLE);
    {
        putList(good);
        const HostKey none(std::nullopt);
        told(UNUSABLE);
    }
    for (const char* malformed :
         {R"({"black_list": [], "grey_list": []})", R"({"black_list": [{"key": "a"}]})",
          R"({"black_list": {"products": ["mav"]}})", R"({"white_list": "text"})",
          R"({"white_list": [{"products": "mav"}]})", R"([["black_list"]])"}) {
        putList(malformed);
        told(MALFORMED);
    }
}

TEST_F(SupportPolicy, VersionlessTool) {
    const std::string warning =
        "Critical Warning: the current tool is versionless, please set the appropriate product "
        "name/version";
    EXPECT_EQ(warrantyOf(CARD + created("2019.1"), ""), "+");
    EXPECT_EQ(console_.text(), warning + "\n");
    EXPECT_EQ(warrantyOf(CARD + created("2019.2"), ""), NO + refusal("2019.2", "2019.1", NEWER));
    EXPECT_EQ(archiveOf(created("2019.1"), ""), "+");
    EXPECT_EQ(console_.text(), warning + "\n" + warning + "\n" + warning + "\n");
    const std::size_t before = console_.text().size();
    const std::string state = R"(, "platformState": "pre_synth")";
    EXPECT_EQ(preSynthOf(created("2020.1") + state, ""), "+");
    EXPECT_EQ(console_.text().substr(before),
              warning + ". Setting a default value of 2020.1 for the major and minor version.\n");
    const EnvVar release("MAV_TOOL_RELEASE", "0");
    EXPECT_EQ(NativeCatalogService().getCompilerVersion_(), "");
    const EnvVar other("MAV_TOOL_RELEASE", "2031.2");
    EXPECT_EQ(NativeCatalogService().getCompilerVersion_(), "2031.2");
}

TEST_F(SupportPolicy, PreSynthesis) {
    const std::string state = R"(, "platformState": "pre_synth")";
    EXPECT_EQ(preSynthOf(state + created("2026.1"), "2026.1"), "+");
    for (const char* tool : {"2026.2", "2027.1"})
        EXPECT_EQ(preSynthOf(state + created("2026.1"), tool),
                  NO + NAME +
                      " (version 2026.1) is a PRE_SYNTH platform and is not supported by the "
                      "current tool version (" +
                      tool +
                      "). By policy, platforms are only supported on the same tool release on "
                      "which the platform was created.");
    EXPECT_EQ(preSynthOf(state + created("2026.2"), "2026.1"),
              NO + refusal("2026.2", "2026.1", NEWER));
    EXPECT_EQ(preSynthOf(state, "2026.1"), NO + NAME + NOT_UNIFIED);
    EXPECT_EQ(preSynthOf(R"(, "platformState": "synth")" + created("2026.1"), "2026.1"),
              NO + NAME + " is not a PRE_SYNTH platform");
    EXPECT_EQ(judged("/nowhere/a.pka",
                     [&](PlatformLoader* loader, std::string& reason) {
                         return service_.isPreSynthPlatformSupported(loader, reason);
                     }),
              "-Failed to load the platform. Can not continue with establishing platform support "
              "with respect to the tool flow.");
}

TEST_F(SupportPolicy, IsPreSynthPlatform) {
    const auto answer = [&](const std::string& path) {
        PlatformLoader loader(path, PlatformLoader::HW_METADATA_AUTO);
        return service_.isPreSynthPlatform(&loader);
    };
    EXPECT_TRUE(answer(platform(R"(, "platformState": "pre_synth")")));
    EXPECT_FALSE(answer(platform(R"(, "platformState": "impl")")));
    EXPECT_EQ(console_.text(), "");
    EXPECT_FALSE(service_.isPreSynthPlatform(nullptr));
    EXPECT_FALSE(answer("/nowhere/a.pka"));
    EXPECT_FALSE(answer(std::string(MAV_SOURCE_DIR) + "/samples/ostrivel_e7/sw/ostrivel_e7.spfm"));
    EXPECT_EQ(console_.text(),
              "Error: failed to acquire a platform loader.\n"
              "Error: failed to load platform.\n"
              "Error: failed to load the hardware platform.\n");
}

TEST_F(SupportPolicy, DeviceSupportArchives) {
    const std::string dsa = "DSA 'a.pka'";
    EXPECT_EQ(archiveOf(created("2012.1"), "2026.1"), "+") << "age does not matter";
    EXPECT_EQ(archiveOf("", "2026.1"), NO + dsa + NOT_UNIFIED);
    EXPECT_EQ(archiveOf(created("2026.2"), "2026.1"),
              NO + refusal("2026.2", "2026.1",
                           "the DSA version can not be newer than the current tool version", dsa));
}

TEST_F(SupportPolicy, WhatCannotBeJudged) {
    std::string reason;
    EXPECT_FALSE(service_.isUnderWarranty(static_cast<PlatformLoader*>(nullptr), reason));
    EXPECT_FALSE(service_.canDsaBeOpened(static_cast<PlatformLoader*>(nullptr), reason));
    EXPECT_FALSE(service_.isUnderWarranty("/nowhere/a.pka", reason));
    EXPECT_EQ(console_.text(), "Error: failed to load platform\n");
    HSTVector<std::string> reasons{"kept"};
    EXPECT_FALSE(service_.isUnderWarranty("/nowhere/a.qpfm", reasons));
    EXPECT_FALSE(service_.isUnderWarranty(dir_.write("b.qpfm", "<x/>"), reasons));
    service_.setTestCompilerVersion_("2026.1");
    EXPECT_FALSE(service_.isUnderWarranty(platform(""), reasons));
    EXPECT_TRUE(service_.isUnderWarranty(platform(CARD + created("2026.1")), reasons));
    const HSTVector<std::string> expected{"kept", "File '/nowhere/a.qpfm' does not exist",
                                          "failed to parse the QPFM file", NAME + NOT_UNIFIED};
    EXPECT_EQ(reasons, expected);
    service_.isUnderWarranty(platform(""), reasons, "mirra");
    EXPECT_EQ(HUTEnv::getProductName(), "mirra");
    HUTEnv::setProductName("");
}

}  // namespace
