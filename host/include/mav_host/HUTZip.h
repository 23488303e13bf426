// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"

namespace mav_host {

/// What the directory of an archive says about one member.
struct MAV_API ZipMember {
    std::string name;          ///< path inside the archive, as stored
    std::uint64_t size = 0;    ///< size that the header claims, in bytes
    std::uint64_t packed = 0;  ///< size inside the archive, in bytes
};

/// An archive opened for reading. A value: copies share the opened file, so one load opens an
/// archive once. Only the directory is read at opening; members are found by name in constant time
/// and read one by one. Used by one thread at a time.
class MAV_API ZipArchive {
  public:
    /// Opens the archive. Throws HEXFileNotFoundException when nothing is there, HEXUserException
    /// when it is a directory, cannot be read, or is no intact zip archive; the text names the path
    /// and the reason.
    explicit ZipArchive(const std::string& path);

    const std::string& path() const;
    /// True when a member of exactly this name exists. Of equal names the first counts.
    bool contains(const std::string& member) const;
    /// The members in the archive's order.
    HSTVector<ZipMember> members() const;
    /// The member's bytes. Inflation stops at `limit` bytes whatever the header claims, and no
    /// memory is taken on the header's word. Throws HEXDataException naming archive and member when
    /// the member is absent, larger than the limit, damaged, or not of the size that it claims.
    std::string read(const std::string& member, std::uint64_t limit) const;
    /// Streams the member in pieces to `sink` in constant memory; throws as `read` does.
    void read(const std::string& member, std::uint64_t limit,
              const std::function<void(const char*, std::size_t)>& sink) const;

  private:
    struct Impl;
    std::shared_ptr<Impl> impl_;
};

/// Outcome of `HUTZip::verifyDigest`.
enum class DigestState { VALID, MISSING, MISMATCH, NO_KEY };

}  // namespace mav_host

/// Zip work on archives named by path.
///
/// Writing operations build the new archive beside the old one, sync it and rename it over the old
/// one, keeping its permissions; a lock file excludes other writers. When a step fails the old
/// archive stays byte for byte and HEXUserException is thrown, naming the archive, the step and the
/// system's reason.
class MAV_API HUTZip {
  public:
    /// Largest metadata member that is read into memory, in bytes (1 GiB).
    static constexpr std::uint64_t MAX_METADATA_SIZE = std::uint64_t{1} << 30;

    /// True when the file begins with a zip signature.
    static bool isZip(const std::string& path);
    /// True when the archive opens and holds the member. Never throws.
    static bool containsFile(const std::string& archive, const std::string& member);

    /// One member to be written: its name and where its bytes come from.
    struct Source {
        std::string member;
        std::string file;  ///< path of the file to add; when empty, `content` is added
        std::string content;
    };
    /// Adds the members to the archive, replacing those of equal name in place; makes the archive
    /// when there is none. Member names that are empty, absolute or climb out with ".." are refused
    /// with HEXUserException before anything is written. An existing digest is dropped, for it no
    /// longer holds.
    static void add(const std::string& archive, const HSTVector<Source>& sources);
    /// Writes a new archive that holds exactly these members in this order and a digest over them.
    static void create(const std::string& archive, const HSTVector<Source>& sources);

    /// Attaches a digest to a finished archive (see docs/host.md for its form): HMAC-SHA-256 with
    /// the host's key, SHA-256 without one. Replaces an older one.
    static void addDigest(const std::string& archive);
    static mav_host::DigestState verifyDigest(const std::string& archive);

    /// Extracts one member to dir/member, or every member below `member` + "/" for the directory
    /// form, making directories as needed. Names that climb out and links on the way are refused
    /// with HEXUserException. Answers false when the archive has no such member.
    static bool extractFile(const std::string& archive, const std::string& member,
                            const std::string& dir);
    static bool extractDir(const std::string& archive, const std::string& member,
                           const std::string& dir);
};

/// Input stream over one member. Constructed on a missing archive or member it is in the failed
/// state (`!stream`), as a file stream is.
class MAV_API zip_istream : public std::istream {
  public:
    zip_istream(const std::string& archive, const std::string& member, int option = 3);
    zip_istream(const mav_host::ZipArchive& archive, const std::string& member);
    ~zip_istream() override;

  private:
    std::unique_ptr<std::streambuf> buffer_;
};

/// Output stream into one member: what is written goes to a file beside the archive, and `close`
/// (or the destructor) adds it to the archive as `HUTZip::add` does. `close` sets the failed state
/// when that does not work; the archive is then as it was.
class MAV_API zip_ostream : public std::ostream {
  public:
    zip_ostream(const std::string& archive, const std::string& member, int option = 0);
    ~zip_ostream() override;
    void close();

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};
