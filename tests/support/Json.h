// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree.hpp>
#include <string>

#include "mav_platform/JSONObjectWriter.h"
#include "mav_platform/JSONSerializable.h"

/// The object's whole document without the blanks and line ends between its tokens.
inline std::string compactJson(const mav_platform::JSONSerializable& object) {
    std::string compact;
    bool quoted = false;
    bool escaped = false;
    for (const char c : object.toJSONString()) {
        if (!quoted && (c == ' ' || c == '\n')) continue;
        if (c == '"' && !escaped) quoted = !quoted;
        escaped = c == '\\' && !escaped;
        compact += c;
    }
    return compact;
}

/// The object's members as a tree.
inline boost::property_tree::ptree jsonTree(const mav_platform::JSONSerializable& object) {
    mav_platform::JSONObjectWriter writer;
    object.toJSON(writer);
    return writer.getTree();
}

/// Keys of one level in their order, a blank behind each.
inline std::string keysOf(const boost::property_tree::ptree& tree) {
    std::string keys;
    for (const auto& member : tree) keys += member.first + " ";
    return keys;
}
