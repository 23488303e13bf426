// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <string>

class HMAVPlatform;

namespace mav::platform {

/// The answer of the support policy.
struct Warranty {
    bool supported = false;
    std::string reason;
};

/// Fills the summary of a loaded platform; `warranty` null: without its two members.
void summarise(const HMAVPlatform& platform, const Warranty* warranty, bool partitions,
               boost::property_tree::ptree& info);

}  // namespace mav::platform
