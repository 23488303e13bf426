// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONObjectWriter.h"
#include "unit/json/JsonReference.h"

using mav_platform::JSONListWriter;
using mav_platform::JSONObjectWriter;
using mav_platform::JSONSerializable;
using mav_platform::JSONWriter;

namespace {

/// The writers' rules on a plain property tree.
struct ReferenceWriter {
    ptree tree;

    void addKey(const std::string& key, const std::string& value) {
        if (!value.empty()) tree.put(key, value);
    }
    void addKey(const std::string& key, const ptree& sub) {
        if (!sub.empty()) tree.add_child(key, sub);
    }
    void addLiteral(const std::string& key, const std::string& value) {
        if (!value.empty()) tree.push_back({key, ptree(value)});
    }
    void addLiteral(const std::string& key, const ptree& sub) {
        if (!sub.empty()) tree.push_back({key, sub});
    }
    void addItem(const std::string& value) { addLiteral("", value); }
    void addItem(const ptree& sub) { addLiteral("", sub); }
};

/// An object whose members a function writes.
class Scripted final : public JSONSerializable {
  public:
    explicit Scripted(std::function<void(JSONObjectWriter&)> script) : script_(std::move(script)) {}
    void toJSON(JSONObjectWriter& writer) const override { script_(writer); }

  private:
    std::function<void(JSONObjectWriter&)> script_;
};

/// The text or, for a tree that JSON cannot express, the error.
template <class Print>
std::string outcome(Print print) {
    try {
        return print();
    } catch (const json_parser_error& error) {
        return error.what();
    }
}

std::string reference(const ptree& tree) {
    return outcome([&] { return boostText(tree); });
}

std::string written(const JSONWriter& writer) {
    return outcome([&] {
        std::ostringstream out;
        writer.write(out);
        return out.str();
    });
}

/// Writes the same random members through both.
class Twins {
  public:
    explicit Twins(std::uint64_t seed) : dice_(seed) {}

    void object(JSONObjectWriter& writer, ReferenceWriter& expected, int depth) {
        for (std::size_t left = dice_.roll(7); left > 0; --left) member(writer, expected, depth);
    }
    void list(JSONListWriter& writer, ReferenceWriter& expected, int depth) {
        for (std::size_t left = dice_.roll(5); left > 0; --left) item(writer, expected, depth);
    }

  private:
    std::string key() {
        static constexpr std::string_view KEYS[] = {"name",     "type",    "a",
                                                    "b",        "c",       "a.b",
                                                    "a.b.c",    "q\"k/\n", "somewhatLongerKeyName",
                                                    "x.y",      "d",       "interfaceDescription",
                                                    "\x7F\xE9", "four"};
        return std::string(dice_.pick(KEYS));
    }
    std::string value() {
        static constexpr std::string_view VALUES[] = {
            "",
            "1",
            "value",
            "a/b\\c\"d",
            "tab\tline\nbell\a",
            "caf\xC3\xA9 \xFF",
            "} , { : [",
            "exactly 16 bytes",
            "a longer text, with a / beyond the first block \x1F\x7F",
            "0x8000"};
        return std::string(dice_.pick(VALUES));
    }
    ptree tree(int depth) {
        ptree made;
        for (std::size_t left = dice_.roll(4); left > 0; --left) {
            made.push_back(
                {dice_.roll(2) == 0 ? "" : key(), depth > 0 ? tree(depth - 1) : ptree()});
            if (made.back().second.empty() || dice_.roll(30) == 0)
                made.back().second.data() = value();
        }
        return made;
    }

