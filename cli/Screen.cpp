// SPDX-License-Identifier: Apache-2.0
#include "Screen.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>

#include "Command.h"
#include "Output.h"
#include "mav_host/HUTEnv.h"

namespace cli {
namespace {

constexpr std::size_t INDENT = 2;
constexpr std::size_t GAP = 2;
constexpr std::size_t NARROWEST = 60;
// What two sections beside each other need: this width, this much between them and for each.
constexpr std::size_t WIDE = 100;
constexpr std::size_t ALLEY = 4;
constexpr std::size_t NARROWEST_SECTION = 30;
// Lines that a section may grow by when it is squeezed.
constexpr std::size_t GROWTH = 3;
constexpr std::string_view BOLD = "\033[1m";
constexpr std::string_view HEADING = "\033[1;36m";
constexpr std::string_view DIM = "\033[2m";
constexpr std::string_view RESET = "\033[0m";

/// Takes the first `width` columns off the text, up to a blank in it where there is one; a
/// character at least.
std::string_view takeLine(std::string_view& text, std::size_t width) {
    std::size_t end = 0;
    std::size_t blank = 0;
    for (std::size_t taken = 0; end < text.size();) {
        const Character next = firstCharacter(text.substr(end));
        if (taken + next.columns > width && end > 0) break;
        if (text[end] == ' ') blank = end;
        taken += next.columns;
        end += next.bytes;
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

bool isWhole(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// Makes columns narrower, the widest first, until they fit.
void fit(std::vector<std::size_t>& widths, std::size_t room) {
    std::size_t total = GAP * (widths.size() - 1);
    for (const std::size_t width : widths) total += width;
    while (total > room) {
        const auto widest = std::max_element(widths.begin(), widths.end());
        if (*widest <= 1) return;
        --*widest;
        --total;
    }
}

/// The widest of the lines.
template <class Lines>
std::size_t extent(const Lines& lines) {
    std::size_t widest = 0;
    for (const auto& line : lines) widest = std::max(widest, line.columns);
    return widest;
}

}  // namespace

void addColor(Command& command, std::string& choice, const std::string& description) {
    command.option("--color", &choice, "auto|always|never", description)
        .oneOf("colour choice", {"auto", "always", "never"});
}

bool wantsColor(const std::string& choice) {
    if (choice == "always") return true;
    if (choice == "never") return false;
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

std::vector<std::string> Screen::lines(const Row& names, const std::vector<Row>& rows) {
    std::vector<Row> shown;
    std::vector<std::size_t> widths;
    std::vector<bool> right;
    const auto measure = [&](const Row& row, bool isHead) {
        Row cells;
        for (std::size_t i = 0; i < row.size(); ++i) {
            cells.push_back(row[i].empty() ? "-" : printable(row[i]));
            if (i + 1 == row.size()) break;
            if (widths.size() <= i) {
                widths.push_back(0);
                right.push_back(!rows.empty());
            }
            widths[i] = std::max(widths[i], columns(cells[i]));
            right[i] = right[i] && (isHead || isWhole(row[i]));
        }
        shown.push_back(std::move(cells));
    };
    if (!names.empty()) measure(names, true);
    for (const Row& row : rows) measure(row, false);
    std::vector<std::string> made;
    for (const Row& cells : shown) {
        std::string& line = made.emplace_back();
        for (std::size_t i = 0; i + 1 < cells.size(); ++i) {
            const std::string blanks(widths[i] - columns(cells[i]), ' ');
            line += right[i] ? blanks + cells[i] : cells[i] + blanks;
            line.append(GAP, ' ');
        }
        if (!cells.empty()) line += cells.back();
    }
    return made;
}

std::vector<std::string> Screen::fitting(const Row& names, std::vector<Row> rows) {
    if (::isatty(STDOUT_FILENO) == 0) return lines(names, rows);
    for (Row& row : rows)
        for (std::string& cell : row)
            if (cell.empty()) cell.assign(1, '-');
    Screen screen(false, screenWidth() + INDENT);
    screen.section("");
    screen.table(names, rows);
    std::vector<std::string> made;
    Lines whole = screen.lines(screen.sections_.back(), screen.width_);
    for (auto line = whole.begin() + 1; line != whole.end(); ++line)
        made.push_back(line->text.substr(std::min(INDENT, line->text.size())));
    return made;
}

Screen::Line Screen::styled(std::string_view style, std::string_view text) const {
    Line line{std::string(text), columns(text)};
    if (color_ && !style.empty()) line.text.insert(0, style).append(RESET);
    return line;
}

void Screen::section(std::string_view name) {
    sections_.push_back({std::string(name), {}});
}

void Screen::values(const std::vector<std::pair<std::string, std::string>>& list) {
    Grid grid{{}, {}, {0, 0}, {false, false}};
    for (const auto& [name, value] : list) {
        if (value.empty()) continue;
        grid.rows.push_back({printable(name), printable(value)});
        for (std::size_t i = 0; i < 2; ++i)
            grid.widths[i] = std::max(grid.widths[i], columns(grid.rows.back()[i]));
    }
    if (!grid.rows.empty()) sections_.back().grids.push_back(std::move(grid));
}

void Screen::table(const Row& names, const std::vector<Row>& rows) {
    Grid grid;
    grid.rows.resize(rows.size());
    for (std::size_t column = 0; column < names.size(); ++column) {
        Row shown;
        std::size_t width = 0;
        bool numbers = true;
        for (const Row& cells : rows) {
            shown.push_back(printable(cells[column]));
            width = std::max(width, columns(shown.back()));
            numbers = numbers && isNumber(cells[column]);
        }
        if (width == 0) continue;
        grid.heads.push_back(names[column]);
        grid.widths.push_back(std::max(width, columns(names[column])));
        grid.right.push_back(numbers);
        for (std::size_t i = 0; i < rows.size(); ++i) grid.rows[i].push_back(std::move(shown[i]));
    }
    if (!grid.heads.empty()) sections_.back().grids.push_back(std::move(grid));
}

void Screen::note(std::string_view text) {
    const std::string shown = printable(text);
    sections_.back().grids.push_back({{}, {{shown}}, {columns(shown)}, {false}, true});
}

std::size_t Screen::sections() const {
    return static_cast<std::size_t>(
        std::count_if(sections_.begin(), sections_.end(),
                      [](const Section& section) { return !section.grids.empty(); }));
}

/// One row, on as many lines as its longest cell needs.
void Screen::addRow(Lines& made, const Row& cells, const Grid& grid,
                    const std::vector<std::size_t>& widths, std::string_view style) const {
    std::vector<std::string_view> rest(cells.begin(), cells.end());
    const auto empty = [](std::string_view text) { return text.empty(); };
    do {
        std::string line(INDENT, ' ');
        for (std::size_t i = 0; i < rest.size(); ++i) {
            const std::string_view piece = takeLine(rest[i], widths[i]);
            const std::string blanks(widths[i] - std::min(widths[i], columns(piece)), ' ');
            if (i > 0) line.append(GAP, ' ');
            line.append(grid.right[i] ? blanks : "").append(piece);
            line.append(grid.right[i] ? "" : blanks);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        made.push_back(styled(style, line));
    } while (!std::all_of(rest.begin(), rest.end(), empty));
}

Screen::Lines Screen::lines(const Section& section, std::size_t width) const {
    Lines made{styled(HEADING, section.name)};
    for (const Grid& grid : section.grids) {
        std::vector<std::size_t> widths = grid.widths;
        fit(widths, width - INDENT);
        if (!grid.heads.empty()) addRow(made, grid.heads, grid, widths, DIM);
        for (const Row& cells : grid.rows)
            addRow(made, cells, grid, widths, grid.isNote ? DIM : "");
    }
    return made;
}

/// What the section needs so that no cell of a table goes on below; values may.
std::size_t Screen::tableWidth(const Section& section) {
    std::size_t widest = NARROWEST_SECTION;
    for (const Grid& grid : section.grids) {
        if (grid.heads.empty()) continue;
        widest = std::max(widest, std::accumulate(grid.widths.begin(), grid.widths.end(),
                                                  INDENT + GAP * (grid.widths.size() - 1)));
    }
    return widest;
}

/// The two sections side by side in the way that takes the fewest lines; nothing when the ways are
/// none or save less than a quarter of the lines.
Screen::Lines Screen::beside(const Section& left, const Section& right) const {
    const std::size_t room = width_ - ALLEY;
    const Lines first = lines(left, width_);
    const Lines second = lines(right, width_);
    std::size_t best = (first.size() + second.size() + 1) * 3 / 4 + 1;
    Lines made;
    for (const std::size_t width :
         {extent(first), room / 2, room - std::min(room, extent(second))}) {
        if (width < tableWidth(left) || width + tableWidth(right) > room) continue;
        Lines taken = lines(left, width);
        const Lines other = lines(right, room - width);
        const std::size_t height = std::max(taken.size(), other.size());
        if (height >= best || taken.size() > first.size() + GROWTH ||
            other.size() > second.size() + GROWTH)
            continue;
        best = height;
        taken.resize(height);
        for (std::size_t i = 0; i < other.size(); ++i) {
            taken[i].text.append(width + ALLEY - taken[i].columns, ' ').append(other[i].text);
        }
        made = std::move(taken);
    }
    return made;
}

std::string Screen::text() const {
    std::string text;
    const auto add = [&text](const Lines& lines) {
        for (const Line& line : lines) text.append(line.text).append("\n");
    };
    const std::string title = printable(title_);
    for (std::string_view rest = title; !rest.empty();) add({styled(BOLD, takeLine(rest, width_))});
    std::vector<const Section*> shown;
    for (const Section& section : sections_)
        if (!section.grids.empty()) shown.push_back(&section);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        if (!text.empty()) text += '\n';
        Lines pair;
        if (dense_ && width_ >= WIDE && i + 1 < shown.size())
            pair = beside(*shown[i], *shown[i + 1]);
        add(pair.empty() ? lines(*shown[i], width_) : pair);
        if (!pair.empty()) ++i;
    }
    return text;
}

}  // namespace cli
