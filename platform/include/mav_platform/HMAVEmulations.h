// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/HMAVEmuFeatureRom.h"
#include "mav_platform/HMAVEmulation.h"
#include "mav_platform/OwnedList.h"

/// What an archive says of its emulation: the variants with the members that each needs, and the
/// feature ROM values of the extension metadata. Owns all that it hands out by pointer; lists are
/// in the order of addition, which a reader keeps as the order of the document.
class MAV_API HMAVEmulations {
  public:
    /// Folder of the emulation members inside an archive: "hw_emu".
    static const std::string& getEmuDirName();
    /// "hw_emu.xml" and "hw_emu.json".
    static const std::string& getEmulationXmlFilename();
    static const std::string& getEmulationJsonFilename();

    /// Version text of the JSON form; empty when there is none.
    const std::string& getPfmMetadataVersion() const { return pfmMetadataVersion_; }
    void setPfmMetadataVersion(std::string value) { pfmMetadataVersion_ = std::move(value); }
    /// Version of the XML form; 0 until it is set.
    std::uint32_t getVersionMajor() const { return versionMajor_; }
    void setVersionMajor(std::uint32_t value) { versionMajor_ = value; }
    std::uint32_t getVersionMinor() const { return versionMinor_; }
    void setVersionMinor(std::uint32_t value) { versionMinor_ = value; }

    /// Each appends an empty element and answers it.
    HMAVEmulation* createEmulation() { return emulations_.add(); }
    HMAVEmuFeatureRom* createFeatureRom() { return featureRoms_.add(); }
    const HSTVector<HMAVEmulation*>& getEmulations() const { return emulations_.items(); }
    const HSTVector<HMAVEmuFeatureRom*>& getFeatureRoms() const { return featureRoms_.items(); }
    /// True when a variant has a file of exactly that type.
    bool hasFileOfType(const std::string& type) const;

  private:
    std::string pfmMetadataVersion_;
    std::uint32_t versionMajor_ = 0;
    std::uint32_t versionMinor_ = 0;
    OwnedList<HMAVEmulation> emulations_;
    OwnedList<HMAVEmuFeatureRom> featureRoms_;
};
