// SPDX-License-Identifier: Apache-2.0
// The quick way through a plain XML document against the parser: what it takes, it hands on as the
// parser does, to the same places. Bytes from 0xC0 stand for pieces of documents.
#include <array>
#include <span>
#include <string_view>
#include <vector>

#include "support.h"
#include "support/PlainXml.h"

namespace {

constexpr std::array<std::string_view, 64> PIECES = {"<a",
                                                     "<b",
                                                     "<a:b",
                                                     "<",
                                                     ">",
                                                     "/>",
                                                     "</a>",
                                                     "</b>",
                                                     "</a:b>",
                                                     "</",
                                                     " a=\"\"",
                                                     " b='1'",
                                                     " a:c=\"x y\"",
                                                     " a=\"1\"",
                                                     " c=\"'\"",
                                                     " d='\"'",
                                                     " e",
                                                     "=",
                                                     "=\"",
                                                     "\"",
                                                     "'",
                                                     "\n",
                                                     "\t",
                                                     "  ",
                                                     "\r\n",
                                                     "<!--",
                                                     "-->",
                                                     "--",
                                                     "<!-- c -->",
                                                     "<![CDATA[",
                                                     "]]>",
                                                     "]]",
                                                     "<?p i?>",
                                                     "<?",
                                                     "?>",
                                                     "<?xml version=\"1.0\"?>",
                                                     "<?xml version=\"1.0\" encoding=\"UTF-8\"?>",
                                                     "<?xml version=\"1.0\"",
                                                     " encoding=\"utf-8\"",
                                                     " standalone=\"yes\"",
                                                     "<!DOCTYPE a>",
                                                     "&amp;",
                                                     "&#10;",
                                                     "&",
                                                     "text",
                                                     "a",
                                                     "b",
                                                     ":",
                                                     "-",
                                                     ".",
                                                     "0",
                                                     "_",
                                                     "\xC3\xA4",
                                                     "\xEF\xBB\xBF",
                                                     "\x7F",
                                                     "\x01",
                                                     "<a><b/></a>",
                                                     "<a b=\"c\">",
                                                     " a=\"1\" b=\"2\" c=\"3\"",
                                                     " xmlns:a=\"u\"",
                                                     " xml:space=\"preserve\"",
                                                     "[",
                                                     ";",
                                                     "#"};

/// Without a null behind it, so that reading over the end shows.
std::vector<char> expanded(const std::uint8_t* data, std::size_t size) {
    std::vector<char> text;
    for (const std::uint8_t byte : std::span(data, size)) {
        if (byte < 0xC0) {
            text.push_back(static_cast<char>(byte));
        } else {
            const std::string_view piece = PIECES[byte - 0xC0U];
            text.insert(text.end(), piece.begin(), piece.end());
        }
    }
    return text;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<char> bytes = expanded(data, size);
    const std::string_view text(bytes.data(), bytes.size());
    fuzz::require(plain_xml::compare(text) != plain_xml::Way::DIFFERENT,
                  "read otherwise than by the parser: " + plain_xml::parsed(text));
    return 0;
}
