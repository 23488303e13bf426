// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVEmulationExtMetaJsonReader.h"

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "formats/emulation/EmulationSource.h"
#include "mav_platform/HMAVEmulations.h"

namespace emulation = mav_platform::emulation;
using mav_platform::json::Node;
using namespace mav_platform::metadata;

namespace {

using Rom = HMAVEmuFeatureRom;
using Roms = std::vector<Rom>;

void featureBitMap(Rom& rom, const Node& node, Trail&) {
    const unsigned long long bits = decimalOrHex(node);
    if (bits > std::numeric_limits<std::uint32_t>::max()) {
        throw ConversionError("does not fit into 32 bits");
    }
    rom.setFeatureBitMap(static_cast<std::uint32_t>(bits));
}

template <unsigned Index>
void cdmaBaseAddress(Rom& rom, const Node& node, Trail&) {
    rom.setCDMABaseAddress(Index, decimalOrHex(node));
}

void parseFeatureRoms(Roms& roms, const Node& node, Trail& trail) {
    static constexpr Field<Rom> FIELDS[] = {
        {"vbnvName", &text<&Rom::setVBNVName>},    {"featureBitMap", &featureBitMap},
        {"cdmaBaseAddress0", &cdmaBaseAddress<0>}, {"cdmaBaseAddress1", &cdmaBaseAddress<1>},
        {"cdmaBaseAddress2", &cdmaBaseAddress<2>}, {"cdmaBaseAddress3", &cdmaBaseAddress<3>},
    };
    readItems(node, trail, [&](const Node& item) {
        requireObject(item);
        readFields(FIELDS, item, roms.emplace_back(), trail);
    });
}

}  // namespace

bool HMAVEmulationExtMetaJsonReader::parseJson() {
    auto text = emulation::readFile(path_);
    return text && parse_(std::move(*text), {path_, {}});
}

bool HMAVEmulationExtMetaJsonReader::parseFromDsa(const std::string& archive,
                                                  const std::string& member,
                                                  HMAVEmulations* emulations) {
    const emulation::Place place{archive, emulation::normalizedMember(member)};
    emulations_ = emulations;
    auto text = emulation::readMember(place);
    return text && parse_(std::move(*text), place);
}

bool HMAVEmulationExtMetaJsonReader::parseFromDsa(const mav_host::ZipArchive& archive,
                                                  const std::string& member,
                                                  HMAVEmulations* emulations) {
    const emulation::Place place{archive.path(), emulation::normalizedMember(member)};
    emulations_ = emulations;
    auto text = emulation::readMember(archive, place);
    return text && parse_(std::move(*text), place);
}

bool HMAVEmulationExtMetaJsonReader::parse_(std::string text, const emulation::Place& place) const {
    static constexpr Field<Roms> FIELDS[] = {
        {"featureRoms", &parseFeatureRoms},
    };
    Roms roms;
    const bool read = emulation::readJson(
        std::move(text), place,
        [&](const Node& root, Trail& trail) { readFields(FIELDS, root, roms, trail); });
    if (!read) return false;
    for (Rom& rom : roms) *emulations_->createFeatureRom() = std::move(rom);
    return true;
}
