// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "mav_host/HEXError.h"
#include "mav_host/xml/Binding.h"
#include "support/Doubles.h"
#include "support/PlainXml.h"

namespace {

namespace xml = mav_host::xml;
using xml::BindingError;
using xml::Need;

struct Port {
    std::string name;
    std::optional<std::uint8_t> lane;
    std::string text;
    std::size_t line = 0;
    std::size_t order = 0;
};

struct Part {
    xml::Decimal version;
    std::optional<std::int32_t> offset;
    std::uint64_t size = 0;
    bool locked = false;
    std::optional<std::string> note;
    std::vector<std::string> tags;
    std::vector<Port> ports;
    std::vector<Port> pins;
    std::optional<Port> main;
    std::optional<Port> spare;
};

xml::Format<Part> partFormat(const xml::Limits& limits = {}) {
    xml::Items<Port> port;
    port.attribute("q:name", &Port::name, Need::Required)
        .attribute("q:lane", &Port::lane)
        .text(&Port::text)
        .line(&Port::line)
        .order(&Port::order);
    xml::Items<Part> part;
    part.attribute("q:version", &Part::version, Need::Required)
        .attribute("q:offset", &Part::offset)
        .attribute("q:size", &Part::size)
        .attribute("q:locked", &Part::locked)
        .either("q:note", &Part::note)
        .element("q:tag", &Part::tags)
        .element("q:port", &Part::ports, port)
        .element("q:pin", &Part::pins, port)
        .element("q:main", &Part::main, port)
        .element("q:spare", &Part::spare, port);
    return {"q:part", part, xml::Names::AsWritten, limits};
}

Part read(const std::string& text) {
    return partFormat().parseText(text);
}

/// The refusal as "LINE: TEXT"; "bound" when `parse` was not refused.
template <class Parse>
std::string outcome(const Parse& parse) {
    try {
        parse();
    } catch (const BindingError& error) {
        return std::to_string(error.line()) + ": " + error.what();
    }
    return "bound";
}
template <class T>
std::string refusal(const xml::Format<T>& format, const std::string& text) {
    return outcome([&] { format.parseText(text); });
}
std::string refusalOfFile(const std::string& path, const xml::Limits& limits = {}) {
    return outcome([&] { partFormat(limits).parseFile(path); });
}

std::string nested(std::size_t depth) {
    std::string text = "<q:part q:version='1'>";
    for (std::size_t i = 1; i < depth; ++i) text += "<x>";
    for (std::size_t i = 1; i < depth; ++i) text += "</x>";
    return text + "</q:part>";
}

TEST(XmlBinding, FillsTheStructsInDocumentOrder) {
    const Part part = read(R"(<?xml version="1.0" encoding="UTF-8"?>
<q:part q:version=" 2.10 " q:offset="-7" q:size="18446744073709551615" q:locked="true">
  <q:tag> a </q:tag>
  <q:port q:name="p0" q:lane="255">one<x>skipped</x> &amp; <![CDATA[<two>]]></q:port>
  <q:pin q:name="n"/>
  <q:tag/>
  <q:port q:name="p&#233;"/>
  <q:main q:name=" m "/>
</q:part>)");
    EXPECT_EQ(part.version.text, "2.10");
    EXPECT_EQ(part.offset, -7);
    EXPECT_EQ(part.size, UINT64_MAX);
    EXPECT_TRUE(part.locked);
    EXPECT_FALSE(part.note || part.spare);
    EXPECT_EQ(part.tags, (std::vector<std::string>{" a ", ""}));
    ASSERT_EQ(part.ports.size(), 2U);
    EXPECT_EQ(part.ports[0].lane, 255);
    EXPECT_EQ(part.ports[0].text, "one & <two>");
    EXPECT_EQ(part.ports[0].line, 4U);
    EXPECT_EQ(part.ports[1].name, "p\xC3\xA9");
    EXPECT_FALSE(part.ports[1].lane.has_value());
    ASSERT_EQ(part.pins.size(), 1U);
    EXPECT_LT(part.ports[0].order, part.pins[0].order);
    EXPECT_LT(part.pins[0].order, part.ports[1].order);
    ASSERT_TRUE(part.main.has_value());
    EXPECT_EQ(part.main->name, " m ");

    EXPECT_EQ(read("<q:part q:version='1' q:note=''/>").note, "");
    EXPECT_EQ(read("<q:part q:version='1'><q:note>b</q:note></q:part>").note, "b");
    EXPECT_EQ(read("<q:part q:version='1' q:offset=' +2147483647 '/>").offset, 2147483647);
    EXPECT_EQ(read("<q:part q:version='1' q:offset='-2147483648'/>").offset, INT32_MIN);
    EXPECT_EQ(read("<q:part q:version='1' q:size='&#9;+010&#10;'/>").size, 10U);
    EXPECT_FALSE(read("<q:part q:version='1' q:locked='0'/>").locked);
    for (const std::string good : {"1", "1.", ".5", "+1.50", "-0.0", "00012", "1.2000"}) {
        EXPECT_EQ(read("<q:part q:version='" + good + "'/>").version.text, good);
    }
}

TEST(XmlBinding, RefusesValuesOutsideTheirTypes) {
    const struct {
        const char* attribute;
        std::vector<std::string> values;
        std::string wanted;
    } rows[] = {
        {"q:version",
         {"", " ", ".", "-.", "1e5", "0x1", "1.2.3", "1 2", "++1", "1,5"},
         "a decimal number"},
        {"q:offset",
         {"", "2147483648", "-2147483649", "99999999999999999999", "1.0", "0x10", "+-1", "12a"},
         "an integer from -2147483648 to 2147483647"},
        {"q:size",
         {"-1", "-0", "18446744073709551616", "++1"},
         "an integer from 0 to 18446744073709551615"},
        {"q:locked", {"True"}, "a boolean (true, false, 1 or 0)"},
    };
    const auto refusalOf = [](const std::string& attribute, const std::string& value) {
        const bool isVersion = attribute == "q:version";
        return refusal(partFormat(), std::string("<q:part ") + (isVersion ? "" : "q:version='1' ") +
                                         attribute + "='" + value + "'/>");
    };
    const auto text = [](const std::string& attribute, const std::string& shown,
                         const std::string& wanted) {
        return "1: attribute '" + attribute + "' of element 'q:part': '" + shown + "' is not " +
               wanted;
    };
    for (const auto& row : rows) {
        for (const std::string& value : row.values) {
            EXPECT_EQ(refusalOf(row.attribute, value), text(row.attribute, value, row.wanted));
        }
    }
    // Shown on one line and short: 79 bytes and a character of two, the cut falls before it.
    const std::string long79(79, 'z');
    EXPECT_EQ(refusalOf("q:size", "a&#10;b&#13;"), text("q:size", "a\\x0Ab\\x0D", rows[2].wanted));
    EXPECT_EQ(refusalOf("q:size", long79 + "\xC3\xA9 and more"),
              text("q:size", long79 + "...", rows[2].wanted));
}

TEST(XmlBinding, RefusesDocumentsWithLineAndReason) {
    const std::string start = "<q:part q:version='1'>";
    const std::string root = start + "&a;</q:part>";
    const std::string token = "1: XML syntax error: not well-formed (invalid token)";
    const std::string type = "a document type declaration (DOCTYPE) is not allowed";
    const std::string deep = "1: element 'x': nested deeper than 256 elements";
    const std::pair<std::string, std::string> rows[] = {
        // Names and occurrences; an undeclared prefix and any declared namespace are accepted.
        {"<q:part q:version='1' xmlns:q='urn:other'/>", "bound"},
        {"<part q:version='1'/>", "1: element 'part': the root element must be 'q:part'"},
        {start + "<q:main q:name='a'/>\n\n<q:main q:name='b'/></q:part>",
         "3: element 'q:part': element 'q:main' occurs a second time"},
        {"\n<q:part/>", "2: element 'q:part': required attribute 'q:version' is missing"},
        {start + "\n<q:port\n/></q:part>",
         "2: element 'q:port': required attribute 'q:name' is missing"},
        // Syntax.
        {"", "1: XML syntax error: no element found"},
        {start + "\n</q:port>", "2: XML syntax error: mismatched tag"},
        {start + "\xC0\x80</q:part>", token},
        // No document type of any kind.
        {"\n<!DOCTYPE q:part SYSTEM 'file:///etc/passwd'>" + root, "2: " + type},
        {"<!DOCTYPE q:part [\n<!ENTITY a 'x'>\n<!ENTITY b '&a;&a;'>]>" + root, "1: " + type},
        {"<!DOCTYPE q:part [<!ENTITY % p SYSTEM 'http://localhost/p'> %p;]>" + root, "1: " + type},
        {nested(256), "bound"},
        {nested(257), deep},
    };
    for (const auto& [text, refused] : rows) {
        EXPECT_EQ(refusal(partFormat(), text), refused) << text.substr(0, 100);
    }
    try {
        read(start + "\n  <</q:part>");
        FAIL() << "bound";
    } catch (const BindingError& error) {
        EXPECT_EQ(error.line(), 2U);
        EXPECT_EQ(error.column(), 4U);
    }

    xml::Limits limits;
    limits.bytes = 60;
    limits.elements = 3;
    const xml::Format<Part> limited = partFormat(limits);
    EXPECT_EQ(refusal(limited, start + "<q:tag/><q:tag/></q:part>"), "bound");
    EXPECT_EQ(refusal(limited, start + "<q:tag/><q:tag/>\n<q:tag/></q:part>"),
              "2: element 'q:tag': the document has more than 3 elements");
    EXPECT_EQ(refusal(limited, start + std::string(100, ' ') + "</q:part>"),
              "0: the document is larger than 60 bytes");
}

// Beside the rows each beginning of one, and each with one byte changed or put in.
TEST(XmlBinding, PlainDocumentsAreReadAsTheParserReadsThem) {
    using plain_xml::Way;
    const std::string many = [] {
        std::string text = "<a";
        for (int i = 0; i < 64; ++i) text += " a" + std::to_string(i) + "=''";
        return text;
    }();
    const std::pair<std::string, bool> rows[] = {
        {"<a/>", true},
        {"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\n<a/>\n", true},
        {"<!-- c -->\n<a:b c.d=\"x 'y'\"\n\t_e-1='\"z\"' >\n t<b /> ]] u\n</a:b >\n<!--->--> ",
         true},
        {"<a>" + nested(255) + "</a>", true},
        {nested(257), false},
        {many + "/>", true},
        {many + " z=''/>", false},
        {"<a b='\n'/>", false},
        {"<a b = ''/>", false},
        {"<a>&amp;</a>", false},
        {"<a>\r\n</a>", false},
        {"<a>\xC3\xA4</a>", false},
        {"<a><![CDATA[b]]></a>", false},
        {"<a b='1' b='1'/>", false},
        {"<a></b>", false},
        {"<a/><b/>", false},
        {"<a/>text", false},
        {"<!-- c -- c --><a/>", false},
    };
    for (const auto& [text, plain] : rows) {
        EXPECT_EQ(plain_xml::compare(text), plain ? Way::SAME : Way::LEFT_TO_THE_PARSER) << text;
        for (std::size_t at = 0; at < std::min<std::size_t>(text.size(), 200); ++at) {
            EXPECT_NE(plain_xml::compare(text.substr(0, at)), Way::DIFFERENT) << text << at;
            for (const char c : {'<', '>', '/', '"', '-', '=', 'a', ' ', '\n', ']', '&', '\0'}) {
                std::string changed = text;
                changed[at] = c;
                EXPECT_NE(plain_xml::compare(changed), Way::DIFFERENT) << changed;
                changed = text;
                changed.insert(at, 1, c);
                EXPECT_NE(plain_xml::compare(changed), Way::DIFFERENT) << changed;
            }
        }
    }
}

TEST(XmlBinding, NamesRequiredElementsAndTexts) {
    xml::Items<Part> items;
    items.element("tag", &Part::tags, Need::Required).either("note", &Part::note, Need::Required);
    const xml::Format<Part> format("part", items);
    EXPECT_EQ(refusal(format, "<part note='n'/>"),
              "1: element 'part': required element 'tag' is missing");
    EXPECT_EQ(refusal(format, "<part>\n<tag/></part>"),
              "1: element 'part': required attribute or element 'note' is missing");
    EXPECT_EQ(refusal(format, "<part><tag/><note/></part>"), "bound");

    xml::Items<Port> port;
    port.text(&Port::lane, Need::Required);
    const xml::Format<Port> texts("port", port);
    EXPECT_EQ(texts.parseText("<port> 12\n</port>").lane, 12);
    EXPECT_EQ(refusal(texts, "<port/>"), "1: element 'port': its text is missing");
    EXPECT_EQ(refusal(texts, "<port>256</port>"),
              "1: element 'port': '256' is not an integer from 0 to 255");
}

TEST(XmlBinding, MatchesNamesWithoutTheirPrefixesOnRequest) {
    xml::Items<Part> items;
    items.attribute("version", &Part::version, Need::Required).element("tag", &Part::tags);
    const xml::Format<Part> format("", items, xml::Names::WithoutPrefix);
    const Part part = format.parseText(
        "<a:any xmlns:version='u' b:version='3'><tag>x</tag><c:tag>y</c:tag></a:any>");
    EXPECT_EQ(part.version.text, "3");
    EXPECT_EQ(part.tags, (std::vector<std::string>{"x", "y"}));
    EXPECT_EQ(refusal(format, "<any version='1' a:version='2'/>"),
              "1: element 'any': attribute 'a:version' occurs a second time");
}

TEST(XmlBinding, HoldsExactlyOneAlternativeOfAChoice) {
    xml::Items<Port> port;
    xml::Items<Part> items;
    items.element("main", &Part::main, port)
        .element("spare", &Part::spare, port)
        .element("port", &Part::ports, port)
        .element("tag", &Part::tags)
        .choice({{"main", "spare?"}, {"spare"}, {"port"}});
    const xml::Format<Part> format("part", items);
    const std::string allowed = "'main' and optionally 'spare', or 'spare', or 'port'";
    const std::pair<std::string, std::string> rows[] = {
        {"<main/>", "bound"},
        {"<main/><spare/>", "bound"},
        {"<spare/><tag/><main/>", "bound"},
        {"<spare/>", "bound"},
        {"<port/><tag/><port/>", "bound"},
        {"\n<tag/>", "1: element 'part': it must hold " + allowed},
        {"\n<spare/>\n<port/>",
         "3: element 'part': element 'port' does not go with the elements before it; allowed is " +
             allowed},
    };
    for (const auto& [content, refused] : rows) {
        EXPECT_EQ(refusal(format, "<part>" + content + "</part>"), refused) << content;
    }
    EXPECT_THROW(items.choice({{"main"}}), HEXAlgException);
    EXPECT_THROW(xml::Items<Part>().choice({{"main"}}), HEXAlgException);
    EXPECT_THROW(items.element("tag", &Part::tags), HEXAlgException);
}

TEST(XmlBinding, CollectsWhatTheFormatDoesNotKnow) {
    xml::Findings findings;
    const Part part = partFormat().parseText(R"(<q:part q:version="1" version="2" xmlns:q="u"
 xsi:schemaLocation="s" xml:lang="en">
<q:new q:a="1"><q:tag>inside</q:tag><q:newer/></q:new>
<q:tag q:b="1">t<i/></q:tag></q:part>)",
                                             &findings);
    EXPECT_EQ(part.tags, std::vector<std::string>{"t"});
    std::string found;
    for (const xml::Finding& f : findings.list) {
        const bool isElement = f.kind == xml::Finding::Kind::Element;
        found += std::to_string(f.line) + (isElement ? " element " : " attribute ") + f.name +
                 " in " + f.parent + "\n";
    }
    EXPECT_EQ(found,
              "1 attribute version in q:part\n3 element q:new in q:part\n"
              "4 attribute q:b in q:tag\n4 element i in q:tag\n");
    EXPECT_EQ(findings.more, 0U);

