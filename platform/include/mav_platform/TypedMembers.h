// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "mav_host/Export.h"
#include "mav_host/HUTZip.h"

namespace mav_platform {

/// What an archive says about its members: (type, path in the archive) pairs. From the metadata in
/// its order, members of the merged emulation platform behind those of the platform, then from the
/// index. An entry may name a folder.
struct MAV_API TypedMembers {
    std::vector<std::pair<std::string, std::string>> entries;

    TypedMembers() = default;
    /// Reads metadata and index. One that cannot be read lists nothing, which messages explain.
    explicit TypedMembers(const mav_host::ZipArchive& archive);

    /// The first entry of the type; null when there is none.
    const std::string* find(const std::string& type) const;
    /// For each member the types under which it, or a folder that it lies in, is listed; in the
    /// order of the entries. Beyond 256 bytes "..." stands for the others.
    std::vector<HSTVector<std::string>> typesOf(
        const HSTVector<mav_host::ZipMember>& members) const;
};

/// Names of the metadata members of an archive of that extension (without the dot), in the order in
/// which they are packed: EXT.json and alt_EXT.json, then those two of the merged emulation
/// platform, below its folder.
MAV_API HSTVector<std::string> metadataMembers(const std::string& extension);

/// The archive carries platform metadata and has an extension that tells so.
MAV_API bool holdsPlatform(const mav_host::ZipArchive& archive);

}  // namespace mav_platform