    void member(JSONObjectWriter& writer, ReferenceWriter& expected, int depth) {
        const std::string k = key();
        const std::string v = value();
        ReferenceWriter below;
        switch (dice_.roll(depth > 0 ? 13 : 5)) {
            case 0: {
                const long number = static_cast<long>(dice_.roll(2000)) - 1000;
                writer.addKey(k, number);
                expected.addKey(k, std::to_string(number));
                break;
            }
            case 1:
                writer.addKey(k, v.size() > 3);
                expected.addKey(k, v.size() > 3 ? "true" : "false");
                break;
            case 2:
                writer.addLiteral(k, v);
                expected.addLiteral(k, v);
                break;
            case 3:
            case 4:
                writer.addKey(k, v);
                expected.addKey(k, v);
                break;
            case 5: {
                const HSTVector<std::string> values{v, "", value()};
                writer.addKey(k, values);
                for (const std::string& one : values) below.addItem(one);
                expected.addKey(k, below.tree);
                break;
            }
            case 6: {
                const ptree sub = tree(2);
                writer.addKey(k, sub);
                expected.addKey(k, sub);
                break;
            }
            case 7: {
                const Scripted sub(
                    [&](JSONObjectWriter& inner) { object(inner, below, depth - 1); });
                writer.addKey(k, &sub);
                expected.addKey(k, below.tree);
                break;
            }
            case 8: {
                JSONObjectWriter sub;
                object(sub, below, depth - 1);
                writer.addKey(k, sub);
                expected.addKey(k, below.tree);
                break;
            }
            case 9: {
                JSONListWriter sub;
                list(sub, below, depth - 1);
                writer.addKey(k, sub);
                expected.addKey(k, below.tree);
                break;
            }
            case 10:
                writer.addList(k, [&](JSONListWriter& sub) { list(sub, below, depth - 1); });
                expected.addLiteral(k, below.tree);
                break;
            case 11:
                writer.addObject(k, [&](JSONObjectWriter& sub) { object(sub, below, depth - 1); });
                expected.addLiteral(k, below.tree);
                break;
            default:
                EXPECT_EQ(std::as_const(writer).getTree(), expected.tree);
                if (dice_.roll(3) == 0)
                    writer.getTree().push_back({k, ptree(v)}),
                        expected.tree.push_back({k, ptree(v)});
                break;
        }
        EXPECT_EQ(writer.empty(), expected.tree.empty());
    }

    void item(JSONListWriter& writer, ReferenceWriter& expected, int depth) {
        ReferenceWriter below;
        const std::string v = value();
        switch (dice_.roll(depth > 0 ? 7 : 2)) {
            case 0:
            case 1:
                writer.addItem(v);
                expected.addItem(v);
                break;
            case 2: {
                const Scripted sub(
                    [&](JSONObjectWriter& inner) { object(inner, below, depth - 1); });
                writer.addItem(&sub);
                expected.addItem(below.tree);
                break;
            }
            case 3: {
                JSONListWriter sub;
                list(sub, below, depth - 1);
                writer.addItem(sub);
                expected.addItem(below.tree);
                break;
            }
            case 4:
                writer.addObject([&](JSONObjectWriter& sub) { object(sub, below, depth - 1); });
                expected.addItem(below.tree);
                break;
            case 5:
                writer.addList([&](JSONListWriter& sub) { list(sub, below, depth - 1); });
                expected.addItem(below.tree);
                break;
            default:
                writer.addItem(v.size() > 3);
                expected.addItem(v.size() > 3 ? "true" : "false");
                break;
        }
    }

    Dice dice_;
};

}  // namespace

TEST(Writers, RandomMembersComeOutAsFromATree) {
    std::size_t expressible = 0;
    for (std::uint64_t seed = 0; seed < 6000; ++seed) {
        Twins twins(seed);
        JSONObjectWriter writer;
        ReferenceWriter expected;
        twins.object(writer, expected, 4);
        ASSERT_EQ(written(writer), reference(expected.tree)) << "seed " << seed;
        ASSERT_EQ(std::as_const(writer).getTree(), expected.tree) << "seed " << seed;
        expressible += written(writer)[0] == '{' ? 1U : 0U;

        JSONListWriter list;
        ReferenceWriter items;
        twins.list(list, items, 3);
        ASSERT_EQ(written(list), reference(items.tree)) << "seed " << seed;
        ASSERT_EQ(list.getTree(), items.tree) << "seed " << seed;
    }
    EXPECT_GT(expressible, 3000U);
    EXPECT_LT(expressible, 6000U);
}

TEST(Writers, EmptyWritersPrintAnEmptyObject) {
    EXPECT_EQ(JSONObjectWriter().text(), "{\n}\n");
    EXPECT_EQ(JSONListWriter().text(), "{\n}\n");
    EXPECT_TRUE(JSONObjectWriter().empty());
    JSONObjectWriter valueOnly;
    valueOnly.getTree().data() = "v";
    EXPECT_TRUE(valueOnly.empty());
}

TEST(Writers, AbsentDataLeavesNoTraceButScalarsDo) {
    const Scripted silent([](JSONObjectWriter& writer) { writer.addKey("x", ""); });
    const JSONSerializable* const none = nullptr;
    const char* const noText = nullptr;
    JSONObjectWriter writer;
    writer.addKey("string", std::string());
    writer.addKey("null text", noText);
    writer.addKey("null", none);
    writer.addKey("object", &silent);
    writer.addKey("texts", HSTVector<std::string>{"", ""});
    writer.addKey("writer", JSONListWriter());
    writer.addKey("tree", ptree("value only"));
    writer.addList("list", [](JSONListWriter& list) {
        list.addItem("");
        list.addObject([](JSONObjectWriter&) {});
    });
    writer.addObject("deep",
                     [](JSONObjectWriter& a) { a.addObject("b", [](JSONObjectWriter&) {}); });
    writer.writeObject(none);
    EXPECT_TRUE(writer.empty());
    EXPECT_EQ(writer.text(), "{\n}\n");

    writer.addKey("no", false);
    writer.addKey("zero", 0);
    writer.addKey("literal", "text, no bool");
    writer.addKey("lowest", LLONG_MIN);
    writer.addKey("highest", ULLONG_MAX);
    writer.addKey("byte", static_cast<unsigned char>(65));
    EXPECT_EQ(
        writer.text(),
        "{\n    \"no\": \"false\",\n    \"zero\": \"0\",\n    \"literal\": \"text, no bool\",\n"
        "    \"lowest\": \"-9223372036854775808\",\n    \"highest\": \"18446744073709551615\",\n"
        "    \"byte\": \"65\"\n}\n");
}

