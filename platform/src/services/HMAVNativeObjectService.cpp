// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVNativeObjectService.h"

#include <boost/property_tree/json_parser/error.hpp>

#include "json/TextBuffer.h"
#include "json/TreePath.h"
#include "json/TreeText.h"
#include "mav_host/HEXError.h"
#include "mav_platform/HMAVJSONUtils.h"
#include "mav_platform/PlatformLoader.h"
#include "services/LoadedDocument.h"
#include "services/ObjectPath.h"

namespace mav::platform {

ObjectService::~ObjectService() = default;
NativeObjectService::~NativeObjectService() = default;

NativeObjectService::ptree NativeObjectService::getAsPropertyTree(
    const std::string& platformFile) const {
    return documentOf(platformFile).tree();
}

NativeObjectService::ptree NativeObjectService::getAsPropertyTree(PlatformLoader* loader) const {
    return documentOf(loader).tree();
}

NativeObjectService::ptree NativeObjectService::readJson(const std::string& text) const {
    if (text.empty()) throw HEXAlgException("NativeObjectService::readJson() - Empty json string");
    return HMAVJSONUtils::readJson(text);
}

std::string NativeObjectService::getAsJsonStr(const std::string& platformFile) const {
    return documentTextOf(platformFile);
}

std::string NativeObjectService::getAsJsonStr(PlatformLoader* loader) const {
    return documentTextOf(loader);
}

bool NativeObjectService::hasNodeAtPath(const std::string& platformFile,
                                        const std::string& path) const {
    const auto document = documentOf(platformFile);
    return paths::find(document.root(), paths::withActualRoot(document.root(), path)).has_value();
}

bool NativeObjectService::hasNodeAtPath(const ptree& tree, const std::string& path) const {
    return paths::find(tree, paths::withActualRoot(tree, path)) != nullptr;
}

NativeObjectService::ptree NativeObjectService::getNodeByPath(const std::string& platformFile,
                                                              const std::string& path,
                                                              bool& found) const {
    found = false;
    const auto document = documentOf(platformFile);
    const auto node = paths::find(document.root(), paths::withActualRoot(document.root(), path));
    found = node.has_value();
    return found ? node->tree() : ptree();
}

NativeObjectService::ptree NativeObjectService::getObjectsByPath(const std::string& platformFile,
                                                                 const std::string& path,
                                                                 bool& found) const {
    found = false;
    return paths::objectsAt(documentOf(platformFile).root(), path, found);
}

NativeObjectService::ptree NativeObjectService::getObjectsByPath(PlatformLoader* loader,
                                                                 const std::string& path,
                                                                 bool& found) const {
    found = false;
    return paths::objectsAt(documentOf(loader).root(), path, found);
}

const NativeObjectService::ptree& NativeObjectService::getChild(const ptree& tree,
                                                                const std::string& key) const {
    static const ptree EMPTY;
    const ptree* const child = mav_platform::json::findPath(tree, key);
    return child != nullptr ? *child : EMPTY;
}

boost::optional<const NativeObjectService::ptree&> NativeObjectService::getChildOptional(
    const ptree& tree, const std::string& key) const {
    const ptree* const child = findNode(tree, key);
    return child != nullptr ? boost::optional<const ptree&>(*child) : boost::none;
}

std::string NativeObjectService::getStringValue(const ptree& tree, const std::string& key) const {
    return HMAVJSONUtils::getStringValue(tree, key);
}

bool NativeObjectService::getBoolValue(const ptree& tree, const std::string& key) const {
    return HMAVJSONUtils::getBoolValue(tree, key);
}

bool NativeObjectService::getBoolValue(const ptree& tree, const std::string& key, bool dflt) const {
    return getStringValue(tree, key).empty() ? dflt : getBoolValue(tree, key);
}

std::string NativeObjectService::getDefaultHwPlatformRootPath() const {
    return paths::DEFAULT_ROOT;
}

std::string NativeObjectService::getDefaultRPHwPlatformRootPath() const {
    return paths::PARTITION_ROOT;
}

std::string NativeObjectService::getDefaultRPHwPlatformRootPathAlt() const {
    return paths::PARTITION_ROOT_ALT;
}

std::string NativeObjectService::getLegacyHwPlatformRootPath() const {
    return paths::LEGACY_ROOT;
}

bool NativeObjectService::isLegacyHwPlatformPath(const std::string& path) const {
    return paths::isLegacy(path);
}

std::string NativeObjectService::getHwPlatformRootPath(const ptree& tree) const {
    return paths::actualRoot(tree);
}

std::string NativeObjectService::replaceLegacyHwPlatformPath(const std::string& path,
                                                             const std::string& root) const {
    return paths::replaceLegacy(path, root);
}

std::string NativeObjectService::getPathWithActualHwPlatformRoot(const ptree& tree,
                                                                 const std::string& path) const {
    return paths::withActualRoot(tree, path);
}

bool NativeObjectService::pathHasBoostArray(const std::string& path) const {
    return paths::hasBoostArray(path);
}

const NativeObjectService::ptree* NativeObjectService::findNode(const ptree& tree,
                                                                const std::string& path) {
    return paths::find(tree, path);
}

std::string NativeObjectService::getNodeAsJsonStr(const ptree& node) {
    mav_platform::json::TextBuffer text;
    if (!mav_platform::json::renderValue(text, node, 0)) {
        throw boost::property_tree::json_parser::json_parser_error(
            "ptree contains data that cannot be represented in JSON format", "", 0);
    }
    return std::string(text.view()) + "\n";
}

}  // namespace mav::platform
