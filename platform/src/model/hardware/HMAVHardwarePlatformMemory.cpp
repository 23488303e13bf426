// SPDX-License-Identifier: Apache-2.0
// Bus interfaces and the memory behind them.
#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/predicate.hpp>

#include "mav_host/ComMsgMgr.h"
#include "mav_platform/HMAVHardwarePlatform.h"

namespace {

/// Memory port in lower case.
std::string portOf(const HMAVHardwareBusInterface& bus) {
    return boost::algorithm::to_lower_copy(bus.getMemPort());
}

bool isGeneralPurpose(const std::string& port) {
    return port == "m_axi_gp" || port == "s_axi_gp";
}

}  // namespace

bool HMAVHardwarePlatform::isMemoryResourceIndexed() const {
    if (memoryResourceIndexed_ != Indexed::UNKNOWN) return memoryResourceIndexed_ == Indexed::YES;
    for (const HMAVHardwareBusInterface* bus : busInterfaces_.items()) {
        const std::string port = portOf(*bus);
        if (port == "memss") {
            memoryResourceIndexed_ = Indexed::YES;
            return true;
        }
        if (!port.empty() && !isGeneralPurpose(port) &&
            !boost::iequals(bus->getSPTag(), "default")) {
            memoryResourceIndexed_ = Indexed::NO;
            return false;
        }
    }
    return false;
}

std::size_t HMAVHardwarePlatform::getMemoryResourceBusInterfacesIndexed_(
    HSTVector<HMAVHardwareBusInterface*>& out) const {
    for (HMAVHardwareBusInterface* bus : busInterfaces_.items()) {
        if (portOf(*bus) == "memss") out.push_back(bus);
    }
    return out.size();
}

std::size_t HMAVHardwarePlatform::getMemoryResourceBusInterfacesNonIndexed_(
    HSTVector<HMAVHardwareBusInterface*>& out) const {
    for (HMAVHardwareBusInterface* bus : busInterfaces_.items()) {
        const std::string port = portOf(*bus);
        if (port.empty() || port == "memss" || isGeneralPurpose(port)) continue;
        if (!boost::iequals(bus->getSPTag(), "default")) out.push_back(bus);
    }
    return out.size();
}

std::size_t HMAVHardwarePlatform::getMemoryBusInterfaces(
    HSTVector<HMAVHardwareBusInterface*>& out) const {
    return isMemoryResourceIndexed() ? getMemoryResourceBusInterfacesIndexed_(out)
                                     : getMemoryResourceBusInterfacesNonIndexed_(out);
}

std::string HMAVHardwarePlatform::getMemorySLR(const std::string& name) const {
    HSTVector<HMAVHardwareBusInterface*> buses;
    getMemoryBusInterfaces(buses);
    for (const HMAVHardwareBusInterface* bus : buses) {
        if (bus->getMemoryInstance() == name) return bus->getSLR();
        for (const HMAVHardwareAddressSegment* segment : bus->getAddressSegments()) {
            if (segment->getMemoryInstance() == name) return segment->getSLR();
        }
    }
    return "";
}

int HMAVHardwarePlatform::getBusInterfaceMaxDataWidth() const {
    int widest = 0;
    for (const HMAVHardwareBusInterface* bus : busInterfaces_.items()) {
        widest = std::max(widest, bus->getDataWidth());
    }
    return widest;
}

int HMAVHardwarePlatform::countBusInterfaces_(const char* type, const char* mode) const {
    const auto& buses = busInterfaces_.items();
    return static_cast<int>(
        std::count_if(buses.begin(), buses.end(), [&](const HMAVHardwareBusInterface* bus) {
            return boost::iequals(bus->getBusTypeRef(), type) &&
                   (mode == nullptr || boost::iequals(bus->getMode(), mode));
        }));
}

int HMAVHardwarePlatform::getMaxAXIMMManagers() const {
    return countBusInterfaces_("aximm", "master");
}

int HMAVHardwarePlatform::getMaxAXIMMSubordinates() const {
    return countBusInterfaces_("aximm", "slave");
}

int HMAVHardwarePlatform::getMaxInterrupts() const {
    return countBusInterfaces_("interrupt", nullptr);
}

void HMAVHardwarePlatform::updateHBMBankInfo(const std::string& instance, const std::string& bank,
                                             const std::string& automatic) {
    const bool wasMixed = hasMixedHBMBanks_();
    hbmInstance_ = instance;
    const auto known = hbmBanks_.find(bank);
    if (known != hbmBanks_.end()) {
        if (known->second) --preferredHBMBanks_;
        hbmBanks_.erase(known);
    }
    if (automatic != "false") {
        const bool preferred = automatic == "preferred";
        hbmBanks_.emplace(bank, preferred);
        if (preferred) ++preferredHBMBanks_;
    }
    if (!wasMixed && hasMixedHBMBanks_()) {
        ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::STATUS, "@74-261@");
    }
}

bool HMAVHardwarePlatform::hasMixedHBMBanks_() const {
    return preferredHBMBanks_ != 0 && preferredHBMBanks_ != hbmBanks_.size();
}

void HMAVHardwarePlatform::issueNormalizeMemoryBanksMessage(std::ostream& out) const {
    if (!hasMixedHBMBanks_()) return;
    out << "\nThe HBM instance '" << hbmInstance_
        << "' has only a subset of its auto-assignable memory banks tagged as 'default'. "
           "To attain better HBM bandwidth, use mcc parameter '--advanced.param "
           "compiler.normalizeDefaultMemoryBanks=true' to change all HBM memory banks to "
           "'default'.\n\n";
}
