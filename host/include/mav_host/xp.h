// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <iosfwd>
#include <memory>
#include <string>

#include "mav_host/Export.h"

/// The protected container: authenticated streaming encryption of one file with the host's key
/// (see docs/host.md for its form). Changes, truncation and a wrong key are detected.
namespace isl::iostreams::xp {

/// True when the file begins with the container's magic number. False for anything else, also for a
/// path that cannot be read. Needs no key.
MAV_API bool is_xp_format(const std::string& path);

/// The plain content. Throws HEXDataException naming the path when the file is no container, is of
/// a newer version, was changed or cut off, or the host has no key.
MAV_API std::string read(const std::string& path);

/// The plain content as a stream, checked whole before the first byte is given. Throws as `read`.
MAV_API std::unique_ptr<std::istream> open(const std::string& path);

/// Writes the container as a whole (see HUTFileUtils::writeWhole). Throws HEXUserException when the
/// host has no key or the file cannot be written.
MAV_API void write(const std::string& path, const std::string& content);

}  // namespace isl::iostreams::xp
