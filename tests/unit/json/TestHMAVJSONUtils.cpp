// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/optional.hpp>
#include <climits>
#include <functional>
#include <string>

#include "json/Convert.h"
#include "mav_host/HEXError.h"
#include "mav_host/xp.h"
#include "mav_platform/HMAVJSONUtils.h"
#include "support/Doubles.h"
#include "support/ZipFixture.h"
#include "unit/json/JsonReference.h"

using Utils = HMAVJSONUtils;
namespace json = mav_platform::json;

namespace {

std::string refusal(const std::function<void()>& action) {
    try {
        action();
    } catch (const HEXAlgException& error) {
        return std::string("HEXAlgException ") + error.what();
    } catch (const json_parser_error& error) {
        return std::string("json_parser_error ") + error.what();
    }
    return "none";
}

}  // namespace

TEST(HMAVJSONUtils, GettersFollowPathsAndTheirConversions) {
    const ptree tree = Utils::readJson(
        R"({"a":{"b":"12abc","no":"abc","t":"TRUE"},"neg":"-5","big":"99999999999999999999","n":null,
            "i32":"4294967296","one":"1","empty":"","a":{"b":"second"}})");
    EXPECT_TRUE(Utils::hasKey(tree, "a.b"));
    EXPECT_TRUE(Utils::findKey(tree, "empty"));
    EXPECT_FALSE(Utils::findKey(tree, "a.b.c"));
    EXPECT_EQ(Utils::getValue(tree, "a.b"), "12abc");
    EXPECT_EQ(Utils::getStringValue(tree, "n"), "null");
    EXPECT_EQ(Utils::getValue(tree, "missing"), "");
    EXPECT_EQ(Utils::getIntValue(tree, "a.b", 7), 12);
    EXPECT_EQ(Utils::getIntValue(tree, "a.no", 7), 0);
    EXPECT_EQ(Utils::getIntValue(tree, "missing", 7), 7);
    EXPECT_EQ(Utils::getIntValue(tree, "empty", 7), 7);
    EXPECT_EQ(Utils::getLongValue(tree, "i32", 7), 4294967296L);
    EXPECT_EQ(Utils::getUnsignedLongValue(tree, "big", 7), static_cast<unsigned long>(LONG_MAX));
    EXPECT_EQ(Utils::getUnsignedLongValue(tree, "neg", 7), static_cast<unsigned long>(-5));
    EXPECT_TRUE(Utils::getBoolValue(tree, "a.t"));
    EXPECT_FALSE(Utils::getBoolValue(tree, "one"));
    EXPECT_FALSE(Utils::getBoolValue(tree, "missing"));

    const boost::optional<ptree> none;
    const boost::optional<ptree> some(tree);
    EXPECT_EQ(Utils::getIntValue(none, "a.b", 7), 7);
    EXPECT_EQ(Utils::getValue(none, "a.b"), "");
    EXPECT_FALSE(Utils::hasKey(none, "a"));
    EXPECT_EQ(Utils::getIntValue(some, "a.b", 7), 12);
}

TEST(HMAVJSONUtils, UnsignedValuesThatDoNotConvertAreReported) {
    const ptree tree = Utils::readJson(
        R"({"ok":" +42x","top":4294967295,"abc":"abc","over":"4294967296","minus":"-1","blank":" ",
            "huge":"99999999999999999999"})");
    CapturedMessages messages;
    EXPECT_EQ(Utils::getUnsignedIntValue(tree, "ok", 7), 42U);
    EXPECT_EQ(Utils::getUnsignedIntValue(tree, "top", 7), 4294967295U);
    EXPECT_EQ(Utils::getUnsignedIntValue(tree, "missing", 7), 7U);
    EXPECT_TRUE(messages.all.empty());
    for (const char* key : {"abc", "over", "minus", "blank", "huge"}) {
        EXPECT_EQ(Utils::getUnsignedIntValue(tree, key, 7), 7U) << key;
    }
    EXPECT_EQ(messages.text(),
              "@74-268@%s|abc\n@74-268@%s|4294967296\n@74-268@%s|-1\n@74-268@%s| \n"
              "@74-268@%s|99999999999999999999\n");
    EXPECT_EQ(messages.all.front().group, "platform");
    EXPECT_EQ(messages.all.front().mask, ComMsgMgr::WARNING);
}

