// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/ArchiveWork.h"
#include "mav_platform/JSONValue.h"

namespace mav_platform {

/// "valid", "missing", "mismatch", "no key" or "unkeyed".
MAV_API const char* digestWord(mav_host::DigestState state);

/// What an archive holds, read when it is made: members in the archive's order and, for each, the
/// types that it is listed with. Sizes are in bytes.
struct MAV_API ArchiveListing {
    HSTVector<mav_host::ZipMember> members;
    std::vector<HSTVector<std::string>> types;
    mav_host::DigestState digest;

    /// Throws as TypedMembers and HUTZip::verifyDigest do.
    explicit ArchiveListing(const mav_host::ZipArchive& archive);
    /// The answer of `mav files`; `file` is the archive as it was named.
    JSONValue answer(const std::string& file) const;
};

/// Whether an archive still holds the bytes that were packed.
struct MAV_API ArchiveSoundness {
    HSTVector<ArchiveWork::Fault> faults;
    mav_host::DigestState digest;

    /// Reads every member. Throws HEXUserException for one that would inflate beyond all measure,
    /// before anything is read, and as ArchiveWork::faults and HUTZip::verifyDigest do.
    explicit ArchiveSoundness(const mav_host::ZipArchive& archive,
                              const ArchiveWork::OnMember& onMember = {});
    /// There is no fault, and the digest is valid.
    bool good() const;
    /// The answer of `mav verify`; `file` is the archive as it was named.
    JSONValue answer(const std::string& file) const;
};

}  // namespace mav_platform
