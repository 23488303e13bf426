// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/JSONValue.h"

namespace mav::platform {

/// One platform, or family of platforms, that the support list knows to be good or bad.
struct MAV_API SupportEntry {
    bool good = false;      ///< of the white list
    std::size_t place = 0;  ///< in its list, from 1
    HSTVector<std::string> products;
    std::string key;  ///< object path into the platform's document
    std::string value;
    std::string reason;
};

/// What the support policy says of one platform, and what made it say so.
struct MAV_API Verdict {
    bool supported = false;
    /// The rule that decided, by its name in docs/support-policy.md; empty when none was asked,
    /// since nothing could be loaded.
    std::string rule;
    std::string reason;                 ///< empty when there is nothing to explain
    std::string platformRelease;        ///< that the platform was made with; empty without one
    std::string toolRelease;            ///< that was judged for; empty for a versionless tool
    std::optional<SupportEntry> entry;  ///< of the support list, when one decided

    /// "supported" or "unsupported".
    const char* word() const { return supported ? "supported" : "unsupported"; }
    /// "unsupported by rule 'unified': REASON", with the list entry that decided.
    std::string sentence() const;
    /// Adds all of it to an object: "verdict", "rule", "reason", "listEntry", "platformRelease",
    /// "toolRelease".
    void addTo(mav_platform::JSONValue& object) const;
};

/// An item of the answer of `mav check`: "file", the members of the verdict, null without one,
/// "matrix" and "error".
MAV_API mav_platform::JSONValue checkItem(const std::string& file, const Verdict* verdict,
                                          const HSTVector<Verdict>& matrix = {},
                                          mav_platform::JSONValue error = nullptr);

}  // namespace mav::platform
