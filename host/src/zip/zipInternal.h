// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zip.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <streambuf>
#include <string>
#include <vector>

#include "FileDescriptor.h"
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

/// An archive that is open for reading.
struct OpenZip {
    ZipHandle zip;
    std::uint64_t size = 0;  ///< of the file
    std::string comment;
    bool ambiguous = false;  ///< other programs may find another directory in the file
};
/// Opens an archive for reading; throws as ZipArchive's constructor does.
OpenZip openZip(const std::string& path);
/// The same for a file that is open already, whatever `path` leads to by now.
OpenZip openZip(FileDescriptor file, const std::string& path);

struct ZipArchive::Impl {
    std::string path;
    OpenZip open;

    zip_t* zip() const { return open.zip.get(); }
    /// Index of the member; throws HEXDataException when there is none.
    zip_uint64_t find(const std::string& member) const;
};

/// The member's name; empty when it has none that can be told.
std::string memberName(zip_t* zip, zip_uint64_t index);
zip_stat_t statMember(zip_t* zip, zip_uint64_t index);
/// Index of the first member of exactly this name, negative when there is none.
zip_int64_t findMember(zip_t* zip, const std::string& name);

/// A member name that stays below the directory it is extracted to: not empty, not absolute, no
/// ".." part, no null byte, no backslash.
bool isSafeMemberName(const std::string& name);

/// Opens a member for inflating; throws as ZipArchive::read does.
ZipFileHandle openMember(zip_t* zip, zip_uint64_t index, const std::string& path);

/// Feeds the inflated bytes of a member to `sink`; throws as ZipArchive::read does.
void streamMember(zip_t* zip, zip_uint64_t index, const std::string& path, std::uint64_t limit,
                  const std::function<void(const char*, std::size_t)>& sink);

/// Reads one member piece by piece and keeps its archive open as long as it lives. Damage is thrown
/// as std::ios_base::failure, which a stream turns into its bad state.
class MemberBuffer final : public std::streambuf {
  public:
    /// Throws as ZipArchive::read does when the member cannot be opened.
    MemberBuffer(const ZipArchive& archive, const std::string& member);

  protected:
    int_type underflow() override;

  private:
    std::shared_ptr<ZipArchive::Impl> archive_;
    ZipFileHandle file_;
    std::uint64_t left_ = 0;  ///< of the size that the header claims
    std::vector<char> piece_;
};

/// Tells the progress of one long piece of work, or keeps silent when it is a short one.
class ProgressTeller {
  public:
    ProgressTeller(const std::string& what, std::uint64_t size);
    void done(std::uint64_t bytes) {
        if (listener_ != nullptr) tell(static_cast<double>(bytes) / size_);
    }
    void tell(double done);

  private:
    ZipProgress* listener_;
    std::string what_;
    double size_;
};

/// True when the installed listener wants the work to end.
bool isCancelled();

/// What a digest begins with, of any version.
constexpr char DIGEST_START[] = "mav-digest:";
/// Refuses members that claim to inflate to more than an extraction may write, with
/// HEXUserException naming `path`.
void checkInflation(const OpenZip& archive, const std::string& path);
/// Text form of the digest over all members, with the host's key if there is one. However much they
/// inflate to: who asks has built the archive.
std::string computeDigest(const OpenZip& archive, const std::string& path);
/// Compares the archive's digest with its members, as HUTZip::verifyDigest does.
DigestState checkDigest(const OpenZip& archive, const std::string& path);

/// What one call may inflate of an archive of this size, in bytes.
std::uint64_t inflationLimit(std::uint64_t archiveSize);

}  // namespace mav_host
