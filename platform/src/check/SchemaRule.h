// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "check/Pattern.h"
#include "json/Document.h"

namespace mav_platform::check {

struct SchemaRule;

/// A place of a schema that may hold another one, whose rule is made when it is first asked for.
struct SchemaSlot {
    std::optional<json::Node> given;
    SchemaRule* rule = nullptr;
};

/// What one object of a schema asks for. Owned by its SchemaRules.
struct SchemaRule {
    struct Property {
        std::string_view name;
        SchemaSlot slot;
    };
    struct Required {
        std::string_view name;
        std::size_t property;  ///< its index, or the number of properties
    };

    explicit SchemaRule(const json::Node& resolved) : schema(resolved) {}

    /// The index of the property, looked for from `guess` on first, or the number of properties.
    std::size_t indexOf(std::string_view name, std::size_t guess = 0) const;
    /// What stands there in words: "a list", "an object" or "a text".
    const char* expected() const;

    json::Node schema;  ///< with all references followed
    bool takesList = true;
    bool takesObject = true;
    bool takesText = true;
    bool refusesOthers = false;  ///< what is no property is not part of the format
    SchemaSlot items;
    SchemaSlot others;  ///< of what is no property
    std::vector<Property> properties;
    std::vector<Required> required;
    std::optional<std::size_t> maxLength;
    std::optional<json::Node> values;  ///< the only ones that may stand here
    Pattern* pattern = nullptr;
    std::optional<double> least, most;
};

/// The number that the text is as a whole, also with 0x, in every locale.
std::optional<double> numberIn(std::string_view text);

/// The rules of one schema, which must outlive them. Throws HEXAlgException for a reference that
/// leads nowhere, when it is followed.
class SchemaRules {
  public:
    explicit SchemaRules(const json::Node& root) : root_(root), top_{root} {}

    SchemaRule& top() { return at(top_); }
    /// The rule of a slot that is given.
    SchemaRule& at(SchemaSlot& slot) {
        if (slot.rule == nullptr) slot.rule = &made(resolved(*slot.given));
        return *slot.rule;
    }

  private:
    json::Node resolved(json::Node schema) const;
    SchemaRule& made(const json::Node& schema);
    static void fillTypes(SchemaRule& rule);
    static void fillMembers(SchemaRule& rule);
    void fillTexts(SchemaRule& rule);

    const json::Node root_;
    SchemaSlot top_;
    std::map<std::size_t, SchemaRule> rules_;  ///< by the place of the schema in the text
    std::map<std::string_view, Pattern> patterns_;
};

}  // namespace mav_platform::check
