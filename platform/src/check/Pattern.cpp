// SPDX-License-Identifier: Apache-2.0
#include "check/Pattern.h"

#include <algorithm>
#include <charconv>
#include <locale>
#include <vector>

namespace mav_platform::check {
namespace {

constexpr std::string_view COUNTS = "?*+{";
constexpr std::size_t LONGEST_TEXT = 63;
constexpr unsigned NO_LIMIT = LONGEST_TEXT + 1;

/// A bit for each place in the text.
using Places = std::uint64_t;

class Match {
  public:
    Match(std::string_view pattern, const std::vector<std::size_t>& close, std::string_view text)
        : pattern_(pattern), close_(close), text_(text), whole_(Places{1} << text.size()) {}

    bool run() {
        alternatives(0, pattern_.size(), 1, true);
        return done_;
    }

  private:
    struct Count {
        unsigned least = 1;
        unsigned most = 1;
        std::size_t end;
    };

    /// Where the alternatives from `at` up to `end` lead. With `last` nothing follows them, so that
    /// the end of the text ends the match.
    Places alternatives(std::size_t at, std::size_t end, Places from, bool last) {
        Places reached = 0;
        for (;;) {
            Places here = from;
            while (at < end && pattern_[at] != '|') at = piece(at, end, here, last);
            reached |= here;
            if (last && (here & whole_) != 0) done_ = true;
            if (at >= end || done_) return reached;
            ++at;
        }
    }

    /// One atom with its count; answers what follows.
    std::size_t piece(std::size_t at, std::size_t end, Places& places, bool last) {
        const std::size_t size = pattern_[at] == '\\' ? 2 : 1;
        const std::size_t atomEnd = close_[at] != 0 ? close_[at] + 1 : at + size;
        const Count count = countAt(atomEnd);
        const bool isLast =
            last && count.end == atomEnd && (atomEnd == end || pattern_[atomEnd] == '|');
        Places reached = places;
        places = count.least == 0 ? places : 0;
        for (unsigned times = 1; times <= count.most && reached != 0 && !done_; ++times) {
            reached = atom(at, atomEnd, reached, isLast);
            const Places before = places;
            if (times >= count.least) places |= reached;
            if (times > count.least && places == before) break;
        }
        return count.end;
    }

    Places atom(std::size_t at, std::size_t end, Places from, bool last) {
        if (pattern_[at] == '(') return alternatives(at + 3, end - 1, from, last);
        Places reached = 0;
        for (std::size_t i = 0; i < text_.size(); ++i) {
            if ((from >> i & 1U) != 0 && takes(at, end, text_[i])) reached |= Places{2} << i;
        }
        return reached;
    }

    bool takes(std::size_t at, std::size_t end, char c) const {
        if (pattern_[at] == '\\') return pattern_[at + 1] == c;
        if (pattern_[at] != '[') return pattern_[at] == c;
        for (++at; at + 1 < end; ++at) {
            const bool range = at + 3 < end && pattern_[at + 1] == '-';
            if (range ? pattern_[at] <= c && c <= pattern_[at + 2] : pattern_[at] == c) return true;
            if (range) at += 2;
        }
        return false;
    }

    Count countAt(std::size_t at) const {
        const char c = at < pattern_.size() ? pattern_[at] : '\0';
        if (c == '?') return {0, 1, at + 1};
        if (c == '*') return {0, NO_LIMIT, at + 1};
        if (c == '+') return {1, NO_LIMIT, at + 1};
        if (c != '{') return {1, 1, at};
        Count count{0, 0, close_[at] + 1};
        const char* const last = pattern_.data() + close_[at];
        const char* const comma = std::from_chars(pattern_.data() + at + 1, last, count.least).ptr;
        count.most = comma == last ? count.least : NO_LIMIT;
        if (comma != last) std::from_chars(comma + 1, last, count.most);
        return count;
    }

    std::string_view pattern_;
    const std::vector<std::size_t>& close_;
    std::string_view text_;
    Places whole_;
    bool done_ = false;
};

bool isCount(std::string_view text) {
    return !text.empty() && text.front() != ',' &&
           text.find_first_not_of("0123456789,") == std::string_view::npos &&
           std::count(text.begin(), text.end(), ',') <= 1 && text.size() < 8;
}

}  // namespace

Pattern::Pattern(std::string_view text) : text_(text) {
    if (text.size() < 2 || !text.starts_with('^') || !text.ends_with('$')) return;
    inner_ = text.substr(1, text.size() - 2);
    close_.resize(inner_.size());
    simple_ = scan();
}

/// Notes where groups, brackets and counts end; false for what is not simple.
bool Pattern::scan() {
    const std::string_view rest(inner_);
    std::vector<std::size_t> open;
    bool counted = true;  // nothing that a count may follow
    for (std::size_t at = 0; at < rest.size(); ++at) {
        const char c = rest[at];
        const bool count = COUNTS.find(c) != std::string_view::npos;
        if (count && counted) return false;
        if (c == '\\') {
            if (++at == rest.size() || std::string_view("+{}()[].").find(rest[at]) == rest.npos)
                return false;
        } else if (c == '[' || c == '{') {
            const std::size_t end = rest.find(c == '[' ? ']' : '}', at);
            if (end == rest.npos || end == at + 1) return false;
            const std::string_view inside = rest.substr(at + 1, end - at - 1);
            if (c == '[' && inside.find_first_of("^\\[") != inside.npos) return false;
            if (c == '{' && !isCount(inside)) return false;
            close_[at] = end;
            at = end;
        } else if (c == '(') {
            if (!rest.substr(at).starts_with("(?:")) return false;
            open.push_back(at);
            at += 2;
        } else if (c == ')') {
            if (open.empty()) return false;
            close_[open.back()] = at;
            open.pop_back();
        } else if ((c == '|' && open.empty()) || c == '.' || c == '^' || c == '$' || c == ']' ||
                   c == '}') {
            return false;
        }
        counted = count || c == '(' || c == '|';
    }
    return open.empty();
}

bool Pattern::matches(std::string_view text) {
    if (simple_ && text.size() <= LONGEST_TEXT) return Match(inner_, close_, text).run();
    if (!compiled_) {
        auto compiled = std::make_unique<std::regex>();
        compiled->imbue(std::locale::classic());
        compiled->assign(text_);
        compiled_ = std::move(compiled);
    }
    return std::regex_search(text.begin(), text.end(), *compiled_);
}

}  // namespace mav_platform::check
