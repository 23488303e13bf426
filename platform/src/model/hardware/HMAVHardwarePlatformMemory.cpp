// SPDX-License-Identifier: Apache-2.0
// Bus interfaces and the memory behind them.
#include <algorithm>

#include "mav_host/Letters.h"
#include "mav_host/Messages.h"
#include "mav_platform/HMAVHardwarePlatform.h"

using mav_host::equalLetters;
using mav_host::lowerCase;

namespace {

/// Memory port in lower case.
std::string portOf(const HMAVHardwareBusInterface& bus) {
    return lowerCase(bus.getMemPort());
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
        if (!port.empty() && !isGeneralPurpose(port) && !equalLetters(bus->getSPTag(), "default")) {
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
        if (!equalLetters(bus->getSPTag(), "default")) out.push_back(bus);
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
            return equalLetters(bus->getBusTypeRef(), type) &&
                   (mode == nullptr || equalLetters(bus->getMode(), mode));
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
                                             const std::string& automatic,
                                             const HMAVHardwareBusInterface* interface) {
    HBMBanks& banks = hbmBanks_[{instance, interface}];
    if (banks.areMixed()) --mixedHBMs_;
    const bool wasMixed = mixedHBMs_ != 0 || banks.areMixed();
    const auto known =
        bank.empty() ? banks.preferredByName.end() : banks.preferredByName.find(bank);
    if (known != banks.preferredByName.end()) {
        if (known->second) --banks.preferred;
        banks.preferredByName.erase(known);
    }
    if (automatic != "false") {
        const bool preferred = automatic == "preferred";
        banks.preferredByName.emplace(bank, preferred);
        if (preferred) ++banks.preferred;
    }
    if (!banks.areMixed()) return;
    ++mixedHBMs_;
    if (!wasMixed) mav_host::report(mav_host::messages::HBM_PARTLY_PREFERRED);
}

void HMAVHardwarePlatform::issueNormalizeMemoryBanksMessage(std::ostream& out) const {
    const std::string* told = nullptr;
    for (const auto& [key, banks] : hbmBanks_) {
        const std::string& instance = key.first;
        if (!banks.areMixed() || (told != nullptr && *told == instance)) continue;
        told = &instance;
        out << "\nThe HBM instance '" << instance
            << "' has only a subset of its auto-assignable memory banks tagged as 'default'. "
               "To attain better HBM bandwidth, use mcc parameter '--advanced.param "
               "compiler.normalizeDefaultMemoryBanks=true' to change all HBM memory banks to "
               "'default'.\n\n";
    }
}
