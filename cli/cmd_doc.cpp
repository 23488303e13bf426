// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <boost/property_tree/ptree.hpp>

#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "Suggest.h"
#include "mav_platform/HMAVNativeDocService.h"

namespace cli {
namespace {

using boost::property_tree::ptree;
using mav::platform::NativeDocService;

struct Options {
    std::string key = "list_keys";
    bool json = false;
};

/// "CLASS.MEMBER  meaning" for every member of a class.
void addMembers(const std::string& name, const ptree& members, std::string& text) {
    for (const auto& [key, entry] : members)
        text += name + "." + key + "  " + entry.get("meaning", "") + "\n";
}

/// What is known of one member, a line each.
std::string facts(const ptree& entry) {
    if (entry.empty()) return entry.data() + "\n";
    std::string text;
    for (const auto& [name, value] : entry) text += name + ": " + value.data() + "\n";
    return text;
}

std::string describe(const ptree& keys, const std::string& key, const ptree& branch) {
    std::string text;
    if (key == "all" || key == "list_keys") {
        for (const auto& [name, members] : keys) addMembers(name, members, text);
    } else if (branch.empty() || (branch.find("meaning") != branch.not_found() &&
                                  branch.get_child("meaning").empty())) {
        text = facts(branch);
    } else {
        addMembers(key, branch, text);
    }
    return text;
}

void addKeys(const ptree& node, std::vector<std::string>& names) {
    for (const auto& [key, none] : node) names.push_back(key);
}

/// The part of the key that leads nowhere replaced by the nearest that leads on; empty without one.
std::string nearestKey(const NativeDocService& service, const ptree& doc, const std::string& key) {
    const ptree& keys = doc.get_child("documentation_keys");
    std::size_t start = 0;
    ptree inside;
    for (std::size_t dot = key.find('.'); dot != std::string::npos; dot = key.find('.', dot + 1)) {
        const ptree branch = service.getDocKeyBranch(doc, key.substr(0, dot));
        if (branch.empty()) break;
        const auto object = branch.find("object");
        const std::string name = object != branch.not_found() ? object->second.data() : "";
        inside = name.empty() ? branch : keys.get_child(ptree::path_type(name, '\0'), ptree());
        start = dot + 1;
    }
    std::vector<std::string> names;
    addKeys(start > 0 ? inside : keys, names);
    if (start == 0) {
        addKeys(keys.get_child("HMAVPlatform", ptree()), names);
        names.emplace_back("hardwarePlatform");
    }
    const std::size_t end = std::min(key.find_first_of(".[", start), key.size());
    const std::string meant = nearest(key.substr(start, end - start), names);
    if (meant.empty()) return {};
    const std::string whole = key.substr(0, start) + meant + key.substr(end);
    const bool leads = !service.getDocKeyBranch(doc, whole).empty();
    return leads ? whole : key.substr(0, start) + meant;
}

void run(const Options& options) {
    const NativeDocService service;
    ptree doc;
    if (!service.getFromFile(doc))
        throw Failure(
            "the documentation of the keys cannot be read. Install the library anew or "
            "set MAV_APP_ROOT to its share directory.");
    if (!service.isValidDocKey(doc, options.key)) {
        const std::string meant = nearestKey(service, doc, options.key);
        throw Negative("no key " + shown(options.key) + " is documented." + didYouMean(meant) +
                       " 'mav doc' lists the keys.");
    }
    const ptree& keys = doc.get_child("documentation_keys");
    const bool all = options.key == "all" || options.key == "list_keys";
    const ptree branch = all ? keys : service.getDocKeyBranch(doc, options.key);
    writeData(options.json ? service.getAsJsonStr(branch) : describe(keys, options.key, branch));
}

}  // namespace

void commands::doc(Command& command) {
    command.description = "Explain the keys of the description";
    command.no = "there is no such key";
    command.failed = "the documentation of the keys cannot be read";
    command.examples = {{"mav doc HMAVSystemClock.frequency", "one member of a class"}};
    auto& options = command.runs(run);
    command
        .argument("KEY", &options.key,
                  "Class, CLASS.MEMBER or path; without it every key is listed")
        .required = false;
    command.flag("--json", options.json, "Print JSON");
}

}  // namespace cli
