// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

class HPLPlatform;

namespace mav_platform {
class OpenArchives;
}

/// Stands for the device support XML of older archives, a format that this library does not read.
class HMAVDsaXmlReader {
  public:
    HMAVDsaXmlReader(std::string path, HPLPlatform* platform,
                     mav_platform::OpenArchives* archives = nullptr);

    /// Always false. Reports why through "@74-63@%s%s": what is wrong with the file as an archive,
    /// or that it holds no metadata member that can be read.
    bool parseDSA();

  private:
    std::string path_;
    HPLPlatform* platform_;
    mav_platform::OpenArchives* archives_;
};
