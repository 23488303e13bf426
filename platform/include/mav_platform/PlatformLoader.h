// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "mav_host/Export.h"
#include "mav_platform/HwMetadataMode.h"

class HMAVPlatform;
class HMAVReconfigurablePartition;
class HPLPlatform;

namespace mav_platform {

class OpenArchives;

/// Turns the path of one platform file into one platform. The extension alone, exact and
/// case-sensitive, tells the kind: ".dsa" and ".pka" are hardware archives, ".spfm" is a software
/// platform, anything else a platform description.
///
/// A description is parsed in the constructor; what it refers to is read by the first `load`. Used
/// by one thread at a time.
class MAV_API PlatformLoader {
  public:
    using HwMetadataMode = mav_platform::HwMetadataMode;
    using enum mav_platform::HwMetadataMode;

    enum PlatformFileKind : int {
        HARDWARE_ARCHIVE = 0,
        SOFTWARE_PLATFORM = 1,
        PLATFORM_DESCRIPTION = 2
    };

    /// Throws HEXFileNotFoundException for a description that does not exist and
    /// PlatformParseException "failed to parse the QPFM file" for one that does not parse. An empty
    /// path is accepted here and refused by `load`.
    PlatformLoader(const std::string& path, HwMetadataMode mode);
    ~PlatformLoader();
    PlatformLoader(const PlatformLoader&) = delete;
    PlatformLoader& operator=(const PlatformLoader&) = delete;

    /// The platform with everything it refers to; the same object at every call after a success,
    /// without reading anything again. Empty when a file is missing or does not parse: the reason
    /// is reported through "@74-60@%s" and every later call answers empty too. Other exceptions
    /// pass.
    std::shared_ptr<HMAVPlatform> load();

    /// What the platform says of itself; empty texts after a failed `load`.
    std::string getName() const;
    std::string getVendor() const;
    std::string getDescription() const;
    std::string getVersion() const;
    /// The platform's own file, which for an archive is known only after `load`.
    std::string getFilePath() const;
    std::string getBaseName() const;
    std::string getHardwarePlatformFile() const;
    std::string getHardwareEmuPlatformFile() const;
    std::string getSoftwarePlatformFile() const;

  private:
    void parseDescription_();
    void attachAll_();
    template <class Read>
    HPLPlatform* read_(OpenArchives& archives, Read read);
    HPLPlatform* readArchive_(const std::string& path, OpenArchives& archives, const char* failed);
    void attachHardwarePlatform(OpenArchives& archives);
    void attachHardwareEmulationPlatform(OpenArchives& archives);
    void attachMergedHardwareEmulationPlatform_(OpenArchives& archives);
    void attachSoftwarePlatform();
    void loadReconfigurablePartitions_();
    void attachHardwarePlatform_(HMAVReconfigurablePartition* partition, OpenArchives& archives);
    void attachHardwareEmulationPlatform_(HMAVReconfigurablePartition* partition,
                                          OpenArchives& archives);

    std::shared_ptr<HMAVPlatform> platform_;
    std::string filePath_;
    PlatformFileKind fileKind_ = PLATFORM_DESCRIPTION;
    bool loaded_ = false;
    HwMetadataMode hwMetadataMode_;
};

}  // namespace mav_platform
