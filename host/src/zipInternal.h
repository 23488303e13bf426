// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zip.h>

#include <functional>
#include <memory>
#include <string>

#include "mav_host/HUTZip.h"

/// What the zip sources share. Nothing outside the host sees libzip.
namespace mav_host {

struct ZipClose {
    void operator()(zip_t* zip) const { zip_discard(zip); }
};
using ZipHandle = std::unique_ptr<zip_t, ZipClose>;

struct ZipFileClose {
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using ZipFileHandle = std::unique_ptr<zip_file_t, ZipFileClose>;

/// Opens an archive for reading; throws as ZipArchive's constructor does.
ZipHandle openZip(const std::string& path);

/// A member name that stays below the directory it is extracted to: not empty, not absolute, no
/// ".." part, no null byte, no backslash.
bool isSafeMemberName(const std::string& name);

/// Feeds the inflated bytes of a member to `sink`; throws as ZipArchive::read does.
void streamMember(zip_t* zip, zip_uint64_t index, const std::string& path, std::uint64_t limit,
                  const std::function<void(const char*, std::size_t)>& sink);

/// The steps of writing an archive, in order.
enum class WriteStep { LOCK, MAKE, BUILD, DIGEST, PERMISSIONS, SYNC, RENAME, SYNC_DIRECTORY };

/// Called before each step, when set; what it throws is the step's failure. Tests use it.
using StepHook = std::function<void(WriteStep)>;
StepHook& stepHook();

/// Text form of the digest over all members, with the host's key if there is one.
std::string computeDigest(zip_t* zip, const std::string& path);

}  // namespace mav_host
