// SPDX-License-Identifier: Apache-2.0
#include "zip/ArchiveWriter.h"

#include <sys/file.h>

#include <cerrno>
#include <optional>
#include <string_view>
#include <system_error>
#include <thread>

#include "mav_host/HEXError.h"
#include "mav_host/Host.h"
#include "zip/zipSources.h"

namespace mav_host {
namespace {

/// 1980-01-01 00:00, the first moment that a zip archive can name: equal content, equal bytes.
constexpr zip_uint16_t DOS_TIME = 0;
constexpr zip_uint16_t DOS_DATE = 0x21;
/// A plain file that all may read; the modes of the files added depend on who checked them out.
constexpr zip_uint32_t UNIX_MODE = 0100644U << 16;

bool hasKey() {
    std::optional<std::string> held = key();
    if (held) wipe(*held);
    return held.has_value();
}

std::string systemText() {
    return std::error_code(errno, std::generic_category()).message();
}

}  // namespace

WriteHooks& writeHooks() {
    static WriteHooks hooks;
    return hooks;
}

ArchiveWriter::ArchiveWriter(const std::string& archive, bool openOld)
    : archive_(behindLinks(archive)), place_(archive_), lockName_(place_.name + ".lock") {
    if (archive.empty()) throw HEXUserException("The path of the archive to write is empty");
    name_ = "locking";
    errno = place_.error;
    if (!place_.dir.isOpen()) refuse(systemText());
    lock();
    try {
        exists_ = ::stat(archive_.c_str(), &before_) == 0;
        if (exists_ && !S_ISREG(before_.st_mode)) refuse("it is not a file");
        if (exists_ && openOld) {
            old_.emplace(archive_);
            name_ = "reading it";
            if (old_->impl_->open.ambiguous) {
                refuse(
                    "its directory can be read in two ways, of which one would be lost; "
                    "extract its members and pack them again");
            }
        }
        make();
    } catch (...) {
        removeLock();
        throw;
    }
}

ArchiveWriter::~ArchiveWriter() {
    zip_.reset();
    file_ = NewFile();
    removeLock();
}

void ArchiveWriter::removeLock() {
    // Held here, so what is removed is our own lock.
    if (lock_.isOpen()) ::unlinkat(place_.dir.get(), lockName_.c_str(), 0);
}

void ArchiveWriter::step(WriteStep step, const char* name) {
    name_ = name;
    if (isCancelled()) refuse("it was stopped");
    if (!writeHooks().before) return;
    errno = writeHooks().before(step);
    if (errno != 0) refuse(systemText());
}

std::string ArchiveWriter::refusal(const std::string& reason) const {
    return "The archive '" + archive_ + "' cannot be written (" + name_ + "): " + reason +
           "; it is as it was";
}

void ArchiveWriter::refuse(const std::string& reason) const {
    throw HEXUserException(refusal(reason));
}

/// Not open when another writer was faster to make or remove it.
FileDescriptor ArchiveWriter::openLock() {
    constexpr int FLAGS = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int dir = place_.dir.get();
    struct stat status = {};
    FileDescriptor file(::openat(dir, lockName_.c_str(), FLAGS));
    if (file.isOpen()) {
        if (::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode)) return file;
        refuse("'" + archive_ + ".lock' is not a plain file; remove it");
    }
    if (errno != ENOENT) {
        refuse("'" + archive_ + ".lock' cannot be opened: " + systemText() +
               "; remove it when no writer is at work");
    }
    // Who may write the archive may wait for its lock, whoever left it.
    const bool known = ::fstatat(dir, place_.name.c_str(), &status, 0) == 0;
    const mode_t mode = known ? status.st_mode & 0666U : newFileMode();
    file = FileDescriptor(::openat(dir, lockName_.c_str(), FLAGS | O_CREAT | O_EXCL, mode));
    if (!file.isOpen() && errno != EEXIST) refuse(systemText());
    if (file.isOpen() && known) {
        static_cast<void>(::fchown(file.get(), static_cast<uid_t>(-1), status.st_gid) != 0);
    }
    if (file.isOpen()) ::fchmod(file.get(), mode);
    return file;
}

