// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVSoftwarePlatform.h"

#include <algorithm>

#include "mav_host/Letters.h"
#include "mav_platform/JSONObjectWriter.h"
#include "model/writeList.h"

using mav_host::equalLetters;

namespace {

/// Appends what is not in `out` already, from the place where this question's answer begins.
void addNew(HSTVector<std::string>& out, std::ptrdiff_t first, const std::string& text) {
    if (std::find(out.begin() + first, out.end(), text) == out.end()) out.push_back(text);
}

bool runsOn(const HMAVSystemConfig& config, const char* os) {
    HSTVector<HMAVProcessorGroup*> groups;
    config.getProcessorGroups(groups);
    return std::any_of(groups.begin(), groups.end(), [os](const HMAVProcessorGroup* group) {
        return equalLetters(group->getOSName(), os);
    });
}

bool admits(const std::string& libType, const HMAVSystemConfig& config) {
    if (libType.empty()) return true;
    if (equalLetters(libType, "shared")) return runsOn(config, "linux");
    if (equalLetters(libType, "c-callable")) return runsOn(config, "standalone");
    return equalLetters(libType, "static") &&
           (runsOn(config, "linux") || runsOn(config, "standalone"));
}

}  // namespace

HMAVSoftwarePlatform::HMAVSoftwarePlatform() = default;

HMAVSoftwarePlatform::~HMAVSoftwarePlatform() = default;

void HMAVSoftwarePlatform::getSystemConfigs(HSTVector<HMAVSystemConfig*>& out) const {
    out.insert(out.end(), systemConfigs_.items().begin(), systemConfigs_.items().end());
}

HMAVSystemConfig* HMAVSoftwarePlatform::getSystemConfig() const {
    return systemConfigs_.items().empty() ? nullptr : systemConfigs_.items().front();
}

HMAVSystemConfig* HMAVSoftwarePlatform::getSystemConfigByName(const std::string& name) const {
    HMAVSystemConfig* found = nullptr;
    for (HMAVSystemConfig* config : systemConfigs_.items()) {
        if (config->getName() == name || config->getPrettyName() == name) found = config;
    }
    return found;
}

HMAVSystemConfig* HMAVSoftwarePlatform::getSystemConfigByPrettyName(const std::string& name) const {
    return getSystemConfigByName(name);
}

HMAVSystemConfig* HMAVSoftwarePlatform::getDefaultSystemConfig() const {
    HMAVSystemConfig* const named =
        defaultConfigName_.empty() ? nullptr : getSystemConfigByName(defaultConfigName_);
    return named != nullptr ? named : getSystemConfig();
}

std::string HMAVSoftwarePlatform::getDefaultConfigName() const {
    if (!defaultConfigName_.empty()) return defaultConfigName_;
    const HMAVSystemConfig* const config = getDefaultSystemConfig();
    return config != nullptr ? config->getName() : "";
}

void HMAVSoftwarePlatform::getSupportedRuntimes(HSTVector<std::string>& out) const {
    const auto first = static_cast<std::ptrdiff_t>(out.size());
    for (const HMAVSystemConfig* config : systemConfigs_.items()) {
        HSTVector<std::string> keys;
        config->getRuntimes(keys);
        for (const std::string& key : keys) addNew(out, first, key);
    }
}

void HMAVSoftwarePlatform::getSupportedRuntimesByPrettyName(HSTVector<std::string>& out) const {
    const auto first = static_cast<std::ptrdiff_t>(out.size());
    for (const HMAVSystemConfig* config : systemConfigs_.items()) {
        HSTVector<std::string> names;
        config->getRuntimesByPrettyName(names);
        for (const std::string& name : names) addNew(out, first, name);
    }
}

std::size_t HMAVSoftwarePlatform::getNumRuntimes() const {
    HSTVector<std::string> keys;
    getSupportedRuntimes(keys);
    return keys.size();
}

bool HMAVSoftwarePlatform::isRuntimeSupported(const std::string& runtime) {
    static constexpr const char* KNOWN[] = {"ocl", "OpenCL", "cpp", "C/C++"};
    return std::any_of(std::begin(KNOWN), std::end(KNOWN),
                       [&](const char* known) { return equalLetters(runtime, known); });
}

bool HMAVSoftwarePlatform::isSystemConfigSupported(const std::string& name) const {
    const HMAVSystemConfig* const config = getSystemConfigByName(name);
    if (config == nullptr) return false;
    HSTVector<std::string> keys;
    config->getRuntimes(keys);
    return keys.empty() || std::any_of(keys.begin(), keys.end(), isRuntimeSupported);
}

std::size_t HMAVSoftwarePlatform::getSystemConfigNames(HSTVector<std::string>& out,
                                                       const std::string& libType) const {
    for (const HMAVSystemConfig* config : systemConfigs_.items()) {
        if (admits(libType, *config)) out.push_back(config->getName());
    }
    return out.size();
}

void HMAVSoftwarePlatform::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("linuxRootFileSystemPath", linuxRootFileSystemPath_);
    writer.addKey("defaultConfig", getDefaultConfigName());
    writeList(writer, "systemConfigurations", systemConfigs_);
}
