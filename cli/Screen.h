// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cli {

/// Whether the answer is coloured: "always", "never", or "auto": on a terminal, unless NO_COLOR is
/// set or TERM is "dumb". Throws UsageError about `command` for another text.
bool wantsColor(const std::string& choice, const std::string& command);

/// Columns of the terminal that standard output is, else 100; never less than 60.
std::size_t screenWidth();

/// Lays out an answer for people: a title, sections, named values and tables, in a given width.
/// Cells that are too wide go on below; every text is made printable. Without colour it is plain.
class Screen {
  public:
    using Row = std::vector<std::string>;

    Screen(bool color, std::size_t width) : color_(color), width_(width) {}

    void title(std::string_view text);
    void section(std::string_view name);
    /// Named values below each other; those with an empty value are left out.
    void values(const std::vector<std::pair<std::string, std::string>>& list);
    /// A table with a line of column names. Columns without any text are left out; columns of
    /// numbers alone stand to the right.
    void table(const Row& names, const std::vector<Row>& rows);
    /// A line of its own, indented.
    void note(std::string_view text);
    const std::string& text() const { return text_; }

  private:
    void row(const Row& cells, const std::vector<std::size_t>& widths,
             const std::vector<bool>& right, std::string_view style);
    void styled(std::string_view style, std::string_view text);

    bool color_;
    std::size_t width_;
    std::string text_;
};

}  // namespace cli
