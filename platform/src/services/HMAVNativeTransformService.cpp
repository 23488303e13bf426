// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVNativeTransformService.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <set>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVNativeObjectService.h"
#include "services/LoadedDocument.h"
#include "services/ObjectPath.h"

namespace mav::platform {

TransformService::~TransformService() = default;
NativeTransformService::~NativeTransformService() = default;

namespace {

using boost::property_tree::ptree;
using mav_platform::json::Document;
using paths::Node;

[[noreturn]] void refuse(const std::string& what) {
    throw HEXAlgException("The transform specification is malformed " + what);
}

[[noreturn]] void refuse(const std::string& place, const std::string& what) {
    refuse(std::string("at '").append(place).append("': ").append(what));
}

/// Where brackets do not hold an index, "*" or nothing; npos when all do.
std::size_t badBracket(std::string_view path) {
    for (std::size_t at = path.find_first_of("[]"); at != std::string_view::npos;
         at = path.find_first_of("[]", at)) {
        const std::size_t close = path.find(']', at);
        if (path[at] == ']' || close == std::string_view::npos) return at;
        const std::string_view inside = path.substr(at + 1, close - at - 1);
        const bool isIndex = inside.find_first_not_of("0123456789") == std::string_view::npos;
        if (!isIndex && inside != "*") return at;
        at = close + 1;
    }
    return std::string_view::npos;
}

void checkPath(const Node& node, const std::string& place) {
    if (paths::isList(node))
        refuse(place, "a list stands where an object path or an object is expected.");
    if (node.hasChildren() || node.data().empty())
        refuse(place, "an object path is expected, such as \"hardwarePlatform.name\".");
    const std::size_t bad = badBracket(node.data());
    if (bad != std::string_view::npos)
        refuse(place, "the bracket in column " + std::to_string(bad + 1) + " of the path \"" +
                          std::string(node.data()) + "\" holds no index, \"*\" or nothing.");
}

void checkMembers(const Node& spec, const std::string& place);

void checkMember(const Node& member, const std::string& place) {
    if (!member.hasChildren() || paths::isList(member)) {
        checkPath(member, place);
        return;
    }
    for (const Node& part : member)
        if (part.key() != "each" && part.key() != "select")
            refuse(place,
                   std::string("'").append(part.key()) + "' is neither 'each' nor 'select'.");
    const auto each = member.find("each");
    const auto select = member.find("select");
    if (!each || !select)
        refuse(place, std::string("'") + (each ? "select" : "each") + "' is missing.");
    if (std::distance(member.begin(), member.end()) != 2)
        refuse(place, "'each' or 'select' stands there twice.");
    checkPath(*each, place + ".each");
    checkMembers(*select, place + ".select");
}

void checkMembers(const Node& spec, const std::string& place) {
    if (!spec.hasChildren() || paths::isList(spec))
        refuse(
            (place.empty() ? std::string("in line 1") : std::string("at '").append(place) + "'") +
            ": an object with members is expected.");
    std::set<std::string_view> names;
    for (const Node& member : spec) {
        std::string inner = place;
        if (!place.empty()) inner += '.';
        inner += member.key();
        if (!names.insert(member.key()).second) refuse(inner, "the member stands there twice.");
        checkMember(member, inner);
    }
}

Document checked(const std::string& text) {
    try {
        Document spec(text);
        checkMembers(spec.root(), "");
        return spec;
    } catch (const boost::property_tree::json_parser::json_parser_error& error) {
        refuse("in line " + std::to_string(error.line()) + ": " + error.message() + ".");
    }
}

void addChild(ptree& parent, std::string_view key, ptree& child) {
    parent.push_back({std::string(key), ptree()})->second.swap(child);
}

/// What the transform makes of the node. Older paths are rewritten at the document's root
/// alone.
ptree apply(const Node& spec, const Node& root, bool top) {
    ptree result;
    for (const Node& member : spec) {
        if (!member.hasChildren()) {
            bool found = false;
            ptree value = paths::objectsAt(root, std::string(member.data()), found);
            if (found) addChild(result, member.key(), value);
            continue;
        }
        const std::string path(member.find("each")->data());
        const Node select = *member.find("select");
        ptree list;
        // The mark at the end spreads a list that the path ends at.
        for (const auto& element :
             paths::findAll(root, (top ? paths::withActualRoot(root, path) : path) + "[*]")) {
            ptree item = apply(select, *element.place, false);
            if (!item.empty()) addChild(list, "", item);
        }
        if (!list.empty()) addChild(result, member.key(), list);
    }
    return result;
}

std::string textOf(const ptree& result) {
    return result.empty() ? "{\n}\n" : NativeObjectService::getNodeAsJsonStr(result);
}

}  // namespace

std::string NativeTransformService::getTransformSpecAsJsonStr(const std::string& spec) const {
    return NativeObjectService::getNodeAsJsonStr(checked(spec).tree());
}

ptree NativeTransformService::getObjectsBySpec(const std::string& platformFile,
                                               const std::string& spec) const {
    const Document transform = checked(spec);
    return apply(transform.root(), documentOf(platformFile).root(), true);
}

ptree NativeTransformService::getObjectsBySpec(PlatformLoader* loader,
                                               const std::string& spec) const {
    const Document transform = checked(spec);
    return apply(transform.root(), documentOf(loader).root(), true);
}

std::string NativeTransformService::getAsJsonStr(const std::string& platformFile,
                                                 const std::string& spec) const {
    return textOf(getObjectsBySpec(platformFile, spec));
}

std::string NativeTransformService::getAsJsonStr(PlatformLoader* loader,
                                                 const std::string& spec) const {
    return textOf(getObjectsBySpec(loader, spec));
}

}  // namespace mav::platform
