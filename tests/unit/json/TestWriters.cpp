// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <climits>
#include <concepts>
#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "json/Document.h"
#include "mav_host/HI18N.h"
#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONObjectWriter.h"
#include "unit/json/JsonReference.h"

using mav_platform::JSONListWriter;
using mav_platform::JSONObjectWriter;
using mav_platform::JSONSerializable;
using mav_platform::JSONWriter;

namespace {

/// Text that is not UTF-8 is converted on its way in.
std::string utf8(const std::string& text) {
    return HI18N_convertToUTF8(text);
}
ptree utf8(const ptree& tree) {
    ptree made(utf8(tree.data()));
    for (const auto& [key, child] : tree) made.push_back({utf8(key), utf8(child)});
    return made;
}

/// The writers' rules on a plain property tree.
struct ReferenceWriter {
    ptree tree;

    void addKey(const std::string& key, const std::string& value) {
        if (!value.empty()) tree.put(utf8(key), utf8(value));
    }
    void addKey(const std::string& key, const ptree& sub) {
        // A path may not be empty, a key may.
        if (key.empty()) return addLiteral(key, sub);
        if (!sub.empty()) tree.add_child(utf8(key), utf8(sub));
    }
    void addKey(const std::string& key, std::same_as<bool> auto value) { addKey(key, word(value)); }
    void addKey(const std::string& key, long value) { addKey(key, std::to_string(value)); }
    void addKey(const std::string& key, const HSTVector<std::string>& values) {
        ReferenceWriter list;
        for (const std::string& value : values) list.addItem(value);
        addKey(key, list.tree);
    }
    void addLiteral(const std::string& key, const std::string& value) {
        if (!value.empty()) tree.push_back({utf8(key), ptree(utf8(value))});
    }
    void addLiteral(const std::string& key, const ptree& sub) {
        if (!sub.empty()) tree.push_back({utf8(key), utf8(sub)});
    }
    void addItem(std::same_as<bool> auto value) { addItem(word(value)); }
    static std::string word(bool value) { return value ? "true" : "false"; }
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
    return outcome([&] { return boostText(utf8(tree)); });
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
        static constexpr std::string_view KEYS[] = {
            // keys of one part
            "name", "type", "a", "b", "c", "d", "q\"k/\n", "somewhatLongerKeyName", "four",
            "interfaceDescription", "\x7F\xE9",
            // paths
            "a.b", "a.b.c", "x.y"};
        return std::string(dice_.pick(KEYS));
    }
    std::string value() {
        static constexpr std::string_view VALUES[] = {
            // what stays as it is
            "", "1", "value", "} , { : [", "exactly 16 bytes", "0x8000",
            // what is escaped or converted
            "a/b\\c\"d", "tab\tline\nbell\a", "caf\xC3\xA9 \xFF",
            "a longer text, with a / beyond the first block \x1F\x7F"};
        return std::string(dice_.pick(VALUES));
    }
    long number() { return static_cast<long>(dice_.roll(2000)) - 1000; }
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
        const auto both = [&](auto add) { add(writer), add(expected); };
        ReferenceWriter below;
        JSONObjectWriter subObj;
        JSONListWriter subList;
        const auto fillObject = [&](JSONObjectWriter& sub) { object(sub, below, depth - 1); };
        const auto fillList = [&](JSONListWriter& sub) { list(sub, below, depth - 1); };
        const Scripted scripted(fillObject);
        const std::function<void()> flat[] = {
            [&] { both([&, n = number()](auto& to) { to.addKey(k, n); }); },
            [&] { both([&](auto& to) { to.addKey(k, v.size() > 3); }); },
            [&] { both([&](auto& to) { to.addLiteral(k, v); }); },
            [&] { both([&](auto& to) { to.addKey(k, v); }); },
        };
        const std::function<void()> nested[] = {
            [&] { both([&](auto& to) {
                      to.addKey(k, HSTVector<std::string>{v, "", k});
                  }); },
            [&] { both([&, sub = tree(2)](auto& to) { to.addKey(k, sub); }); },
            [&] { writer.addKey(k, &scripted), expected.addKey(k, below.tree); },
            [&] { fillObject(subObj), writer.addKey(k, subObj), expected.addKey(k, below.tree); },
            [&] { fillList(subList), writer.addKey(k, subList), expected.addKey(k, below.tree); },
            [&] { writer.addList(k, fillList), expected.addLiteral(k, below.tree); },
            [&] { writer.addObject(k, fillObject), expected.addLiteral(k, below.tree); },
            [&] {
                EXPECT_EQ(std::as_const(writer).getTree(), expected.tree);
                if (dice_.roll(3) != 0) return;
                writer.getTree().push_back({k, ptree(v)}), expected.tree.push_back({k, ptree(v)});
            },
        };
        depth > 0 && dice_.roll(3) > 0 ? dice_.pick(nested)() : dice_.pick(flat)();
        EXPECT_EQ(writer.empty(), expected.tree.empty());
    }

    void item(JSONListWriter& writer, ReferenceWriter& expected, int depth) {
        const std::string v = value();
        const auto both = [&](auto add) { add(writer), add(expected); };
        ReferenceWriter below;
        JSONListWriter subList;
        const auto fillObject = [&](JSONObjectWriter& sub) { object(sub, below, depth - 1); };
        const auto fillList = [&](JSONListWriter& sub) { list(sub, below, depth - 1); };
        const Scripted scripted(fillObject);
        const std::function<void()> ways[] = {
            [&] { both([&](auto& to) { to.addItem(v); }); },
            [&] { both([&](auto& to) { to.addItem(v.size() > 3); }); },
            [&] { writer.addItem(&scripted), expected.addItem(below.tree); },
            [&] { fillList(subList), writer.addItem(subList), expected.addItem(below.tree); },
            [&] { writer.addObject(fillObject), expected.addItem(below.tree); },
            [&] { writer.addList(fillList), expected.addItem(below.tree); },
        };
        ways[dice_.roll(depth > 0 ? std::size(ways) : 2)]();
    }

    Dice dice_;
};

}  // namespace

