// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree.hpp>
#include <cstddef>
#include <string>
#include <string_view>

#include "json/Document.h"
#include "mav_host/HEXError.h"

namespace mav::platform {

/// Calls `visit(key, child)` for the children of a node in their order; the key of an element is
/// empty.
template <class Visit>
void forEachChild(const boost::property_tree::ptree& node, Visit visit) {
    for (const auto& [key, child] : node) visit(std::string_view(key), child);
}
template <class Visit>
void forEachChild(const mav_platform::json::Node& node, Visit visit) {
    for (const mav_platform::json::Node& child : node) visit(child.key(), child);
}

/// Bounds the names that one answer may hold: long keys above many values would otherwise multiply.
class NameBudget {
  public:
    static constexpr std::size_t MEBIBYTE = std::size_t{1} << 20;

    explicit NameBudget(std::size_t mebibytes = 1024)
        : mebibytes_(mebibytes), left_(mebibytes * MEBIBYTE) {}

    /// Throws HEXAlgException when the names altogether exceed the budget.
    void take(std::size_t size) {
        if (size > left_) {
            throw HEXAlgException("Failed to read platform: the paths of its description exceed " +
                                  std::to_string(mebibytes_) + " MiB");
        }
        left_ -= size;
    }

  private:
    std::size_t mebibytes_;
    std::size_t left_;
};

}  // namespace mav::platform
