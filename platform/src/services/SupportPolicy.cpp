// SPDX-License-Identifier: Apache-2.0
#include "services/SupportPolicy.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <filesystem>
#include <ostream>

#include "mav_host/HEXError.h"
#include "mav_host/Host.h"
#include "mav_host/Messages.h"
#include "mav_platform/HMAVPlatform.h"
#include "services/LoadedDocument.h"
#include "services/ObjectPath.h"
#include "services/SupportList.h"

namespace mav::platform {

namespace {

/// The first release whose platforms are supported.
constexpr Release FLOOR{2017, 4};

constexpr const char* BY_POLICY = "). By policy, ";

/// A platform's extended warranty names the release; throws when it is no list of releases.
bool names(const paths::ptree& warranty, const Release& release) {
    if (warranty.empty() && !warranty.data().empty())
        throw HEXDataException("'extended_warranty' is a text and must be a list of releases");
    return std::any_of(warranty.begin(), warranty.end(), [&](const auto& item) {
        return Release::of(item.second.data()) == release;
    });
}

/// What "hardwarePlatform" at the beginning of an object path leads to.
const HMAVHardwarePlatform* hardwareAtRoot(const HMAVPlatform& platform) {
    const HMAVHardwarePlatform* const own = platform.getHardwarePlatform();
    HSTVector<HMAVReconfigurablePartition*> partitions;
    if (own == nullptr) platform.getReconfigurablePartitions(partitions);
    return partitions.empty() ? own : partitions.front()->getHardwarePlatform();
}

bool applies(const SupportEntry& entry, const std::string& product, const paths::Node& document) {
    if (std::find(entry.products.begin(), entry.products.end(), product) == entry.products.end())
        return false;
    const auto node = paths::find(document, paths::withActualRoot(document, entry.key));
    return node && !node->hasChildren() && node->data() == entry.value;
}

}  // namespace

Releases releasesOf(const HMAVPlatform& platform, const std::string& toolText,
                    const std::string& fallback, const std::string& warning) {
    Releases releases;
    const HMAVHardwarePlatform* const hardware = platform.getHardwarePlatform();
    if (hardware != nullptr) releases.platformText = hardware->getGeneratedVersion();
    if (releases.platformText.empty()) releases.platformText = "0.0";
    releases.platform = Release::of(releases.platformText);
    releases.toolText = toolText;
    if (toolText.empty()) {
        mav_host::console() << warning << "\n" << std::flush;
        releases.toolText = fallback;
    }
    releases.tool = Release::of(releases.toolText);
    return releases;
}

SupportPolicy::SupportPolicy(const HMAVPlatform& platform, mav_platform::PlatformLoader& loader,
                             const char* subject, Verdict& verdict)
    : platform_(platform),
      loader_(loader),
      subject_(std::string(subject) + " '" +
               std::filesystem::path(loader.getFilePath()).filename().string() + "'"),
      verdict_(verdict) {}

bool SupportPolicy::refuse(const char* rule, std::string reason) {
    verdict_.rule = rule;
    verdict_.reason = std::move(reason);
    return false;
}

bool SupportPolicy::pass(const char* rule) {
    verdict_.rule = rule;
    return true;
}

std::string SupportPolicy::versions(const Releases& releases) const {
    return subject_ + " (version " + releases.platformText + ") is not supported by the current " +
           "tool version (" + releases.toolText;
}

const mav_platform::json::Document& SupportPolicy::document() {
    if (!document_) document_ = documentOf(&loader_);
    return *document_;
}

bool SupportPolicy::isPreSynth() {
    constexpr int PRE_SYNTH = 2;
    const HMAVHardwarePlatform* const hardware = platform_.getHardwarePlatform();
    if (hardware != nullptr && hardware->getState() == PRE_SYNTH) return pass("pre-synth");
    return refuse("pre-synth", subject_ + " is not a PRE_SYNTH platform");
}

bool SupportPolicy::isUnified() {
    if (platform_.isUnified()) return pass("unified");
    return refuse("unified", subject_ +
                                 " is not a unified platform. By policy, non-unified platforms are "
                                 "not supported by the current tool version");
}

bool SupportPolicy::isNotNewer(const Releases& releases) {
    if (!(releases.tool < releases.platform)) return pass("not-newer");
    const char* const kind = subject_.starts_with("DSA") ? "DSA" : "platform";
    return refuse("not-newer", versions(releases) + BY_POLICY + "the " + kind +
                                   " version can not be newer than the current tool version");
}

bool SupportPolicy::isOfSameRelease(const Releases& releases) {
    if (releases.platform == releases.tool) return pass("same-release");
    return refuse(
        "same-release",
        subject_ + " (version " + releases.platformText +
            ") is a PRE_SYNTH platform and is not supported by the current tool version (" +
            releases.toolText + BY_POLICY +
            "platforms are only supported on the same tool release on which the platform "
            "was created.");
}

bool SupportPolicy::isInSupportedRange(const Releases& releases) {
    if (releases.platform < FLOOR) {
        return refuse("oldest-release", versions(releases) + BY_POLICY +
                                            "the platform version can not be older than 2017.4");
    }
    const int year = releases.platform.year;
    if (releases.tool.year == year || releases.tool.year - 1 == year) return pass("release-years");
    return refuse("release-years", versions(releases) + BY_POLICY +
                                       "platforms are supported for the remainder of the calendar "
                                       "year release plus the following calendar year release");
}

bool SupportPolicy::isForCards() {
    verdict_.rule = "embedded";
    return platform_.getDesignIntentDataCenter() || platform_.getDesignIntentServerManaged() ||
           platform_.getDesignIntentExternalHost();
}

bool SupportPolicy::hasExtendedWarranty(const Releases& releases) {
    static const std::string warrantyKey = "extended_warranty";
    const HMAVHardwarePlatform* const hardware = hardwareAtRoot(platform_);
    if (releases.tool.year == 0 || hardware == nullptr) return false;
    try {
        const auto* const warranty = paths::find(hardware->getExtMetaJsonAsPtree(), warrantyKey);
        if (warranty == nullptr || !names(*warranty, releases.tool)) return false;
    } catch (const HEXError& error) {
        mav_host::report(mav_host::messages::WARRANTY_UNREADABLE, error.what());
        return false;
    }
    verdict_.reason =
        subject_ + " has been explicitly enabled for this release with an extended warranty.";
    return pass("extended-warranty");
}

const SupportEntry* SupportPolicy::listEntry(const std::string& product) {
    HSTVector<SupportEntry> entries = readSupportList();
    if (entries.empty()) return nullptr;
    const auto root = document().root();
    const auto entry = std::find_if(entries.begin(), entries.end(), [&](const SupportEntry& one) {
        return applies(one, product, root);
    });
    if (entry == entries.end()) return nullptr;
    verdict_.rule = entry->good ? "white-list" : "black-list";
    verdict_.reason = subject_ + " has been " +
                      (entry->good ? "explicitly enabled for this release."
                                   : "marked unsupported due to known issues.");
    if (!entry->reason.empty()) verdict_.reason += " Reason: " + entry->reason;
    verdict_.entry = std::move(*entry);
    return &*verdict_.entry;
}

}  // namespace mav::platform
