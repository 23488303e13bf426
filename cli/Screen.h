// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cli {

struct Command;

/// Appends the option that says when the answer is coloured.
void addColor(Command& command, std::string& choice, const std::string& description);

/// Whether the answer is coloured: "always", "never", or else on a terminal, unless NO_COLOR is set
/// or TERM is "dumb".
bool wantsColor(const std::string& choice);

/// Columns of the terminal that standard output is, else 100; never less than 60.
std::size_t screenWidth();

/// Lays out an answer for people: a title, sections, named values and tables, in a given width.
/// Cells that are too wide go on below; every text is made printable. Without colour it is plain.
/// A dense screen puts two sections beside each other where it is wide enough and lines are saved.
class Screen {
  public:
    using Row = std::vector<std::string>;

    /// The lines of a table that people and scripts read, of any width: the names, when there are
    /// some, then the rows. Empty cells are "-", columns of digits alone stand to the right, and
    /// the last cell of a row is not filled up.
    static std::vector<std::string> lines(const Row& names, const std::vector<Row>& rows);
    /// The same lines where standard output is a terminal, but none wider than it: cells that are
    /// too wide go on below.
    static std::vector<std::string> fitting(const Row& names, std::vector<Row> rows);

    Screen(bool color, std::size_t width, bool dense = false)
        : color_(color), width_(width), dense_(dense) {}

    void title(std::string_view text) { title_ = text; }
    /// What follows belongs to the section. One that nothing follows is not shown.
    void section(std::string_view name);
    /// Named values below each other; those with an empty value are left out.
    void values(const std::vector<std::pair<std::string, std::string>>& list);
    /// A table with a line of column names. Columns without any text are left out; columns of
    /// numbers alone stand to the right.
    void table(const Row& names, const std::vector<Row>& rows);
    /// A line of its own, indented.
    void note(std::string_view text);
    /// Sections so far that have something to show.
    std::size_t sections() const;
    std::string text() const;

  private:
    /// Rows in columns, with the widths that they would like to have.
    struct Grid {
        Row heads;
        std::vector<Row> rows;
        std::vector<std::size_t> widths;
        std::vector<bool> right;
        bool isNote = false;
    };
    struct Section {
        std::string name;
        std::vector<Grid> grids;
    };
    struct Line {
        std::string text;
        std::size_t columns;
    };
    using Lines = std::vector<Line>;

    Line styled(std::string_view style, std::string_view text) const;
    Lines lines(const Section& section, std::size_t width) const;
    void addRow(Lines& made, const Row& cells, const Grid& grid,
                const std::vector<std::size_t>& widths, std::string_view style) const;
    static std::size_t tableWidth(const Section& section);
    Lines beside(const Section& left, const Section& right) const;

    bool color_;
    std::size_t width_;
    bool dense_;
    std::string title_;
    std::vector<Section> sections_;
};

}  // namespace cli
