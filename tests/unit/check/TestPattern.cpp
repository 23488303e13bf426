// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <regex>
#include <set>

#include "check/Pattern.h"
#include "json/Document.h"
#include "support/Paths.h"

namespace {

using mav_platform::json::Document;
using mav_platform::json::Node;

void gather(const Node& node, std::set<std::string>& patterns) {
    for (const Node& child : node) {
        if (child.key() == "pattern" && !child.hasChildren()) patterns.emplace(child.data());
        gather(child, patterns);
    }
}

/// A text that one of the formats may hold, with up to three bytes changed.
std::string someText(std::mt19937& random) {
    static const std::string TEXTS[] = {"0",
                                        "4294967296",
                                        "18446744073709551615",
                                        "0x1f",
                                        "-12",
                                        "bit31",
                                        "dpe_b",
                                        "True",
                                        "00000000000000000000012",
                                        "12345678-1234-1234-1234-123456789abc",
                                        "abbcdeedd"};
    static const std::string BYTES = "0123456789abcdefxA+-{}_.t[";
    std::string text = TEXTS[random() % std::size(TEXTS)];
    for (auto changes = random() % 4; changes > 0; --changes) {
        const std::size_t at = random() % text.size();
        if (random() % 2 == 0) {
            text[at] = BYTES[random() % BYTES.size()];
        } else {
            text.insert(at, 1, BYTES[random() % BYTES.size()]);
        }
    }
    return text;
}

TEST(Pattern, MatchesAsRegularExpressionsDo) {
    std::set<std::string> patterns{"^a?b*(?:c|de+){2}d*$",
                                   "^(?:a|ab)(?:b|bbc)?c*d$",
                                   "a|b",
                                   "^(?:a{2,}|b)+$",
                                   "^[a-]x$",
                                   "^a.c$",
                                   "^(a|b)\\1$"};
    const std::filesystem::path folder = std::filesystem::path(SOURCE_DIR) / "platform/schema";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".json") continue;
        std::ifstream file(entry.path());
        gather(Document(std::string(std::istreambuf_iterator<char>(file), {})).root(), patterns);
    }
    EXPECT_GT(patterns.size(), 20U);
    std::mt19937 random(1);
    std::size_t matches = 0;
    for (const std::string& text : patterns) {
        mav_platform::check::Pattern pattern(text);
        const std::regex expected(text);
        for (int i = 0; i < 300; ++i) {
            const std::string subject = i == 0   ? ""
                                        : i == 1 ? std::string(70, '1')
                                                 : someText(random);
            const bool wanted = std::regex_search(subject, expected);
            ASSERT_EQ(pattern.matches(subject), wanted) << text << " " << subject;
            matches += wanted ? 1 : 0;
        }
    }
    EXPECT_GT(matches, 300U);
}

}  // namespace
