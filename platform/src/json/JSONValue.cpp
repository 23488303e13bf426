// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/JSONValue.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "json/Escape.h"
#include "mav_host/HI18N.h"

namespace mav_platform {
namespace {

constexpr std::size_t INDENT = 4;

std::string quoted(const std::string& text) {
    return json::quoted(HI18N_convertToUTF8(text));
}

std::string base64(std::string_view bytes) {
    static constexpr char DIGITS[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        unsigned long group = 0;
        for (std::size_t k = i; k < i + 3; ++k)
            group = group << 8U | (k < bytes.size() ? static_cast<unsigned char>(bytes[k]) : 0U);
        const std::size_t digits = std::min<std::size_t>(bytes.size() - i, 3) + 1;
        for (std::size_t k = 0; k < 4; ++k)
            text += k < digits ? DIGITS[group >> (18 - 6 * k) & 63U] : '=';
    }
    return text;
}

std::string_view digitsOf(std::string_view text) {
    return text.substr(0, std::min(text.find_first_not_of("0123456789"), text.size()));
}

/// A decimal number as JSON writes it, without an exponent.
bool isNumber(std::string_view text) {
    if (text.starts_with('-')) text.remove_prefix(1);
    const std::string_view whole = digitsOf(text);
    if (whole.empty() || (whole.size() > 1 && whole.front() == '0')) return false;
    text.remove_prefix(whole.size());
    return text.empty() || (text.front() == '.' && text.size() > 1 &&
                            digitsOf(text.substr(1)).size() + 1 == text.size());
}

void startLine(std::string& out, std::size_t depth) {
    out.append("\n").append(INDENT * depth, ' ');
}

}  // namespace

JSONValue::JSONValue(const std::string& text) : shown_(quoted(text)) {}

JSONValue JSONValue::list(const HSTVector<std::string>& texts) {
    JSONValue made = list();
    for (const std::string& text : texts) made.add(text);
    return made;
}

JSONValue JSONValue::answer(const std::string& command) {
    return object().add("schema", "mav." + command + "/1");
}

JSONValue JSONValue::number(const std::string& text) {
    JSONValue made = nullptr;
    if (isNumber(text)) made.shown_ = text;
    return made;
}

JSONValue JSONValue::orNull(const std::string& text) {
    return text.empty() ? JSONValue(nullptr) : JSONValue(text);
}

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

JSONValue& JSONValue::addPath(const std::string& name, const std::string& path) {
    add(name, orNull(path));
    if (HI18N_isUTF8(path)) return *this;
    return add(name == "file" ? "pathBytes" : name + "Bytes", base64(path));
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
