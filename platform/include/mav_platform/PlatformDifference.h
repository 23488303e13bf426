// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"

class HMAVPlatform;

namespace mav_platform {

/// What differs between two platforms by meaning: items of a list are matched by their name or id,
/// whatever their place, numbers by value, and where the two platforms lie does not count. What is
/// inside the files that a platform names is not compared.
class MAV_API PlatformDifference {
  public:
    struct Change {
        enum Kind { CHANGED, ADDED, REMOVED };
        Kind kind;
        std::string path;  ///< member names joined by ".", items in brackets by their identity
        std::string from;  ///< a value, or an object in few words; empty for what was added
        std::string to;    ///< empty for what was removed
    };
    using Changes = HSTVector<Change>;

    /// In the order of the first document, what was added behind its neighbours. Throws as
    /// NativeObjectService does for a platform without a whole document.
    static Changes between(const HMAVPlatform& first, const HMAVPlatform& second);
    /// {"schema": "mav.diff/1", "differ": true, "changes": [{"kind": "changed", "path": ...,
    /// "from": ..., "to": ...}]}
    static std::string json(const Changes& changes);
};

}  // namespace mav_platform
