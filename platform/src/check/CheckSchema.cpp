// SPDX-License-Identifier: Apache-2.0
#include "check/CheckSchema.h"

#include <charconv>
#include <cstdlib>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "check/CheckReport.h"
#include "check/Pattern.h"
#include "mav_host/HEXError.h"

namespace mav_platform::check {
namespace {

using json::Node;

constexpr std::size_t LONGEST_PATTERN_TEXT = 1000;

/// The number that the text is as a whole, also with 0x, in every locale.
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

/// Walks a document along a JSON Schema, as far as our schemas use the language. The tree knows no
/// difference between quoted and bare scalars, and an empty text is an empty list or object too.
class SchemaWalk {
  public:
    SchemaWalk(const LocatedJson& json, const Node& schema, Report& report)
        : json_(json), root_(schema), report_(report) {}

    void walk(const Node& node, const Node& given, const std::string& path) {
        const Node schema = resolved(given);
        if (!node.hasChildren()) {
            checkText(node, schema, path);
        } else if (node.isList()) {
            if (!admits(schema, "array")) {
                fault(node, path, "holds a list where " + expected(schema) + " is expected");
            } else if (const auto items = schema.find("items")) {
                std::size_t index = 0;
                for (const Node& item : node) {
                    walk(item, *items, path + "[" + std::to_string(index++) + "]");
                }
            }
        } else if (!admits(schema, "object")) {
            fault(node, path, "holds an object where " + expected(schema) + " is expected");
        } else {
            checkObject(node, schema, path);
        }
    }

  private:
    Node resolved(Node schema) const {
        while (const auto reference = schema.find("$ref")) {
            const std::string_view name =
                reference->data().substr(std::string_view("#/$defs/").size());
            const auto definitions = root_.find("$defs");
            const auto target = definitions ? definitions->find(name) : std::nullopt;
            if (!target) throw HEXAlgException("a schema refers to nothing");
            schema = *target;
        }
        return schema;
    }

    static bool isAmong(const std::optional<Node>& types, std::string_view type) {
        if (!types) return true;
        if (!types->hasChildren()) return types->data() == type;
        for (const Node& item : *types) {
            if (item.data() == type) return true;
        }
        return false;
    }
    static bool admits(const Node& schema, std::string_view type) {
        return isAmong(schema.find("type"), type);
    }
    static bool admitsText(const Node& schema) {
        const auto types = schema.find("type");
        for (const char* const type : {"string", "number", "integer", "boolean"}) {
            if (isAmong(types, type)) return true;
        }
        return false;
    }
    static std::string expected(const Node& schema) {
        if (admits(schema, "array")) return "a list";
        return admits(schema, "object") ? "an object" : "a text";
    }

    void checkObject(const Node& node, const Node& schema, const std::string& path) {
        const auto properties = schema.find("properties");
        const auto others = schema.find("additionalProperties");
        std::set<std::string_view> seen;
        for (const Node& child : node) {
            const std::string below = (path.empty() ? "" : path + ".") + std::string(child.key());
            if (!seen.insert(child.key()).second) {
                report_.add("duplicate", json_.place(child),
                            shown(below) + " stands more than once; the first one counts");
                continue;
            }
            const auto known = properties ? properties->find(child.key()) : std::nullopt;
            if (known) {
                walk(child, *known, below);
            } else if (others && others->hasChildren()) {
                walk(child, *others, below);
            } else if (others && others->data() == "false") {
                report_.add("unknown-item", json_.place(child),
                            shown(below) + " is not part of the format; loading ignores it");
            }
        }
        const auto required = schema.find("required");
        if (!required) return;
        for (const Node& key : *required) {
            if (seen.count(key.data()) == 0) {
                fault(node, path, "the required key " + shown(key.data()) + " is missing");
            }
        }
    }

    void checkText(const Node& node, const Node& schema, const std::string& path) {
        const std::string_view text = node.data();
        if (!admitsText(schema)) {
            if (text.empty() || text == "null") return;
            fault(node, path,
                  "holds the text " + shown(text) + " where " + expected(schema) + " is expected");
            return;
        }
        if (const auto length = schema.find("maxLength")) {
            const bool isEmpty = length->data() == "0" && text == "null";
            if (!isEmpty &&
                text.size() > std::strtoull(std::string(length->data()).c_str(), nullptr, 10)) {
                fault(node, path,
                      shown(text) +
                          (length->data() == "0"
                               ? " stands where " + expected(schema) + " is expected"
                               : " is longer than " + std::string(length->data()) + " characters"));
                return;
            }
        }
        if (const auto values = schema.find("enum")) checkEnum(node, *values, path);
        if (const auto pattern = schema.find("pattern")) {
            if (!checkPattern(node, schema, pattern->data(), path)) return;
        }
        checkRange(node, schema, path);
    }

    void checkEnum(const Node& node, const Node& values, const std::string& path) {
        for (const Node& value : values) {
            if (value.data() == node.data()) return;
        }
        // A type that is not known does not keep a platform from loading.
        const bool isFileType = path.rfind("files[", 0) == 0 && path.size() > 5 &&
                                path.compare(path.size() - 5, 5, ".type") == 0;
        if (isFileType) {
            report_.add("file-type", json_.place(node),
                        shown(path) + ": " + shown(node.data()) + " is no file type");
        } else {
            fault(node, path, shown(node.data()) + " is none of the texts that may stand here");
        }
    }

    /// False after a finding. The schema's description says in words what the pattern asks for.
    bool checkPattern(const Node& node, const Node& schema, std::string_view pattern,
                      const std::string& path) {
        const std::string text(node.data());
        Pattern& known = patterns_.try_emplace(pattern, pattern).first->second;
        if (text.size() <= LONGEST_PATTERN_TEXT && known.matches(text)) return true;
        const auto form = schema.find("description");
        if (!form) throw HEXAlgException("a schema describes no pattern");
        fault(node, path, shown(text) + " is not " + std::string(form->data()));
        return false;
    }

    void checkRange(const Node& node, const Node& schema, const std::string& path) {
        const auto low = schema.find("minimum");
        const auto high = schema.find("maximum");
        const std::string text(node.data());
        const auto number = numberIn(text);
        if (!number) return;
        const auto limit = [](const Node& bound) { return numberIn(bound.data()).value(); };
        if ((low && *number < limit(*low)) || (high && *number > limit(*high))) {
            fault(node, path,
                  shown(text) + " is not in the range" +
                      (low ? " from " + std::string(low->data()) : "") +
                      (high ? " to " + std::string(high->data()) : ""));
        }
    }

    void fault(const Node& node, const std::string& path, const std::string& text) {
        report_.add("schema", json_.place(node), (path.empty() ? "" : shown(path) + ": ") + text);
    }

    const LocatedJson& json_;
    const Node root_;
    Report& report_;
    std::map<std::string_view, Pattern> patterns_;
};

}  // namespace

void checkSchema(const LocatedJson& json, const std::string& name, Report& report) {
    const std::string_view text = schemaText(name);
    if (text.empty()) throw HEXAlgException("there is no schema '" + name + "'");
    const json::Document schema{std::string(text)};
    SchemaWalk(json, schema.root(), report).walk(json.root(), schema.root(), "");
}

}  // namespace mav_platform::check
