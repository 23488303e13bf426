// SPDX-License-Identifier: Apache-2.0
#include "KeyHint.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <map>
#include <set>
#include <vector>

#include "Output.h"
#include "Suggest.h"
#include "mav_platform/HMAVNativeKeyService.h"

namespace {

/// The member names of a path, without indices.
std::vector<std::string> namesOf(const std::string& path) {
    std::vector<std::string> names;
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t end = std::min(path.find('.', start), path.size());
        std::string name = path.substr(start, end - start);
        name.resize(std::min(name.find('['), name.size()));
        if (!name.empty()) names.push_back(std::move(name));
        start = end + 1;
    }
    return names;
}

/// The name that begins most like the typed one, of at least three letters and half of it.
std::string alike(const std::string& typed, const std::set<std::string>& names) {
    std::size_t best = std::max<std::size_t>(3, (typed.size() + 1) / 2) - 1;
    std::string answer;
    for (const std::string& name : names) {
        const auto end = std::mismatch(typed.begin(), typed.end(), name.begin(), name.end()).first;
        const auto common = static_cast<std::size_t>(end - typed.begin());
        if (common > best) {
            best = common;
            answer = name;
        }
    }
    return answer;
}

}  // namespace

std::string cli::keyHint(mav_platform::PlatformLoader& loader, const std::string& path) {
    const auto summary = mav::platform::NativeKeyService().get(&loader);
    std::set<std::string> known;
    std::map<std::string, std::set<std::string>> below;  // names by the name that they follow
    for (const auto& [none, entry] : summary.get_child("keys")) {
        const auto names = namesOf(entry.front().second.data());
        for (std::size_t i = 0; i < names.size(); ++i) {
            known.insert(names[i]);
            if (i > 0) below[names[i - 1]].insert(names[i]);
        }
    }
    const std::vector<std::string> typed = namesOf(path);
    for (std::size_t i = 0; i < typed.size(); ++i) {
        // A path may begin with a short form, so that any name can be its first.
        const std::set<std::string>& here = i > 0 ? below[typed[i - 1]] : known;
        if (here.contains(typed[i])) continue;
        std::string meant = nearest(typed[i], {here.begin(), here.end()});
        if (meant.empty()) meant = alike(typed[i], here);
        return didYouMean(meant);
    }
    return {};
}
