// SPDX-License-Identifier: Apache-2.0
#include "xml/plain/PlainDocument.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace mav_host::xml::detail {
namespace {

// An event on the tape is its kind with its offset, and for a start tag the end of the name, the
// number of attributes and three words for each: where its name begins and ends and where its value
// ends; for a text its end.
constexpr unsigned KIND_SHIFT = 30;
constexpr std::uint32_t OFFSET_MASK = (std::uint32_t{1} << KIND_SHIFT) - 1;
constexpr std::uint32_t START = 0;
constexpr std::uint32_t END = std::uint32_t{1} << KIND_SHIFT;
constexpr std::uint32_t TEXT = std::uint32_t{2} << KIND_SHIFT;
constexpr std::size_t LONGEST_EVENT = 4 + 3 * PlainDocument::MOST_ATTRIBUTES;
/// Words of the tape that every document may have.
constexpr std::size_t SMALL_TAPE = 64 << 10;

enum Class : unsigned char {
    NAME_START = 1,
    NAME = 2,
    BLANK = 4,
    CHARACTER = 8,  ///< of text
    QUOTED = 16,    ///< of a value in quotation marks
    QUOTED_ONCE = 32,
    COMMENTED = 64,
};

constexpr std::array<unsigned char, 256> makeClasses() {
    std::array<unsigned char, 256> classes{};
    for (unsigned c = ' '; c <= '~'; ++c) classes[c] = CHARACTER | QUOTED | QUOTED_ONCE | COMMENTED;
    classes['<'] = classes['>'] = classes['&'] = COMMENTED;
    classes['"'] = CHARACTER | QUOTED_ONCE | COMMENTED;
    classes['\''] = CHARACTER | QUOTED | COMMENTED;
    for (unsigned c = 'a'; c <= 'z'; ++c) classes[c] |= NAME_START | NAME;
    for (unsigned c = 'A'; c <= 'Z'; ++c) classes[c] |= NAME_START | NAME;
    for (unsigned c = '0'; c <= '9'; ++c) classes[c] |= NAME;
    classes['_'] |= NAME_START | NAME;
    classes[':'] |= NAME_START | NAME;
    classes['-'] |= NAME;
    classes['.'] |= NAME;
    classes[' '] |= BLANK;
    classes['\t'] = classes['\n'] = CHARACTER | BLANK | COMMENTED;
    return classes;
}
constexpr std::array<unsigned char, 256> CLASSES = makeClasses();

bool is(char c, unsigned kinds) {
    return (CLASSES[static_cast<unsigned char>(c)] & kinds) != 0;
}

/// For all kinds but COMMENTED: the text's last byte, a ">", is of none of them, so that no run
/// leaves the text.
const char* skip(const char* cur, unsigned kinds) {
    while (is(*cur, kinds)) ++cur;
    return cur;
}

bool take(std::string_view& text, std::string_view beginning) {
    if (!text.starts_with(beginning)) return false;
    text.remove_prefix(beginning.size());
    return true;
}

/// Behind the declaration, when it is one of the usual ones.
std::string_view withoutDeclaration(std::string_view text) {
    std::string_view rest = text;
    if (!take(rest, "<?xml version=\"1.0\"")) return text;
    if (!take(rest, " encoding=\"UTF-8\"")) take(rest, " encoding=\"utf-8\"");
    if (!take(rest, " standalone=\"yes\"")) take(rest, " standalone=\"no\"");
    take(rest, " ");
    return take(rest, "?>") ? rest : text;
}

}  // namespace

PlainDocument::PlainDocument(std::string_view text)
    : text_(text.data()), end_(text.data() + text.size()) {}

bool PlainDocument::check() {
    while (end_ != text_ && is(end_[-1], BLANK)) --end_;
    if (end_ == text_ || end_[-1] != '>') return false;
    if (static_cast<std::size_t>(end_ - text_) > OFFSET_MASK) return false;
    const char* cur = withoutDeclaration({text_, static_cast<std::size_t>(end_ - text_)}).data();
    while (cur != nullptr && cur != end_) cur = *cur == '<' ? markup(cur) : content(cur);
    return cur != nullptr && rootSeen_ && open_.empty();
}

// ---- each answers the place behind what it read, null when that is not plain ----

const char* PlainDocument::markup(const char* cur) {
    // The last byte is a ">", so there is one behind a "<".
    if (cur[1] == '/') return endTag(cur);
    if (cur[1] == '!') return comment(cur);
    return startTag(cur);
}

const char* PlainDocument::startTag(const char* cur) {
    if (open_.empty() && rootSeen_) return nullptr;
    if (open_.size() == DEEPEST || !is(cur[1], NAME_START)) return nullptr;
    std::uint32_t* const event = room(LONGEST_EVENT);
    if (event == nullptr) return nullptr;
    const char* const name = cur + 1;
    event[0] = START | offset(cur);
    cur = skip(name, NAME);
    event[1] = offset(cur);
    namesSeen_ = 0;
    std::uint32_t* out = event + 3;
    for (;;) {
        const char* const behind = cur;
        cur = skip(cur, BLANK);
        if (*cur == '>' || *cur == '/') break;
        if (cur == behind || out == event + LONGEST_EVENT - 1) return nullptr;
        cur = attribute(cur, out);
        if (cur == nullptr) return nullptr;
        if (isRepeated(event + 3, out - 3)) return nullptr;
    }
    event[2] = static_cast<std::uint32_t>(out - event - 3) / 3;
    rootSeen_ = true;
    if (*cur == '>') {
        open_.push_back({offset(name), event[1] - offset(name)});
        ++cur;
    } else if (cur[1] == '>') {
        cur += 2;
        *out++ = END | offset(cur);
    } else {
        return nullptr;
    }
    used_ = static_cast<std::size_t>(out - tape_.data());
    return cur;
}

