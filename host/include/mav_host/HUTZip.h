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
#include "mav_host/HEXError.h"
#include "mav_host/HSTVector.h"

class HUTFolder;

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
    /// when it is a directory, is empty, cannot be read, is no zip archive, is cut off, holds more
    /// than 1,000,000 members, or is forged: members that share bytes, names made to fall together.
    /// The text names the path and the reason.
    explicit ZipArchive(const std::string& path);

    const std::string& path() const;
    /// True when a member of exactly this name exists. Of equal names the first counts.
    bool contains(const std::string& member) const;
    /// The members in the archive's order.
    HSTVector<ZipMember> members() const;
    /// Throws HEXUserException when the members claim to inflate to more than an extraction may
    /// write; for who is about to read all of them.
    void checkInflation() const;
    /// The member's bytes. Inflation stops at `limit` bytes whatever the header claims, and no
    /// memory is taken on the header's word alone. Throws HEXDataException naming archive and
    /// member when the member is absent, larger than the limit, damaged, not of the size that it
    /// claims, encrypted, or packed in a way that is not supported.
    std::string read(const std::string& member, std::uint64_t limit) const;
    /// Streams the member in pieces to `sink` in constant memory; throws as `read` does.
    void read(const std::string& member, std::uint64_t limit,
              const std::function<void(const char*, std::size_t)>& sink) const;

  private:
    friend class MemberBuffer;
    friend class ArchiveWriter;
    struct Impl;
    std::shared_ptr<Impl> impl_;
};

/// Outcome of `HUTZip::verifyDigest`.
enum class DigestState {
    VALID,     ///< the members are those that the digest was made over
    MISSING,   ///< there is no digest
    MISMATCH,  ///< a member, the order or the digest was changed, or the host's key is another one
    NO_KEY,    ///< the digest was made with a key, and the host has none
    UNKEYED,   ///< the members match, but anyone could have made this digest: it was made without a
               ///< key, while the host has one
};

/// What becomes of the digest that a writer finds in the archive that it puts a new one over.
enum class Resign {
    NO,   ///< it is checked, and what nobody vouches for is refused with DigestRefusal
    YES,  ///< the archive gets its new digest whatever it holds
};

/// An archive is not signed anew: its digest does not match its members; or the host has a key, and
/// the digest is missing or was made without one; or it was made with a key, and the host has none.
class MAV_API DigestRefusal : public HEXUserException {
  public:
    explicit DigestRefusal(const std::string& text);
    ~DigestRefusal() override;
};

/// Told how far long work on an archive has come.
class MAV_API ZipProgress {
  public:
    virtual ~ZipProgress();
    /// `what` is the member that is read, or the archive that is written; `done` goes from 0 to 1
    /// and reaches 1 when nothing fails. Called on the thread that works. Must not throw.
    virtual void advance(const std::string& what, double done) = 0;
    /// Asked now and then while an archive is written, and on the way through large members. True
    /// ends the work with HEXUserException; an archive that is being written stays as it was.
    virtual bool cancelled() { return false; }
};

}  // namespace mav_host

/// Zip work on archives named by path.
///
/// Writing operations build the new archive beside the old one, sync it and rename it over the old
/// one, keeping its permissions and, where the system lets us, its owner and group; through a link
/// the file behind it is replaced, while other hard links to it keep the old archive. Writers of
/// one archive take turns by the lock file ARCHIVE.lock, waiting for 30 seconds at most; what
/// writers that died left beside it is removed. When a step fails the old archive stays byte for
/// byte, nothing is left beside it, and HEXUserException is thrown, naming the archive, the step
/// and the reason. So is an archive refused in which the end of the directory can be read in two
/// ways. What is written depends on names, contents and their order alone: equal input, equal
/// bytes.
class MAV_API HUTZip {
  public:
    /// Largest metadata member that is read into memory, in bytes (1 GiB).
    static constexpr std::uint64_t MAX_METADATA_SIZE = std::uint64_t{1} << 30;

    /// An extraction may write this much in one call, in bytes (1 GiB), and beyond it
    /// MAX_EXTRACT_RATIO times the size of the archive.
    static constexpr std::uint64_t FREE_EXTRACT_SIZE = std::uint64_t{1} << 30;
    static constexpr std::uint64_t MAX_EXTRACT_RATIO = 100;

    /// Members larger than this, in bytes (64 MiB), have their progress told.
    static constexpr std::uint64_t PROGRESS_SIZE = std::uint64_t{1} << 26;
    /// Who is told of work on this thread; null is nobody. It stays owned by the caller and must
    /// outlive its installation. Answers the one in force before.
    static mav_host::ZipProgress* setProgress(mav_host::ZipProgress* listener);

    /// True when the file begins with a zip signature. Never throws.
    static bool isZip(const std::string& path);
    /// True when the archive opens and holds the member. Never throws.
    static bool containsFile(const std::string& archive, const std::string& member);

