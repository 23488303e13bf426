// SPDX-License-Identifier: Apache-2.0
#include "check/CheckArray.h"

#include <algorithm>
#include <vector>

#include "check/CheckMetadata.h"
#include "json/Convert.h"

namespace mav_platform::check {
namespace {

using json::Node;

/// Columns or rows that belong to something.
struct Span {
    long begin = 0, end = 0;  ///< one behind the last
    std::string called;
    Place place;
};

Span spanOf(const Node& item, const char* first, const char* count, std::string called,
            const Place& place) {
    const long begin = json::toLong(item.text(first), 0);
    // Larger numbers are cut when they are read, which the schema tells of.
    const long size = std::clamp(json::toLong(item.text(count), 0), 0L, 1L << 31);
    return {begin, begin + size, std::move(called), place};
}

void checkApart(std::vector<Span> spans, const char* what, Report& report) {
    std::stable_sort(spans.begin(), spans.end(),
                     [](const Span& a, const Span& b) { return a.begin < b.begin; });
    const Span* furthest = nullptr;
    for (const Span& span : spans) {
        if (span.end <= span.begin) continue;
        if (furthest != nullptr && span.begin < furthest->end) {
            // The one that stands later is told.
            const bool isLater = span.place.line > furthest->place.line ||
                                 (span.place.line == furthest->place.line &&
                                  span.place.column > furthest->place.column);
            const Span& later = isLater ? span : *furthest;
            const Span& earlier = isLater ? *furthest : span;
            report.add("array-geometry", later.place,
                       std::string("the ") + what + " of " + later.called + " overlap those of " +
                           earlier.called + " on line " + std::to_string(earlier.place.line));
        }
        if (furthest == nullptr || span.end > furthest->end) furthest = &span;
    }
}

using Items = std::vector<std::pair<std::string, Node>>;

std::vector<Span> columnsOf(const LocatedJson& json, const Items& items) {
    std::vector<Span> spans;
    for (const auto& [name, item] : items) {
        spans.push_back(spanOf(item, "startColumn", "numColumns", shown(name),
                               json.place(item, "startColumn")));
    }
    return spans;
}

void checkInside(const Span& outer, const std::vector<Span>& spans, Report& report) {
    for (const Span& span : spans) {
        if (span.end <= span.begin || (span.begin >= outer.begin && span.end <= outer.end))
            continue;
        report.add("array-geometry", span.place,
                   "the columns of " + span.called + " reach beyond those of " + outer.called +
                       " on line " + std::to_string(outer.place.line));
    }
}

Items named(const std::vector<Node>& list) {
    Items items;
    for (const Node& item : list) items.emplace_back(item.text("dpeInst"), item);
    return items;
}

Items members(const std::optional<Node>& object) {
    Items items;
    if (!object) return items;
    for (const Node& item : *object) items.emplace_back(std::string(item.key()), item);
    return items;
}

template <class Below>
void checkPartitions(const LocatedJson& json, const Items& items, const Below& below,
                     Report& report) {
    const std::vector<Span> spans = columnsOf(json, items);
    checkApart(spans, "columns", report);
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::vector<Span> inner = columnsOf(json, below(items[i].second));
        if (spans[i].end <= spans[i].begin) continue;  // it is skipped with all below it
        checkInside(spans[i], inner, report);
        checkApart(inner, "columns", report);
    }
}

void checkHardware(const LocatedJson& json, const Node& hardware, Report& report) {
    std::vector<Span> rows;
    for (const auto& [key, called] :
         {std::pair{"shimRows", "'shimRows'"}, std::pair{"coreRows", "'coreRows'"},
          std::pair{"memRows", "'memRows'"}}) {
        const auto item = hardware.find(key);
        if (!item || !item->find("start")) continue;
        rows.push_back(spanOf(*item, "start", "num", called, json.place(*item)));
    }
    checkApart(rows, "rows", report);
    const auto base = json::toDecimalOrHex(hardware.text("axiBaseAddress"));
    const auto high = json::toDecimalOrHex(hardware.text("axiHighAddress"));
    if (base && high && *high < *base) {
        report.add("array-geometry", json.place(hardware, "axiHighAddress"),
                   "the addresses of the array end before they begin");
    }
}

}  // namespace

void checkArray(const LocatedJson& json, Report& report) {
    checkPartitions(
        json, named(itemsOf(json.root(), "dpePartitions")),
        [](const Node& item) { return named(itemsOf(item, "partitions")); }, report);
    if (const auto hardware = json.root().find("dpeHardware")) {
        checkHardware(json, *hardware, report);
    }
}

void checkArrayProject(std::string text, const std::string& file, Report& report) {
    const auto json = LocatedJson::parse(std::move(text), file, report);
    if (!json) return;
    checkSchema(*json, "dpe-partitions", report);
    checkPartitions(
        *json, members(json->root().find("DPE")),
        [](const Node& item) { return members(item.find("partitions")); }, report);
}

}  // namespace mav_platform::check
