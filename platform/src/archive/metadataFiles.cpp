// SPDX-License-Identifier: Apache-2.0
#include "archive/metadataFiles.h"

#include <algorithm>
#include <boost/property_tree/json_parser/error.hpp>
#include <string_view>

#include "json/Document.h"
#include "json/Escape.h"
#include "mav_host/HEXError.h"
#include "mav_host/HI18N.h"

namespace mav_platform {
namespace {

constexpr std::string_view BLANKS = " \t\r\n";

[[noreturn]] void refuse(const std::string& reason) {
    throw HEXAlgException("The metadata cannot take a file: " + reason);
}

/// Whatever is empty is an empty list.
bool isList(const json::Node& node) {
    return node.hasChildren() ? node.isList() : node.data().empty() || node.data() == "null";
}

bool listsFile(const json::Node& files, std::string_view type, std::string_view name) {
    return std::any_of(files.begin(), files.end(), [&](const json::Node& item) {
        const auto itemType = item.find("type");
        const auto itemName = item.find("name");
        return itemType && itemName && itemType->data() == type && itemName->data() == name;
    });
}

/// The last of those in front of a place that is no blank.
std::size_t lastBefore(std::string_view text, std::size_t place) {
    return text.find_last_not_of(BLANKS, place - 1);
}

/// Where an item of a list begins.
std::size_t startOf(std::string_view text, const json::Node& item) {
    if (item.kind() == json::Kind::SCALAR) return item.offset();
    if (!item.hasChildren()) return lastBefore(text, item.dataOffset());
    const json::Node first = *item.begin();
    return lastBefore(text, item.isList() ? startOf(text, first) : first.offset());
}

/// The blanks in front of the last member or item; empty when there is none.
std::string_view blanksBeforeLast(std::string_view text, const json::Node& container) {
    if (!container.hasChildren()) return {};
    json::Node last = container;
    for (const json::Node& child : container) last = child;
    const std::size_t end = container.isList() ? startOf(text, last) : last.offset();
    const std::size_t begin = lastBefore(text, end) + 1;
    return text.substr(begin, end - begin);
}

/// Inserts an element behind the last one of an object or a list.
std::string append(std::string_view text, const json::Node& container, const std::string& element) {
    const std::size_t at = lastBefore(text, container.dataOffset()) + 1;
    std::string out(text.substr(0, at));
    if (container.hasChildren()) out += ',';
    return out.append(blanksBeforeLast(text, container)).append(element).append(text.substr(at));
}

/// Puts a list of one item in the place of a member's value, which is empty or null.
std::string replaceEmpty(std::string_view text, const json::Node& value, const std::string& item) {
    std::size_t begin = value.dataOffset();
    std::size_t end = begin + value.data().size();
    if (value.kind() == json::Kind::OBJECT) {
        end = begin + 1;
        begin = lastBefore(text, begin);
    } else if (text[begin - 1] == '"') {
        end = text.find('"', begin) + 1;
        --begin;
    }
    return std::string(text.substr(0, begin)) + "[" + item + "]" + std::string(text.substr(end));
}

}  // namespace

std::string withListedFile(std::string document, const std::string& type, const std::string& name) {
    if (!HI18N_isUTF8(type) || !HI18N_isUTF8(name)) {
        refuse("the name or the type is not UTF-8; give the member another name");
    }
    try {
        const auto parsed = json::Document::fromBytes(document);
        const json::Node root = parsed.root();
        if (root.kind() != json::Kind::OBJECT) refuse("it is no JSON object");
        const auto files = root.find("files");
        if (files && !isList(*files)) refuse("its \"files\" is no list");
        if (files && listsFile(*files, type, name)) return document;
        if (!HI18N_isUTF8(document)) document = HI18N_convertToUTF8(document);
        const std::string item =
            "{\"name\": " + json::quoted(name) + ", \"type\": " + json::quoted(type) + "}";
        std::string text = !files            ? append(document, root, "\"files\": [" + item + "]")
                           : files->isList() ? append(document, *files, item)
                                             : replaceEmpty(document, *files, item);
        // The item may have taken it over a limit.
        static_cast<void>(json::Document(std::string(text)));
        return text;
    } catch (const boost::property_tree::json_parser::json_parser_error& error) {
        refuse("line " + std::to_string(error.line()) + ": " + error.message());
    }
}

}  // namespace mav_platform