TEST(Writers, RandomMembersComeOutAsFromATree) {
    std::size_t expressible = 0;
    std::size_t compact = 0;
    for (std::uint64_t seed = 0; seed < 600; ++seed) {
        Twins twins(seed);
        JSONObjectWriter writer;
        ReferenceWriter expected;
        twins.object(writer, expected, 4);
        ASSERT_EQ(written(writer), reference(expected.tree)) << "seed " << seed;
        ASSERT_EQ(std::as_const(writer).getTree(), expected.tree) << "seed " << seed;
        expressible += written(writer)[0] == '{' ? 1U : 0U;

        const Scripted same([seed](JSONObjectWriter& again) {
            ReferenceWriter unused;
            Twins(seed).object(again, unused, 4);
        });
        if (const auto document = mav_platform::json::compactDocument(same)) {
            ASSERT_EQ(document->tree(), expected.tree) << "seed " << seed;
            ++compact;
        }

        JSONListWriter list;
        ReferenceWriter items;
        twins.list(list, items, 3);
        ASSERT_EQ(written(list), reference(items.tree)) << "seed " << seed;
        ASSERT_EQ(list.getTree(), items.tree) << "seed " << seed;
    }
    EXPECT_GT(compact, 50U);
    EXPECT_GT(expressible, 300U);
    EXPECT_LT(expressible, 600U);
}

