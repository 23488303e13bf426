// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_host/HUTZip.h"

namespace mav_platform {

/// Work on whole platform archives, as a person asks for it: by types and with everything that
/// belongs to one step. Progress is told and asked through HUTZip::setProgress.
class MAV_API ArchiveWork {
  public:
    /// A member that cannot be read, or that is listed under a type and is not there.
    struct Fault {
        std::string member;
        std::string type;  ///< empty for a member that cannot be read
        std::string text;  ///< a sentence without a full stop
    };
    /// Called with each member before it is read, and how many of 1 are done. What it throws ends
    /// the work and passes through.
    using OnMember = std::function<void(const std::string& member, double done)>;

    /// Reads every member, in constant memory. Throws HEXUserException when it is cancelled.
    static HSTVector<Fault> faults(const mav_host::ZipArchive& archive,
                                   const OnMember& onMember = {});

    /// Extracts what a type is listed with, else the member, else the folder of that name, below
    /// the directory. Answers the path of what was made; empty when the archive has none of them.
    /// Throws HEXDataException "type 'T' is listed as 'M', which the archive lacks; make the
    /// archive again"; and as HUTZip::extractFile does.
    static std::string extract(const mav_host::ZipArchive& archive, const std::string& what,
                               const std::string& directory);

    /// Where a file is to be added.
    struct Place {
        std::string type;
        std::string member;  ///< empty: that of the type, else the file's name
    };
    /// Adds the file under the type with a new digest, all in one step: an archive with platform
    /// metadata lists it there, any other in its index. Throws HEXFileNotFoundException for the
    /// file, HEXAlgException for a type or member that it cannot have, HEXDataException when what
    /// the archive says of itself cannot be read, mav_host::DigestRefusal, HEXUserException as
    /// HUTZip::checkMemberName does and when the archive cannot be written.
    static void add(const std::string& archive, const Place& place, const std::string& file,
                    mav_host::Resign resign = mav_host::Resign::NO);

    /// Packs every regular file below the directory into an archive that ends in .pka or .dsa, with
    /// a digest: metadata members first, the others by name; the same files give the same bytes.
    /// What begins with a dot is left out. Throws HEXFileNotFoundException for the directory or the
    /// folder of the archive, HEXAlgException for a name or place that the archive cannot have,
    /// HEXUserException for links, devices, unreadable files, a folder without files or, unless
    /// `withoutMetadata`, without a metadata member, and when the archive cannot be written.
    static void pack(const std::string& directory, const std::string& archive,
                     bool withoutMetadata = false);
};

}  // namespace mav_platform
