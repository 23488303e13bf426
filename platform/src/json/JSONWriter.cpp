// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/JSONWriter.h"

#include <algorithm>
#include <boost/property_tree/json_parser/error.hpp>
#include <boost/property_tree/ptree.hpp>
#include <ostream>
#include <stdexcept>

#include "json/Escape.h"
#include "json/TreePath.h"
#include "json/TreeText.h"
#include "json/WriterState.h"
#include "mav_platform/JSONObjectWriter.h"

namespace mav_platform {

using json::KeyPlace;

namespace {

constexpr std::size_t INDENT = 4;
/// Levels with more keys than this are searched through a table.
constexpr std::size_t FEW_KEYS = 64;

std::uint64_t maskBit(std::uint64_t hash) {
    return std::uint64_t{1} << (hash >> 58);
}

/// A text of its own for a writer, begun with its bracket.
json::SharedText* begunText(bool list) {
    auto text = std::make_unique<json::SharedText>();
    char* out = text->text.room(1);
    *out++ = list ? '[' : '{';
    text->text.commit(out);
    return text.release();
}

char* putLineStart(char* out, std::size_t depth) {
    *out++ = '\n';
    return json::putSpaces(out, INDENT * depth);
}

}  // namespace

JSONWriter::JSONWriter(bool list) : out_(begunText(list)), start_(1), list_(list) {
    out_->active = this;
}

JSONWriter::JSONWriter(JSONWriter& parent, std::string_view key, bool list)
    : out_(parent.out_), parent_(&parent), key_(key), list_(list) {
    parent.checkIdle();
    if (parent.treeMode_ || (!parent.list_ && key.empty())) {
        // Written apart; finish() attaches the tree.
        out_ = begunText(list);
        out_->active = this;
        start_ = 1;
        parent.out_->active = this;
        return;
    }
    ownsText_ = false;
    keyHash_ = hashOf(key);
    mark_ = out_->text.size();
    depth_ = parent.depth_ + 1;
    parent.makeRoomForKey();
    KeyPlace place{keyHash_};
    char* out = parent.putMemberStart(out_->text.room(parent.memberRoom(key)), key, place);
    *out++ = list ? '[' : '{';
    out_->text.commit(out);
    start_ = out_->text.size();
    // The parent's mask learns the key when the child is finished.
    if (!parent.list_) out_->keys.push_back(place);
    firstKey_ = out_->keys.size();
    out_->active = this;
}

JSONWriter::~JSONWriter() {
    if (parent_ != nullptr) rollBack();
    if (ownsText_) delete out_;
}

void JSONWriter::checkIdle() const {
    if (out_->active == this) return;
    throw std::logic_error("JSONWriter: the writer is used while a child of it is still open");
}

json::WriterExtra& JSONWriter::extra() const {
    if (!extra_) extra_ = std::make_unique<json::WriterExtra>();
    return *extra_;
}

bool JSONWriter::empty() const {
    checkIdle();
    return treeMode_ ? extra_->tree.empty() : out_->text.size() == start_;
}

// ---- tree ----

JSONWriter::ptree JSONWriter::parsedTree() const {
    ptree tree;
    json::parseRendered(out_->text.view().substr(start_), list_, tree);
    return tree;
}

void JSONWriter::useTree() {
    if (treeMode_) return;
    ptree tree = parsedTree();
    extra().tree.swap(tree);
    clear();
    treeMode_ = true;
}

/// Forgets the text and its keys.
void JSONWriter::clear() noexcept {
    out_->text.truncate(start_);
    out_->keys.resize(firstKey_);
    keyMask_ = 0;
    if (extra_) {
        extra_->manyKeys.clear();
        extra_->picturedAt = json::WriterExtra::NEVER;
    }
}

JSONWriter::ptree& JSONWriter::getTree() {
    checkIdle();
    useTree();
    return extra_->tree;
}

const JSONWriter::ptree& JSONWriter::getTree() const {
    checkIdle();
    json::WriterExtra& cache = extra();
    if (!treeMode_ && cache.picturedAt != out_->text.size()) {
        ptree tree = parsedTree();
        cache.tree.swap(tree);
        cache.picturedAt = out_->text.size();
    }
    return cache.tree;
}

JSONWriter::ptree& JSONWriter::getOtherTree(JSONWriter& other) const {
    return other.getTree();
}

const JSONWriter::ptree& JSONWriter::getOtherTree(const JSONWriter& other) const {
    return other.getTree();
}

// ---- text ----

std::string_view JSONWriter::textView() const {
    checkIdle();
    constexpr std::string_view TAIL = "\n}\n";
    if (!treeMode_ && !list_ && depth_ == 0 && ownsText_) {
        // The tail lies behind the text, where the next member overwrites it.
        char* const tail = out_->text.room(TAIL.size());
        TAIL.copy(tail, TAIL.size());
        return {out_->text.data(), out_->text.size() + TAIL.size()};
    }
    json::TextBuffer& rendered = extra().rendered;
    rendered.truncate(0);
    json::renderDocument(rendered, getTree());
    return rendered.view();
}

std::string JSONWriter::text() const {
    return std::string(textView());
}

void JSONWriter::write(std::ostream& out) const {
    const std::string_view text = textView();
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.flush();
    if (!out.good()) {
        throw boost::property_tree::json_parser::json_parser_error("write error", "", 0);
    }
}

std::unique_ptr<char[]> JSONWriter::newText() {
    const std::string_view text = textView();
    const std::size_t size = text.size();
    std::unique_ptr<char[]> result(new char[size + 1]);
    // Made up front, so that nothing can fail once the text is given away.
    const std::unique_ptr<json::SharedText> fresh(begunText(list_));
    if (text.data() == out_->text.data()) {
        out_->text.commit(text.data() + size);
        out_->text.drainTo(result.get());
        std::swap(out_->text, fresh->text);
    } else {
        extra_->rendered.drainTo(result.get());
    }
    if (treeMode_) extra_->tree.clear();
    clear();
    treeMode_ = false;
    result[size] = '\0';
    return result;
}

// ---- children ----

void JSONWriter::finish() {
    if (treeMode_ || ownsText_) {
        finishTree();
    } else {
        finishText();
    }
}

void JSONWriter::finishText() {
    json::TextBuffer& text = out_->text;
    if (text.size() == start_) {
        rollBack();
        return;
    }
    char* out = putLineStart(text.room(INDENT * depth_ + 2), depth_);
    *out++ = list_ ? ']' : '}';
    text.commit(out);
    out_->keys.resize(firstKey_);
    parent_->keyMask_ |= maskBit(keyHash_);
    leaveParent();
}

void JSONWriter::finishTree() {
    useTree();
    JSONWriter& parent = *parent_;
    rollBack();
    if (!extra_->tree.empty()) parent.appendChild(key_, extra_->tree);
}

void JSONWriter::rollBack() noexcept {
    if (!ownsText_) {
        out_->text.truncate(mark_);
        out_->keys.resize(parent_->list_ ? firstKey_ : firstKey_ - 1);
    }
    leaveParent();
}

void JSONWriter::leaveParent() noexcept {
    parent_->out_->active = parent_;
    parent_ = nullptr;
}

// ---- members ----

void JSONWriter::addText(std::string_view key, std::string_view value) {
    if (value.empty()) return;
    checkIdle();
    if (!treeMode_) {
        const json::KeyLook look = json::lookAtKey(key);
        if ((look.plain || list_) && appendScalar(key, look.hash, value, Existing::REPLACED))
            return;
    }
    useTree();
    ptree* node = list_ ? nullptr : json::findPath(extra_->tree, key);
    if (node == nullptr) node = &addNodeAtPath(key);
    node->data().assign(value);
}

void JSONWriter::addLiteralText(std::string_view key, std::string_view value) {
    if (value.empty()) return;
    checkIdle();
    if (!treeMode_ && !key.empty() && appendScalar(key, hashOf(key), value, Existing::KEPT)) return;
    useTree();
    addNode(key).data().assign(value);
}

void JSONWriter::addWriter(std::string_view key, const JSONWriter& sub) {
    if (sub.empty()) return;
    checkIdle();
    if (takes(key) && !sub.treeMode_ && sub.out_ != out_) {
        appendCopy(key, sub);
    } else if (sub.treeMode_) {
        addTree(key, sub.extra_->tree);
    } else {
        addTree(key, sub.parsedTree());
    }
}

void JSONWriter::addTree(std::string_view key, const ptree& sub) {
    if (sub.empty()) return;
    checkIdle();
    if (takes(key) && appendRendered(key, sub)) return;
    ptree copy(sub);
    useTree();
    addNodeAtPath(key).swap(copy);
}

void JSONWriter::addObjectAt(std::string_view key, const JSONSerializable* object) {
    if (object == nullptr) return;
    if (takes(key)) {
        addFilled<JSONObjectWriter>(key,
                                    [object](JSONObjectWriter& child) { object->toJSON(child); });
    } else {
        JSONObjectWriter apart;
        object->toJSON(apart);
        addWriter(key, apart);
    }
}

void JSONWriter::addTexts(std::string_view key, const HSTVector<std::string>& values) {
    const auto fill = [&values](JSONListWriter& list) {
        for (const std::string& value : values) list.addItem(value);
    };
    if (takes(key)) {
        addFilled<JSONListWriter>(key, fill);
    } else {
        JSONListWriter apart;
        fill(apart);
        addWriter(key, apart);
    }
}

/// True when a member of that path can go straight into the text.
bool JSONWriter::takes(std::string_view path) const {
    return !treeMode_ && (list_ || json::lookAtKey(path).plain);
}

std::uint64_t JSONWriter::hashOf(std::string_view key) {
    return json::lookAtKey(key).hash;
}

/// Begins a member in room that is there; `place` learns where the key stands.
char* JSONWriter::putMemberStart(char* out, std::string_view key, KeyPlace& place) const {
    if (out_->text.size() != start_) *out++ = ',';
    out = putLineStart(out, depth_ + 1);
    if (list_) return out;
    *out++ = '"';
    const char* const begin = out;
    out = json::escape(out, key);
    place.offset = static_cast<std::size_t>(begin - out_->text.data());
    place.size = static_cast<std::size_t>(out - begin);
    *out++ = '"';
    *out++ = ':';
    *out++ = ' ';
    return out;
}

std::size_t JSONWriter::memberRoom(std::string_view key) const {
    return json::escapeRoom(key) + INDENT * (std::size_t{depth_} + 1) + 8;
}

/// False, with nothing written, when the key is there already and its value must be replaced.
bool JSONWriter::appendScalar(std::string_view key, std::uint64_t hash, std::string_view value,
                              Existing existing) {
    makeRoomForKey();
    KeyPlace place{hash};
    char* out = out_->text.room(memberRoom(key) + json::escapeRoom(value));
    out = putMemberStart(out, key, place);
    if (existing == Existing::REPLACED && knows(place)) return false;
    *out++ = '"';
    out = json::escape(out, value);
    *out++ = '"';
    out_->text.commit(out);
    remember(place);
    return true;
}

/// Copies the text of a writer that stands alone, moved to the depth it gets here.
void JSONWriter::appendCopy(std::string_view key, const JSONWriter& sub) {
    makeRoomForKey();
    const std::string_view body = sub.out_->text.view().substr(sub.start_);
    const std::size_t to = INDENT * (std::size_t{depth_} + 1);
    const std::size_t from = INDENT * std::size_t{sub.depth_};
    const auto lines = static_cast<std::size_t>(std::count(body.begin(), body.end(), '\n')) + 1;
    KeyPlace place{hashOf(key)};
    char* out = out_->text.room(memberRoom(key) + body.size() + lines * to + 2);
    out = putMemberStart(out, key, place);
    *out++ = sub.list_ ? '[' : '{';
    for (std::size_t begin = 0; begin < body.size();) {
        const std::size_t end = std::min(body.find('\n', begin + 1), body.size());
        *out++ = '\n';
        out = json::putSpaces(out, to);
        const std::string_view line = body.substr(begin + 1 + from, end - begin - 1 - from);
        out += line.copy(out, line.size());
        begin = end;
    }
    out = putLineStart(out, depth_ + 1);
    *out++ = sub.list_ ? ']' : '}';
    out_->text.commit(out);
    remember(place);
}

/// False, with nothing written, when only a tree can hold the sub-tree.
bool JSONWriter::appendRendered(std::string_view key, const ptree& sub) {
    makeRoomForKey();
    json::TextBuffer& text = out_->text;
    const std::size_t before = text.size();
    KeyPlace place{hashOf(key)};
    text.commit(putMemberStart(text.room(memberRoom(key)), key, place));
    bool done = false;
    try {
        done = json::renderValue(text, sub, std::size_t{depth_} + 1);
    } catch (...) {
        text.truncate(before);
        throw;
    }
    if (done) {
        remember(place);
    } else {
        text.truncate(before);
    }
    return done;
}

/// Attaches the tree of a child, which is used up.
void JSONWriter::appendChild(std::string_view key, ptree& sub) {
    if (!treeMode_ && (list_ || !key.empty()) && appendRendered(key, sub)) return;
    useTree();
    addNode(key).swap(sub);
}

JSONWriter::ptree& JSONWriter::addNode(std::string_view key) {
    return extra_->tree.push_back({std::string(key), ptree()})->second;
}

JSONWriter::ptree& JSONWriter::addNodeAtPath(std::string_view path) {
    return list_ ? addNode({}) : json::addPath(extra_->tree, path);
}

// ---- keys ----

/// After this `remember` cannot fail.
void JSONWriter::makeRoomForKey() {
    auto& keys = out_->keys;
    if (keys.size() == keys.capacity()) keys.reserve(std::max<std::size_t>(64, keys.size() * 2));
}

bool JSONWriter::knows(const KeyPlace& place) const {
    if (list_ || (keyMask_ & maskBit(place.hash)) == 0) return false;
    const KeyPlace* const keys = out_->keys.data() + firstKey_;
    const std::size_t count = out_->keys.size() - firstKey_;
    if (count > FEW_KEYS) return extra().manyKeys.holds(place, out_->text, keys, count);
    return std::any_of(keys, keys + count, [&](const KeyPlace& other) {
        return json::sameKey(out_->text, place, other);
    });
}

void JSONWriter::remember(const KeyPlace& place) noexcept {
    if (list_) return;
    out_->keys.push_back(place);
    keyMask_ |= maskBit(place.hash);
}

}  // namespace mav_platform
