// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"

class HPLPlatform;

namespace mav_platform {
class OpenArchives;
}

/// Stands for the device support XML of older archives, a format that this library does not read.
class MAV_API HMAVDsaXmlReader {
  public:
    /// The platform stays owned by the caller and outlives the reader, as do the archives that a
    /// load has opened, which the library hands in.
    HMAVDsaXmlReader(std::string path, HPLPlatform* platform,
                     mav_platform::OpenArchives* archives = nullptr);

    /// Always false. Reports why through "@74-63@%s%s": what is wrong with the file as an archive,
    /// or that it holds no metadata member that can be read.
    bool parseDSA();
    /// What was reported last; empty before.
    const std::string& getErrorMsg() const { return errorMsg_; }

  private:
    std::string path_;
    HPLPlatform* platform_;
    mav_platform::OpenArchives* archives_;
    std::string errorMsg_;
};
