// SPDX-License-Identifier: Apache-2.0
#include "ArchiveWriter.h"

#include <sys/file.h>

#include <cerrno>
#include <fstream>
#include <string_view>
#include <system_error>
#include <thread>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"

namespace mav_host {
namespace {

/// 1980-01-01 00:00, the first moment that a zip archive can name: equal content, equal bytes.
constexpr zip_uint16_t DOS_TIME = 0;
constexpr zip_uint16_t DOS_DATE = 0x21;
/// A plain file that all may read; the modes of the files added depend on who checked them out.
constexpr zip_uint32_t UNIX_MODE = 0100644U << 16;

std::string systemText() {
    return std::error_code(errno, std::generic_category()).message();
}

}  // namespace

WriteHooks& writeHooks() {
    static WriteHooks hooks;
    return hooks;
}

ArchiveWriter::ArchiveWriter(const std::string& archive, bool openOld)
    : archive_(behindLinks(archive)), lockPath_(archive_ + ".lock") {
    if (archive.empty()) throw HEXUserException("The path of the archive to write is empty");
    lock();
    try {
        exists_ = ::stat(archive_.c_str(), &before_) == 0;
        if (exists_ && !S_ISREG(before_.st_mode)) refuse("it is not a file");
        if (exists_ && openOld) old_ = openZip(archive_);
        make();
    } catch (...) {
        ::unlink(lockPath_.c_str());
        throw;
    }
}

ArchiveWriter::~ArchiveWriter() {
    zip_.reset();
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
    // Still held here, so what is removed is our own lock.
    ::unlink(lockPath_.c_str());
}

void ArchiveWriter::step(WriteStep step, const char* name) {
    name_ = name;
    if (isCancelled()) refuse("it was stopped");
    if (!writeHooks().before) return;
    errno = writeHooks().before(step);
    if (errno != 0) refuse(systemText());
}

void ArchiveWriter::refuse(const std::string& reason) const {
    throw HEXUserException("The archive '" + archive_ + "' cannot be written (" + name_ +
                           "): " + reason + "; it is as it was");
}

void ArchiveWriter::lock() {
    step(WriteStep::LOCK, "locking");
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + writeHooks().patience;
    for (;;) {
        FileDescriptor file(
            ::open(lockPath_.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666));
        if (!file.isOpen()) refuse(systemText());
        struct stat held;
        struct stat named;
        // The one before us removes its lock file; a lock counts while the path still names it.
        if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
            if (::fstat(file.get(), &held) == 0 && ::stat(lockPath_.c_str(), &named) == 0 &&
                held.st_ino == named.st_ino && held.st_dev == named.st_dev) {
                lock_ = std::move(file);
                return;
            }
        } else if (errno != EWOULDBLOCK && errno != EINTR) {
            refuse(systemText());
        }
        if (Clock::now() > deadline) {
            refuse("another writer holds '" + lockPath_ + "'; try again when it is done");
        }
        if (isCancelled()) refuse("it was stopped");
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

void ArchiveWriter::make() {
    step(WriteStep::MAKE, "making a file beside it");
    std::string temporary = archive_ + ".new-XXXXXX";
    const FileDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!file.isOpen()) refuse(systemText());
    int code = 0;
    zip_.reset(zip_open(temporary.c_str(), ZIP_TRUNCATE, &code));
    if (!zip_) {
        const std::string reason = systemText();
        ::unlink(temporary.c_str());
        refuse(reason);
    }
    temporary_ = temporary;
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
    const zip_uint64_t index =
        append(source.member,
               source.file.empty()
                   ? zip_source_buffer(zip_.get(), source.content.data(), source.content.size(), 0)
                   : zip_source_file(zip_.get(), source.file.c_str(), 0, -1));
    struct stat status;
    if (!source.file.empty() && ::stat(source.file.c_str(), &status) == 0) {
        size_ += static_cast<std::uint64_t>(status.st_size);
    }
    zip_file_set_dostime(zip_.get(), index, DOS_TIME, DOS_DATE, 0);
    zip_file_set_external_attributes(zip_.get(), index, 0, ZIP_OPSYS_UNIX, UNIX_MODE);
}

void ArchiveWriter::copy(zip_uint64_t from) {
    zip_t* const old = old_.get();
    const zip_stat_t status = statMember(old, from);
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

void ArchiveWriter::keepComment() {
    int size = 0;
    const char* const comment = zip_get_archive_comment(old_.get(), &size, ZIP_FL_ENC_RAW);
    if (comment == nullptr) return;
    const std::string_view text(comment, static_cast<std::size_t>(size));
    if (text.starts_with(DIGEST_START)) return;
    zip_set_archive_comment(zip_.get(), comment, static_cast<zip_uint16_t>(size));
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
    if (zip_close(zip_.get()) != 0) refuse(zip_strerror(zip_.get()));
    static_cast<void>(zip_.release());
}

void ArchiveWriter::attachDigest() {
    step(WriteStep::DIGEST, "attaching the digest");
    const std::string digest = computeDigest(openZip(temporary_).get(), archive_);
    // The comment's size and, so far, an empty comment are the file's last two bytes.
    constexpr std::streamoff COMMENT_SIZE = 2;
    std::fstream file(temporary_, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(-COMMENT_SIZE, std::ios::end);
    file.put(static_cast<char>(digest.size()));
    file.put('\0');
    file << digest;
    file.close();
    if (!file) refuse(systemText());
}

void ArchiveWriter::setRights(int fd) const {
    const mode_t mode = exists_ ? before_.st_mode & 07777U : newFileMode();
    // Only some may give a file away; the archive is good without it.
    if (exists_ && ::fchown(fd, before_.st_uid, before_.st_gid) != 0 &&
        ::fchown(fd, static_cast<uid_t>(-1), before_.st_gid) != 0) {
        errno = 0;
    }
    if (::fchmod(fd, mode) != 0) refuse(systemText());
}

void ArchiveWriter::commit() {
    step(WriteStep::PERMISSIONS, "setting permissions");
    FileDescriptor file(::open(temporary_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (!file.isOpen()) refuse(systemText());
    setRights(file.get());
    step(WriteStep::SYNC, "syncing");
    if (::fsync(file.get()) != 0 || !file.close()) refuse(systemText());
    step(WriteStep::RENAME, "renaming");
    if (::rename(temporary_.c_str(), archive_.c_str()) != 0) refuse(systemText());
    temporary_.clear();
    // The new archive stands from here on; not every file system can sync a directory.
    const std::string parent = HUTFile::getParent(archive_);
    syncPath(parent.empty() ? "." : parent);
}

}  // namespace mav_host
