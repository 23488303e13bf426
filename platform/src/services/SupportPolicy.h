// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "json/Document.h"
#include "mav_platform/PlatformLoader.h"
#include "mav_platform/Verdict.h"
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

/// One platform before the support policy. Lives for one decision; `verdict` receives the rule that
/// decides and the explanation.
class SupportPolicy {
  public:
    /// `subject` begins the messages: "Platform" or "DSA".
    SupportPolicy(const HMAVPlatform& platform, mav_platform::PlatformLoader& loader,
                  const char* subject, Verdict& verdict);

    /// Each is one rule of the policy. It leaves its name in the verdict, and answers false, with
    /// the reason, for a platform that it refuses.
    bool isPreSynth();
    bool isUnified();
    bool isNotNewer(const Releases& releases);
    bool isOfSameRelease(const Releases& releases);
    bool isInSupportedRange(const Releases& releases);

    /// The platform is meant for something else than an embedded system alone.
    bool isForCards();
    /// True, with the reason, when an extended warranty names the tool release.
    bool hasExtendedWarranty(const Releases& releases);
    /// The first entry of the support list that applies to the product, which decides; null when
    /// none does.
    const SupportEntry* listEntry(const std::string& product);

  private:
    /// False, with the rule and its reason in the verdict.
    bool refuse(const char* rule, std::string reason);
    /// True, with the rule in the verdict.
    bool pass(const char* rule);
    std::string versions(const Releases& releases) const;
    const mav_platform::json::Document& document();

    const HMAVPlatform& platform_;
    mav_platform::PlatformLoader& loader_;
    std::string subject_;
    Verdict& verdict_;
    std::optional<mav_platform::json::Document> document_;  ///< read when a rule first asks for it
};

}  // namespace mav::platform
