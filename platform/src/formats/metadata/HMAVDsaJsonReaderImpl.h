// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "archive/OpenArchives.h"
#include "formats/Fields.h"
#include "mav_platform/HMAVDsaJsonReader.h"
#include "mav_platform/HMAVPfmFileTypes.h"

class HMAVDpeHardware;
class HMAVDpePartition;
class HMAVEmulations;
class HMAVHardwareAddressSegment;
class HMAVHardwareBusInterface;
class HMAVReconfigPartition;
class HPLBoard;
class HPLCore;
class HPLDevice;

/// What HMAVDsaJsonReader does; its header describes the operations of the same names.
class HMAVDsaJsonReaderImpl {
  public:
    using Mode = mav_platform::HwMetadataMode;

    HMAVDsaJsonReaderImpl(HPLPlatform* platform, mav_platform::OpenArchives* archives);

    bool canParse(const std::string& path, Mode mode, std::string& member);
    bool canParseHwEmu(const std::string& path, Mode mode, std::string& member);
    bool parseDSA(const std::string& path, Mode mode);
    bool parseHwEmuPKA(const std::string& path, Mode mode);
    bool parseMember(const std::string& path, const std::string& member);
    const std::string& getErrorMsg() const { return errorMsg_; }
    bool parseFile(const std::string& path);
    bool parseJsonString(const std::string& text);
    std::string getHpfmFile() const;
    /// Nothing where the public one answers empty because there is no text.
    std::optional<std::string> getHpfmStr();
    bool readHpfmBusInterfaces(std::string text);
    bool readHpfmNocConnectivity(std::string text);

    /// Reads the emulation members that the platform's files name, JSON before XML, and the
    /// extension metadata. A member that is absent is passed over; one that does not parse is
    /// reported by its reader and contributes nothing. A file of type "EMU_HPFM" makes the platform
    /// support hardware emulation, one of type "TOP_BD" two boards.
    void readEmulations();

  private:
    using Node = mav_platform::json::Node;
    using Trail = mav_platform::metadata::Trail;

    // One function per object or list of the document. Each throws ConversionError, or what a model
    // object throws when it refuses a value; the trail then tells where.
    static void parseRoot_(HPLPlatform& platform, const Node& root, Trail& trail);
    /// The keys that come after what other members of the archive contribute.
    static void parseRest_(HPLPlatform& platform, const Node& root, Trail& trail);
    static void parseValidBinaryContentValues_(HPLPlatform& platform, const Node& node,
                                               Trail& trail);
    static void parseDesignIntent_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseCompileXPSwitches_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseLinkXPSwitches_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseDesignIPs_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseFlash_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseDesignIDs_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseReconfigPartitionIDs_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseReconfigPartition_(HMAVReconfigPartition& ids, const Node& node, Trail& trail);
    static void parseDpeHardware_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseDpePartitions_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseResources_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseBoard_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseDevices_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseCore_(HPLDevice& device, const Node& node, Trail& trail);
    static void parseInterfaces_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseMemories_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseFiles_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseFeatureRoms_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseSystemClocks_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseBusInterfaces_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseBusInterface_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseAddressSegment_(HMAVHardwareBusInterface& bus, const Node& node, Trail& trail);
    static void parseNocConnectivity_(HPLPlatform& platform, const Node& node, Trail& trail);
    static void parseIPParams_(HPLPlatform& platform, const Node& node, Trail& trail);

    bool canParse_(const std::string& path, Mode mode, const std::string& primary,
                   const std::string& alternative, std::string& member);
    bool parseDocument_(std::string text, const std::string& path, const std::string& member,
                        bool inArchive = false);
    std::string placed_(const std::string& member) const;
    std::string presentMember_(HMAVPfmFileTypes::FileType type) const;
    bool readEmulationMember_(HMAVEmulations& emulations);
    void reportDeclined_(const std::string& path, Mode mode);
    // Report what ends the reading and keep it for getErrorMsg; false.
    bool refuse_(const std::string& path, const std::string& text);
    bool refuseSyntax_(const std::string& path, const std::string& member, const std::string& text);

    HPLPlatform* platform_;
    mav_platform::OpenArchives own_;
    mav_platform::OpenArchives* archives_;  ///< `own_` unless others were handed in
    std::string errorMsg_;
    bool merged_ = false;  ///< members stand in the folder of the merged emulation platform
};
