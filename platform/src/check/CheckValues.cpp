// SPDX-License-Identifier: Apache-2.0
#include "check/CheckValues.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <vector>

#include "check/CheckMetadata.h"
#include "json/Convert.h"
#include "mav_host/Letters.h"

namespace mav_platform::check {

using json::Node;

const std::vector<std::string> CLOCK_STATES{"fixed", "scalable", "changeable"};
const std::vector<std::string> BUS_MODES{"master", "slave"};
const std::vector<std::string> BUS_CATEGORIES{"memory", "control", "stream", "interrupt", "debug"};

namespace {

std::string_view trimmed(std::string_view text) {
    while (text.starts_with(' ')) text.remove_prefix(1);
    while (text.ends_with(' ')) text.remove_suffix(1);
    return text;
}

/// The number that the text begins with; `text` is then what follows, without blanks.
std::optional<double> numberAt(std::string_view& text) {
    text = trimmed(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    double number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return std::nullopt;
    text = trimmed(text.substr(static_cast<std::size_t>(stop - text.data())));
    return number;
}

/// In MHz, which also stands for no unit.
std::optional<double> frequencyIn(std::string_view text) {
    const auto number = numberAt(text);
    if (!number || *number <= 0 || !std::isfinite(*number)) return std::nullopt;
    const std::string unit = mav_host::lowerCase(std::string(text));
    if (unit.empty() || unit == "mhz") return number;
    if (unit == "ghz") return *number * 1e3;
    if (unit == "khz") return *number / 1e3;
    if (unit == "hz") return *number / 1e6;
    return std::nullopt;
}

/// The sizes in bytes that the text may mean: units of 1024 and of 1000 are both in use.
std::vector<double> sizesIn(std::string_view text) {
    const auto number = numberAt(text);
    if (!number) return {};
    const std::string unit = mav_host::lowerCase(std::string(text));
    static const std::vector<std::string> UNITS{"", "k", "m", "g", "t"};
    for (std::size_t power = 1; power < UNITS.size(); ++power) {
        for (const char* const end : {"", "b", "ib"}) {
            if (unit != UNITS[power] + end) continue;
            const double exponent = static_cast<double>(power);
            return {*number * std::pow(1024.0, exponent), *number * std::pow(1000.0, exponent)};
        }
    }
    if (unit.empty() || unit == "b") return {*number};
    return {};
}

/// "2026.1" and what may follow behind a further ".", "-" or "_".
bool isRelease(std::string_view text) {
    const auto digits = [&] {
        const std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
        text.remove_prefix(end);
        return end > 0;
    };
    if (!digits() || !text.starts_with('.')) return false;
    text.remove_prefix(1);
    return digits() && (text.empty() || std::string_view(".-_").find(text[0]) != std::string::npos);
}

void checkSize(const LocatedJson& json, const Node& memory, Report& report) {
    const auto low = json::toDecimalOrHex(memory.text("lowAddress"));
    const auto high = json::toDecimalOrHex(memory.text("highAddress"));
    if (!low || !high || *high <= *low) return;
    const std::string size = memory.text("size");
    const std::vector<double> sizes = sizesIn(size);
    if (sizes.empty()) return;
    const double range = static_cast<double>(*high - *low) + 1;
    if (std::find(sizes.begin(), sizes.end(), range) != sizes.end()) return;
    report.add("value-change", json.place(memory, "size"),
               "the memory " + shown(memory.text("name")) + " has the size " + shown(size) +
                   ", but its addresses are " + std::to_string(*high - *low) + " + 1 bytes");
}

}  // namespace

void checkClock(const std::string& frequency, const std::string& period, const Place& atFrequency,
                const Place& atPeriod, Report& report) {
    const auto mhz = frequencyIn(frequency);
    if (!mhz) {
        if (!frequency.empty()) {
            report.add(
                "value-change", atFrequency,
                "the frequency " + shown(frequency) + " is no number of MHz; it counts as 0");
        }
        return;
    }
    std::string_view rest = period;
    const auto ns = numberAt(rest);
    if (period.empty() || !rest.empty() || !ns) return;
    // What is written is rounded.
    if (std::abs(*mhz * *ns - 1000) <= 10) return;
    report.add("value-change", atPeriod,
               "the period " + shown(period) + " is not that of the frequency " + shown(frequency));
}

void checkValues(const LocatedJson& json, Report& report) {
    const Node root = json.root();
    const std::string release = root.text("generatedVersion");
    if (!release.empty() && !isRelease(release)) {
        report.add("value-change", json.place(root, "generatedVersion"),
                   shown(release) + " is no release such as 2026.1; it counts as 0.0");
    }
    for (const Node& clock : itemsOf(root, "systemClocks")) {
        checkClock(clock.text("frequency"), clock.text("period"), json.place(clock, "frequency"),
                   json.place(clock, "period"), report);
    }
    for (const Node& device : itemsOf(root, "devices")) {
        for (const Node& clock : itemsOf(device, "scalableSystemClocks")) {
            const Place place = json.place(clock, "frequency");
            checkClock(clock.text("frequency"), "", place, place, report);
        }
    }
    for (const Node& memory : itemsOf(root, "memories")) checkSize(json, memory, report);
}

void checkWord(std::string_view word, const std::string& called, const Place& place,
               const std::vector<std::string>& known, bool isAll, Report& report) {
    if (word.empty() || std::find(known.begin(), known.end(), word) != known.end()) return;
    const std::string near = meant(word, known);
    if (near.empty() && !isAll) return;
    report.add("vocabulary", place, called + " " + shown(word) + " is no known one" + near);
}

void checkWords(const LocatedJson& json, Report& report) {
    static const std::vector<std::string> STATES{"pre_synth", "synth", "impl"};
    static const std::vector<std::string> USES{
        "all", "hardware", "implementation", "synthesis", "software", "link", "simulation"};
    static const std::vector<std::string> ORDERS{"early", "normal", "late"};
    const Node root = json.root();
    const auto word = [&](const Node& item, const char* key, const char* called,
                          const std::vector<std::string>& known, bool isAll) {
        checkWord(item.text(key), called, json.place(item, key), known, isAll, report);
    };
    word(root, "platformState", "the platform state", STATES, true);
    for (const Node& clock : itemsOf(root, "systemClocks")) {
        word(clock, "status", "the clock status", CLOCK_STATES, true);
    }
    for (const Node& bus : itemsOf(root, "busInterfaces")) {
        word(bus, "mode", "the mode", BUS_MODES, bus.text("typeRef") == "aximm");
        word(bus, "category", "the category", BUS_CATEGORIES, false);
    }
    for (const Node& file : itemsOf(root, "files")) {
        word(file, "usedIn", "the use", USES, false);
        word(file, "processingOrder", "the order", ORDERS, true);
    }
}

}  // namespace mav_platform::check
