// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <boost/optional.hpp>
#include <climits>
#include <filesystem>
#include <functional>
#include <string>

#include "FileDescriptor.h"
#include "json/Convert.h"
#include "mav_host/HEXError.h"
#include "mav_host/xp.h"
#include "mav_platform/HMAVJSONUtils.h"
#include "support/Doubles.h"
#include "support/Row.h"
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
    EXPECT_EQ(row(Utils::hasKey(tree, "a.b"), Utils::findKey(tree, "empty"),
                  Utils::findKey(tree, "a.b.c"), Utils::getValue(tree, "a.b"),
                  Utils::getStringValue(tree, "n"), Utils::getValue(tree, "missing")),
              "true|true|false|12abc|null|");
    EXPECT_EQ(row(Utils::getIntValue(tree, "a.b", 7), Utils::getIntValue(tree, "a.no", 7),
                  Utils::getIntValue(tree, "missing", 7), Utils::getIntValue(tree, "empty", 7),
                  Utils::getLongValue(tree, "i32", 7)),
              "12|0|7|7|4294967296");
    EXPECT_EQ(row(Utils::getUnsignedLongValue(tree, "big", 7),
                  Utils::getUnsignedLongValue(tree, "neg", 7)),
              "9223372036854775807|18446744073709551611");
    EXPECT_EQ(row(Utils::getBoolValue(tree, "a.t"), Utils::getBoolValue(tree, "one"),
                  Utils::getBoolValue(tree, "missing")),
              "true|false|false");
    const boost::optional<ptree> none;
    const boost::optional<ptree> some(tree);
    EXPECT_EQ(row(Utils::getIntValue(none, "a.b", 7), Utils::getValue(none, "a.b"),
                  Utils::hasKey(none, "a"), Utils::getIntValue(some, "a.b", 7),
                  Utils::getIntValue(tree.get_child_optional("a"), "b", 7),
                  Utils::getIntValue(tree.get_child_optional("none"), "b", 7)),
              "7||false|12|12|7");
    EXPECT_EQ(
        row(Utils::findKey(boost::none, "a"), Utils::hasKey(boost::none, "a"),
            Utils::getValue(boost::none, "a"), Utils::getStringValue(boost::none, "a"),
            Utils::getIntValue(boost::none, "a", 7), Utils::getLongValue(boost::none, "a", 7),
            Utils::getUnsignedLongValue(boost::none, "a", 7),
            Utils::getUnsignedIntValue(boost::none, "a", 7), Utils::getBoolValue(boost::none, "a")),
        "false|false|||7|7|7|7|false");
}

TEST(HMAVJSONUtils, UnsignedValuesThatDoNotConvertAreReported) {
    const ptree tree = Utils::readJson(
        R"({"ok":" +42x","top":4294967295,"abc":"abc","over":"4294967303","minus":"-1","blank":" ",
            "huge":"99999999999999999999"})");
    CapturedMessages messages;
    for (const auto& [key, value] : {std::pair{"ok", 42U},
                                     {"top", 4294967295U},
                                     {"missing", 7U},
                                     {"over", 7U},
                                     {"minus", 4294967295U}}) {
        EXPECT_EQ(Utils::getUnsignedIntValue(tree, key, 7), value) << key;
    }
    EXPECT_TRUE(messages.all.empty());
    for (const char* key : {"abc", "blank", "huge"}) {
        EXPECT_EQ(Utils::getUnsignedIntValue(tree, key, 7), 7U) << key;
    }
    EXPECT_EQ(messages.text(), "@74-268@%s|abc\n@74-268@%s| \n@74-268@%s|99999999999999999999\n");
}

TEST(Convert, FollowsTheCConversions) {
    for (const std::string text :
         {" \t\n\v\f\r12", "+12", "-12", "- 12", "12 13", "x", "-", "+-1", "0x10",
          "9223372036854775807", "9223372036854775808", "-9223372036854775809"}) {
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

    ASSERT_EQ(::mkfifo(dir.path("pipe").c_str(), 0600), 0);
    {
        const mav_host::FileDescriptor reader(
            ::open(dir.path("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        Utils::writeJson(dir.path("pipe"), tree);
        std::string read(100, '\0');
        read.resize(static_cast<std::size_t>(::read(reader.get(), read.data(), read.size())));
        EXPECT_EQ(read, boostText(tree));
    }
    EXPECT_EQ(refusal([&] { Utils::writeJson("/dev/full", tree); }),
              "json_parser_error /dev/full: The file '/dev/full' cannot be written (writing): No "
              "space left on device");

    tree.data() = "and a value";
    EXPECT_EQ(refusal([&] { Utils::writeJson(path, tree); }),
              "json_parser_error " + path +
                  ": ptree contains data that cannot be represented in JSON format");
    EXPECT_EQ(Utils::readJsonFile(path).get<std::string>("a.b"), "x/y");

    const std::string missing = dir.path("missing.json");
    EXPECT_EQ(refusal([&] { Utils::readJsonFileNoThrow(missing); }),
              "json_parser_error " + missing + ": cannot open file");
    for (const auto read : {&Utils::readJsonFile, &Utils::readJsonFileDecrypt}) {
        EXPECT_EQ(refusal([&] { read(missing); }),
                  "HEXAlgException Failed to read platform: " + missing + ": cannot open file");
    }
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
