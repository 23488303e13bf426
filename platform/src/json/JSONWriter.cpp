// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/JSONWriter.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <boost/property_tree/ptree.hpp>
#include <ostream>

#include "json/SharedText.h"
#include "json/TreeSink.h"
#include "mav_platform/JSONObjectWriter.h"

namespace mav_platform {

using Existing = json::TextSink::Existing;

JSONWriter::JSONWriter(bool list) : text_(*this, list) {}

JSONWriter::JSONWriter(JSONWriter& parent, std::string_view key, bool list)
    : text_(begun(*this, parent, key, list)), parent_(&parent), key_(key) {}

json::TextSink JSONWriter::begun(JSONWriter& child, JSONWriter& parent, std::string_view key,
                                 bool list) {
    parent.settle();
    const json::KeyLook look = json::lookAtKey(key);
    const bool asItStands = parent.text_.isList() || (!key.empty() && look.utf8);
    // Else it is written apart, and finish() attaches the tree.
    return !parent.tree_ && asItStands ? json::TextSink(child, parent.text_, key, look, list)
                                       : json::TextSink(child, list);
}

JSONWriter::~JSONWriter() {
    if (parent_ != nullptr) rollBack();
}

/// Makes this the writer whose members come next: what children that are still open have written
/// into its text goes apart, since they are attached only when they are finished.
void JSONWriter::settle() const {
    while (text_.active() != this) text_.active()->detach();
}

void JSONWriter::detach() {
    useTree();
    text_.moveApart(*this, parent_);
}

bool JSONWriter::empty() const {
    settle();
    return tree_ ? tree_->tree().empty() : text_.empty();
}

// ---- the whole ----

/// From here on members go into the tree.
json::TreeSink& JSONWriter::useTree() const {
    if (!tree_) {
        tree_ = std::make_unique<json::TreeSink>(text_.tree(), text_.isList());
        text_.clear();
    }
    return *tree_;
}

JSONWriter::ptree& JSONWriter::getTree() {
    settle();
    return useTree().tree();
}

const JSONWriter::ptree& JSONWriter::getTree() const {
    settle();
    return useTree().tree();
}

JSONWriter::ptree& JSONWriter::getOtherTree(JSONWriter& other) const {
    return other.getTree();
}

const JSONWriter::ptree& JSONWriter::getOtherTree(const JSONWriter& other) const {
    return other.getTree();
}

std::string_view JSONWriter::textView() const {
    settle();
    return !tree_ && text_.isDocument() ? text_.text() : useTree().text();
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
    const std::size_t size = textView().size();
    std::unique_ptr<char[]> result(new char[size + 1]);
    if (tree_) {
        tree_->drainTo(result.get());
    } else {
        text_.drainTo(result.get());
    }
    result[size] = '\0';
    return result;
}

std::optional<json::Document> json::compactDocument(const JSONSerializable& object) {
    JSONObjectWriter writer;
    TextSink& sink = static_cast<JSONWriter&>(writer).text_;
    sink.becomeCompact();
    try {
        object.toJSON(writer);
        return sink.takeDocument();
    } catch (const NotCompact&) {
        return std::nullopt;
    }
}

// ---- children ----

void JSONWriter::finish() {
    if (tree_ || text_.ownsText()) {
        finishTree();
    } else if (text_.empty()) {
        rollBack();
    } else {
        text_.close(parent_->text_);
        leaveParent();
    }
}

void JSONWriter::finishTree() {
    ptree& tree = useTree().tree();
    JSONWriter& parent = *parent_;
    rollBack();
    if (!tree.empty()) parent.attach(key_, tree);
}

void JSONWriter::rollBack() noexcept {
    if (!text_.ownsText()) text_.forget();
    leaveParent();
}

void JSONWriter::leaveParent() noexcept {
    if (!text_.ownsText()) text_.active() = parent_;
    parent_ = nullptr;
}

/// Attaches the tree of a child, which is used up.
void JSONWriter::attach(std::string_view key, ptree& sub) {
    const bool asItStands = text_.isList() || (!key.empty() && json::lookAtKey(key).utf8);
    if (!tree_ && asItStands && text_.addTree(key, sub)) return;
    useTree().addChild(key, sub);
}

// ---- members ----

/// True when a member of that path can go straight into the text.
bool JSONWriter::takes(std::string_view path) const {
    return !tree_ && text_.takes(path);
}

void JSONWriter::addText(std::string_view key, std::string_view value) {
    if (value.empty()) return;
    settle();
    const json::KeyLook look = json::lookAtKey(key);
    if (!look.utf8 || !json::isUtf8(value)) {
        addText(HI18N_convertToUTF8(key), HI18N_convertToUTF8(value));
        return;
    }
    if (!tree_ && (look.plain || text_.isList()) &&
        text_.addScalar(key, look.hash, value, Existing::REPLACED)) {
        return;
    }
    useTree().put(key, value);
}

void JSONWriter::addLiteralText(std::string_view key, std::string_view value) {
    if (value.empty()) return;
    settle();
    const json::KeyLook look = json::lookAtKey(key);
    if (!look.utf8 || !json::isUtf8(value)) {
        addLiteralText(HI18N_convertToUTF8(key), HI18N_convertToUTF8(value));
        return;
    }
    if (!tree_ && !key.empty() && text_.addScalar(key, look.hash, value, Existing::KEPT)) return;
    useTree().add(key, value);
}

void JSONWriter::addWriter(std::string_view key, const JSONWriter& sub) {
    if (sub.empty()) return;
    settle();
    if (takes(key) && !sub.tree_ && !text_.shares(sub.text_)) {
        text_.addCopy(key, sub.text_);
    } else if (sub.tree_) {
        addTree(key, sub.tree_->tree());
    } else {
        addTree(key, sub.text_.tree());
    }
}

void JSONWriter::addTree(std::string_view key, const ptree& sub) {
    if (sub.empty()) return;
    settle();
    if (takes(key) && text_.addTree(key, sub)) return;
    ptree copy(sub);  // it may be a part of this writer's tree
    useTree().addAtPath(key, copy);
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

}  // namespace mav_platform
