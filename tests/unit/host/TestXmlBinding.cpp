// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "mav_host/HEXError.h"
#include "mav_host/xml/Binding.h"
#include "support/Doubles.h"

namespace xml = mav_host::xml;
using xml::BindingError;
using xml::Need;

namespace {

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

const xml::Items<Part>& partItems() {
    static const xml::Items<Part> items = [] {
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
        return part;
    }();
    return items;
}

const xml::Format<Part>& partFormat() {
    static const xml::Format<Part> format("q:part", partItems());
    return format;
}

Part read(const std::string& text) {
    return partFormat().parseText(text);
}

/// The refusal of a document as "LINE: TEXT"; "bound" when it was not refused.
template <class T>
std::string refusal(const xml::Format<T>& format, const std::string& text) {
    try {
        format.parseText(text);
    } catch (const BindingError& error) {
        return std::to_string(error.line()) + ": " + error.what();
    }
    return "bound";
}
std::string refusal(const std::string& text) {
    return refusal(partFormat(), text);
}
std::string refusalOfAttribute(const std::string& attribute) {
    return refusal("<q:part q:version='1' " + attribute + "/>");
}

std::string nested(std::size_t depth) {
    std::string text = "<q:part q:version='1'>";
    for (std::size_t i = 1; i < depth; ++i) text += "<x>";
    for (std::size_t i = 1; i < depth; ++i) text += "</x>";
    return text + "</q:part>";
}

}  // namespace

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
    EXPECT_FALSE(part.note.has_value());
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
    EXPECT_FALSE(part.spare.has_value());
}

TEST(XmlBinding, AcceptsAnItemAsAttributeOrAsElementButNotTwice) {
    EXPECT_EQ(read("<q:part q:version='1' q:note='a'/>").note, "a");
    EXPECT_EQ(read("<q:part q:version='1'><q:note>b</q:note></q:part>").note, "b");
    EXPECT_EQ(read("<q:part q:version='1' q:note=''/>").note, "");
    EXPECT_EQ(refusal("<q:part q:version='1' q:note='a'>\n<q:note>b</q:note></q:part>"),
              "2: element 'q:part': element 'q:note' occurs a second time");
    EXPECT_EQ(
        refusal("<q:part q:version='1'><q:main q:name='a'/>\n\n<q:main q:name='b'/></q:part>"),
        "3: element 'q:part': element 'q:main' occurs a second time");
}