    std::string many = "<q:part q:version='1'>";
    for (std::size_t i = 0; i < xml::Findings::LIMIT + 5; ++i) many += "<x/>";
    findings = {};
    partFormat().parseText(many + "</q:part>", &findings);
    EXPECT_EQ(findings.list.size(), xml::Findings::LIMIT);
    EXPECT_EQ(findings.more, 5U);
}

TEST(XmlBinding, EveryFaultIsKeptOnRequestAndTheRestIsBound) {
    xml::Findings findings;
    findings.keepFaults = true;
    const Part part = partFormat().parseText(
        "<q:part q:version='x' q:size='3'>\n"
        "<q:note>n</q:note><q:note>again</q:note>\n"
        "<q:port q:lane='999'/>\n"
        " <q:port q:name='p' q:lane='7' z='1'/></q:part>",
        &findings);
    std::string faults;
    for (const xml::Fault& fault : findings.faults) {
        faults += std::to_string(fault.line) + ":" + std::to_string(fault.column) + " " +
                  fault.text + "\n";
    }
    EXPECT_EQ(faults,
              "1:1 attribute 'q:version' of element 'q:part': 'x' is not a decimal number\n"
              "2:19 element 'q:part': element 'q:note' occurs a second time\n"
              "3:1 attribute 'q:lane' of element 'q:port': '999' is not an integer from 0 to 255\n"
              "3:1 element 'q:port': required attribute 'q:name' is missing\n");
    EXPECT_EQ(part.size, 3U);
    EXPECT_EQ(part.note, "n") << "the first one counts";
    ASSERT_EQ(part.ports.size(), 2U);
    EXPECT_EQ(part.ports[1].lane, 7);
    ASSERT_EQ(findings.list.size(), 1U);
    EXPECT_EQ(findings.list[0].column, 2U);
    EXPECT_THROW(partFormat().parseText("<q:part>", &findings), BindingError);
    EXPECT_THROW(partFormat().parseText("<q:other/>", &findings), BindingError);
}

