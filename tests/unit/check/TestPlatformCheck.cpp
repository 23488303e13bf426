// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "check/CheckReport.h"
#include "mav_platform/PlatformCheck.h"
#include "support/Archives.h"
#include "support/ZipFixture.h"

namespace {

TEST(PlatformCheck, MembersNeedNoNameToBeUnlisted) {
    const TempDir dir;
    const std::string files = R"(, "files": [{"type": "IP_REPO_PATH", "name": "a"},
        {"type": "IP_CACHE_DIR", "name": "a/b"}, {"type": "IP_CACHE_DIR", "name": "c/d"}])";
    const std::string path = dir.write(
        "card.pka",
        rawZip({storedMember("pka.json", metadata(files)), storedMember("folder/", ""),
                storedMember("", "x"), storedMember("a/b/in", ""), storedMember("a/in", ""),
                storedMember("c/d/in", ""), storedMember("c/out", "")}));
    std::string unlisted;
    for (const auto& finding : mav_platform::PlatformCheck::run(path)) {
        if (finding.rule == "unlisted-member") unlisted += finding.text + "\n";
    }
    EXPECT_EQ(unlisted,
              "the member '' is not listed anywhere\nthe member 'c/out' is not listed anywhere\n");
}

TEST(PlatformCheck, FindingsBeyondTheLimitsAreCounted) {
    mav_platform::check::Report report;
    for (int file = 0; file < 12; ++file) {
        for (unsigned line = 1; line <= 103; ++line) {
            report.add("unknown-item", {std::to_string(file), line, 0}, "x");
        }
    }
    report.add("duplicate", {"11", 7, 0}, "y");
    EXPECT_TRUE(report.hasErrors());
    std::map<std::string, std::size_t> shown;
    std::string more;
    for (const auto& finding : report.take()) {
        if (finding.more == 0) {
            ++shown[finding.rule];
        } else {
            more += finding.file + ": " + finding.text + "\n";
        }
    }
    EXPECT_EQ(shown["unknown-item"], 1000U);
    EXPECT_EQ(shown["duplicate"], 1U);
    std::string expected;
    for (int file = 0; file < 9; ++file) {
        expected += std::to_string(file) + ": 3 more like these are not shown\n";
    }
    // The tenth file fills the rule's limit, so that it speaks for the rest.
    expected += "9: 209 more like these here or in other files are not shown\n";
    EXPECT_EQ(more, expected);
}

TEST(PlatformCheck, ShownTextsCutNoCharacter) {
    using mav_platform::check::shown;
    EXPECT_EQ(shown("ab\xC3\xA9", 3), "'ab...'");
    EXPECT_EQ(shown("ab\xC3\xA9", 4), "'ab\xC3\xA9'");
    EXPECT_EQ(shown("a\nb"), "'a?b'");
}

}  // namespace
