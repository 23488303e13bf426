// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVNativeDocService.h"

#include <boost/property_tree/ptree.hpp>
#include <ostream>
#include <string_view>

#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_platform/HMAVJSONUtils.h"
#include "mav_platform/HMAVNativeObjectService.h"
#include "services/ObjectPath.h"

namespace mav::platform {

DocService::~DocService() = default;
NativeDocService::~NativeDocService() = default;

namespace {

using boost::property_tree::ptree;

constexpr const char* KEYS = "documentation_keys";

void tell(const std::string& line) {
    mav_host::console() << line << "\n" << std::flush;
}

const ptree* child(const ptree* node, std::string_view key) {
    const auto found = node->find(std::string(key));
    return found != node->not_found() ? &found->second : nullptr;
}

/// The branch of a member that an object path of the document leads to; null when none does.
const ptree* followDocument(const ptree& keys, std::string path) {
    if (paths::isLegacy(path)) path = paths::replaceLegacy(path, paths::DEFAULT_ROOT);
    const ptree* object = child(&keys, "HMAVPlatform");
    const ptree* member = nullptr;
    std::string_view rest = path;
    while (object != nullptr && !rest.empty()) {
        const std::string_view part = rest.substr(0, rest.find('.'));
        rest.remove_prefix(std::min(part.size() + 1, rest.size()));
        member = child(object, part.substr(0, part.find('[')));
        if (member == nullptr) return nullptr;
        const ptree* const inner = child(member, "object");
        object = inner != nullptr ? child(&keys, inner->data()) : nullptr;
    }
    return rest.empty() ? member : nullptr;
}

const ptree* branchOf(const ptree& doc, const std::string& key) {
    const ptree* const keys = child(&doc, KEYS);
    if (keys == nullptr || key.empty()) return nullptr;
    const std::size_t dot = key.find('.');
    if (const ptree* object = child(keys, key.substr(0, dot)))
        return dot == std::string::npos ? object : child(object, key.substr(dot + 1));
    return followDocument(*keys, key);
}

}  // namespace

bool NativeDocService::getFromFile(ptree& doc) const {
    static const std::string& separator = HUTFile::getDirSeparator();
    const std::string file =
        HUTEnv::getHDIAppRoot() + separator + "platforms" + separator + "platform_keys_doc.json";
    if (!HUTFile::isFile(file)) {
        tell("Could not find the <" + file +
             " >. Check the install area.  Can not continue with this task.");
        return false;
    }
    try {
        doc = HMAVJSONUtils::readJsonFile(file);
        return true;
    } catch (const std::exception& error) {
        tell(std::string("Exception: ") + error.what());
        return false;
    }
}

ptree NativeDocService::getDocKeyBranch(const ptree& doc, const std::string& key) const {
    const ptree* const branch = branchOf(doc, key);
    return branch != nullptr ? *branch : ptree();
}

bool NativeDocService::isValidDocKey(ptree& doc, const std::string& key) const {
    if (key == "all" || key == "list_keys") return true;
    try {
        if (doc.empty() && !getFromFile(doc)) return false;
        if (branchOf(doc, key) != nullptr) return true;
        tell("Could not find the specified key: <" + key + ">.");
    } catch (const std::exception& error) {
        tell(std::string("Exception: ") + error.what());
    }
    return false;
}

ptree NativeDocService::getBranch(const ptree& doc, const std::string& key, bool& found) const {
    const ptree* const node = paths::find(doc, key);
    found = node != nullptr;
    return found ? *node : ptree();
}

std::string NativeDocService::getAsJsonStr(const ptree& doc) const {
    return doc.empty() && doc.data().empty() ? "{\n}\n"
                                             : NativeObjectService::getNodeAsJsonStr(doc);
}

}  // namespace mav::platform
