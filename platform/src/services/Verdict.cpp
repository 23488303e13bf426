// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/Verdict.h"

#include <utility>

namespace mav::platform {

using mav_platform::JSONValue;

namespace {

const char* listName(const SupportEntry& entry) {
    return entry.good ? "white_list" : "black_list";
}

JSONValue jsonOf(const SupportEntry& entry) {
    return JSONValue::object()
        .add("list", listName(entry))
        .add("place", entry.place)
        .add("products", JSONValue::list(entry.products))
        .add("key", entry.key)
        .add("value", entry.value)
        .add("reason", JSONValue::orNull(entry.reason));
}

}  // namespace

std::string Verdict::sentence() const {
    std::string text = word();
    if (!rule.empty()) text += " by rule '" + rule + "'";
    if (entry) {
        text += ", entry " + std::to_string(entry->place) + " of the " + listName(*entry) + " (" +
                entry->key + " is '" + entry->value + "')";
    }
    return reason.empty() ? text : text + ": " + reason;
}

void Verdict::addTo(JSONValue& object) const {
    object.add("verdict", word())
        .add("rule", JSONValue::orNull(rule))
        .add("reason", JSONValue::orNull(reason))
        .add("listEntry", entry ? jsonOf(*entry) : JSONValue(nullptr))
        .add("platformRelease", JSONValue::orNull(platformRelease))
        .add("toolRelease", JSONValue::orNull(toolRelease));
}

JSONValue checkItem(const std::string& file, const Verdict* verdict,
                    const HSTVector<Verdict>& matrix, JSONValue error) {
    JSONValue item = JSONValue::object().addPath("file", file);
    if (verdict != nullptr) {
        verdict->addTo(item);
    } else {
        for (const char* const name :
             {"verdict", "rule", "reason", "listEntry", "platformRelease", "toolRelease"})
            item.add(name, nullptr);
    }
    JSONValue list = JSONValue::list();
    for (const Verdict& one : matrix) {
        JSONValue made = JSONValue::object();
        one.addTo(made);
        list.add(std::move(made));
    }
    return item.add("matrix", std::move(list)).add("error", std::move(error));
}

}  // namespace mav::platform
