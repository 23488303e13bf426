// SPDX-License-Identifier: Apache-2.0
#include "KeyHint.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <set>
#include <vector>

#include "Output.h"
#include "Suggest.h"
#include "mav_platform/HMAVNativeKeyService.h"

namespace {

/// Adds the member names of a path, without indices.
template <class Names>
void addNames(const std::string& path, Names& names) {
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t end = std::min(path.find('.', start), path.size());
        std::string name = path.substr(start, end - start);
        name.resize(std::min(name.find('['), name.size()));
        if (!name.empty()) names.insert(names.end(), std::move(name));
        start = end + 1;
    }
}

}  // namespace

std::string cli::keyHint(mav_platform::PlatformLoader& loader, const std::string& path) {
    const auto summary = mav::platform::NativeKeyService().get(&loader);
    std::set<std::string> known;
    for (const auto& [none, entry] : summary.get_child("keys"))
        addNames(entry.front().second.data(), known);
    std::vector<std::string> typed;
    addNames(path, typed);
    const auto wrong = std::find_if(typed.begin(), typed.end(),
                                    [&](const std::string& name) { return !known.contains(name); });
    if (wrong == typed.end()) return {};
    const std::string meant = nearest(*wrong, {known.begin(), known.end()});
    return meant.empty() ? meant : " Did you mean '" + printable(meant) + "'?";
}
