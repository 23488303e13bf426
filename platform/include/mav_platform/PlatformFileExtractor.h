// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"

class HMAVHardwarePlatform;

/// Copies members of a hardware platform's archive to files on disk. Members of a child
/// hardware-emulation platform are looked for below "hw_emu/". The platform must outlive this
/// object.
class MAV_API PlatformFileExtractor {
  public:
    /// With `rewriteHpfm` an extracted ".hpfm" file is brought to the present form in place.
    explicit PlatformFileExtractor(const HMAVHardwarePlatform& platform, bool rewriteHpfm = false);

    /// Writes the member to the file `destinationPath`, making its directory; the file is replaced
    /// as a whole, and a link in its place is not followed. False when the archive cannot be opened
    /// or has no such member. Throws HEXUserException naming the member, the archive and the reason
    /// when it cannot be written or is too large, HEXDataException when it is damaged; the file is
    /// then as it was.
    bool extract(const std::string& member, const std::string& destinationPath) const;

  private:
    const HMAVHardwarePlatform& platform_;
    bool rewriteHpfm_;
};
