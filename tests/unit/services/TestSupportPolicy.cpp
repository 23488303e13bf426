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
#include "support/Paths.h"
#include "support/Platforms.h"
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

std::string refusal(const std::string& platform, const std::string& tool, const std::string& why) {
    return NAME + " (version " + platform + ") is not supported by the current tool version (" +
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
    std::string judgedOf(const std::string& more, const std::string& tool, const Ask& ask) {
        service_.setTestCompilerVersion_(tool);
        return judged(platform(more), ask);
    }
    std::string warrantyOf(const std::string& more, const std::string& tool,
                           const std::string& product = "mav") {
        return judgedOf(more, tool, [&](PlatformLoader* loader, std::string& reason) {
            return service_.isUnderWarranty(loader, reason, product);
        });
    }
    const Ask preSynth_ = [this](PlatformLoader* loader, std::string& reason) {
        return service_.isPreSynthPlatformSupported(loader, reason);
    };
    const Ask archive_ = [this](PlatformLoader* loader, std::string& reason) {
        return service_.canDsaBeOpened(loader, reason);
    };

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

TEST_F(SupportPolicy, WhatOnePlatformThrowsLeavesTheOthersIn) {
    struct NoKey final : mav_host::KeyProvider {
        std::optional<std::string> key() const override { throw std::bad_alloc(); }
    };
    putList("{}");
    described(dir_, "asked", metadata(CARD + created("2026.1")));
    described(dir_, "unasked", metadata(created("2026.1")));
    service_.setTestCompilerVersion_("2026.1");
    NoKey provider;
    mav_host::KeyProvider* const before = mav_host::setKeyProvider(&provider);
    const std::string text = service_.getAllAsJsonStr(dir_.path(), true, false);
    mav_host::setKeyProvider(before);
    EXPECT_EQ(text.find("\"asked\""), std::string::npos) << text;
    EXPECT_NE(text.find("\"unasked\""), std::string::npos) << text;
    EXPECT_EQ(console_.text(), "Error: failed to load platform: std::bad_alloc\n");
}

TEST_F(SupportPolicy, KindComesBeforeReleases) {
    putList(R"({"white_list": [{"products": ["mav"], "key": "hardwarePlatform.name",
                                "value": "card"}]})");
    const std::string late = created("2030.1");
    EXPECT_EQ(warrantyOf(CARD + std::string(R"(, "generatedVersion": "2012.1")"), "2026.1"),
              NO + NAME + NOT_UNIFIED);
    EXPECT_EQ(warrantyOf(late, "2026.1"), "+") << "no intent is an embedded platform";
    const std::string embedded = R"(, "designIntent": {"embedded": {"value": true})";
    EXPECT_EQ(warrantyOf(embedded + "}" + late, "2026.1"), "+");
    for (const std::string intent : {"dataCenter", "serverManaged", "externalHost"})
        EXPECT_EQ(
            warrantyOf(embedded + ", \"" + intent + R"(": {"value": true}})" + late, "2026.1"),
            NO + refusal("2030.1", "2026.1", NEWER));
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
                          const std::string& key = "hardwarePlatform.name") {
        return R"({"products": ["other", "mav"], "key": ")" + key + R"(", "value": ")" + value +
               "\"" + more + "}";
    };
    const std::string fresh = CARD + created("2026.1");
    const std::string old = CARD + created("2015.1");
    const std::string extended = fresh + warranty(R"(["2026.1"])");
    const std::string oldRefused = NO + refusal("2015.1", "2026.1", OLDER);
    const struct {
        std::string white, black, platform, answer;
    } rows[] = {
        {entry("card"), "", old, YES + GOOD},
        {entry("card"), "", CARD + created("2026.2"), NO + refusal("2026.2", "2026.1", NEWER)},
        {"", entry("card"), fresh, NO + BAD},
        // An extended warranty wins over the list, and the black list over the white one.
        {"", entry("card"), extended, YES + EXTENDED},
        {entry("card"), entry("Card") + "," + entry("card", R"(, "reason": "Clock drifts.")"),
         fresh, NO + BAD + " Reason: Clock drifts."},
        {entry("card", R"(, "reason": "first")") + "," + entry("card", R"(, "reason": "second")"),
         R"({"products": ["none"], "key": "hardwarePlatform.name", "value": "card"})", old,
         YES + GOOD + " Reason: first"},
        {entry("Pellux", "", "type"), "", old, YES + GOOD},
        {entry("", "", "no.such"), "", old, oldRefused},
        {"", "", fresh, "+"},
    };
    for (const auto& row : rows) {
        putList(R"({"white_list": [)" + row.white + R"(], "black_list": [)" + row.black + "]}");
        EXPECT_EQ(warrantyOf(row.platform, "2026.1"), row.answer) << row.white << row.black;
    }
    putList(R"({"white_list": [)" + entry("card") + "]}");
    EXPECT_EQ(warrantyOf(old, "2026.1", "pellux"), oldRefused) << "a list of another product";
    EXPECT_FALSE(messages_.has("@74-49@") || messages_.has("@74-50@")) << messages_.text();
}

