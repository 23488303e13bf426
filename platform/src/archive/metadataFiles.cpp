// SPDX-License-Identifier: Apache-2.0
#include "archive/metadataFiles.h"

#include <algorithm>
#include <array>
#include <boost/property_tree/json_parser/error.hpp>
#include <cstdio>
#include <string_view>

#include "json/Document.h"
#include "mav_host/HEXError.h"

namespace mav_platform {
namespace {

constexpr std::string_view BLANKS = " \t\r\n";

[[noreturn]] void refuse(const std::string& reason) {
    throw HEXAlgException("The metadata cannot take a file: " + reason);
}

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (static_cast<unsigned char>(c) < ' ') {
            std::array<char, 8> escape;
            std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(c));
            out += escape.data();
        } else {
            out += c;
        }
    }
    return out + '"';
}

bool listsFile(const json::Document& document, std::string_view type, std::string_view name) {
    const auto files = document.root().find("files");
    if (!files) return false;
    return std::any_of(files->begin(), files->end(), [&](const json::Node& item) {
        const auto itemType = item.find("type");
        const auto itemName = item.find("name");
        return itemType && itemName && itemType->data() == type && itemName->data() == name;
    });
}

/// Walks text that is known to be JSON.
class Walk {
  public:
    explicit Walk(std::string_view text) : text_(text) {
        if (text_.starts_with("\xef\xbb\xbf")) at_ = 3;
    }

    /// Steps into an object or a list; false when something else stands here.
    bool enter(char opening) {
        skipBlanks();
        if (peek() != opening) return false;
        end_ = ++at_;
        return true;
    }
    /// Goes to the next element of the object or list entered; false at its end.
    bool next() {
        skipBlanks();
        if (peek() == ',') {
            ++at_;
            skipBlanks();
        }
        start_ = at_;
        return peek() != '}' && peek() != ']';
    }
    /// Reads a key and its colon and answers the key as written.
    std::string_view key() {
        const std::size_t from = at_ + 1;
        skipString();
        const std::string_view key = text_.substr(from, at_ - from - 1);
        skipBlanks();
        ++at_;
        return key;
    }
    void skipValue() {
        skipBlanks();
        unsigned depth = 0;
        do {
            const char c = peek();
            if (c == '"') {
                skipString();
                continue;
            }
            if (c == '{' || c == '[') ++depth;
            if (c == '}' || c == ']') --depth;
            ++at_;
        } while (at_ < text_.size() && (depth > 0 || !endsScalar()));
        end_ = at_;
    }
    /// Behind the last element skipped, or behind the opening bracket when there is none.
    std::size_t behindLast() const { return end_; }
    /// The blanks in front of the element that `next` found last before the end.
    std::string_view blanksBefore(std::size_t element) const {
        std::size_t from = element;
        while (from > 0 && BLANKS.find(text_[from - 1]) != std::string_view::npos) --from;
        return text_.substr(from, element - from);
    }
    std::size_t elementStart() const { return start_; }

  private:
    char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    bool endsScalar() const {
        const char c = peek();
        return c == ',' || c == '}' || c == ']' || BLANKS.find(c) != std::string_view::npos;
    }
    void skipBlanks() { at_ = std::min(text_.find_first_not_of(BLANKS, at_), text_.size()); }
    void skipString() {
        for (++at_; peek() != '"'; ++at_) {
            if (peek() == '\\') ++at_;
        }
        ++at_;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t start_ = 0;
    std::size_t end_ = 0;
};

/// Inserts an element behind the last one of the object or list that the walk has entered.
std::string append(std::string_view text, Walk walk, bool object, const std::string& element) {
    std::string blanks;
    bool first = true;
    while (walk.next()) {
        blanks = walk.blanksBefore(walk.elementStart());
        first = false;
        if (object) walk.key();
        walk.skipValue();
    }
    const std::size_t at = walk.behindLast();
    std::string out(text.substr(0, at));
    if (!first) out += ',';
    return out.append(blanks).append(element).append(text.substr(at));
}

std::string insert(std::string_view text, const std::string& item) {
    Walk root(text);
    if (!root.enter('{')) refuse("it is no JSON object");
    for (Walk walk = root; walk.next(); walk.skipValue()) {
        if (walk.key() != "files") continue;
        if (!walk.enter('[')) refuse("its \"files\" is no list");
        return append(text, walk, false, item);
    }
    return append(text, root, true, "\"files\": [" + item + "]");
}

}  // namespace

std::string withListedFile(std::string document, const std::string& type, const std::string& name) {
    try {
        if (listsFile(json::Document(std::string(document)), type, name)) return document;
        std::string text =
            insert(document, "{\"name\": " + quoted(name) + ", \"type\": " + quoted(type) + "}");
        if (!listsFile(json::Document(std::string(text)), type, name)) {
            refuse("the name or the type does not fit into it");
        }
        return text;
    } catch (const boost::property_tree::json_parser::json_parser_error& error) {
        refuse("line " + std::to_string(error.line()) + ": " + error.message());
    }
}

}  // namespace mav_platform
