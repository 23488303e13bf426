// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"

class HMAVHardwarePlatform;

/// Copies members of the array-engine project archive, which is itself a member of a hardware
/// platform's archive, to files on disk. The project is extracted once into the host's temporary
/// directory and reused for as long as the platform's archive stays the same. The platform must
/// outlive this object.
class MAV_API PlatformDpeprjFileExtractor {
  public:
    explicit PlatformDpeprjFileExtractor(const HMAVHardwarePlatform& platform);

    /// Writes the member of the nested archive to the file `destinationPath`, making its directory.
    /// False when the platform lists no file of type "DPEPRJ", when that one is missing or is no
    /// archive, or when it has no such member. Throws as PlatformFileExtractor::extract does. For a
    /// child hardware-emulation platform the member is looked for below "hw_emu/" in both archives.
    bool extract(const std::string& member, const std::string& destinationPath) const;
    bool extractFile(const std::string& member, const std::string& destinationPath) const;

    /// The local copy of the nested archive of one platform.
    class MAV_API PlatformDPEPRJFile {
      public:
        explicit PlatformDPEPRJFile(const HMAVHardwarePlatform& platform);
        /// Name of the nested archive inside the platform's archive; empty when there is none.
        const std::string& getName() const { return name_; }
        /// Where the copy is, or would be. The path belongs to the platform's archive as it stands:
        /// another archive, or this one after a change, has another path. Empty when there is no
        /// nested archive.
        const std::string& getPath() const { return path_; }
        /// Makes the copy unless it is there. False when the platform's archive has no such member.
        /// Throws as PlatformFileExtractor::extract does.
        bool make() const;

      private:
        const HMAVHardwarePlatform& platform_;
        std::string name_;
        std::string path_;
    };

  private:
    const HMAVHardwarePlatform& platform_;
};
