// SPDX-License-Identifier: Apache-2.0
#include "Screen.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "Command.h"
#include "Output.h"
#include "Suggest.h"
#include "mav_host/HUTEnv.h"

namespace cli {
namespace {

constexpr std::size_t INDENT = 2;
constexpr std::size_t GAP = 2;
constexpr std::size_t NARROWEST = 60;
constexpr std::size_t NARROWEST_COLUMN = 8;
constexpr std::string_view BOLD = "\033[1m";
constexpr std::string_view HEADING = "\033[1;36m";
constexpr std::string_view DIM = "\033[2m";
constexpr std::string_view RESET = "\033[0m";

bool continues(char c) {
    return (static_cast<unsigned char>(c) & 0xc0U) == 0x80U;
}

/// Takes the first `width` characters off the text, up to a blank in it where there is one.
std::string_view takeLine(std::string_view& text, std::size_t width) {
    std::size_t end = 0;
    std::size_t blank = 0;
    for (std::size_t taken = 0; end < text.size(); ++end) {
        if (continues(text[end])) continue;
        if (taken++ == width) break;
        if (text[end] == ' ') blank = end;
    }
    if (end < text.size() && text[end] != ' ' && blank > 0) end = blank;
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end);
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    return line;
}

bool isNumber(std::string_view text) {
    return text.find_first_not_of("0123456789.-") == std::string_view::npos;
}

/// Makes columns narrower, the widest first, until they fit.
void fit(std::vector<std::size_t>& widths, std::size_t room) {
    std::size_t total = GAP * (widths.size() - 1);
    for (const std::size_t width : widths) total += width;
    while (total > room) {
        const auto widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= NARROWEST_COLUMN) return;
        --*widest;
        --total;
    }
}

}  // namespace

bool wantsColor(const std::string& choice, const std::string& command) {
    if (choice == "always") return true;
    if (choice == "never") return false;
    if (choice != "auto") {
        std::string sentence =
            "unknown colour choice '" + printable(choice) + "': use auto, always or never.";
        const std::string meant = nearest(choice, {"auto", "always", "never"});
        if (!meant.empty()) sentence += " Did you mean '" + meant + "'?";
        throw UsageError(sentence, command);
    }
    if (::isatty(STDOUT_FILENO) == 0) return false;
    const char* const none = HUTEnv::getEnv("NO_COLOR");
    if (none != nullptr && *none != '\0') return false;
    const char* const terminal = HUTEnv::getEnv("TERM");
    return terminal != nullptr && std::string_view(terminal) != "dumb";
}

std::size_t screenWidth() {
    winsize size{};
    const bool known = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return std::max<std::size_t>(known ? size.ws_col : 100, NARROWEST);
}

void Screen::styled(std::string_view style, std::string_view text) {
    if (color_ && !style.empty()) text_ += style;
    text_ += text;
    if (color_ && !style.empty()) text_ += RESET;
}

void Screen::title(std::string_view text) {
    styled(BOLD, printable(text));
    text_ += '\n';
}

void Screen::section(std::string_view name) {
    if (!text_.empty()) text_ += '\n';
    styled(HEADING, name);
    text_ += '\n';
}

void Screen::values(const std::vector<std::pair<std::string, std::string>>& list) {
    std::size_t widest = 0;
    for (const auto& [name, value] : list) {
        if (!value.empty()) widest = std::max(widest, columns(name));
    }
    const std::vector<std::size_t> widths{widest, width_ - std::min(width_, INDENT + widest + GAP)};
    for (const auto& [name, value] : list) {
        if (!value.empty()) row({name, printable(value)}, widths, {false, false}, {});
    }
}

void Screen::table(const Row& names, const std::vector<Row>& rows) {
    Row heads;
    std::vector<std::size_t> kept;
    std::vector<std::size_t> widths;
    std::vector<bool> right;
    std::vector<Row> shown(rows.size());
    for (std::size_t column = 0; column < names.size(); ++column) {
        std::size_t width = 0;
        bool numbers = true;
        for (const Row& cells : rows) {
            width = std::max(width, columns(printable(cells[column])));
            numbers = numbers && isNumber(cells[column]);
        }
        if (width == 0) continue;
        heads.push_back(names[column]);
        widths.push_back(std::max(width, columns(names[column])));
        right.push_back(numbers);
        for (std::size_t i = 0; i < rows.size(); ++i)
            shown[i].push_back(printable(rows[i][column]));
    }
    if (heads.empty()) return;
    fit(widths, width_ - INDENT);
    row(heads, widths, right, DIM);
    for (const Row& cells : shown) row(cells, widths, right, {});
}

void Screen::note(std::string_view text) {
    text_.append(INDENT, ' ');
    styled(DIM, printable(text));
    text_ += '\n';
}

/// One row, on as many lines as its longest cell needs.
void Screen::row(const Row& cells, const std::vector<std::size_t>& widths,
                 const std::vector<bool>& right, std::string_view style) {
    std::vector<std::string_view> rest(cells.begin(), cells.end());
    const auto empty = [](std::string_view text) { return text.empty(); };
    do {
        std::string line(INDENT, ' ');
        for (std::size_t i = 0; i < rest.size(); ++i) {
            const std::string_view piece = takeLine(rest[i], widths[i]);
            const std::string blanks(widths[i] - std::min(widths[i], columns(piece)), ' ');
            if (i > 0) line.append(GAP, ' ');
            line.append(right[i] ? blanks : "").append(piece).append(right[i] ? "" : blanks);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        styled(style, line);
        text_ += '\n';
    } while (!std::all_of(rest.begin(), rest.end(), empty));
}

}  // namespace cli