/// The one before us removes its lock file; a lock counts while the path still names it.
bool ArchiveWriter::holdsLock(const FileDescriptor& file) const {
    struct stat held = {};
    struct stat named = {};
    return ::fstat(file.get(), &held) == 0 &&
           ::fstatat(place_.dir.get(), lockName_.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           held.st_ino == named.st_ino && held.st_dev == named.st_dev;
}

void ArchiveWriter::lock() {
    step(WriteStep::LOCK, "locking");
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + writeHooks().patience;
    for (;;) {
        FileDescriptor file = openLock();
        if (file.isOpen()) {
            if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
                if (holdsLock(file)) {
                    lock_ = std::move(file);
                    return;
                }
            } else if (errno != EWOULDBLOCK && errno != EINTR) {
                refuse(systemText());
            }
        }
        if (Clock::now() > deadline) {
            refuse("another writer holds '" + archive_ + ".lock'; try again when it is done");
        }
        if (isCancelled()) refuse("it was stopped");
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void ArchiveWriter::make() {
    step(WriteStep::MAKE, "making a file beside it");
    const std::string prefix = place_.name + ".new-";
    removeDead(place_.dir.get(), prefix);
    file_ = NewFile(place_.dir.get(), prefix, 0600);
    if (!file_.isOpen()) refuse(systemText());
    zip_source_t* const target = writingSource(file_.get());
    zip_error_t error;
    zip_error_init(&error);
    if (target != nullptr) zip_.reset(zip_open_from_source(target, ZIP_TRUNCATE, &error));
    const std::string reason = zip_error_strerror(&error);
    zip_error_fini(&error);
    if (zip_) return;
    zip_source_free(target);
    refuse(reason);
}

zip_uint64_t ArchiveWriter::append(const std::string& name, zip_source_t* source) {
    const std::string place = "the member '" + name + "': ";
    if (source == nullptr) refuse(place + zip_strerror(zip_.get()));
    const zip_int64_t index = zip_file_add(zip_.get(), name.c_str(), source, ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(source);
        refuse(place + zip_strerror(zip_.get()));
    }
    return static_cast<zip_uint64_t>(index);
}

void ArchiveWriter::add(const HUTZip::Source& source) {
    const zip_uint64_t index = append(
        source.member, source.file.empty() ? zip_source_buffer(zip_.get(), source.content.data(),
                                                               source.content.size(), 0)
                                           : readingSource(source, failure_));
    zip_stat_t status;
    if (zip_stat_index(zip_.get(), index, 0, &status) == 0 && (status.valid & ZIP_STAT_SIZE) != 0) {
        size_ += status.size;
    }
    zip_file_set_dostime(zip_.get(), index, DOS_TIME, DOS_DATE, 0);
    zip_file_set_external_attributes(zip_.get(), index, 0, ZIP_OPSYS_UNIX, UNIX_MODE);
}

void ArchiveWriter::copy(zip_uint64_t from) {
    zip_t* const old = oldZip();
    const zip_stat_t status = statMember(old, from);
    // Copied, such a member would come out whole and with other bytes.
    const bool plain =
        status.comp_method == ZIP_CM_STORE && status.encryption_method == ZIP_EM_NONE;
    if ((plain || status.comp_size == 0) && status.comp_size != status.size) {
        refuse(std::string("the member '") + memberName(old, from) +
               "' is damaged: it is not of the size that it claims; replace it");
    }
    const zip_uint64_t index = append(
        memberName(old, from), zip_source_zip(zip_.get(), old, from, ZIP_FL_COMPRESSED, 0, -1));
    size_ += status.comp_size;
    // Left to itself the library would pack what is stored.
    if (status.comp_method == ZIP_CM_STORE) {
        zip_set_file_compression(zip_.get(), index, ZIP_CM_STORE, 0);
    }
    zip_file_set_mtime(zip_.get(), index, status.mtime, 0);
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    if (zip_file_get_external_attributes(old, from, 0, &system, &attributes) == 0) {
        zip_file_set_external_attributes(zip_.get(), index, 0, system, attributes);
    }
    zip_uint32_t size = 0;
    const char* const comment = zip_file_get_comment(old, from, &size, 0);
    if (comment != nullptr && size > 0) {
        zip_file_set_comment(zip_.get(), index, comment, static_cast<zip_uint16_t>(size), 0);
    }
}

void ArchiveWriter::checkOldDigest() {
    if (!old_) return;
    name_ = "checking its digest";
    switch (checkDigest(old_->impl_->open, archive_)) {
        case DigestState::VALID:
            return;
        case DigestState::MISSING:
            if (!hasKey()) return;
            throw DigestRefusal(refusal("it carries no digest that vouches for its members"));
        case DigestState::MISMATCH:
            throw DigestRefusal(refusal("its members do not match its digest"));
        case DigestState::NO_KEY:
            throw DigestRefusal(
                refusal("its digest was made with a key, and the host has none to check it with"));
        case DigestState::UNKEYED:
            throw DigestRefusal(
                refusal("its digest was made without a key, so anyone could have made it"));
    }
}

void ArchiveWriter::checkOldSize() {
    if (old_) checkInflation(old_->impl_->open, archive_);
}

void ArchiveWriter::keepComment() {
    const std::string& text = old_->impl_->open.comment;
    if (text.starts_with(DIGEST_START)) return;
    zip_set_archive_comment(zip_.get(), text.data(), static_cast<zip_uint16_t>(text.size()));
}

void ArchiveWriter::build() {
    step(WriteStep::BUILD, "building");
    ProgressTeller progress(archive_, size_);
    zip_register_progress_callback_with_state(
        zip_.get(), 0.01,
        [](zip_t*, double done, void* teller) { static_cast<ProgressTeller*>(teller)->tell(done); },
        nullptr, &progress);
    zip_register_cancel_callback_with_state(
        zip_.get(), [](zip_t*, void*) { return isCancelled() ? 1 : 0; }, nullptr, nullptr);
    if (zip_close(zip_.get()) != 0) refuse(failure_.empty() ? zip_strerror(zip_.get()) : failure_);
    static_cast<void>(zip_.release());
    if (::lseek(file_.get(), 0, SEEK_END) == 0) refuse("it would have no members");
}

void ArchiveWriter::attachDigest() {
    step(WriteStep::DIGEST, "attaching the digest");
    // Not by its name, which whoever may write the directory can give to another file.
    FileDescriptor built(::fcntl(file_.get(), F_DUPFD_CLOEXEC, 0));
    if (!built.isOpen()) refuse(systemText());
    const std::string digest = computeDigest(openZip(std::move(built), archive_), archive_);
    // The comment's size and, so far, an empty comment are the file's last two bytes.
    const std::string comment = {static_cast<char>(digest.size()), '\0'};
    if (::lseek(file_.get(), -static_cast<off_t>(comment.size()), SEEK_END) < 0 ||
        !writeAll(file_.get(), comment + digest)) {
        refuse(systemText());
    }
}

void ArchiveWriter::commit() {
    step(WriteStep::PERMISSIONS, "setting permissions");
    const bool granted =
        exists_ ? keepRights(file_.get(), before_) : ::fchmod(file_.get(), newFileMode()) == 0;
    if (!granted) refuse(systemText());
    step(WriteStep::SYNC, "syncing");
    if (::fsync(file_.get()) != 0 || !file_.flush()) refuse(systemText());
    step(WriteStep::RENAME, "renaming");
    if (!file_.isNamed()) refuse("the file '" + file_.name() + "' was replaced meanwhile");
    if (!file_.rename(place_.name)) refuse(systemText());
    // The new archive stands from here on; not every file system can sync a directory.
    ::fsync(place_.dir.get());
}

}  // namespace mav_host
