// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "mav_host/Export.h"

/// The protected container: authenticated streaming encryption of one file with the host's key
/// (see docs/archives.md for its form). Changes, truncation and a wrong key are detected.
namespace isl::iostreams::xp {

/// True when the file begins with the container's magic number. False for anything else, also for a
/// path that cannot be read. Needs no key.
MAV_API bool is_xp_format(const std::string& path);
/// The same of a file's content.
MAV_API bool is_container(std::string_view content);

/// The plain content. Throws HEXDataException naming the path, with a text of its own for a file
/// that cannot be read, is no container, is of another version, was made with another key, was
/// changed, is cut off, or has bytes behind its end, and when the host has no key.
/// Who is done with the content wipes it.
MAV_API std::string read(const std::string& path);
/// The same from the file's content; the path appears in the texts.
MAV_API std::string read(const std::string& path, std::string_view content);

/// The plain content as a stream, checked whole before the first byte is given and wiped with it.
/// Throws as `read`.
MAV_API std::unique_ptr<std::istream> open(const std::string& path);

/// Writes the container as a whole (see HUTFileUtils::writeWhole). Throws HEXUserException when the
/// host has no key, the container would exceed 1 GiB, or the file cannot be written.
MAV_API void write(const std::string& path, const std::string& content);

}  // namespace isl::iostreams::xp
