// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"
#include "mav_platform/HMAVKeyService.h"

namespace mav::platform {

/// The key summary of a document: {"keys": [{"path": "systemClocks[].name", "count": "2"}, …]}, an
/// entry for each distinct path below the root in the order of first appearance. "[]" stands for
/// the elements of a list, `count` tells how often the path occurs.
///
/// The forms for platforms throw as NativeObjectService does, all HEXAlgException "Failed to read
/// platform: the paths of its description exceed 64 MiB".
class MAV_API NativeKeyService : public KeyService {
  public:
    ~NativeKeyService() override;

    ptree get(PlatformLoader* loader) const override;
    ptree get(const std::string& platformFile) const override;
    ptree get(const ptree& document) const override;
    /// The same as pretty JSON text.
    std::string getAsJsonStr(PlatformLoader* loader) const override;
    std::string getAsJsonStr(const std::string& platformFile) const override;
};

}  // namespace mav::platform
