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
constexpr const char* ANY_FORM = "object of any form";

void tell(const std::string& line) {
    mav_host::console() << line << "\n" << std::flush;
}

const ptree* child(const ptree* node, std::string_view key) {
    const auto found = node->find(std::string(key));
    return found != node->not_found() ? &found->second : nullptr;
}

/// The branch that a key leads to below the node: of the keys documented there the longest that
/// the text begins with, and on through the object that a member holds. Null when none leads on.
const ptree* follow(const ptree& keys, const ptree& node, std::string_view text) {
    for (std::size_t size = text.size(); size != std::string_view::npos;
         size = size == 0 ? std::string_view::npos : text.rfind('.', size - 1)) {
        const std::string_view part = text.substr(0, size);
        const ptree* member = child(&node, part);
        if (member == nullptr) {
            member = child(&node, part.substr(0, part.find('[', part.rfind('.') + 1)));
        }
        if (member == nullptr) continue;
        if (size == text.size()) return member;
        const std::string_view rest = text.substr(size + 1);
        if (const ptree* const found = follow(keys, *member, rest)) return found;
        const ptree* const inner = child(member, "object");
        const ptree* const object = inner != nullptr ? child(&keys, inner->data()) : nullptr;
        const ptree* const found = object != nullptr ? follow(keys, *object, rest) : nullptr;
        if (found != nullptr) return found;
        // What lies in an object of any form is documented with it.
        const ptree* const type = child(member, "type");
        if (type != nullptr && type->data() == ANY_FORM) return member;
    }
    return nullptr;
}

/// A key of the documentation, else an object path of the document.
const ptree* branchOf(const ptree& doc, const std::string& key) {
    const ptree* const keys = child(&doc, KEYS);
    if (keys == nullptr || key.empty()) return nullptr;
    if (const ptree* const branch = follow(*keys, *keys, key)) return branch;
    const ptree* const platform = child(keys, "HMAVPlatform");
    if (platform == nullptr) return nullptr;
    return follow(*keys, *platform, paths::replaceLegacy(key, paths::DEFAULT_ROOT));
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
        if (child(&doc, KEYS) != nullptr) return true;
        doc.clear();
        tell("Exception: the documentation '" + file + "' has no member '" + KEYS +
             "'; install the library anew");
    } catch (const std::exception& error) {
        tell(std::string("Exception: ") + error.what());
    }
    return false;
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