TEST_F(SupportPolicy, ListsThatCannotBeUsed) {
    const auto told = [&](const std::string& id) {
        messages_.all.clear();
        EXPECT_EQ(warrantyOf(CARD + created("2026.1"), "2026.1"), "+");
        const std::string status = "@74-78@%s|2026.1\n";
        EXPECT_EQ(messages_.text(), id.empty() ? status : status + id + "|" + listPath() + "\n");
        HUTFileUtils::removeDirs(dir_.path("platforms"));
    };
    const std::string good = R"({"black_list": [{"products": ["mav"],
        "key": "hardwarePlatform.name", "value": "card"}]})";
    told("");
    HUTFileUtils::makeDirs(listPath());
    told("@74-49@%s");
    dir_.write("platforms/achromatic", good);
    told("@74-49@%s");
    putList(good);
    std::string tampered = dir_.read("platforms/achromatic");
    tampered[tampered.size() / 2] = static_cast<char>(tampered[tampered.size() / 2] ^ 1);
    dir_.write("platforms/achromatic", tampered);
    told("@74-49@%s");
    {
        putList(good);
        const HostKey none(std::nullopt);
        told("@74-49@%s");
    }
    for (const std::string list :
         {"", "{}", "[]", "{\"black_list\": [", R"({"black_list": [], "grey_list": []} )",
          R"({"black_list": [{"key": "a"}]} )", R"({"black_list": {"products": ["mav"]}} )",
          R"({"white_list": "text"} )", R"({"white_list": [{"products": "mav"}]} )",
          R"([["black_list"]] )"}) {
        putList(list);
        told(list.ends_with(' ') ? "@74-50@%s" : "@74-49@%s");
    }
}

TEST_F(SupportPolicy, VersionlessTool) {
    const std::string warning =
        "Critical Warning: the current tool is versionless, please set the appropriate product "
        "name/version";
    EXPECT_EQ(warrantyOf(CARD + created("2019.1"), ""), "+");
    EXPECT_EQ(warrantyOf(CARD + created("2019.2"), ""), NO + refusal("2019.2", "2019.1", NEWER));
    EXPECT_EQ(judgedOf(created("2019.1"), "", archive_), "+");
    const std::string state = R"(, "platformState": "pre_synth")";
    EXPECT_EQ(judgedOf(created("2020.1") + state, "", preSynth_), "+");
    EXPECT_EQ(console_.text(),
              warning + "\n" + warning + "\n" + warning + "\n" + warning +
                  ". Setting a default value of 2020.1 for the major and minor version.\n");
    for (const auto& [release, version] : {std::pair("0", ""), std::pair("2031.2", "2031.2")}) {
        const EnvVar variable("MAV_TOOL_RELEASE", release);
        EXPECT_EQ(NativeCatalogService().getCompilerVersion_(), version);
    }
}

TEST_F(SupportPolicy, PreSynthesis) {
    const std::string state = R"(, "platformState": "pre_synth")";
    const std::string late = state + created("2026.1");
    EXPECT_EQ(judgedOf(late, "2026.1", preSynth_), "+");
    for (const std::string tool : {"2026.2", "2027.1"})
        EXPECT_EQ(judgedOf(late, tool, preSynth_),
                  NO + NAME +
                      " (version 2026.1) is a PRE_SYNTH platform and is not supported by the "
                      "current tool version (" +
                      tool +
                      "). By policy, platforms are only supported on the same tool release on "
                      "which the platform was created.");
    EXPECT_EQ(judgedOf(state + created("2026.2"), "2026.1", preSynth_),
              NO + refusal("2026.2", "2026.1", NEWER));
    EXPECT_EQ(judgedOf(state, "2026.1", preSynth_), NO + NAME + NOT_UNIFIED);
    EXPECT_EQ(judged("/nowhere/a.pka", preSynth_),
              "-Failed to load the platform. Can not continue with establishing platform support "
              "with respect to the tool flow.");
}

TEST_F(SupportPolicy, IsPreSynthPlatform) {
    const auto answer = [&](const std::string& path) {
        PlatformLoader loader(path, PlatformLoader::HW_METADATA_AUTO);
        return service_.isPreSynthPlatform(&loader);
    };
    EXPECT_TRUE(answer(platform(R"(, "platformState": "pre_synth")")));
    EXPECT_FALSE(service_.isPreSynthPlatform(nullptr));
    EXPECT_FALSE(answer("/nowhere/a.pka"));
    EXPECT_FALSE(answer(std::string(SOURCE_DIR) + "/samples/ostrivel_e7/sw/ostrivel_e7.spfm"));
    EXPECT_EQ(console_.text(),
              "Error: failed to acquire a platform loader.\n"
              "Error: failed to load platform.\n"
              "Error: failed to load the hardware platform.\n");
}

TEST_F(SupportPolicy, DeviceSupportArchives) {
    const std::string dsa = "DSA 'a.pka'";
    EXPECT_EQ(judgedOf(created("2012.1"), "2026.1", archive_), "+") << "age does not matter";
    EXPECT_EQ(judgedOf("", "2026.1", archive_), NO + dsa + NOT_UNIFIED);
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