TEST(Writers, AbsentDataLeavesNoTraceButScalarsDo) {
    JSONObjectWriter writer;
    writer.addObject("deep",
                     [](JSONObjectWriter& a) { a.addObject("b", [](JSONObjectWriter&) {}); });
    writer.writeObject(static_cast<const JSONSerializable*>(nullptr));
    writer.addKey("null", static_cast<const char*>(nullptr));
    writer.getTree().data() = "v";
    EXPECT_TRUE(writer.empty()) << "a value alone is no member";
    writer.getTree().data().clear();
    EXPECT_EQ(writer.text(), "{\n}\n");

    writer.addKey("literal", "text, no bool");
    writer.addKey("lowest", LLONG_MIN);
    writer.addKey("highest", ULLONG_MAX);
    writer.addKey("byte", static_cast<unsigned char>(65));
    EXPECT_EQ(
        writer.text(),
        "{\n    \"literal\": \"text, no bool\",\n"
        "    \"lowest\": \"-9223372036854775808\",\n    \"highest\": \"18446744073709551615\",\n"
        "    \"byte\": \"65\"\n}\n");
}

TEST(Writers, ValueOnASubTreeIsRefusedOnlyWhenPrinted) {
    JSONObjectWriter writer;
    writer.addObject("k", [](JSONObjectWriter& sub) { sub.addKey("m", "v"); });
    writer.addKey("k", "scalar over an object");
    writer.addKey("after", "x");
    EXPECT_THROW(writer.text(), json_parser_error);
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    const ptree& tree = std::as_const(writer).getTree();
    EXPECT_EQ(&tree, &writer.getTree());
    EXPECT_EQ(&writer.getOtherTree(std::as_const(writer)), &tree);
    writer.getTree().get_child("k").clear();
    EXPECT_EQ(outcome([&] { return writer.write(out), std::string(); }),
              "<unspecified file>: write error");
    writer.addKey("late", "y");
    EXPECT_EQ(tree.get("late", ""), "y") << "what was handed out shows what comes later";
    EXPECT_EQ(writer.text(),
              "{\n    \"k\": \"\",\n    \"after\": \"x\",\n    \"late\": \"y\"\n}\n");
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
    JSONObjectWriter raw;
    raw.getTree().put("k\xe4.s", "\xe9");
    EXPECT_EQ(raw.text(), "{\n    \"k\u00e4\": {\n        \"s\": \"\u00e9\"\n    }\n}\n");
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
    EXPECT_THROW(writer.addList("l", [&](JSONListWriter& list) { list.addItem(&failing); }),
                 std::runtime_error);
    writer.addKey("object", "scalar");
    EXPECT_EQ(writer.text(), "{\n    \"before\": \"1\",\n    \"object\": \"scalar\"\n}\n");
    // Merged members stay, as they do in a tree.
    EXPECT_THROW(writer.writeObject(failing), std::runtime_error);
    EXPECT_EQ(writer.getTree().get<std::string>("x"), "1");
}

TEST(Writers, AParentIsAskedAndWrittenWhileChildrenAreOpen) {
    for (const char* key : {"child", "dotted.child", ""}) {
        JSONObjectWriter writer;
        ReferenceWriter expected;
        ReferenceWriter child;
        ReferenceWriter list;
        const Scripted open([&](JSONObjectWriter& inner) {
            inner.addKey("a", "1"), child.addKey("a", "1");
            inner.addList("l", [&](JSONListWriter& items) {
                items.addItem("x"), list.addItem("x");
                EXPECT_EQ(written(writer), reference(expected.tree));
                writer.addKey("k", "meanwhile"), expected.addKey("k", "meanwhile");
                writer.addKey("kept", inner), expected.addKey("kept", child.tree);
                items.addItem("y"), list.addItem("y");
            });
            child.addKey("l", list.tree);
            inner.addKey("a", "2"), child.addKey("a", "2");
            EXPECT_EQ(std::as_const(writer).getTree(), expected.tree);
        });
        writer.addKey("before", "b"), expected.addKey("before", "b");
        writer.addKey(key, &open);
        expected.addKey(key, child.tree);
        writer.addKey("k", "after"), expected.addKey("k", "after");
        EXPECT_EQ(written(writer), reference(expected.tree)) << key;
    }
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
