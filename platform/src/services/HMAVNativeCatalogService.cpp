// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVNativeCatalogService.h"

#include <algorithm>
#include <array>
#include <boost/property_tree/ptree.hpp>
#include <ostream>
#include <set>

#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/Messages.h"
#include "mav_host/ReportScope.h"
#include "mav_platform/HMAVEnv.h"
#include "mav_platform/HMAVNativeObjectService.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/NativePlatformRepoService.h"
#include "mav_platform/PlatformLoader.h"
#include "mav_platform/PlatformParseException.h"
#include "mav_platform/partitionsFault.h"
#include "services/Summary.h"
#include "services/SupportPolicy.h"

namespace mav::platform {

using mav_platform::PlatformLoader;

namespace {

constexpr const char* NOT_LOADED = "Error: failed to load platform";
constexpr const char* VERSIONLESS =
    "Critical Warning: the current tool is versionless, please set the appropriate product "
    "name/version";
constexpr const char* VERSIONLESS_PRE_SYNTH =
    "Critical Warning: the current tool is versionless, please set the appropriate product "
    "name/version. Setting a default value of 2020.1 for the major and minor version.";

void tell(const std::string& line) {
    mav_host::console() << line << "\n" << std::flush;
}

PlatformLoader loaderFor(const std::string& path) {
    return PlatformLoader(path, PlatformLoader::HW_METADATA_AUTO);
}

/// The description files below the directories, each once also where links lead to it again.
HSTVector<std::string> descriptionFiles(const std::string& directories) {
    HSTVector<std::string> found;
    NativePlatformRepoService().getQpfmFiles("", directories, found);
    std::set<std::string> seen;
    std::erase_if(found, [&](const std::string& path) {
        return !seen.insert(HUTFile::getCanonicalName(path)).second;
    });
    return found;
}

/// Who asks: the tool's release, empty for a versionless tool, and the product.
struct Asker {
    std::string toolText;
    std::string product;
};

/// The rules in their order; the first that decides ends the evaluation.
bool judgeCard(SupportPolicy& policy, const HMAVPlatform& platform, const Asker& asker) {
    if (!policy.isUnified()) return false;
    if (!policy.isForCards()) return true;
    const Releases releases = releasesOf(platform, asker.toolText, "2019.1", VERSIONLESS);
    if (!policy.isNotNewer(releases)) return false;
    mav_host::report(mav_host::messages::JUDGED_FOR_RELEASE, releases.toolText);
    if (policy.hasExtendedWarranty(releases)) return true;
    if (const SupportEntry* const entry = policy.listEntry(asker.product)) return entry->good;
    return policy.isInSupportedRange(releases);
}

bool judgePreSynth(SupportPolicy& policy, const HMAVPlatform& platform, const Asker& asker) {
    if (!policy.isPreSynth() || !policy.isUnified()) return false;
    const Releases releases = releasesOf(platform, asker.toolText, "2020.1", VERSIONLESS_PRE_SYNTH);
    return policy.isNotNewer(releases) && policy.isOfSameRelease(releases);
}

bool judgeArchive(SupportPolicy& policy, const HMAVPlatform& platform, const Asker& asker) {
    return policy.isUnified() &&
           policy.isNotNewer(releasesOf(platform, asker.toolText, "2019.1", VERSIONLESS));
}

/// The policy's answer to the question.
Verdict judged(const HMAVPlatform& platform, PlatformLoader& loader, SupportQuestion question,
               const Asker& asker) {
    static constexpr auto RULES = std::array{judgeCard, judgePreSynth, judgeArchive};
    Verdict verdict;
    verdict.toolRelease = asker.toolText;
    const HMAVHardwarePlatform* const hardware = platform.getHardwarePlatform();
    if (hardware != nullptr) verdict.platformRelease = hardware->getGeneratedVersion();
    const bool isArchive = question == SupportQuestion::ARCHIVE;
    SupportPolicy policy(platform, loader, isArchive ? "DSA" : "Platform", verdict);
    verdict.supported = RULES[static_cast<std::size_t>(question)](policy, platform, asker);
    return verdict;
}

/// What is asked over and over is told once, by the judgement itself.
class Silence final : public mav_host::ReportScope {
  public:
    ~Silence() override { close(); }

