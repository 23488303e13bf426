// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVSystemConfig.h"

#include "mav_host/Letters.h"
#include "mav_platform/JSONObjectWriter.h"
#include "model/writeList.h"

using mav_host::equalLetters;

namespace {

/// The last element of that name; null when none has it.
template <class T>
T* lastNamed(const OwnedList<T>& list, const std::string& name) {
    T* found = nullptr;
    for (T* element : list.items()) {
        if (element->getName() == name) found = element;
    }
    return found;
}

/// The stored name, else that of the first element.
template <class T>
std::string nameOr(const std::string& stored, const OwnedList<T>& list) {
    if (!stored.empty() || list.items().empty()) return stored;
    return list.items().front()->getName();
}

}  // namespace

HMAVSystemConfig::~HMAVSystemConfig() = default;

std::string HMAVSystemConfig::getDefaultProcGrpName() const {
    return nameOr(defaultProcGrpName_, processorGroups_);
}

std::string HMAVSystemConfig::getDefaultBootImgName() const {
    return nameOr(defaultBootImgName_, bootImgs_);
}

void HMAVSystemConfig::getProcessorGroups(HSTVector<HMAVProcessorGroup*>& out) const {
    out.insert(out.end(), processorGroups_.items().begin(), processorGroups_.items().end());
}

void HMAVSystemConfig::getProcessorGroups(HSTVector<std::string>& out) const {
    out.insert(out.end(), processorGroupNames_.begin(), processorGroupNames_.end());
}

void HMAVSystemConfig::getRuntimes(HSTVector<std::string>& out) const {
    out.insert(out.end(), runtimes_.begin(), runtimes_.end());
}

void HMAVSystemConfig::getRuntimesByPrettyName(HSTVector<std::string>& out) const {
    for (const std::string& key : runtimes_) {
        if (equalLetters(key, "cpp")) out.push_back("C/C++");
    }
}

HMAVProcessorGroup* HMAVSystemConfig::getProcGrpByName(const std::string& name) const {
    return lastNamed(processorGroups_, name);
}

void HMAVSystemConfig::getBootImgs(HSTVector<HMAVBootImg*>& out) const {
    out.insert(out.end(), bootImgs_.items().begin(), bootImgs_.items().end());
}

HMAVBootImg* HMAVSystemConfig::getBootImgByName(const std::string& name) const {
    return lastNamed(bootImgs_, name);
}

void HMAVSystemConfig::addProcessorGroup(std::string name) {
    processorGroupNames_.push_back(std::move(name));
}

void HMAVSystemConfig::addRuntime(std::string key) {
    runtimes_.push_back(std::move(key));
}

void HMAVSystemConfig::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("prettyName", getPrettyName());
    writer.addKey("description", desc_);
    writer.addKey("defaultProcessorGroup", getDefaultProcGrpName());
    writer.addKey("defaultBootImage", getDefaultBootImgName());
    writer.addKey("prebuiltData", prebuiltData_);
    writer.addKey("qemu", supportsQemu_);
    writeList(writer, "processorGroups", processorGroups_);
    writeList(writer, "bootImages", bootImgs_);
    writer.addKey("runtimes", runtimes_);
}