TEST(Writers, ScalarsReplaceInPlaceAndSubWritersAppend) {
    JSONObjectWriter writer;
    JSONObjectWriter sub;
    sub.addKey("m", "v");
    writer.addKey("k", "1");
    writer.addKey("other", "o");
    writer.addKey("k", 2);
    writer.addKey("list", HSTVector<std::string>{"a", "", "b"});
    writer.addKey("sub", sub);
    writer.addKey("sub", sub);
    writer.addKey("a.b", "x");
    EXPECT_EQ(writer.text(), R"({
    "k": "2",
    "other": "o",
    "list": [
        "a",
        "b"
    ],
    "sub": {
        "m": "v"
    },
    "sub": {
        "m": "v"
    },
    "a": {
        "b": "x"
    }
}
)");
    EXPECT_EQ(sub.text(), "{\n    \"m\": \"v\"\n}\n");
}

TEST(Writers, KeysWithEmptyPartsFollowThePathRules) {
    JSONObjectWriter ends;
    ends.addKey("a.", "new");
    ends.addKey("a.", "value of a itself");
    EXPECT_EQ(ends.getTree().get_child("a").data(), "value of a itself");
    EXPECT_EQ(ends.getTree().get_child("a").front().second.data(), "new");
    EXPECT_THROW(ends.text(), json_parser_error);

    JSONObjectWriter root;
    root.addKey("k", "v");
    root.addKey("", "the root's value");
    EXPECT_EQ(root.getTree().data(), "the root's value");
    EXPECT_EQ(written(root),
              "<unspecified file>: ptree contains data that cannot be represented in JSON format");
}

TEST(Writers, ValueOnASubTreeIsRefusedOnlyWhenPrinted) {
    JSONObjectWriter writer;
    writer.addObject("k", [](JSONObjectWriter& sub) { sub.addKey("m", "v"); });
    writer.addKey("k", "scalar over an object");
    writer.addKey("after", "x");
    EXPECT_THROW(writer.text(), json_parser_error);
    writer.getTree().get_child("k").clear();
    EXPECT_EQ(writer.text(), "{\n    \"k\": \"\",\n    \"after\": \"x\"\n}\n");
}

TEST(Writers, ManyKeysStayExact) {
    JSONObjectWriter writer;
    ReferenceWriter expected;
    for (int i = 0; i < 3000; ++i) {
        const std::string key = "key" + std::to_string(i);
        writer.addKey(key, i);
        expected.addKey(key, std::to_string(i));
    }
    EXPECT_EQ(writer.text(), boostText(expected.tree));
    for (const char* key : {"key0", "key63", "key64", "key65", "key2999"}) {
        writer.addKey(key, "again");
        expected.addKey(key, "again");
    }
    EXPECT_EQ(writer.text(), boostText(expected.tree));
}

TEST(Writers, EveryByteIsEscapedAsBoostEscapesIt) {
    for (const std::size_t padding : {0U, 3U, 6U, 15U, 16U, 40U, 5000U}) {
        JSONObjectWriter writer;
        ReferenceWriter expected;
        for (int c = 0; c < 256; ++c) {
            std::string text(padding, 'x');
            text.insert(padding / 2, 1, static_cast<char>(c));
            if (c == '.') continue;
            writer.addKey("k" + text, text + "y");
            expected.addKey("k" + text, text + "y");
        }
        EXPECT_EQ(writer.text(), boostText(expected.tree));
        EXPECT_EQ(writer.getTree(), expected.tree);
    }
    JSONObjectWriter large;
    large.addKey("k", std::string(100000, '\x01'));
    EXPECT_EQ(large.text().size(), 600000U + 16U);
}

