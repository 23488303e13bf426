// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "json/Document.h"
#include "unit/json/JsonReference.h"

using mav_platform::json::Document;
using mav_platform::json::Node;
using namespace std::string_view_literals;

namespace {

std::string show(std::string_view text) {
    return testing::PrintToString(std::string(text));
}

/// Accepted with the same tree, or refused with the same words, as Boost does. True when accepted.
bool agreesWithBoost(std::string_view text) {
    const BoostRead expected{std::string(text)};
    std::string error;
    try {
        const Document document{std::string(text)};
        EXPECT_EQ(expected.error, "") << "only we accept " << show(text);
        EXPECT_EQ(document.tree(), expected.tree) << show(text);
    } catch (const json_parser_error& failure) {
        error = failure.what();
        EXPECT_EQ(error, expected.error) << show(text);
    }
    return error.empty();
}

/// A random text that is mostly well-formed; `depth` bounds the nesting.
std::string randomValue(Dice& dice, int depth) {
    static constexpr std::string_view SCALARS[] = {
        // literals and numbers
        "true", "false", "null", "0", "-0", "12", "-3.25e+7", "1E400",
        // texts
        "\"\"", "\"a b\"", "\"\\u00e9\\n\\/\"", "\"\\ud83d\\ude00\"", "\"caf\xC3\xA9\"",
        "\"long enough for a block\"", "\"sixteen bytes ++\\\\ and more\""};
    static constexpr std::string_view SPACES[] = {"",   "",       " ",
                                                  "\n", "\r\n\t", "\n                  "};
    if (depth == 0 || dice.roll(3) == 0) return std::string(dice.pick(SCALARS));
    const bool object = dice.roll(2) == 0;
    std::string text(object ? "{" : "[");
    for (std::size_t left = dice.roll(4); left > 0; --left) {
        text += dice.pick(SPACES);
        if (object) text.append("\"k").append(std::to_string(dice.roll(3))).append("\":");
        text += dice.pick(SPACES);
        text += randomValue(dice, depth - 1);
        text += dice.pick(SPACES);
        if (left > 1) text += ',';
    }
    return text + (object ? "}" : "]");
}

std::string refusalOf(const std::string& text, const std::string& file) {
    try {
        const Document document(text, file);
        return "none";
    } catch (const json_parser_error& error) {
        EXPECT_EQ(error.filename(), file);
        return error.what();
    }
}

std::string nested(std::size_t depth, char open, char close) {
    return std::string(depth, open) + std::string(depth, close);
}

}  // namespace

TEST(Document, ReadsAndRefusesTrickyTextsAsBoostDoes) {
    static constexpr std::string_view TEXTS[] = {
        // scalars at the root, white space, what follows
        "", " ", "\n\n", "{}", "[]", " { } ", "\"x\"", "12", "true", "nullx", "{} {}", "[1]\n\n]",
        "{}\0"sv, "\0{}"sv, "\v{}", "{}\f", "// c\n{}", "{\"a\":1}\n\n  garbage",
        // literals and numbers
        "tru", "truE", "f", "falsy", "n", "nul", "nil", "True", "-", "-a", "--1", "+1", "01", "00",
        "0", "-0", "0.", "0.0", ".5", "1.", "1.e3", "1e", "1e+", "1e-07", "1E5", "1e999", "1.5.2",
        "0x10", "123456789012345678901234567890", "[-]", "[1 2]", "NaN", "Infinity", "1e5x",
        // structure
        "[", "[1", "[1,", "[1,]", "[,1]", "[}", "{", "{\"a\"", "{\"a\":", "{\"a\":1", "{\"a\":1,",
        "{,}", "{\"a\":1,}", "{\"a\" 1}", "{a:1}", "{1:1}", "{\"a\":}", "{\"a\"::1}", "{\"a\":1]",
        "[1}", "]", "{\"a\":1\n\n\"b\":2}", "{\"a\":{\"b\":[[],{},[{}]]}}", "[[[]],[]]",
        "{\"a\":{},\"b\":\"\"}", "{\"a\":1,\"b\":2,\"a\":3}", "{\"\":1,\"\":2}", "{\"\":{\"\":[]}}",
        "{\"a.b\":{\".\":1}}",
        // strings and escapes
        "\"", "\"abc", "\"\\", "\"\\\"", "\"\\\"\"", "\"\\x\"", "\"\\a\"", "\"\\'\"", "\"\\0\"",
        "\"\\b\\f\\n\\r\\t\\/\\\\\\\"\"", "\"\\u\"", "\"\\u12\"", "\"\\u12", "\"\\u12G4\"",
        "\"\\u0041\"", "\"\\u0000\"", "\"\\u007f\\u0080\\u07FF\\u0800\\uffff\"", "\"\\uD800\"",
        "\"\\uD800x\"", "\"\\uD800\\n\"", "\"\\uD800\\u0041\"", "\"\\uD800\\uD800\"", "\"\\uDC00\"",
        "\"\\uDBFF\\uDFFF\"", "\"\\ud83d\\ude0\"", "\"\\ud83d\\", "\"line\nbreak\"", "[\n\"a\tb\"]",
        "\"\x1f\"", "\"\x7f\"", "\"nul\0inside\""sv, "\"0123456789abcdef\"",
        "\"0123456789abcde\\n0123456789abcdef\"", "\"0123456789abcdef\x01\"",
        "{\"key\\u0041\\ud83d\\ude00\":\"v\"}", "{\"k\n\":1}",
        // bytes above ASCII: lead and trail bytes are checked, overlong forms and surrogates are
        // not
        "\"\xC3\xA9\"", "\"\xE2\x82\xAC\"", "\"\xF0\x9F\x98\x80\"", "\"\xC0\x80\"",
        "\"\xED\xA0\x80\"", "\"\xF7\xBF\xBF\xBF\"", "\"\xF8\x88\x80\x80\x80\"", "\"\x80\"",
        "\"\xBF\"", "\"\xC3\"", "\"\xC3\x28\"", "\"\xE2\x82\"", "\"\xE2\x28\xA1\"",
        "\"\xF0\x9F\x98\"", "\"\xC3", "\"\xFF\"", "\xC3\xA9",
        "\"0123456789abcdef\xC3\xA9 and \\u00e9 \xE2\x82\xAC\"", "\"\\n\xF0\x9F\x98\x80\\n\"",
        // byte-order marks
        "\xEF\xBB\xBF{}", "\xEF\xBB\xBF", "\xEF\xBB", "\xEF", "\xEFxx[1]", "\xEF\n\n?",
        "\xFE\xFF{}", " \xEF\xBB\xBF{}"};
    std::size_t accepted = 0;
    for (const std::string_view text : TEXTS) accepted += agreesWithBoost(text) ? 1U : 0U;
    EXPECT_GT(accepted, 30U);
    EXPECT_LT(accepted, std::size(TEXTS) - 40);
}