/// Only when it is written without blanks around its "=".
const char* PlainDocument::attribute(const char* cur, std::uint32_t*& out) {
    if (!is(*cur, NAME_START)) return nullptr;
    out[0] = offset(cur);
    cur = skip(cur, NAME);
    out[1] = offset(cur);
    if (*cur++ != '=') return nullptr;
    const char quote = *cur;
    if (quote != '"' && quote != '\'') return nullptr;
    cur = skip(cur + 1, quote == '"' ? QUOTED : QUOTED_ONCE);
    if (*cur != quote) return nullptr;
    out[2] = offset(cur);
    out += 3;
    return cur + 1;
}

/// True when the last attribute's name has occurred in the tag.
bool PlainDocument::isRepeated(const std::uint32_t* first, const std::uint32_t* added) {
    const std::string_view name = piece(added[0], added[1]);
    const auto hash = static_cast<unsigned char>(name.back()) * 5U +
                      static_cast<unsigned char>(name[name.size() / 2]) * 3U + name.size();
    const std::uint64_t bit = std::uint64_t{1} << (hash & 63U);
    const bool known = (namesSeen_ & bit) != 0;
    namesSeen_ |= bit;
    for (; known && first != added; first += 3)
        if (piece(first[0], first[1]) == name) return true;
    return false;
}

const char* PlainDocument::endTag(const char* cur) {
    if (open_.empty()) return nullptr;
    const Name name = open_.back();
    const char* const begin = cur + 2;
    if (static_cast<std::size_t>(end_ - begin) <= name.size) return nullptr;
    if (std::memcmp(begin, text_ + name.begin, name.size) != 0) return nullptr;
    std::uint32_t* const event = room(1);
    if (event == nullptr) return nullptr;
    *event = END | offset(cur);
    ++used_;
    open_.pop_back();
    cur = skip(begin + name.size, BLANK);
    return *cur == '>' ? cur + 1 : nullptr;
}

const char* PlainDocument::comment(const char* cur) const {
    std::string_view rest(cur, static_cast<std::size_t>(end_ - cur));
    if (!take(rest, "<!--")) return nullptr;
    const std::size_t size = rest.find("--");
    if (size == std::string_view::npos || !rest.substr(size).starts_with("-->")) return nullptr;
    const bool plain = std::all_of(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(size),
                                   [](char c) { return is(c, COMMENTED); });
    return plain ? rest.data() + size + 3 : nullptr;
}

const char* PlainDocument::content(const char* cur) {
    const char* const behind = skip(cur, open_.empty() ? BLANK : CHARACTER);
    // Outside of the root there are no events of text.
    if (*behind != '<') return nullptr;
    if (open_.empty()) return behind;
    std::uint32_t* const event = room(2);
    if (event == nullptr) return nullptr;
    event[0] = TEXT | offset(cur);
    event[1] = offset(behind);
    used_ += 2;
    return behind;
}

/// Null when the tape would become much larger than the text.
std::uint32_t* PlainDocument::room(std::size_t words) {
    const std::size_t needed = used_ + words;
    if (needed > tape_.size()) {
        const auto size = static_cast<std::size_t>(end_ - text_);
        if (needed > SMALL_TAPE + size / 2) return nullptr;
        tape_.resize(std::max(needed, tape_.empty() ? needed + size / 8 : tape_.size() * 2));
    }
    return tape_.data() + used_;
}

// ---- the replay ----

void PlainDocument::replay(Events& events) {
    std::array<AttributeView, MOST_ATTRIBUTES> attributes;
    const std::uint32_t* event = tape_.data();
    const std::uint32_t* const last = event + used_;
    while (event != last) {
        const std::uint32_t kind = *event & ~OFFSET_MASK;
        at_ = *event++ & OFFSET_MASK;
        if (kind == END) {
            events.end();
        } else if (kind == TEXT) {
            events.characters(piece(at_, *event++));
        } else {
            const std::string_view name = piece(at_ + 1, event[0]);
            const std::size_t count = event[1];
            event += 2;
            for (std::size_t i = 0; i < count; ++i, event += 3)
                attributes[i] = {piece(event[0], event[1]), piece(event[1] + 2, event[2])};
            events.start(name, {attributes.data(), count});
        }
    }
}

Position PlainDocument::position() const {
    for (;;) {
        const void* const found = std::memchr(text_ + counted_, '\n', at_ - counted_);
        if (found == nullptr) break;
        counted_ = lineStart_ = offset(static_cast<const char*>(found)) + 1;
        ++line_;
    }
    counted_ = at_;
    return {line_, at_ - lineStart_ + 1U};
}

}  // namespace mav_host::xml::detail
