// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/JSONWriter.h"

#include <algorithm>
#include <boost/property_tree/json_parser/error.hpp>
#include <boost/property_tree/ptree.hpp>
#include <cstring>
#include <ostream>
#include <type_traits>
#include <utility>

#include "json/Document.h"
#include "json/TextBuffer.h"
#include "json/render.h"
#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONObjectWriter.h"

namespace mav_platform {
namespace {

constexpr std::size_t INDENT = 4;

/// A key's hash; equal keys have equal hashes.
std::uint32_t hashOf(std::string_view key) {
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
    const std::size_t part = std::min(key.size(), sizeof(head));
    std::memcpy(&head, key.data(), part);
    std::memcpy(&tail, key.data() + key.size() - part, part);
    std::uint64_t mixed = (head ^ (tail << 1U) ^ key.size()) * 0x9E3779B97F4A7C15U;
    for (std::size_t i = sizeof(head); i + sizeof(head) < key.size(); ++i) {
        mixed = (mixed ^ static_cast<unsigned char>(key[i])) * 0x100000001B3U;
    }
    return static_cast<std::uint32_t>(mixed >> 32U);
}

std::uint64_t bitOf(std::uint32_t hash) {
    return std::uint64_t{1} << (hash & 63U);
}

/// Appends text whose lines get `blanks` more in front.
void appendIndented(detail::TextBuffer& out, std::string_view text, std::size_t blanks) {
    while (!text.empty()) {
        const std::size_t line = std::min(text.find('\n'), text.size() - 1) + 1;
        out.appendBlanks(blanks);
        out.append(text.substr(0, line));
        text.remove_prefix(line);
    }
}

}  // namespace

JSONWriter::JSONWriter(Kind kind)
    : own_(std::make_unique<detail::TextBuffer>()), buffer_(own_.get()), kind_(kind) {
    // An outermost object stands ready to be printed as it is.
    buffer_->append("{\n");
    begin_ = buffer_->size();
}

JSONWriter::JSONWriter(JSONWriter& parent, Kind kind)
    : buffer_(parent.buffer_),
      begin_(parent.buffer_->size()),
      keysBegin_(parent.buffer_->keys.size()),
      depth_(parent.depth_ + 1),
      kind_(kind) {}

JSONWriter::~JSONWriter() = default;

std::string_view JSONWriter::content_() const {
    return buffer_->view(begin_);
}

JSONWriter::ptree JSONWriter::makeTree_() const {
    if (count_ == 0) return ptree();
    const bool isList = kind_ == Kind::LIST;
    std::string text(isList ? "[" : "{");
    text += content_();
    text += isList ? ']' : '}';
    return json::Document::ofOwnText(std::move(text)).tree();
}

JSONWriter::ptree& JSONWriter::useTree_() {
    if (!inTree_) {
        tree_ = std::make_unique<ptree>(makeTree_());
        inTree_ = true;
        buffer_->truncate(begin_);
        buffer_->keys.resize(keysBegin_);
    }
    return *tree_;
}

JSONWriter::ptree& JSONWriter::getTree() {
    return useTree_();
}

const JSONWriter::ptree& JSONWriter::getTree() const {
    if (!inTree_) tree_ = std::make_unique<ptree>(makeTree_());
    return *tree_;
}

JSONWriter::ptree& JSONWriter::getOtherTree(JSONWriter& other) const {
    return other.getTree();
}

const JSONWriter::ptree& JSONWriter::getOtherTree(const JSONWriter& other) const {
    return other.getTree();
}

bool JSONWriter::empty() const {
    return inTree_ ? tree_->empty() : count_ == 0;
}

template <class Take>
void JSONWriter::render_(Take take) const {
    if (inTree_ || kind_ == Kind::LIST || own_ == nullptr) {
        detail::TextBuffer text;
        json::renderDocument(getTree(), text);
        take(text.view(0), std::string_view());
    } else {
        take(buffer_->view(begin_ - 2), std::string_view(count_ == 0 ? "}\n" : "\n}\n"));
    }
}

void JSONWriter::write(std::ostream& out) const {
    render_([&](std::string_view text, std::string_view end) {
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
        out.write(end.data(), static_cast<std::streamsize>(end.size()));
        out.flush();
    });
    if (!out.good())
        throw boost::property_tree::json_parser::json_parser_error("write error", "", 0);
}

std::string JSONWriter::text() const {
    std::string result;
    render_([&](std::string_view text, std::string_view end) {
        result.reserve(text.size() + end.size());
        result.append(text).append(end);
    });
    return result;
}

std::unique_ptr<char[]> JSONWriter::newText() const {
    std::unique_ptr<char[]> result;
    render_([&](std::string_view text, std::string_view end) {
        result.reset(new char[text.size() + end.size() + 1]);
        std::memcpy(result.get(), text.data(), text.size());
        std::memcpy(result.get() + text.size(), end.data(), end.size());
        result[text.size() + end.size()] = '\0';
    });
    return result;
}

JSONWriter::Mark JSONWriter::mark_() const {
    return {buffer_->size(), count_, buffer_->keys.size(), bloom_};
}

void JSONWriter::goBack_(const Mark& mark) {
    buffer_->truncate(mark.size);
    buffer_->keys.resize(mark.keys);
    count_ = mark.count;
    bloom_ = mark.bloom;
}

void JSONWriter::beginMember_(std::string_view key) {
    if (count_++ != 0) buffer_->append(",\n");
    buffer_->appendBlanks(INDENT * levels_());
    if (kind_ == Kind::LIST) return;
    const std::uint32_t hash = hashOf(key);
    bloom_ |= bitOf(hash);
    buffer_->keys.push_back(hash);
    buffer_->appendQuoted(key);
    buffer_->append(": ");
}

bool JSONWriter::mayHave_(std::string_view key) const {
    const std::uint32_t hash = hashOf(key);
    if ((bloom_ & bitOf(hash)) == 0) return false;
    const auto& keys = buffer_->keys;
    return std::find(keys.begin() + static_cast<std::ptrdiff_t>(keysBegin_), keys.end(), hash) !=
           keys.end();
}

void JSONWriter::addText_(std::string_view value) {
    buffer_->appendQuoted(value);
}

bool JSONWriter::appendWriter_(std::string_view key, const JSONWriter& sub) {
    if (sub.inTree_) return appendTree_(key, *sub.tree_);
    const bool isList = sub.kind_ == Kind::LIST;
    const std::string_view content = sub.content_();
    beginMember_(key);
    buffer_->append(isList ? "[\n" : "{\n");
    appendIndented(*buffer_, content, INDENT * levels_());
    buffer_->append('\n');
    buffer_->appendBlanks(INDENT * levels_());
    buffer_->append(isList ? ']' : '}');
    return true;
}

bool JSONWriter::appendTree_(std::string_view key, const ptree& sub) {
    if (!json::isRepresentable(sub)) return false;
    beginMember_(key);
    json::render(sub, levels_(), *buffer_);
    return true;
}

template <class Child>
void JSONWriter::addChild_(std::string_view key, FillCall<Child> fill) {
    if (inTree_ || (kind_ == Kind::OBJECT && key.empty())) {
        Child alone;
        fill.call(fill.function, alone);
        if (!alone.empty()) addToTree_(key, alone.getTree());
        return;
    }
    const Mark before = mark_();
    beginMember_(key);
    buffer_->append(std::is_same_v<Child, JSONListWriter> ? "[\n" : "{\n");
    try {
        Child child(*this);
        fill.call(fill.function, child);
        closeChild_(child, key, before);
    } catch (...) {
        goBack_(before);
        throw;
    }
}

template void JSONWriter::addChild_(std::string_view, FillCall<JSONObjectWriter>);
template void JSONWriter::addChild_(std::string_view, FillCall<JSONListWriter>);

void JSONWriter::closeChild_(JSONWriter& child, std::string_view key, const Mark& before) {
    if (child.empty()) {
        goBack_(before);
        return;
    }
    if (child.inTree_) {
        goBack_(before);
        if (!appendTree_(key, *child.tree_)) addToTree_(key, *child.tree_);
        return;
    }
    buffer_->keys.resize(child.keysBegin_);
    buffer_->append('\n');
    buffer_->appendBlanks(INDENT * levels_());
    buffer_->append(child.kind_ == Kind::LIST ? ']' : '}');
}

void JSONWriter::addToTree_(std::string_view key, const ptree& sub) {
    useTree_().push_back({std::string(key), sub});
}

}  // namespace mav_platform