  private:
    void onReport(const ComMsg&) override {}
    void onLines(const std::string&) override {}
};

/// The releases from the platform's own to the same one two years on; a year has four at least.
HSTVector<std::string> releasesFrom(const Release& first) {
    const Release last{first.year + 2, first.number};
    const int most = std::max(first.number, 4);
    HSTVector<std::string> texts;
    for (Release next = first; !(last < next);) {
        texts.push_back(std::to_string(next.year) + "." + std::to_string(next.number));
        next = next.number < most ? Release{next.year, next.number + 1} : Release{next.year + 1, 1};
    }
    return texts;
}

}  // namespace

CatalogService::~CatalogService() = default;
NativeCatalogService::~NativeCatalogService() = default;

std::string NativeCatalogService::getCompilerVersion_() const {
    if (testCompilerVersion_) return *testCompilerVersion_;
    const unsigned major = HUTEnv::getMajor();
    return major == 0 ? "" : std::to_string(major) + "." + std::to_string(HUTEnv::getMinor());
}

bool NativeCatalogService::isUnderWarranty(PlatformLoader* loader, std::string& reason,
                                           std::string productName) const {
    reason.clear();
    if (!productName.empty()) HUTEnv::setProductName(productName);
    if (loader == nullptr) return false;
    const auto platform = loader->load();
    if (!platform) {
        tell(NOT_LOADED);
        return false;
    }
    const Verdict verdict = judgeByPolicy(*loader, SupportQuestion::CARD);
    reason = verdict.reason;
    return verdict.supported;
}

bool NativeCatalogService::isUnderWarranty(const std::string& path, std::string& reason,
                                           std::string productName) const {
    PlatformLoader loader = loaderFor(path);
    return isUnderWarranty(&loader, reason, std::move(productName));
}

bool NativeCatalogService::isUnderWarranty(const std::string& path, HSTVector<std::string>& reasons,
                                           std::string productName) const {
    std::string reason;
    bool supported = false;
    try {
        supported = isUnderWarranty(path, reason, std::move(productName));
    } catch (const HEXError& error) {
        reason = error.what();
    } catch (const mav_platform::PlatformParseException& error) {
        reason = error.what();
    } catch (...) {
        tell("Unknown exception trying to determine if platform " + path + "is supported");
        return false;
    }
    if (!reason.empty()) reasons.push_back(reason);
    return supported;
}

bool NativeCatalogService::isPreSynthPlatform(PlatformLoader* loader) const {
    if (loader == nullptr) {
        tell("Error: failed to acquire a platform loader.");
        return false;
    }
    const auto platform = loader->load();
    if (!platform) {
        tell("Error: failed to load platform.");
        return false;
    }
    if (platform->getHardwarePlatform() == nullptr) {
        tell("Error: failed to load the hardware platform.");
        return false;
    }
    Verdict verdict;
    return SupportPolicy(*platform, *loader, "Platform", verdict).isPreSynth();
}

bool NativeCatalogService::isPreSynthPlatformSupported(PlatformLoader* loader,
                                                       std::string& reason) const {
    reason.clear();
    const auto platform = loader != nullptr ? loader->load() : nullptr;
    if (!platform) {
        reason =
            "Failed to load the platform. Can not continue with establishing platform support with "
            "respect to the tool flow.";
        return false;
    }
    const Verdict verdict = judgeByPolicy(*loader, SupportQuestion::PRE_SYNTH);
    reason = verdict.reason;
    return verdict.supported;
}

bool NativeCatalogService::isPreSynthPlatformSupported(const std::string& path,
                                                       std::string& reason) const {
    PlatformLoader loader = loaderFor(path);
    return isPreSynthPlatformSupported(&loader, reason);
}

bool NativeCatalogService::canDsaBeOpened(PlatformLoader* loader, std::string& reason) const {
    reason.clear();
    if (loader == nullptr) return false;
    const auto platform = loader->load();
    if (!platform) {
        tell(NOT_LOADED);
        return false;
    }
    const Verdict verdict = judgeByPolicy(*loader, SupportQuestion::ARCHIVE);
    reason = verdict.reason;
    return verdict.supported;
}

bool NativeCatalogService::canDsaBeOpened(const std::string& path, std::string& reason) const {
    PlatformLoader loader = loaderFor(path);
    return canDsaBeOpened(&loader, reason);
}

Verdict NativeCatalogService::judgeByPolicy(PlatformLoader& loader,
                                            SupportQuestion question) const {
    const Asker asker{getCompilerVersion_(), product_ ? *product_ : HMAVEnv::getProductName()};
    if (const auto platform = loader.load()) return judged(*platform, loader, question, asker);
    Verdict verdict;
    verdict.toolRelease = asker.toolText;
    verdict.reason = NOT_LOADED;
    return verdict;
}

Verdict NativeCatalogService::judge(PlatformLoader& loader, SupportQuestion question) const {
    const auto platform = loader.load();
    Verdict verdict;
    if (platform) verdict.reason = mav_platform::partitionsFault(*platform);
    if (verdict.reason.empty()) return judgeByPolicy(loader, question);
    verdict.rule = "array-project";
    verdict.toolRelease = getCompilerVersion_();
    return verdict;
}

HSTVector<Verdict> NativeCatalogService::matrix(PlatformLoader& loader,
                                                SupportQuestion question) const {
    const auto platform = loader.load();
    const auto* const hardware = platform ? platform->getHardwarePlatform() : nullptr;
    const Release first = Release::of(hardware != nullptr ? hardware->getGeneratedVersion() : "");
    HSTVector<Verdict> verdicts;
    if (first.year == 0) return verdicts;
    const Silence silence;
    NativeCatalogService other(*this);
    for (const std::string& release : releasesFrom(first)) {
        other.setTestCompilerVersion_(release);
        verdicts.push_back(other.judge(loader, question));
    }
    return verdicts;
}

mav_platform::JSONValue NativeCatalogService::getTypedInfo(PlatformLoader& loader,
                                                           const Verdict& verdict) const {
    mav_platform::JSONValue info = mav_platform::JSONValue::answer("info");
    if (const auto platform = loader.load()) {
        Summary(*platform).addTo(info);
        verdict.addTo(info);
    }
    return info;
}

void NativeCatalogService::getPlatformInfo_(PlatformLoader* loader, ptree& info, bool warranty,
                                            bool partitions) const {
    info.clear();
    const auto platform = loader != nullptr ? loader->load() : nullptr;
    if (!platform) {
        tell(NOT_LOADED);
        return;
    }
    Summary summary(*platform);
    if (warranty) {
        std::string reason;
        const bool supported = isUnderWarranty(loader, reason);
        summary.addWarranty(supported, reason);
    }
    summary.addTo(info, partitions);
}

std::string NativeCatalogService::getAsJsonStr(PlatformLoader* loader, bool warranty,
                                               bool partitions) const {
    ptree info;
    getPlatformInfo_(loader, info, warranty, partitions);
    return info.empty() ? "{\n}\n" : NativeObjectService::getNodeAsJsonStr(info);
}

std::string NativeCatalogService::getAsJsonStr(const std::string& path, bool warranty,
                                               bool partitions) const {
    PlatformLoader loader = loaderFor(path);
    return getAsJsonStr(&loader, warranty, partitions);
}

std::string NativeCatalogService::getAllAsJsonStr(const std::string& directories, bool warranty,
                                                  bool partitions) const {
    ptree all;
    ptree& list = all.push_back({"platforms", ptree()})->second;
    for (const std::string& path : descriptionFiles(directories)) {
        ptree info;
        try {
            PlatformLoader loader = loaderFor(path);
            getPlatformInfo_(&loader, info, warranty, partitions);
        } catch (const mav_platform::PlatformParseException&) {
            tell(NOT_LOADED);
            continue;
        } catch (const std::exception& error) {
            tell(std::string(NOT_LOADED) + ": " + error.what());
            continue;
        } catch (...) {
            tell(std::string(NOT_LOADED) + ": " + path);
            continue;
        }
        if (!info.empty()) list.push_back({"", ptree()})->second.swap(info);
    }
    return list.empty() ? "{\n    \"platforms\": []\n}\n"
                        : NativeObjectService::getNodeAsJsonStr(all);
}

std::string NativeCatalogService::getValue(PlatformLoader* loader,
                                           const std::string& keyPath) const {
    ptree info;
    getPlatformInfo_(loader, info, keyPath.starts_with("warranty"),
                     keyPath.starts_with("reconfigurablePartitions"));
    const ptree* const node =
        keyPath.empty() ? nullptr : NativeObjectService::findNode(info, keyPath);
    if (node == nullptr) return "error: key path '" + keyPath + "' doens't exist";
    return node->empty() ? node->data() : NativeObjectService::getNodeAsJsonStr(*node);
}

std::string NativeCatalogService::getValue(const std::string& path,
                                           const std::string& keyPath) const {
    PlatformLoader loader = loaderFor(path);
    return getValue(&loader, keyPath);
}

}  // namespace mav::platform