    /// One member to be written: its name and where its bytes come from.
    struct Source {
        std::string member;
        std::string file;  ///< path of the file to add; when empty, `content` is added
        std::string content;
        /// When set, `file` is a path below it, and no link is followed there.
        std::shared_ptr<const HUTFolder> folder = nullptr;
    };
    /// Adds the members to the archive, replacing those of equal name in place; makes the archive
    /// when there is none. Of equal names in `sources` the last counts. The other members are
    /// copied as they are, without packing them again; of equal names in the old archive the first
    /// is kept. Names that isMemberName refuses throw HEXUserException before anything is
    /// written. An existing digest
    /// is dropped, for it no longer holds. Without sources nothing happens.
    static void add(const std::string& archive, const HSTVector<Source>& sources);
    /// As `add` for members that depend on what the archive holds: `sources` is called once the
    /// lock is held and the archive is open, so what it reads there stays until the new archive
    /// stands; null is no archive yet. What it throws leaves the archive as it was.
    using Sources = std::function<HSTVector<Source>(const mav_host::ZipArchive* archive)>;
    static void update(const std::string& archive, const Sources& sources);
    /// As `add`, with a digest over the new archive, all in one step. The digest that is there is
    /// checked first, on the archive that is opened under the lock: throws DigestRefusal. Throws
    /// HEXUserException, before anything is built, when the members that are there claim more bytes
    /// than an extraction may write.
    static void addWithDigest(const std::string& archive, const HSTVector<Source>& sources,
                              mav_host::Resign resign = mav_host::Resign::NO);
    /// As `update`, with a digest as `addWithDigest` puts it.
    static void updateWithDigest(const std::string& archive, const Sources& sources,
                                 mav_host::Resign resign = mav_host::Resign::NO);
    /// The longest name that a member may be added under, in bytes.
    static constexpr std::size_t MAX_MEMBER_NAME = 65535;
    /// True for a name that a member may be added under: relative, made of parts with "/" between
    /// them, none of them empty, "." or "..", without backslash, in UTF-8 without control
    /// characters other than tabulator and line ends, of at most MAX_MEMBER_NAME bytes.
    static bool isMemberName(const std::string& name);
    /// Throws HEXUserException "The member name 'NAME' for the archive 'ARCHIVE' " and what is
    /// wrong with it, unless isMemberName takes it. A long name is shown by its first 200 bytes.
    static void checkMemberName(const std::string& name, const std::string& archive);
    /// Writes a new archive that holds exactly these members in this order and a digest over them,
    /// however large they are.
    /// No members and equal names are refused with HEXUserException.
    static void create(const std::string& archive, const HSTVector<Source>& sources);

    /// Attaches a digest to a finished archive (see docs/archives.md for its form): HMAC-SHA-256
    /// with the host's key, SHA-256 without one. Replaces an older one, whatever that is: it
    /// vouches for the members as they are. Throws as ZipArchive does when the archive cannot be
    /// opened, HEXDataException when a member is damaged, HEXUserException when the members claim
    /// more bytes than an extraction may write.
    static void addDigest(const std::string& archive);
    /// Compares the digest with the members, in constant memory. A member that cannot be read whole
    /// is a mismatch. Throws as ZipArchive does when the archive cannot be opened, HEXUserException
    /// when the members claim more bytes than an extraction may write.
    static mav_host::DigestState verifyDigest(const std::string& archive);

    /// Extracts one member to dir/member, or every member below `member` + "/" for the directory
    /// form, making directories as needed; each file is replaced as a whole. Names that climb out
    /// and more bytes than an extraction may write are refused with HEXUserException before
    /// anything is written; so is a link on the way, where it is met. A link in the file's own
    /// place is replaced and not followed. Answers false when the archive has no such member.
    /// Throws HEXDataException when a member is damaged.
    static bool extractFile(const std::string& archive, const std::string& member,
                            const std::string& dir);
    static bool extractDir(const std::string& archive, const std::string& member,
                           const std::string& dir);
    /// Extracts one member to the file `path`, whatever the member is called; else as extractFile.
    static bool extractAs(const std::string& archive, const std::string& member,
                          const std::string& path);
};

/// Input stream over one member. Constructed on a missing archive or member it is in the failed
/// state (`!stream`), as a file stream is. A member that is damaged or not of the size that its
/// header claims ends in the bad state. The form over a ZipArchive shares the opened file.
class MAV_API zip_istream : public std::istream {
  public:
    zip_istream(const std::string& archive, const std::string& member, int option = 3);
    zip_istream(const mav_host::ZipArchive& archive, const std::string& member);
    ~zip_istream() override;

  private:
    std::unique_ptr<std::streambuf> buffer_;
};

/// Output stream into one member: what is written goes to a file in the process's temporary
/// directory, and `close` (or the destructor) adds it to the archive as `HUTZip::add` does. `close`
/// sets the failed state when that does not work; the archive is then as it was. Starts in the
/// failed state when the member's name is refused.
class MAV_API zip_ostream : public std::ostream {
  public:
    zip_ostream(const std::string& archive, const std::string& member, int option = 0);
    ~zip_ostream() override;
    void close();

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};
