// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "json/Document.h"
#include "mav_platform/PlatformLoader.h"
#include "services/Release.h"

class HMAVPlatform;

namespace mav::platform {

/// The releases of one decision, as numbers and as they are written in messages.
struct Releases {
    Release platform;
    std::string platformText;
    Release tool;
    std::string toolText;
};

/// `toolText` is the tool's release; for a versionless tool `warning` is told on the console and
/// `fallback` stands for it.
Releases releasesOf(const HMAVPlatform& platform, const std::string& toolText,
                    const std::string& fallback, const std::string& warning);

/// One platform before the support policy. Lives for one decision; `reason` receives the
/// explanation.
class SupportPolicy {
  public:
    /// `subject` begins the messages: "Platform" or "DSA".
    SupportPolicy(const HMAVPlatform& platform, mav_platform::PlatformLoader& loader,
                  const char* subject, std::string& reason);

    /// Each is one rule of the policy and answers false, with the reason, for a platform that it
    /// refuses.
    bool isUnified();
    bool isNotNewer(const Releases& releases);
    bool isOfSameRelease(const Releases& releases);
    bool isInSupportedRange(const Releases& releases);

    /// The platform is meant for something else than an embedded system alone.
    bool isForCards() const;
    /// True, with the reason, when an extended warranty names the tool release.
    bool hasExtendedWarranty(const Releases& releases);
    /// Decides by the first entry of the support list that applies to the product; false when none
    /// does.
    bool isListed(const std::string& product, bool& supported);

    /// "Platform 'NAME'".
    const std::string& subject() const { return subject_; }

  private:
    std::string versions(const Releases& releases) const;
    const mav_platform::json::Document& document();

    const HMAVPlatform& platform_;
    mav_platform::PlatformLoader& loader_;
    std::string subject_;
    std::string& reason_;
    std::optional<mav_platform::json::Document> document_;  ///< read when a rule first asks for it
};

}  // namespace mav::platform
