// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/JSONValue.h"

#include <stdexcept>

#include "json/Escape.h"
#include "mav_host/HI18N.h"

namespace mav_platform {
namespace {

constexpr std::size_t INDENT = 4;

std::string quoted(const std::string& text) {
    return json::quoted(HI18N_convertToUTF8(text));
}

void startLine(std::string& out, std::size_t depth) {
    out.append("\n").append(INDENT * depth, ' ');
}

}  // namespace

JSONValue::JSONValue(const std::string& text) : shown_(quoted(text)) {}

JSONValue& JSONValue::add(JSONValue item) {
    if (kind_ != Kind::LIST) throw std::logic_error("JSONValue::add() - the value is no list");
    items_.push_back(std::move(item));
    return *this;
}

JSONValue& JSONValue::add(std::string name, JSONValue value) {
    if (kind_ != Kind::OBJECT) throw std::logic_error("JSONValue::add() - the value is no object");
    names_.push_back(std::move(name));
    items_.push_back(std::move(value));
    return *this;
}

JSONValue& JSONValue::addUnlessEmpty(std::string name, const std::string& text) {
    return text.empty() ? *this : add(std::move(name), text);
}

std::string JSONValue::text() const {
    std::string out;
    print(out, 0);
    return out += '\n';
}

void JSONValue::print(std::string& out, std::size_t depth) const {
    if (kind_ == Kind::SCALAR) {
        out += shown_;
        return;
    }
    out += kind_ == Kind::LIST ? '[' : '{';
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (i > 0) out += ',';
        startLine(out, depth + 1);
        if (kind_ == Kind::OBJECT) out.append(quoted(names_[i])).append(": ");
        items_[i].print(out, depth + 1);
    }
    if (!items_.empty()) startLine(out, depth);
    out += kind_ == Kind::LIST ? ']' : '}';
}

}  // namespace mav_platform
