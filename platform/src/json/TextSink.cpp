// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <boost/property_tree/ptree.hpp>

#include "json/Escape.h"
#include "json/SharedText.h"
#include "json/TreeText.h"

namespace mav_platform::json {
namespace {

constexpr std::size_t INDENT = 4;
/// Levels with more keys than this are searched through a table.
constexpr std::size_t FEW_KEYS = 64;

std::uint64_t maskBit(std::uint64_t hash) {
    return std::uint64_t{1} << (hash >> 58);
}

/// A text of its own for a writer, begun with its bracket.
std::unique_ptr<SharedText> begunText(JSONWriter& writer, bool list) {
    auto begun = std::make_unique<SharedText>();
    char* out = begun->text.room(1);
    *out++ = list ? '[' : '{';
    begun->text.commit(out);
    begun->active = &writer;
    return begun;
}

char* putLineStart(char* out, std::size_t depth) {
    *out++ = '\n';
    return putSpaces(out, INDENT * depth);
}

}  // namespace

/// After this `remember` cannot fail.
inline void TextSink::makeRoomForKey() {
    shared_->keys.makeRoom();
}

inline void TextSink::remember(const KeyPlace& place) noexcept {
    if (list_) return;
    shared_->keys.push(place);
    keyMask_ |= maskBit(place.hash);
}

TextSink::TextSink(JSONWriter& writer, bool list)
    : shared_(begunText(writer, list).release()), start_(1), list_(list) {}

TextSink::TextSink(JSONWriter& writer, TextSink& parent, std::string_view key, const KeyLook& look,
                   bool list)
    : shared_(parent.shared_),
      mark_(shared_->text.size()),
      depth_(parent.depth_ + 1),
      list_(list),
      ownsText_(false),
      keyed_(!parent.list_) {
    parent.makeRoomForKey();
    if (shared_->cells) {
        beginCompact(key, look);
        shared_->active = &writer;
        return;
    }
    KeyPlace place{look.hash};
    char* out = parent.putMemberStart(shared_->text.room(parent.memberRoom(key)), key, place);
    *out++ = list ? '[' : '{';
    shared_->text.commit(out);
    start_ = shared_->text.size();
    // The parent's mask learns the key when the level is closed.
    if (keyed_) shared_->keys.push(place);
    firstKey_ = shared_->keys.size();
    shared_->active = &writer;
}

TextSink::~TextSink() {
    if (ownsText_) delete shared_;
}

void TextSink::close(TextSink& parent) {
    if (shared_->cells) {
        shared_->cells->close(cell_);
    } else {
        TextBuffer& text = shared_->text;
        char* out = putLineStart(text.room(INDENT * depth_ + 2), depth_);
        *out++ = list_ ? ']' : '}';
        text.commit(out);
    }
    shared_->keys.cut(firstKey_);
    if (keyed_) parent.keyMask_ |= maskBit(shared_->keys.back().hash);
}

void TextSink::forget() noexcept {
    shared_->text.truncate(mark_);
    if (shared_->cells) shared_->cells->truncate(cell_);
    shared_->keys.cut(keyed_ ? firstKey_ - 1 : firstKey_);
}

void TextSink::clear() noexcept {
    shared_->text.truncate(start_);
    shared_->keys.cut(firstKey_);
    keyMask_ = 0;
    manyKeys_.reset();
}

void TextSink::moveApart(JSONWriter& writer, JSONWriter* parent) {
    auto own = begunText(writer, list_);
    forget();
    shared_->active = parent;
    shared_ = own.release();
    start_ = 1;
    firstKey_ = 0;
    depth_ = 0;
    ownsText_ = true;
}

// ---- the whole ----

TextSink::ptree TextSink::tree() const {
    if (shared_->cells) throw NotCompact();
    ptree tree;
    parseRendered(shared_->text.view().substr(start_), list_, tree);
    return tree;
}

bool TextSink::isDocument() const {
    return !list_ && depth_ == 0 && ownsText_;
}

std::string_view TextSink::text() const {
    // The tail lies behind the text, where the next member overwrites it.
    constexpr std::string_view TAIL = "\n}\n";
    char* const tail = shared_->text.room(TAIL.size());
    TAIL.copy(tail, TAIL.size());
    return {shared_->text.data(), shared_->text.size() + TAIL.size()};
}

void TextSink::drainTo(char* out) {
    // Made up front, so that nothing can fail once the text is given away.
    const auto fresh = begunText(*shared_->active, list_);
    const std::string_view all = text();
    shared_->text.commit(all.data() + all.size());
    shared_->text.drainTo(out);
    std::swap(shared_->text, fresh->text);
    clear();
}

// ---- members ----

/// Begins a member in room that is there; `place` learns where the key stands.
char* TextSink::putMemberStart(char* out, std::string_view key, KeyPlace& place) const {
    if (shared_->text.size() != start_) *out++ = ',';
    out = putLineStart(out, depth_ + 1);
    if (list_) return out;
    *out++ = '"';
    const char* const begin = out;
    out = escape(out, key);
    place.offset = static_cast<std::size_t>(begin - shared_->text.data());
    place.size = static_cast<std::size_t>(out - begin);
    *out++ = '"';
    *out++ = ':';
    *out++ = ' ';
    return out;
}

std::size_t TextSink::memberRoom(std::string_view key) const {
    return escapeRoom(key) + INDENT * (std::size_t{depth_} + 1) + 8;
}

bool TextSink::addScalar(std::string_view key, std::uint64_t hash, std::string_view value,
                         Existing existing) {
    if (shared_->cells) return addCompact(key, hash, value, existing);
    makeRoomForKey();
    KeyPlace place{hash};
    char* out = shared_->text.room(memberRoom(key) + escapeRoom(value));
    out = putMemberStart(out, key, place);
    if (existing == Existing::REPLACED && knows(place)) return false;
    *out++ = '"';
    out = escape(out, value);
    *out++ = '"';
    shared_->text.commit(out);
    remember(place);
    return true;
}

void TextSink::addCopy(std::string_view key, const TextSink& sub) {
    if (shared_->cells || sub.shared_->cells) throw NotCompact();
    makeRoomForKey();
    const std::string_view body = sub.shared_->text.view().substr(sub.start_);
    const std::size_t to = INDENT * (std::size_t{depth_} + 1);
    const std::size_t from = INDENT * std::size_t{sub.depth_};
    const auto lines = static_cast<std::size_t>(std::count(body.begin(), body.end(), '\n')) + 1;
    KeyPlace place{lookAtKey(key).hash};
    char* out = shared_->text.room(memberRoom(key) + body.size() + lines * to + 2);
    out = putMemberStart(out, key, place);
    *out++ = sub.list_ ? '[' : '{';
    for (std::size_t begin = 0; begin < body.size();) {
        const std::size_t end = std::min(body.find('\n', begin + 1), body.size());
        *out++ = '\n';
        out = putSpaces(out, to);
        const std::string_view line = body.substr(begin + 1 + from, end - begin - 1 - from);
        out += line.copy(out, line.size());
        begin = end;
    }
    out = putLineStart(out, depth_ + 1);
    *out++ = sub.list_ ? ']' : '}';
    shared_->text.commit(out);
    remember(place);
}

bool TextSink::addTree(std::string_view key, const ptree& sub) {
    if (shared_->cells) throw NotCompact();
    makeRoomForKey();
    TextBuffer& text = shared_->text;
    const std::size_t before = text.size();
    KeyPlace place{lookAtKey(key).hash};
    text.commit(putMemberStart(text.room(memberRoom(key)), key, place));
    bool done = false;
    try {
        done = renderValue(text, sub, std::size_t{depth_} + 1);
    } catch (...) {
        text.truncate(before);
        throw;
    }
    done = done && isUtf8(text.view().substr(before));
    if (done) {
        remember(place);
    } else {
        text.truncate(before);
    }
    return done;
}

// ---- compact documents ----

namespace {

std::uint32_t offset32(std::size_t offset) {
    if (offset > Document::MAX_SIZE) throw NotCompact();
    return static_cast<std::uint32_t>(offset);
}

}  // namespace

void TextSink::becomeCompact() {
    shared_->cells = std::make_unique<CellList>();
    shared_->cells->add(Kind::OBJECT, 0, 0, 0);
}

Document TextSink::takeDocument() {
    shared_->cells->close(0);
    return Document(std::make_shared<TextBuffer>(std::move(shared_->text)), shared_->cells->take());
}

/// The level of a child, under its key.
void TextSink::beginCompact(std::string_view key, const KeyLook& look) {
    TextBuffer& text = shared_->text;
    if (!keyed_) key = {};
    char* const out = text.room(key.size());
    text.commit(out + key.copy(out, key.size()));
    cell_ = shared_->cells->add(list_ ? Kind::LIST : Kind::OBJECT, offset32(mark_),
                                offset32(key.size()), 0);
    start_ = text.size();
    if (keyed_) shared_->keys.push({look.hash, mark_, key.size()});
    firstKey_ = shared_->keys.size();
}

bool TextSink::addCompact(std::string_view key, std::uint64_t hash, std::string_view value,
                          Existing existing) {
    makeRoomForKey();
    TextBuffer& text = shared_->text;
    if (list_) key = {};
    const std::size_t at = text.size();
    char* const out = text.room(key.size() + value.size());
    key.copy(out, key.size());
    const KeyPlace place{hash, at, key.size()};
    if (existing == Existing::REPLACED && knows(place)) return false;
    value.copy(out + key.size(), value.size());
    text.commit(out + key.size() + value.size());
    offset32(text.size());
    shared_->cells->add(Kind::SCALAR, offset32(at), offset32(key.size()), offset32(value.size()));
    remember(place);
    return true;
}

// ---- keys ----

bool TextSink::knows(const KeyPlace& place) {
    if (list_ || (keyMask_ & maskBit(place.hash)) == 0) return false;
    const KeyPlace* const keys = shared_->keys.data() + firstKey_;
    const std::size_t count = shared_->keys.size() - firstKey_;
    if (count > FEW_KEYS) {
        if (!manyKeys_) manyKeys_ = std::make_unique<KeySet>();
        return manyKeys_->holds(place, shared_->text, keys, count);
    }
    return std::any_of(keys, keys + count,
                       [&](const KeyPlace& other) { return sameKey(shared_->text, place, other); });
}

}  // namespace mav_platform::json
