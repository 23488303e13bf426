// SPDX-License-Identifier: Apache-2.0
#include <boost/property_tree/ptree.hpp>

#include "Command.h"
#include "Output.h"
#include "mav_platform/HMAVNativeDocService.h"

namespace {

using boost::property_tree::ptree;
using mav::platform::NativeDocService;

/// "CLASS.MEMBER  meaning" for every member of a class.
void addMembers(const std::string& name, const ptree& members, std::string& text) {
    for (const auto& [key, entry] : members)
        text += name + "." + key + "  " + entry.get("meaning", "") + "\n";
}

/// What is known of one member, a line each.
std::string facts(const ptree& entry) {
    std::string text;
    for (const auto& [name, value] : entry) text += name + ": " + value.data() + "\n";
    return text;
}

std::string describe(const ptree& keys, const std::string& key, const ptree& branch) {
    std::string text;
    if (key == "all" || key == "list_keys") {
        for (const auto& [name, members] : keys) addMembers(name, members, text);
    } else if (branch.find("meaning") != branch.not_found() &&
               branch.get_child("meaning").empty()) {
        text = facts(branch);
    } else {
        addMembers(key, branch, text);
    }
    return text;
}

}  // namespace

bool cli::runDoc(const DocOptions& options) {
    const NativeDocService service;
    ptree doc;
    if (!service.getFromFile(doc))
        throw Failure(
            "the documentation of the keys cannot be read. Install the library anew or "
            "set MAV_APP_ROOT to its share directory.");
    if (!service.isValidDocKey(doc, options.key)) return false;
    const ptree& keys = doc.get_child("documentation_keys");
    const bool all = options.key == "all" || options.key == "list_keys";
    const ptree branch = all ? keys : service.getDocKeyBranch(doc, options.key);
    writeAnswer(options.json ? service.getAsJsonStr(branch) : describe(keys, options.key, branch));
    return true;
}
