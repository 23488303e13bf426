// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVNativeKeyService.h"

#include <boost/property_tree/ptree.hpp>
#include <map>
#include <string_view>
#include <utility>
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

/// Counts paths in the order of their first appearance. They are told apart step by step, and none
/// is written out before it is known how long all of them are.
class Counter {
  public:
    template <class Tree>
    void visit(const Tree& node, std::size_t at = ROOT) {
        const bool list = paths::isList(node);
        forEachChild(node, [&](std::string_view key, const Tree& child) {
            visit(child, count({at, list, list ? std::string_view() : key}));
        });
    }

    ptree summary() const {
        ptree summary;
        ptree& keys = summary.push_back({"keys", ptree()})->second;
        std::map<std::string_view, Entry> entries;  // keys with dots can lead to the same path
        std::vector<std::string_view> texts{""};
        for (std::size_t i = 1; i < paths_.size(); ++i) {
            std::string text = textOf(paths_[i].step, texts[paths_[i].step.parent]);
            auto place = entries.find(text);
            if (place == entries.end()) {
                ptree& node = keys.push_back({"", ptree()})->second;
                std::string& kept = node.push_back({"path", ptree()})->second.data();
                kept = std::move(text);
                place = entries.emplace(kept, Entry{&node}).first;
            }
            place->second.count += paths_[i].count;
            texts.push_back(place->first);
        }
        for (const auto& [path, entry] : entries) {
            entry.node->push_back({"count", ptree(std::to_string(entry.count))});
        }
        return summary;
    }

  private:
    static constexpr std::size_t ROOT = 0;
    static constexpr std::size_t MOST_MEBIBYTES = 64;

    struct Step {
        std::size_t parent;
        bool element;
        std::string_view key;
        // clang-tidy 14 takes the operator's zero for a pointer.
        // NOLINTNEXTLINE(modernize-use-nullptr)
        auto operator<=>(const Step&) const = default;
    };
    struct Path {
        Step step;
        std::size_t size;
        std::size_t count = 0;
    };
    struct Entry {
        ptree* node;
        std::size_t count = 0;
    };

    /// The place of the path that the step leads to, counted once more.
    std::size_t count(const Step& step) {
        const auto [place, isNew] = places_.try_emplace(step, paths_.size());
        if (isNew) {
            const std::size_t above = paths_[step.parent].size;
            const std::size_t added = step.element ? 2 : step.key.size() + (above != 0 ? 1 : 0);
            budget_.take(above + added);
            paths_.push_back({step, above + added});
        }
        ++paths_[place->second].count;
        return place->second;
    }

    static std::string textOf(const Step& step, std::string_view above) {
        std::string text(above);
        if (step.element) return text += "[]";
        if (!text.empty()) text += '.';
        return text += step.key;
    }

    NameBudget budget_{MOST_MEBIBYTES};
    std::map<Step, std::size_t> places_;
    std::vector<Path> paths_{{{}, 0}};  ///< the root first
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
