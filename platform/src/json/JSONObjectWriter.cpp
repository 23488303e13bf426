// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/JSONObjectWriter.h"

#include <boost/property_tree/ptree.hpp>
#include <charconv>

#include "json/TextBuffer.h"
#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONSerializable.h"

namespace mav_platform {
namespace {

/// Only the tree walks paths and holds members without a name.
bool isPlain(std::string_view key) {
    return !key.empty() && key.find('.') == std::string_view::npos;
}

template <class Number>
std::string_view decimal(char (&space)[24], Number value) {
    char* const end = std::to_chars(space, space + sizeof(space), value).ptr;
    return {space, static_cast<std::size_t>(end - space)};
}

}  // namespace

JSONObjectWriter::JSONObjectWriter() : JSONWriter(Kind::OBJECT) {}

JSONObjectWriter::JSONObjectWriter(JSONWriter& parent) : JSONWriter(parent, Kind::OBJECT) {}

JSONObjectWriter::~JSONObjectWriter() = default;

void JSONObjectWriter::addKey(std::string_view key, std::string_view value) {
    if (value.empty()) return;
    if (streams_() && isPlain(key) && !mayHave_(key)) {
        beginMember_(key);
        addText_(value);
    } else {
        useTree_().put(std::string(key), std::string(value));
    }
}

void JSONObjectWriter::addKey(std::string_view key, const std::string& value) {
    addKey(key, std::string_view(value));
}

void JSONObjectWriter::addKey(std::string_view key, const char* value) {
    if (value != nullptr) addKey(key, std::string_view(value));
}

void JSONObjectWriter::addSigned_(std::string_view key, long long value) {
    char space[24];
    addKey(key, decimal(space, value));
}

void JSONObjectWriter::addUnsigned_(std::string_view key, unsigned long long value) {
    char space[24];
    addKey(key, decimal(space, value));
}

void JSONObjectWriter::addKey(std::string_view key, const HSTVector<std::string>& values) {
    JSONListWriter list;
    for (const std::string& value : values) list.addItem(value);
    addKey(key, list);
}

void JSONObjectWriter::addKey(std::string_view key, const JSONWriter& sub) {
    if (sub.empty()) return;
    if (&sub != this && streams_() && isPlain(key) && appendWriter_(key, sub)) return;
    const ptree copy = sub.getTree();
    useTree_().add_child(std::string(key), copy);
}

void JSONObjectWriter::addKey(std::string_view key, const ptree& sub) {
    if (sub.empty()) return;
    if (streams_() && isPlain(key) && appendTree_(key, sub)) return;
    // The tree may be a part of this writer's own, which grows here.
    const ptree copy = sub;  // NOLINT(performance-unnecessary-copy-initialization)
    useTree_().add_child(std::string(key), copy);
}

void JSONObjectWriter::addKey(std::string_view key, const JSONSerializable* object) {
    if (object == nullptr) return;
    if (streams_() && isPlain(key)) {
        addObject(key, [object](JSONObjectWriter& writer) { object->toJSON(writer); });
        return;
    }
    JSONObjectWriter writer;
    object->toJSON(writer);
    addKey(key, writer);
}

void JSONObjectWriter::writeObject(const JSONSerializable* object) {
    if (object != nullptr) object->toJSON(*this);
}

void JSONObjectWriter::writeObject(const JSONSerializable& object) {
    object.toJSON(*this);
}

void JSONObjectWriter::addObject_(std::string_view key, FillCall<JSONObjectWriter> fill) {
    addChild_(key, fill);
}

void JSONObjectWriter::addList_(std::string_view key, FillCall<JSONListWriter> fill) {
    addChild_(key, fill);
}

void JSONObjectWriter::addLiteral(std::string_view key, std::string_view value) {
    if (value.empty()) return;
    if (streams_() && !key.empty()) {
        beginMember_(key);
        addText_(value);
    } else {
        addToTree_(key, ptree(std::string(value)));
    }
}

}  // namespace mav_platform
