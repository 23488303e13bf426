// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace mav_platform {

/// How the metadata of hardware archives is read. PlatformLoader offers it under its own name.
enum HwMetadataMode : int {
    HW_METADATA_AUTO = 0,          ///< JSON, the "alt_" member before the primary one, else XML
    HW_METADATA_PRIMARY_JSON = 1,  ///< JSON only when the primary member is there, else XML
    HW_METADATA_XML = 2            ///< always the device support XML reader
};

}  // namespace mav_platform