TEST(XmlBinding, NamesWhatIsMissing) {
    EXPECT_EQ(refusal("\n<q:part/>"),
              "2: element 'q:part': required attribute 'q:version' is missing");
    EXPECT_EQ(refusal("<q:part version='1'/>"),
              "1: element 'q:part': required attribute 'q:version' is missing");
    EXPECT_EQ(refusal("<q:part q:version='1'>\n<q:port\n/></q:part>"),
              "2: element 'q:port': required attribute 'q:name' is missing");

    xml::Items<Part> items;
    items.element("tag", &Part::tags, Need::Required);
    items.either("note", &Part::note, Need::Required);
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

TEST(XmlBinding, ConvertsDecimalsAndKeepsThemAsWritten) {
    for (const char* good : {"1", "1.", ".5", "+1.50", "-0.0", "00012", "1.2000"}) {
        SCOPED_TRACE(good);
        EXPECT_EQ(read(std::string("<q:part q:version='") + good + "'/>").version.text, good);
    }
    for (const char* bad :
         {"", " ", ".", "+", "-.", "1e5", "0x1", "1.2.3", "1 2", "++1", "INF", "1,5"}) {
        SCOPED_TRACE(bad);
        EXPECT_EQ(refusal(std::string("<q:part q:version='") + bad + "'/>"),
                  "1: attribute 'q:version' of element 'q:part': '" + std::string(bad) +
                      "' is not a decimal number");
    }
}

TEST(XmlBinding, ConvertsIntegersWithinTheirRange) {
    EXPECT_EQ(read("<q:part q:version='1' q:offset=' +2147483647 '/>").offset, 2147483647);
    EXPECT_EQ(read("<q:part q:version='1' q:offset='-2147483648'/>").offset, INT32_MIN);
    EXPECT_EQ(read("<q:part q:version='1' q:size='&#9;+010&#10;'/>").size, 10U);
    for (const char* bad : {"", "2147483648", "-2147483649", "99999999999999999999", "1.0", "0x10",
                            "+-1", "+", "- 1", "12a"}) {
        SCOPED_TRACE(bad);
        EXPECT_EQ(refusalOfAttribute(std::string("q:offset='") + bad + "'"),
                  "1: attribute 'q:offset' of element 'q:part': '" + std::string(bad) +
                      "' is not an integer from -2147483648 to 2147483647");
    }
    for (const char* bad : {"-1", "-0", "18446744073709551616", "++1"}) {
        SCOPED_TRACE(bad);
        EXPECT_EQ(refusalOfAttribute(std::string("q:size='") + bad + "'"),
                  "1: attribute 'q:size' of element 'q:part': '" + std::string(bad) +
                      "' is not an integer from 0 to 18446744073709551615");
    }
    EXPECT_FALSE(read("<q:part q:version='1' q:locked='0'/>").locked);
    EXPECT_EQ(
        refusalOfAttribute("q:locked='True'"),
        "1: attribute 'q:locked' of element 'q:part': 'True' is not a boolean (true, false, 1 "
        "or 0)");
}

TEST(XmlBinding, MatchesNamesAsWrittenUnlessPrefixesAreIgnored) {
    EXPECT_EQ(refusal("<part q:version='1'/>"),
              "1: element 'part': the root element must be 'q:part'");
    // An undeclared prefix and any declared namespace are accepted.
    EXPECT_EQ(refusal("<q:part q:version='1' xmlns:q='urn:other'/>"), "bound");

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
    for (const char* good : {"<main/>", "<main/><spare/>", "<spare/><tag/><main/>", "<spare/>",
                             "<port/><tag/><port/>"})
        EXPECT_EQ(refusal(format, std::string("<part>") + good + "</part>"), "bound") << good;
    const std::string allowed = "'main' and optionally 'spare', or 'spare', or 'port'";
    EXPECT_EQ(refusal(format, "<part>\n<tag/></part>"),
              "1: element 'part': it must hold " + allowed);
    EXPECT_EQ(refusal(format, "<part>\n<spare/>\n<port/></part>"),
              "3: element 'part': element 'port' does not go with the elements before it; allowed "
              "is " +
                  allowed);
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
    std::vector<std::string> found;
    for (const xml::Finding& f : findings.list)
        found.push_back(std::to_string(f.line) +
                        (f.kind == xml::Finding::Kind::Element ? " element " : " attribute ") +
                        f.name + " in " + f.parent);
    EXPECT_EQ(found, (std::vector<std::string>{
                         "1 attribute version in q:part", "3 element q:new in q:part",
                         "4 attribute q:b in q:tag", "4 element i in q:tag"}));
    EXPECT_EQ(findings.more, 0U);

    std::string many = "<q:part q:version='1'>";
    for (std::size_t i = 0; i < xml::Findings::LIMIT + 5; ++i) many += "<x/>";
    findings = {};
    partFormat().parseText(many + "</q:part>", &findings);
    EXPECT_EQ(findings.list.size(), xml::Findings::LIMIT);
    EXPECT_EQ(findings.more, 5U);
}

TEST(XmlBinding, RefusesWhatIsNotWellFormed) {
    const std::string start = "<q:part q:version='1'>";
    EXPECT_EQ(refusal(""), "1: XML syntax error: no element found");
    EXPECT_EQ(refusal(start + "\n</q:port>"), "2: XML syntax error: mismatched tag");
    EXPECT_EQ(refusal(start), "1: XML syntax error: no element found");
    EXPECT_EQ(refusal(start + "</q:part><q:part/>"),
              "1: XML syntax error: junk after document element");
    EXPECT_EQ(refusal("<q:part q:version='1' q:version='1'/>"),
              "1: XML syntax error: duplicate attribute");
    EXPECT_EQ(refusal(start + "&undeclared;</q:part>"), "1: XML syntax error: undefined entity");
    EXPECT_EQ(refusal(start + std::string("a\0b", 3) + "</q:part>"),
              "1: XML syntax error: not well-formed (invalid token)");
    EXPECT_EQ(refusal(start + "\xC0\x80</q:part>"),
              "1: XML syntax error: not well-formed (invalid token)");
    EXPECT_EQ(refusal("{\"json\": true}"), "1: XML syntax error: not well-formed (invalid token)");
    try {
        read("<q:part q:version='1'>\n  <</q:part>");
        FAIL() << "bound";
    } catch (const BindingError& error) {
        EXPECT_EQ(error.line(), 2U);
        EXPECT_EQ(error.column(), 4U);
    }
}

TEST(XmlBinding, RefusesEveryDocumentType) {
    const std::string root = "<q:part q:version='1'>&a;</q:part>";
    const std::string refused = "a document type declaration (DOCTYPE) is not allowed";
    EXPECT_EQ(refusal("<!DOCTYPE q:part>\n" + root), "1: " + refused);
    EXPECT_EQ(refusal("\n<!DOCTYPE q:part SYSTEM 'file:///etc/passwd'>" + root), "2: " + refused);
    EXPECT_EQ(refusal("<!DOCTYPE q:part [\n<!ENTITY a 'x'>\n<!ENTITY b '&a;&a;'>]>" + root),
              "1: " + refused);
    EXPECT_EQ(refusal("<!DOCTYPE q:part [<!ENTITY % p SYSTEM 'http://localhost/p'> %p;]>" + root),
              "1: " + refused);
}

TEST(XmlBinding, RefusesWhatExceedsTheLimits) {
    EXPECT_EQ(refusal(nested(256)), "bound");
    EXPECT_EQ(refusal(nested(257)), "1: element 'x': nested deeper than 256 elements");
    EXPECT_EQ(refusal(nested(100'000)), "1: element 'x': nested deeper than 256 elements");

    xml::Limits limits;
    limits.bytes = 60;
    limits.elements = 3;
    const xml::Format<Part> format("q:part", partItems(), xml::Names::AsWritten, limits);
    EXPECT_EQ(refusal(format, "<q:part q:version='1'><q:tag/><q:tag/></q:part>"), "bound");
    EXPECT_EQ(refusal(format, "<q:part q:version='1'><q:tag/><q:tag/>\n<q:tag/></q:part>"),
              "2: element 'q:tag': the document has more than 3 elements");
    EXPECT_EQ(refusal(format, "<q:part q:version='1'>" + std::string(100, ' ') + "</q:part>"),
              "0: the document is larger than 60 bytes");
}

TEST(XmlBinding, ShowsForeignTextsShortAndOnOneLine) {
    EXPECT_EQ(
        refusalOfAttribute("q:size='a&#10;b&#13;'"),
        "1: attribute 'q:size' of element 'q:part': 'a\\x0Ab\\x0D' is not an integer from 0 to "
        "18446744073709551615");
    // 79 bytes and a character of two: the cut falls in front of it.
    EXPECT_EQ(refusalOfAttribute("q:size='" + std::string(79, 'z') + "\xC3\xA9 and more'"),
              "1: attribute 'q:size' of element 'q:part': '" + std::string(79, 'z') +
                  "...' is not an integer from 0 to 18446744073709551615");
}

TEST(XmlBinding, ReadsLargeDocuments) {
    std::string text = "<q:part q:version='1'";
    for (int i = 0; i < 100'000; ++i) text += " a" + std::to_string(i) + "=''";
    text += ">";
    for (int i = 0; i < 100'000; ++i) text += "<q:port q:name='" + std::to_string(i) + "'/>";
    const Part part = read(text + "</q:part>");
    ASSERT_EQ(part.ports.size(), 100'000U);
    EXPECT_EQ(part.ports.back().name, "99999");
}

namespace {

std::string refusalOfFile(const std::string& path) {
    try {
        partFormat().parseFile(path);
    } catch (const BindingError& error) {
        return std::to_string(error.line()) + ": " + error.what();
    }
    return "bound";
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

}  // namespace

TEST(XmlBindingFile, BindsFilesLargerThanOnePiece) {
    // One attribute, one text and one comment that each span many pieces.
    const std::string large(3'000'000, 'v');
    const TempDir dir;
    const std::string path = dir.write("part.xml", "<q:part q:version='1' q:note='" + large +
                                                       "'><!--" + large + "--><q:tag>" + large +
                                                       "</q:tag>\n<q:pin q:name='end'/></q:part>");
    const Part part = partFormat().parseFile(path);
    EXPECT_EQ(part.note, large);
    EXPECT_EQ(part.tags, std::vector<std::string>{large});
    ASSERT_EQ(part.pins.size(), 1U);
    EXPECT_EQ(part.pins[0].line, 2U);
}

TEST(XmlBindingFile, RefusesWhatCannotBeRead) {
    const TempDir dir;
    EXPECT_EQ(refusalOfFile(dir.path()), "0: the path is a directory, not a file");
    EXPECT_EQ(refusalOfFile(dir.path("absent.xml")),
              "0: the file cannot be opened: No such file or directory");
    EXPECT_EQ(refusalOfFile(dir.write("part.xml", "")), "1: XML syntax error: no element found");
    EXPECT_EQ(refusalOfFile(dir.write("part.xml", "<q:part q:version='1'>\n")),
              "2: XML syntax error: no element found");
    const std::string loop = dir.path("loop.xml");
    std::filesystem::create_symlink(loop, loop);
    EXPECT_EQ(refusalOfFile(loop),
              "0: the file cannot be opened: Too many levels of symbolic links");
    // Opens, but nothing is mapped where reading begins.
    EXPECT_EQ(refusalOfFile("/proc/self/mem"), "0: the file cannot be read: Input/output error");
}

TEST(XmlBindingFile, StopsReadingAtTheSizeLimit) {
    xml::Limits limits;
    limits.bytes = 100'000;
    const xml::Format<Part> format("q:part", partItems(), xml::Names::AsWritten, limits);
    const TempDir dir;
    const std::string path =
        dir.write("part.xml", "<q:part q:version='1'>" + std::string(200'000, ' '));
    EXPECT_THROW_MSG(format.parseFile(path), BindingError,
                     "the document is larger than 100000 bytes");
}