TEST(XmlBinding, ReadsFilesPieceByPiece) {
    // One attribute, one text and one comment that each span many pieces of a file.
    const std::string large(3'000'000, 'v');
    const TempDir dir;
    const Part file = partFormat().parseFile(
        dir.write("part.xml", "<q:part q:version='1' q:note='" + large + "'><!--" + large +
                                  "--><q:tag>" + large + "</q:tag>\n<q:pin q:name='e'/></q:part>"));
    EXPECT_EQ(file.note, large);
    EXPECT_EQ(file.tags, std::vector<std::string>{large});
    ASSERT_EQ(file.pins.size(), 1U);
    EXPECT_EQ(file.pins[0].line, 2U);
}

TEST(XmlBinding, RefusesFilesThatCannotBeRead) {
    const TempDir dir;
    const std::string start = "<q:part q:version='1'>\n";
    const std::pair<std::string, std::string> rows[] = {
        {dir.path(), "0: the path is a directory, not a regular file; give the path of one"},
        {"/dev/null", "0: the path is a device, not a regular file; give the path of one"},
        {dir.path("absent"), "0: the file cannot be opened: No such file or directory"},
        {dir.write("cut", start), "2: XML syntax error: no element found"},
        // Opens, but nothing is mapped where reading begins.
        {"/proc/self/mem", "0: the file cannot be read: Input/output error"},
    };
    for (const auto& [path, refused] : rows) EXPECT_EQ(refusalOfFile(path), refused) << path;
    xml::Limits limits;
    limits.bytes = 100'000;
    EXPECT_EQ(refusalOfFile(dir.write("large", start + std::string(200'000, ' ')), limits),
              "0: the document is larger than 100000 bytes");
}

}  // namespace
