// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "formats/metadata/Fields.h"
#include "mav_platform/HMAVPfmFileTypes.h"
#include "mav_platform/HwMetadataMode.h"

class HMAVDpeHardware;
class HMAVDpePartition;
class HMAVEmulations;
class HMAVHardwareAddressSegment;
class HMAVHardwareBusInterface;
class HMAVHpfmReader;
class HMAVReconfigPartition;
class HPLBoard;
class HPLCore;
class HPLDevice;
class HPLPlatform;

namespace mav_platform {
class OpenArchives;
}

/// Fills a hardware platform from the JSON metadata member of its archive.
///
/// Answers are bools; the details go to the message manager. A failure leaves the platform partly
/// filled. The platform and the opened archives stay owned by the caller and outlive the reader.
class HMAVDsaJsonReader {
  public:
    using Mode = mav_platform::HwMetadataMode;

    /// Without `archives` the reader opens archives for itself.
    explicit HMAVDsaJsonReader(HPLPlatform* platform,
                               mav_platform::OpenArchives* archives = nullptr);
    ~HMAVDsaJsonReader();

    /// True when the mode admits JSON and the archive holds a metadata member; `member` receives
    /// the name of the one to read, the alternative before the primary one. Sets the platform file
    /// to the canonical path unless the mode is XML. Reports "@74-66@%s" for an empty or missing
    /// path.
    bool canParse(const std::string& path, Mode mode, std::string& member);
    /// The same for the metadata of the hardware-emulation platform inside the archive.
    bool canParseHwEmu(const std::string& path, Mode mode, std::string& member);

    /// Reads the archive's metadata. False after a report: "@74-64@%s%s%s" (path, member, text) for
    /// what is wrong with the member as JSON, "@74-63@%s%s" (path, text) for all else.
    bool parseDSA(const std::string& path, Mode mode);
    /// The same for the hardware-emulation platform inside the archive; silent when there is none.
    bool parseHwEmuPKA(const std::string& path, Mode mode);
    /// Reads the member that canParse has named; reports as parseDSA does.
    bool parseMember(const std::string& path, const std::string& member);

    /// Reads metadata that stands in a file of its own, or in a text. Reports as parseDSA does,
    /// with the file (or "text") in place of the archive.
    bool parseFile(const std::string& path);
    bool parseJsonString(const std::string& text);

    /// Name of the archive's hpfm member, with its folder; empty when the platform lists none.
    std::string getHpfmFile() const;
    /// Text of that member; nothing when it is absent or, reported as "@74-64@%s%s%s", unreadable.
    std::optional<std::string> getHpfmStr();
    /// Fill the bus interfaces, or the NoC records, from the text of an hpfm document. A text that
    /// does not bind is reported as HMAVHpfmReader does and fills nothing.
    void readHpfmBusInterfaces(const std::string& text);
    void readHpfmNocConnectivity(const std::string& text);

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
    HMAVHpfmReader& hpfmReader_(const std::string& text);
    void reportDeclined_(const std::string& path, Mode mode);

    HPLPlatform* platform_;
    std::unique_ptr<mav_platform::OpenArchives> own_;
    mav_platform::OpenArchives* archives_;
    std::unique_ptr<HMAVHpfmReader> hpfm_;  ///< the last one, which has bound `hpfmText_`
    std::string hpfmText_;
    bool merged_ = false;  ///< members stand in the folder of the merged emulation platform
};
