// SPDX-License-Identifier: Apache-2.0
#include "check/CheckSchema.h"

#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "check/CheckReport.h"
#include "check/SchemaRule.h"
#include "mav_host/HEXError.h"

namespace mav_platform::check {
namespace {

using json::Node;

constexpr std::size_t LONGEST_PATTERN_TEXT = 1000;

/// The way to a node, which is put into words for a finding alone.
struct Step {
    const Step* above;
    std::string_view key;
    std::optional<std::size_t> index;  ///< of a list's item

    std::string text() const {
        std::string path = above == nullptr ? std::string() : above->text();
        if (index) return path + "[" + std::to_string(*index) + "]";
        if (!path.empty()) path += '.';
        return path.append(key);
    }
};

std::string textOf(const Step* step) {
    return step == nullptr ? std::string() : step->text();
}

/// Walks a document along a JSON Schema, as far as our schemas use the language. The tree knows no
/// difference between quoted and bare scalars, and an empty text is an empty list or object too.
class SchemaWalk {
  public:
    SchemaWalk(const LocatedJson& json, const Node& schema, Report& report)
        : json_(json), rules_(schema), report_(report) {}

    void run() { walk(json_.root(), rules_.top(), nullptr); }

  private:
    void walk(const Node& node, SchemaRule& rule, const Step* step) {
        if (!node.hasChildren()) {
            checkText(node, rule, step);
        } else if (node.isList()) {
            checkList(node, rule, step);
        } else if (!rule.takesObject) {
            fault(node, step,
                  std::string("holds an object where ") + rule.expected() + " is expected");
        } else {
            checkObject(node, rule, step);
        }
    }

    void checkList(const Node& node, SchemaRule& rule, const Step* step) {
        if (!rule.takesList) {
            fault(node, step,
                  std::string("holds a list where ") + rule.expected() + " is expected");
            return;
        }
        if (!rule.items.given) return;
        SchemaRule& items = rules_.at(rule.items);
        std::size_t index = 0;
        for (const Node& item : node) {
            const Step below{step, {}, index++};
            walk(item, items, &below);
        }
    }

    void checkObject(const Node& node, SchemaRule& rule, const Step* step) {
        std::vector<bool> seen(rule.properties.size());
        std::set<std::string_view> others;
        std::size_t guess = 0;
        for (const Node& child : node) {
            const Step below{step, child.key(), {}};
            const std::size_t at = rule.indexOf(child.key(), guess);
            const bool known = at < seen.size();
            const bool again = known ? seen[at] : !others.insert(child.key()).second;
            if (again) {
                report_.add("duplicate", json_.place(child),
                            shown(below.text()) + " stands more than once; the first one counts");
            } else if (known) {
                seen[at] = true;
                walk(child, rules_.at(rule.properties[at].slot), &below);
            } else {
                checkOther(child, rule, below);
            }
            if (known) guess = at + 1;
        }
        for (const SchemaRule::Required& key : rule.required) {
            if (key.property < seen.size() ? seen[key.property] : others.count(key.name) > 0)
                continue;
            fault(node, step, "the required key " + shown(key.name) + " is missing");
        }
    }

    /// What is none of the properties.
    void checkOther(const Node& node, SchemaRule& rule, const Step& step) {
        if (rule.others.given) {
            walk(node, rules_.at(rule.others), &step);
        } else if (rule.refusesOthers) {
            report_.add("unknown-item", json_.place(node),
                        shown(step.text()) + " is not part of the format; loading ignores it" +
                            meantBy(node, rule));
        }
    }

    /// Only for findings that are told one by one: the search takes its time.
    std::string meantBy(const Node& node, const SchemaRule& rule) const {
        if (report_.isFull("unknown-item", json_.file())) return {};
        std::vector<std::string> keys;
        for (const auto& property : rule.properties) keys.emplace_back(property.name);
        return meant(node.key(), keys);
    }

    /// Also of an empty object, which looks the same.
    void checkText(const Node& node, SchemaRule& rule, const Step* step) {
        const std::string_view text = node.data();
        const bool isEmpty = text.empty() || text == "null";
        if (isEmpty && rule.takesObject) checkObject(node, rule, step);
        if (!rule.takesText) {
            if (isEmpty) return;
            fault(node, step,
                  "holds the text " + shown(text) + " where " + rule.expected() + " is expected");
            return;
        }
        if (rule.maxLength && !checkLength(node, rule, step)) return;
        if (rule.values) checkEnum(node, *rule.values, step);
        if (rule.pattern != nullptr && !checkPattern(node, rule, step)) return;
        if (rule.least || rule.most) checkRange(node, rule, step);
    }

    /// False after a finding.
    bool checkLength(const Node& node, const SchemaRule& rule, const Step* step) {
        const std::string_view text = node.data();
        const std::size_t most = *rule.maxLength;
        if (text.size() <= most || (most == 0 && text == "null")) return true;
        fault(node, step,
              shown(text) + (most == 0
                                 ? std::string(" stands where ") + rule.expected() + " is expected"
                                 : " is longer than " + std::to_string(most) + " characters"));
        return false;
    }

    void checkEnum(const Node& node, const Node& values, const Step* step) {
        for (const Node& value : values) {
            if (value.data() == node.data()) return;
        }
        std::vector<std::string> words;
        if (!report_.isFull("file-type", json_.file()) || !report_.isFull("schema", json_.file())) {
            for (const Node& value : values) words.emplace_back(value.data());
        }
        const std::string near = meant(node.data(), words);
        // A type that is not known does not keep a platform from loading.
        const std::string path = textOf(step);
        if (path.starts_with("files[") && path.ends_with(".type")) {
            report_.add("file-type", json_.place(node),
                        shown(path) + ": " + shown(node.data()) + " is no file type" + near);
        } else {
            fault(node, step,
                  shown(node.data()) + " is none of the texts that may stand here" + near);
        }
    }

    /// False after a finding. The schema's description says in words what the pattern asks for.
    bool checkPattern(const Node& node, const SchemaRule& rule, const Step* step) {
        const std::string_view text = node.data();
        if (text.size() <= LONGEST_PATTERN_TEXT && rule.pattern->matches(text)) return true;
        const auto form = rule.schema.find("description");
        if (!form) throw HEXAlgException("a schema describes no pattern");
        fault(node, step, shown(text) + " is not " + std::string(form->data()));
        return false;
    }

    void checkRange(const Node& node, const SchemaRule& rule, const Step* step) {
        const auto number = numberIn(node.data());
        if (!number) return;
        if ((rule.least && *number < *rule.least) || (rule.most && *number > *rule.most)) {
            fault(node, step,
                  shown(node.data()) + " is not in the range" +
                      (rule.least ? " from " + rule.schema.text("minimum") : "") +
                      (rule.most ? " to " + rule.schema.text("maximum") : ""));
        }
    }

    void fault(const Node& node, const Step* step, const std::string& text) {
        const std::string path = textOf(step);
        report_.add("schema", json_.place(node), (path.empty() ? "" : shown(path) + ": ") + text);
    }

    const LocatedJson& json_;
    SchemaRules rules_;
    Report& report_;
};

}  // namespace

void checkSchema(const LocatedJson& json, const std::string& name, Report& report) {
    const std::string_view text = schemaText(name);
    if (text.empty()) throw HEXAlgException("there is no schema '" + name + "'");
    const json::Document schema{std::string(text)};
    SchemaWalk(json, schema.root(), report).run();
}

}  // namespace mav_platform::check
