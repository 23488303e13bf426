// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <string>
#include <variant>
#include <vector>

#include "mav_platform/JSONValue.h"

class HMAVHardwarePlatform;
class HMAVPlatform;
class HMAVReconfigurablePartition;

namespace mav::platform {

/// The summary of a loaded platform: members in their order, written as texts or with their types.
class Summary {
  public:
    explicit Summary(const HMAVPlatform& platform);

    /// Adds the answer of the support policy in its place.
    void addWarranty(bool supported, const std::string& reason);
    /// As texts; the partitions when there are some and they are asked for.
    void addTo(boost::property_tree::ptree& info, bool partitions) const;
    /// With types; the list of partitions is always there.
    void addTo(mav_platform::JSONValue& info) const;

  private:
    struct Path {
        std::string text;
    };
    using Value = std::variant<std::string, Path, bool, std::size_t, std::vector<Summary>>;

    explicit Summary(const HMAVReconfigurablePartition& partition);
    void add(const char* key, Value value) { members_.emplace_back(key, std::move(value)); }
    void addState(const HMAVHardwarePlatform* hardware);
    void addHardware(const HMAVHardwarePlatform* hardware, const HMAVHardwarePlatform* emulation);
    void addArchitectures(const HMAVHardwarePlatform* hardware);

    std::vector<std::pair<const char*, Value>> members_;
    std::size_t warrantyPlace_ = 0;  ///< among the members
};

}  // namespace mav::platform
