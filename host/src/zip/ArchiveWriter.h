// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/stat.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "FileDescriptor.h"
#include "NewFile.h"
#include "zip/zipInternal.h"

namespace mav_host {

/// The steps of writing an archive, in order.
enum class WriteStep { LOCK, MAKE, BUILD, DIGEST, PERMISSIONS, SYNC, RENAME };

/// Where tests reach into the writing of archives.
struct WriteHooks {
    /// Called before each step; a number other than 0 is the system error that the step fails with.
    std::function<int(WriteStep)> before;
    /// How long a writer waits for another one.
    std::chrono::milliseconds patience = std::chrono::seconds(30);
};
WriteHooks& writeHooks();

/// Replaces an archive as a whole: the new one is built beside the old one and renamed over it.
/// Holds the archive's lock as long as it lives. Until `commit` is through, the old archive stays
/// as it is, and what was made beside it goes with the writer. Failures throw HEXUserException.
class ArchiveWriter {
  public:
    /// Waits for the lock and opens the old archive, if there is one and it is wanted.
    ArchiveWriter(const std::string& archive, bool openOld);
    ~ArchiveWriter();
    ArchiveWriter(const ArchiveWriter&) = delete;
    ArchiveWriter& operator=(const ArchiveWriter&) = delete;

    /// The archive that is replaced; null when it was not wanted or there is none.
    const ZipArchive* old() const { return old_ ? &*old_ : nullptr; }
    zip_t* oldZip() const { return old_ ? old_->impl_->zip() : nullptr; }
    /// Refuses an old archive that nobody vouches for; throws DigestRefusal.
    void checkOldDigest();
    /// Refuses an old archive whose members are too large for a digest over them to be checked.
    void checkOldSize();
    /// Adds a member at the end. The content must outlive `build`.
    void add(const HUTZip::Source& source);
    /// Adds a member of the old archive at the end, packed as it is.
    void copy(zip_uint64_t index);
    /// Takes over the old archive's comment, unless it is a digest.
    void keepComment();
    /// Writes the members out.
    void build();
    /// Puts the digest over what was built into the archive's comment.
    void attachDigest();
    void commit();

  private:
    void step(WriteStep step, const char* name);
    std::string refusal(const std::string& reason) const;
    [[noreturn]] void refuse(const std::string& reason) const;
    void lock();
    FileDescriptor openLock();
    bool holdsLock(const FileDescriptor& file) const;
    void removeLock();
    void make();
    zip_uint64_t append(const std::string& name, zip_source_t* source);

    std::string archive_;
    Place place_;
    std::string lockName_;
    FileDescriptor lock_;  ///< open while the lock is held
    NewFile file_;
    std::string failure_;  ///< why a file to be added could not be read
    struct stat before_ {};
    bool exists_ = false;
    std::uint64_t size_ = 0;  ///< of what is to be packed or copied
    const char* name_ = "";
    std::optional<ZipArchive> old_;  ///< outlives the new one, which reads from it
    ZipHandle zip_;
};

}  // namespace mav_host