TEST(Convert, FollowsTheCConversions) {
    static const std::string TEXTS[] = {"0",
                                        "12",
                                        " \t\n\v\f\r12",
                                        "+12",
                                        "-12",
                                        "- 12",
                                        "12 13",
                                        "x",
                                        "-",
                                        "+-1",
                                        "0x10",
                                        "9223372036854775807",
                                        "9223372036854775808",
                                        "-9223372036854775808",
                                        "-9223372036854775809",
                                        "99999999999999999999999",
                                        "007"};
    for (const std::string& text : TEXTS) {
        EXPECT_EQ(json::toLong(text, 5), std::strtol(text.c_str(), nullptr, 10)) << text;
    }
    EXPECT_EQ(json::toLong("", 5), 5);
    EXPECT_EQ(json::toDecimalOrHex("18446744073709551615"), ULLONG_MAX);
    EXPECT_EQ(json::toDecimalOrHex("0xFFFFffffFFFFffff"), ULLONG_MAX);
    for (const char* text : {"", "0x", "x1", "-1", "+1", " 1", "1 ", "18446744073709551616",
                             "0x10000000000000000", "12ab", "0xg"}) {
        EXPECT_FALSE(json::toDecimalOrHex(text)) << text;
    }
}

TEST(HMAVJSONUtils, TextsAreReadAndRefused) {
    EXPECT_TRUE(Utils::readJsonNoThrow("").empty());
    EXPECT_EQ(refusal([] { Utils::readJson(std::string()); }),
              "HEXAlgException HMAVJSONUtils::readJson() - Empty json string");
    EXPECT_EQ(refusal([] { Utils::readJson("{\n\"a\": }"); }),
              "HEXAlgException Failed to read platform: <unspecified file>(2): expected value");
    EXPECT_EQ(refusal([] { Utils::readJsonNoThrow("["); }),
              "json_parser_error <unspecified file>(1): expected value");
    EXPECT_EQ(Utils::readJson(std::stringstream("[1]")).front().second.data(), "1");
    // Text that is no UTF-8 is taken as ISO-8859-1.
    EXPECT_EQ(Utils::readJson("[\"caf\xE9\"]").front().second.data(), "caf\xC3\xA9");
    EXPECT_EQ(Utils::readJson("[\"caf\xC3\xA9\"]").front().second.data(), "caf\xC3\xA9");
}

TEST(HMAVJSONUtils, FilesAreReadWrittenAndRefused) {
    TempDir dir;
    const std::string path = dir.path("doc.json");
    ptree tree;
    tree.put("a.b", "x/y");
    Utils::writeJson(path, tree);
    EXPECT_EQ(Utils::readJsonFile(path), tree);
    EXPECT_EQ(Utils::readJsonFileDecrypt(path), tree);
    std::ostringstream out;
    Utils::writeJson(out, tree);
    EXPECT_EQ(out.str(), boostText(tree));

    tree.data() = "and a value";
    EXPECT_EQ(refusal([&] { Utils::writeJson(path, tree); }),
              "json_parser_error " + path +
                  ": ptree contains data that cannot be represented in JSON format");
    EXPECT_EQ(Utils::readJsonFile(path).get<std::string>("a.b"), "x/y");

    const std::string missing = dir.path("missing.json");
    EXPECT_EQ(refusal([&] { Utils::readJsonFileNoThrow(missing); }),
              "json_parser_error " + missing + ": cannot open file");
    EXPECT_EQ(refusal([&] { Utils::readJsonFile(missing); }),
              "HEXAlgException Failed to read platform: " + missing + ": cannot open file");
    EXPECT_EQ(refusal([&] { Utils::readJsonFileDecrypt(missing); }),
              "HEXAlgException Failed to read platform: " + missing + ": cannot open file");
    EXPECT_EQ(
        refusal([&] { Utils::writeJson(missing + "/x", ptree()); }).rfind("json_parser_error ", 0),
        0U);
    const HostKey key(std::string(32, 'k'));
    isl::iostreams::xp::write(path, "{\"a\": \"b\"}");
    EXPECT_EQ(Utils::readJsonFileDecrypt(path).get<std::string>("a"), "b");
    std::string changed = dir.read("doc.json");
    changed.back() = static_cast<char>(~changed.back());
    dir.write("doc.json", changed);
    const std::string told = refusal([&] { Utils::readJsonFileDecrypt(path); });
    EXPECT_EQ(told.rfind("HEXAlgException Failed to read platform: ", 0), 0U) << told;
    dir.write("doc.json", "{\n\n\"a\"");
    EXPECT_EQ(refusal([&] { Utils::readJsonFile(path); }),
              "HEXAlgException Failed to read platform: " + path + "(3): expected ':'");
}