TEST(Writers, AFailingFillLeavesNoTrace) {
    JSONObjectWriter writer;
    writer.addKey("before", "1");
    const Scripted failing([](JSONObjectWriter& sub) {
        sub.addKey("x", "1");
        sub.addList("y", [](JSONListWriter& list) {
            list.addItem("z");
            throw std::runtime_error("stop");
        });
    });
    EXPECT_THROW(writer.addKey("object", &failing), std::runtime_error);
    EXPECT_THROW(writer.addKey("dotted.object", &failing), std::runtime_error);
    EXPECT_THROW(writer.addList("l", [&](JSONListWriter& list) { list.addItem(&failing); }),
                 std::runtime_error);
    writer.addKey("object", "scalar");
    EXPECT_EQ(writer.text(), "{\n    \"before\": \"1\",\n    \"object\": \"scalar\"\n}\n");
    // Merged members stay, as they do in a tree.
    EXPECT_THROW(writer.writeObject(failing), std::runtime_error);
    EXPECT_EQ(writer.getTree().get<std::string>("x"), "1");
}

TEST(Writers, AParentTakesNothingWhileAChildIsOpen) {
    JSONObjectWriter writer;
    EXPECT_THROW(writer.addObject("child", [&](JSONObjectWriter&) { writer.addKey("k", "v"); }),
                 std::logic_error);
    EXPECT_THROW(writer.addList("child", [&](JSONListWriter&) { writer.text(); }),
                 std::logic_error);
    EXPECT_THROW(writer.addObject("", [&](JSONObjectWriter&) { writer.getTree(); }),
                 std::logic_error);
    writer.addKey("child", "free again");
    EXPECT_EQ(writer.text(), "{\n    \"child\": \"free again\"\n}\n");
}

TEST(Writers, AWriterCanBeAttachedToItself) {
    JSONObjectWriter writer;
    ReferenceWriter expected;
    for (int round = 0; round < 3; ++round) {
        writer.addKey("self", writer);
        writer.addKey("picture", std::as_const(writer).getTree());
        writer.addKey("k", round);
        const ptree copy = expected.tree;
        expected.addKey("self", copy);
        const ptree picture = expected.tree;
        expected.addKey("picture", picture);
        expected.addKey("k", std::to_string(round));
    }
    EXPECT_EQ(writer.text(), boostText(expected.tree));
}

TEST(Writers, NewTextHandsTheTextOverAndEmptiesTheWriter) {
    for (const std::size_t items : {0U, 3U, 40000U}) {
        JSONObjectWriter writer;
        writer.addList("items", [&](JSONListWriter& list) {
            for (std::size_t i = 0; i < items; ++i) list.addItem("a text of thirty characters ...");
        });
        const std::string text = writer.text();
        const std::unique_ptr<char[]> taken = writer.newText();
        EXPECT_EQ(taken.get(), text);
        EXPECT_TRUE(writer.empty());
        writer.addKey("items", "new");
        EXPECT_EQ(writer.text(), "{\n    \"items\": \"new\"\n}\n");
    }
    JSONListWriter list;
    list.addItem("x");
    EXPECT_STREQ(list.newText().get(), "{\n    \"\": \"x\"\n}\n");
    JSONObjectWriter tree;
    tree.getTree().put("a.b", "c");
    EXPECT_EQ(tree.newText().get(),
              std::string("{\n    \"a\": {\n        \"b\": \"c\"\n    }\n}\n"));
    EXPECT_TRUE(tree.empty());
}

TEST(Writers, DeepTreesArePrintedWithoutRecursion) {
    constexpr int DEPTH = 3000;
    ptree tree("leaf");
    for (int i = 0; i < DEPTH; ++i) {
        ptree outer;
        outer.push_back({"k", ptree()});
        outer.front().second.swap(tree);
        tree.swap(outer);
    }
    JSONObjectWriter writer;
    writer.addKey("deep", tree);
    const std::string text = writer.text();
    ptree whole;
    whole.add_child("deep", tree);
    EXPECT_TRUE(text == boostText(whole));
    EXPECT_TRUE(std::as_const(writer).getTree() == whole);
}

TEST(Writers, AFailingStreamIsReported) {
    JSONObjectWriter writer;
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    try {
        writer.write(out);
        FAIL();
    } catch (const json_parser_error& error) {
        EXPECT_STREQ(error.what(), "<unspecified file>: write error");
    }
}

TEST(Writers, ToJSONStringWritesTheObjectAlone) {
    const Scripted inner([](JSONObjectWriter& writer) { writer.addKey("k", "v"); });
    const Scripted outer([&](JSONObjectWriter& writer) {
        writer.writeObject(inner);
        writer.addKey("inner", &inner);
        EXPECT_EQ(writer.getOtherTree(std::as_const(writer)).size(), 2U);
    });
    EXPECT_EQ(outer.toJSONString(),
              "{\n    \"k\": \"v\",\n    \"inner\": {\n        \"k\": \"v\"\n    }\n}\n");
}