TEST(Document, ReadsAndRefusesGeneratedTextsAsBoostDoes) {
    static constexpr std::string_view PIECES[] = {
        "\"", "\\", "{", "}",    "[",    "]",   ",",       ":",    "\n", "0",
        "e",  "-",  ".", "\x80", "\xC3", "\\u", "\\ud800", "\x01", " ",  "t"};
    const std::string whole =
        "{\n  \"name\": \"caf\xC3\xA9 \\u00e9\\ud83d\\ude00 0123456789abcdef\",\n  \"list\": "
        "[1.5e-7, true, null, {\"a\": []}]\n}";
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        EXPECT_EQ(agreesWithBoost(std::string_view(whole).substr(0, size)), size == whole.size());
    }
    Dice dice(41);
    std::size_t accepted = 0;
    std::size_t refused = 0;
    for (int round = 0; round < 4000; ++round) {
        std::string text = randomValue(dice, 4);
        ASSERT_TRUE(agreesWithBoost(text)) << show(text);
        for (int change = 0; change < 3; ++change) {
            const std::size_t at = dice.roll(text.size() + 1);
            text.replace(at, dice.roll(3), dice.pick(PIECES));
            ++(agreesWithBoost(text) ? accepted : refused);
        }
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(accepted, 500U);
    EXPECT_GT(refused, 4000U);
}

TEST(Document, NestingIsBounded) {
    EXPECT_TRUE(agreesWithBoost(nested(512, '[', ']')));
    for (const std::string& text :
         {nested(513, '[', ']'), std::string(100000, '['), "\n" + nested(513, '[', ']')}) {
        EXPECT_EQ(refusalOf(text, "f"), std::string("f(") + (text[0] == '\n' ? "2" : "1") +
                                            "): nesting deeper than 512 levels");
    }
    EXPECT_EQ(refusalOf("{\n?", "dir/meta.json"), "dir/meta.json(2): expected key string");
    EXPECT_NO_THROW(Document(nested(576, '[', ']'), {}, Document::MAX_OWN_DEPTH));
    EXPECT_THROW(Document(nested(577, '[', ']'), {}, Document::MAX_OWN_DEPTH), json_parser_error);
    // What is closed again does not count.
    std::string row = "[";
    for (int i = 0; i < 2000; ++i) row += "[[]],";
    EXPECT_TRUE(agreesWithBoost(row + "1]"));
}

TEST(Document, NodesGiveKeysDataAndChildrenInOrder) {
    Document first{R"({"a":"1","n":null,"deep":{"x":[10,{"y":"z"}],"e":{}},"a":"2"})"};
    const Document document = std::move(first);
    const Node root = document.root();
    std::string seen;
    for (const Node& child : root) {
        seen.append(child.key()).append("=").append(child.data()).append(";");
    }
    EXPECT_EQ(seen, "a=1;n=null;deep=;a=2;");
    EXPECT_EQ(root.find("a")->data(), "1");
    EXPECT_FALSE(root.find("deep.x"));
    const Node deep = *root.find("deep");
    EXPECT_TRUE(deep.hasChildren());
    EXPECT_FALSE(deep.find("e")->hasChildren());
    EXPECT_EQ(deep.find("x")->begin()->data(), "10");
    EXPECT_EQ(deep.tree(), BoostRead(R"({"x":[10,{"y":"z"}],"e":{}})").tree);
}
