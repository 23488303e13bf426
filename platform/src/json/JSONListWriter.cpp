// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/JSONListWriter.h"

#include <boost/property_tree/ptree.hpp>

#include "mav_platform/JSONObjectWriter.h"
#include "mav_platform/JSONSerializable.h"

namespace mav_platform {

JSONListWriter::JSONListWriter() : JSONWriter(Kind::LIST) {}

JSONListWriter::JSONListWriter(JSONWriter& parent) : JSONWriter(parent, Kind::LIST) {}

JSONListWriter::~JSONListWriter() = default;

void JSONListWriter::addItem(std::string_view value) {
    if (value.empty()) return;
    if (streams_()) {
        beginMember_("");
        addText_(value);
    } else {
        addToTree_("", ptree(std::string(value)));
    }
}

void JSONListWriter::addItem(const std::string& value) {
    addItem(std::string_view(value));
}

void JSONListWriter::addItem(const char* value) {
    if (value != nullptr) addItem(std::string_view(value));
}

void JSONListWriter::addItem(const JSONWriter& sub) {
    if (sub.empty()) return;
    if (&sub != this && streams_() && appendWriter_("", sub)) return;
    const ptree copy = sub.getTree();
    addToTree_("", copy);
}

void JSONListWriter::addItem(const JSONSerializable* object) {
    if (object == nullptr) return;
    addObject([object](JSONObjectWriter& writer) { object->toJSON(writer); });
}

void JSONListWriter::addObject_(FillCall<JSONObjectWriter> fill) {
    addChild_("", fill);
}

}  // namespace mav_platform
