// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVNativeKeyService.h"

#include <boost/property_tree/ptree.hpp>
#include <map>
#include <vector>

#include "mav_platform/HMAVNativeObjectService.h"
#include "services/Children.h"
#include "services/LoadedDocument.h"
#include "services/ObjectPath.h"

namespace mav::platform {

KeyService::~KeyService() = default;
NativeKeyService::~NativeKeyService() = default;

namespace {

using boost::property_tree::ptree;

/// Counts paths in the order of their first appearance.
class Counter {
  public:
    template <class Tree>
    void visit(const Tree& node) {
        const bool list = paths::isList(node);
        forEachChild(node, [&](std::string_view key, const Tree& child) {
            const std::size_t size = path_.size();
            if (list) {
                path_ += "[]";
            } else {
                if (size != 0) path_ += '.';
                path_ += key;
            }
            const auto [place, isNew] = places_.try_emplace(path_, counts_.size());
            if (isNew) {
                budget_.take(path_.size());
                counts_.push_back(0);
                order_.push_back(&place->first);
            }
            ++counts_[place->second];
            visit(child);
            path_.resize(size);
        });
    }

    ptree summary() const {
        ptree summary;
        ptree& keys = summary.push_back({"keys", ptree()})->second;
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            ptree& entry = keys.push_back({"", ptree()})->second;
            entry.push_back({"path", ptree(*order_[i])});
            entry.push_back({"count", ptree(std::to_string(counts_[i]))});
        }
        return summary;
    }

  private:
    NameBudget budget_;
    std::string path_;
    std::map<std::string, std::size_t> places_;
    std::vector<std::size_t> counts_;
    std::vector<const std::string*> order_;
};

template <class Tree>
ptree summaryOf(const Tree& root) {
    Counter counter;
    counter.visit(root);
    return counter.summary();
}

}  // namespace

NativeKeyService::ptree NativeKeyService::get(PlatformLoader* loader) const {
    return summaryOf(documentOf(loader).root());
}

NativeKeyService::ptree NativeKeyService::get(const std::string& platformFile) const {
    return summaryOf(documentOf(platformFile).root());
}

NativeKeyService::ptree NativeKeyService::get(const ptree& document) const {
    return summaryOf(document);
}

std::string NativeKeyService::getAsJsonStr(PlatformLoader* loader) const {
    return NativeObjectService::getNodeAsJsonStr(get(loader));
}

std::string NativeKeyService::getAsJsonStr(const std::string& platformFile) const {
    return NativeObjectService::getNodeAsJsonStr(get(platformFile));
}

}  // namespace mav::platform
