// SPDX-License-Identifier: Apache-2.0
// The catalogue against itself, and every use of a message in the sources against the catalogue.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "MessageCatalogue.h"

namespace {

namespace fs = std::filesystem;

struct Findings {
    std::size_t uses = 0;   ///< ids in the text
    std::size_t calls = 0;  ///< ids that are followed by a readable argument list
    std::string faults;     ///< one line each
};

std::size_t placeholders(std::string_view id) {
    return static_cast<std::size_t>(std::count(id.begin(), id.end(), '%'));
}

const mav_host::CatalogueEntry* find(std::string_view key) {
    for (const mav_host::CatalogueEntry& entry : mav_host::MESSAGE_CATALOGUE) {
        if (entry.key == key) return &entry;
    }
    return nullptr;
}

/// Where a literal that starts at `at` ends: behind its closing quote.
std::size_t behindLiteral(std::string_view text, std::size_t at) {
    const char quote = text[at++];
    while (at < text.size() && text[at] != quote) at += text[at] == '\\' ? 2U : 1U;
    return at + 1;
}

/// Elements of the brace list that begins at `at`; no value when the text ends inside it.
std::optional<std::size_t> countElements(std::string_view text, std::size_t at) {
    std::size_t depth = 0;
    std::size_t commas = 0;
    bool empty = true;
    while (at < text.size()) {
        const char c = text[at];
        if (c == '"' || c == '\'') {
            empty = false;
            at = behindLiteral(text, at);
            continue;
        }
        if (c == '}' || c == ')' || c == ']') {
            if (--depth == 0) return empty ? 0 : commas + 1;
        }
        if (c == ',' && depth == 1) ++commas;
        if (depth != 0 && std::isspace(static_cast<unsigned char>(c)) == 0) empty = false;
        if (c == '{' || c == '(' || c == '[') ++depth;
        ++at;
    }
    return std::nullopt;
}

std::size_t skip(std::string_view text, std::size_t at, std::string_view characters) {
    return std::min(text.find_first_not_of(characters, at), text.size());
}

/// The number of arguments that stand behind an id literal in a call: `"id", {a, b})` or `"id")`.
std::optional<std::size_t> countArguments(std::string_view text, std::size_t behindId) {
    constexpr std::string_view BLANKS = " \n";
    if (text.substr(behindId, 1) != "\"") return std::nullopt;
    std::size_t at = skip(text, behindId + 1, BLANKS);
    const char separator = at < text.size() ? text[at] : ' ';
    at = skip(text, at + 1, BLANKS);
    const char next = at < text.size() ? text[at] : ' ';
    if (separator == ')' && next == ';') return 0;
    if (separator == ',' && next == '{') return countElements(text, at);
    return std::nullopt;
}

/// The message id that begins at `at`, such as "@74-14@%s%s"; empty when none does.
std::string idAt(std::string_view text, std::size_t at) {
    constexpr std::string_view DIGITS = "0123456789";
    const std::size_t dash = skip(text, at + 1, DIGITS);
    const std::size_t close = skip(text, dash + 1, DIGITS);
    const bool numbers = dash > at + 1 && close > dash + 1;
    if (!numbers || text.substr(dash, 1) != "-" || text.substr(close, 1) != "@") return "";
    std::size_t end = close + 1;
    while (end + 1 < text.size() && text[end] == '%' && text[end + 1] >= 'a' &&
           text[end + 1] <= 'z') {
        end += 2;
    }
    return std::string(text.substr(at, end - at));
}

Findings check(const std::string& text, const std::string& file) {
    Findings found;
    for (std::size_t at = text.find('@'); at != std::string::npos; at = text.find('@', at + 1)) {
        const std::string id = idAt(text, at);
        if (id.empty()) continue;
        ++found.uses;
        const mav_host::CatalogueEntry* const entry = find(id.substr(1, id.rfind('@') - 1));
        if (entry == nullptr) {
            found.faults += file + ": the catalogue has no " + id + "\n";
            continue;
        }
        if (entry->id != id) {
            found.faults += file + ": " + id + " is " + std::string(entry->id) + "\n";
        }
        const std::optional<std::size_t> given = countArguments(text, at + id.size());
        if (!given) continue;
        ++found.calls;
        if (*given != placeholders(entry->id)) {
            found.faults += file + ": " + id + " is sent with " + std::to_string(*given) + "\n";
        }
    }
    return found;
}

TEST(MessageCatalogue, EntriesAreWhole) {
    std::map<std::string_view, int> keys;
    for (const auto& [key, id, sentence] : mav_host::MESSAGE_CATALOGUE) {
        SCOPED_TRACE(key);
        EXPECT_EQ(++keys[key], 1);
        EXPECT_EQ(id.substr(0, key.size() + 2), std::string("@").append(key).append("@"));
        const std::size_t count = placeholders(id);
        for (std::size_t i = 1; i <= count; ++i) {
            EXPECT_NE(sentence.find(std::string("%").append(std::to_string(i))),
                      std::string_view::npos)
                << i;
        }
        EXPECT_EQ(placeholders(sentence), count);
        EXPECT_EQ(sentence.back(), '.');
    }
    EXPECT_FALSE(keys.empty());
}

TEST(MessageCatalogue, EveryUseInTheSourcesIsRight) {
    Findings all;
    for (const char* const folder : {"host/src", "host/include", "platform", "cli"}) {
        for (const auto& entry :
             fs::recursive_directory_iterator(fs::path(MAV_SOURCE_DIR) / folder)) {
            const fs::path& file = entry.path();
            if (file.extension() != ".cpp" && file.extension() != ".h") continue;
            if (file.filename() == "MessageCatalogue.h") continue;
            std::ifstream stream(file, std::ios::binary);
            const Findings found =
                check({std::istreambuf_iterator<char>(stream), {}}, file.filename());
            all.uses += found.uses;
            all.calls += found.calls;
            all.faults += found.faults;
        }
    }
    EXPECT_EQ(all.faults, "");
    EXPECT_GT(all.uses, 0U);
    EXPECT_GT(all.calls, 0U);
}

TEST(MessageCatalogue, TheSearchSeesWrongUses) {
    const Findings right = check(R"(sendMsg(1, "platform", mask, "@74-14@%s%s", {f(a, "},{"), b});
        report("@74-261@"); report("@74-261@", {}); // "@74-10@%s" tells
        report("@74-10@%s", args);)",
                                 "x.cpp");
    EXPECT_EQ(right.faults, "");
    EXPECT_EQ(right.uses, 5U);
    EXPECT_EQ(right.calls, 3U);
    EXPECT_EQ(check(R"(report("@74-2@%s", {a});)", "x.cpp").faults,
              "x.cpp: the catalogue has no @74-2@%s\n");
    EXPECT_EQ(check(R"(report("@74-14@%s", {a, b});)", "x.cpp").faults,
              "x.cpp: @74-14@%s is @74-14@%s%s\n");
    EXPECT_EQ(check(R"(report("@74-14@%s%s", {a});)", "x.cpp").faults,
              "x.cpp: @74-14@%s%s is sent with 1\n");
    EXPECT_EQ(check(R"(report("@74-10@%s");)", "x.cpp").faults,
              "x.cpp: @74-10@%s is sent with 0\n");
}

}  // namespace
