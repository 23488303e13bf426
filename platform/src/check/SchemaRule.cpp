// SPDX-License-Identifier: Apache-2.0
#include "check/SchemaRule.h"

#include <charconv>
#include <cstdlib>
#include <limits>

#include "mav_host/HEXError.h"

namespace mav_platform::check {

using json::Node;

std::optional<double> numberIn(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    if (hex) text.remove_prefix(2);
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(
        text.data(), end, number, hex ? std::chars_format::hex : std::chars_format::general);
    if (stop != end || error == std::errc::invalid_argument) return std::nullopt;
    if (error == std::errc::result_out_of_range) number = std::numeric_limits<double>::infinity();
    return negative ? -number : number;
}

std::size_t SchemaRule::indexOf(std::string_view name, std::size_t guess) const {
    const std::size_t count = properties.size();
    for (std::size_t tried = 0, at = guess; tried < count; ++tried, ++at) {
        if (at >= count) at = 0;
        if (properties[at].name == name) return at;
    }
    return count;
}

const char* SchemaRule::expected() const {
    if (takesList) return "a list";
    return takesObject ? "an object" : "a text";
}

Node SchemaRules::resolved(Node schema) const {
    while (const auto reference = schema.find("$ref")) {
        const std::string_view name = reference->data().substr(std::string_view("#/$defs/").size());
        const auto definitions = root_.find("$defs");
        const auto target = definitions ? definitions->find(name) : std::nullopt;
        if (!target) throw HEXAlgException("a schema refers to nothing");
        schema = *target;
    }
    return schema;
}

SchemaRule& SchemaRules::made(const Node& schema) {
    const auto [place, isNew] = rules_.try_emplace(schema.dataOffset(), schema);
    SchemaRule& rule = place->second;
    if (!isNew) return rule;
    fillTypes(rule);
    fillMembers(rule);
    fillTexts(rule);
    return rule;
}

void SchemaRules::fillTypes(SchemaRule& rule) {
    const auto types = rule.schema.find("type");
    if (!types) return;
    const auto has = [&](std::string_view type) {
        if (!types->hasChildren()) return types->data() == type;
        for (const Node& item : *types) {
            if (item.data() == type) return true;
        }
        return false;
    };
    rule.takesList = has("array");
    rule.takesObject = has("object");
    rule.takesText = has("string") || has("number") || has("integer") || has("boolean");
}

void SchemaRules::fillMembers(SchemaRule& rule) {
    rule.items.given = rule.schema.find("items");
    if (const auto properties = rule.schema.find("properties")) {
        for (const Node& property : *properties) {
            rule.properties.push_back({property.key(), {property}});
        }
    }
    const auto others = rule.schema.find("additionalProperties");
    if (others && others->hasChildren()) rule.others.given = others;
    rule.refusesOthers = others && others->data() == "false";
    if (const auto required = rule.schema.find("required")) {
        for (const Node& key : *required) {
            rule.required.push_back({key.data(), rule.indexOf(key.data())});
        }
    }
}

void SchemaRules::fillTexts(SchemaRule& rule) {
    if (const auto length = rule.schema.find("maxLength")) {
        rule.maxLength = std::strtoull(std::string(length->data()).c_str(), nullptr, 10);
    }
    rule.values = rule.schema.find("enum");
    if (const auto pattern = rule.schema.find("pattern")) {
        rule.pattern = &patterns_.try_emplace(pattern->data(), pattern->data()).first->second;
    }
    if (const auto least = rule.schema.find("minimum"))
        rule.least = numberIn(least->data()).value();
    if (const auto most = rule.schema.find("maximum")) rule.most = numberIn(most->data()).value();
}

}  // namespace mav_platform::check
