// SPDX-License-Identifier: Apache-2.0
#include "mav_host/HUTZip.h"

#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <system_error>
#include <thread>
#include <unordered_map>

#include "FileDescriptor.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "zipInternal.h"

namespace mav_host {

StepHook& stepHook() {
    static StepHook hook;
    return hook;
}

bool isSafeMemberName(const std::string& name) {
    if (name.empty() || name.front() == '/' || name.find('\\') != std::string::npos ||
        name.find('\0') != std::string::npos) {
        return false;
    }
    for (std::size_t start = 0; start <= name.size();) {
        const std::size_t end = std::min(name.find('/', start), name.size());
        if (name.compare(start, end - start, "..") == 0) return false;
        start = end + 1;
    }
    return true;
}

namespace {

/// 1980-01-01 00:00, the first moment that a zip archive can name: equal content, equal bytes.
constexpr zip_uint16_t DOS_TIME = 0;
constexpr zip_uint16_t DOS_DATE = 0x21;
/// A plain file that all may read; the modes of the files added depend on who checked them out.
constexpr zip_uint32_t UNIX_MODE = 0100644U << 16;

std::string systemText() {
    return std::error_code(errno, std::generic_category()).message();
}

/// Replaces an archive as a whole. The new one is built beside the old one and renamed over it.
class ArchiveWriter {
  public:
    explicit ArchiveWriter(const std::string& archive) : archive_(behindLinks(archive)) {}
    ~ArchiveWriter() {
        if (!temporary_.empty()) ::unlink(temporary_.c_str());
    }
    ArchiveWriter(const ArchiveWriter&) = delete;
    ArchiveWriter& operator=(const ArchiveWriter&) = delete;

    void step(WriteStep step, const char* name) {
        name_ = name;
        if (stepHook()) stepHook()(step);
    }

    [[noreturn]] void refuse(const std::string& reason) const {
        throw HEXUserException("The archive '" + archive_ + "' cannot be written (" + name_ +
                               "): " + reason + "; it is as it was");
    }

    /// Waits until no other writer holds the archive. A writer replaces the file, so the lock
    /// counts only while the path still names what was locked.
    void lock() {
        step(WriteStep::LOCK, "locking");
        using Clock = std::chrono::steady_clock;
        const Clock::time_point deadline = Clock::now() + std::chrono::seconds(30);
        for (;;) {
            FileDescriptor file(::open(archive_.c_str(), O_RDONLY | O_CLOEXEC));
            if (!file.isOpen()) {
                if (errno == ENOENT) return;
                refuse(systemText());
            }
            if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
                struct stat held;
                struct stat named;
                if (::fstat(file.get(), &held) == 0 && ::stat(archive_.c_str(), &named) == 0 &&
                    held.st_ino == named.st_ino && held.st_dev == named.st_dev) {
                    lock_ = std::move(file);
                    mode_ = held.st_mode & 07777U;
                    exists_ = true;
                    return;
                }
            }
            if (Clock::now() > deadline) refuse("another writer has held it for 30 seconds");
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }

    bool exists() const { return exists_; }

    zip_t* begin() {
        step(WriteStep::MAKE, "making a file beside it");
        temporary_ = archive_ + ".new-XXXXXX";
        const FileDescriptor file(::mkostemp(temporary_.data(), O_CLOEXEC));
        if (!file.isOpen()) {
            temporary_.clear();
            refuse(systemText());
        }
        int code = 0;
        zip_.reset(zip_open(temporary_.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code));
        if (!zip_) refuse(systemText());
        return zip_.get();
    }

    void build() {
        step(WriteStep::BUILD, "building");
        if (zip_close(zip_.get()) != 0) refuse(zip_strerror(zip_.get()));
        static_cast<void>(zip_.release());
    }

    /// Puts the digest into the archive's comment, which stands at its very end.
    void attachDigest() {
        step(WriteStep::DIGEST, "attaching the digest");
        const std::string digest = computeDigest(openZip(temporary_).get(), temporary_);
        constexpr std::streamoff COMMENT_SIZE = 2;
        std::fstream file(temporary_, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(-COMMENT_SIZE, std::ios::end);
        file.put(static_cast<char>(digest.size()));
        file.put('\0');
        file << digest;
        file.close();
        if (!file) refuse(systemText());
    }

    void commit() {
        step(WriteStep::PERMISSIONS, "setting permissions");
        if (!exists_) mode_ = newFileMode();
        if (::chmod(temporary_.c_str(), mode_) != 0) refuse(systemText());
        step(WriteStep::SYNC, "syncing");
        if (!syncPath(temporary_)) refuse(systemText());
        step(WriteStep::RENAME, "renaming");
        if (::rename(temporary_.c_str(), archive_.c_str()) != 0) refuse(systemText());
        temporary_.clear();
        const std::string parent = HUTFile::getParent(archive_);
        step(WriteStep::SYNC_DIRECTORY, "syncing the directory");
        syncPath(parent.empty() ? "." : parent);
    }

  private:
    std::string archive_;
    std::string temporary_;
    const char* name_ = "";
    FileDescriptor lock_;
    ZipHandle zip_;
    mode_t mode_ = 0;
    bool exists_ = false;
};

void checkSources(const std::string& archive, const HSTVector<HUTZip::Source>& sources) {
    for (const HUTZip::Source& source : sources) {
        if (!isSafeMemberName(source.member)) {
            throw HEXUserException("The member name '" + source.member + "' for the archive '" +
                                   archive +
                                   "' is empty, absolute or climbs out; use a relative "
                                   "path with '/'");
        }
        if (!source.file.empty() && !HUTFile::isFile(source.file)) {
            throw HEXUserException("The file '" + source.file + "' for the archive '" + archive +
                                   "' does not exist or is not a file");
        }
    }
}

/// Adds one member at the end; libzip owns the source from then on.
void addMember(const ArchiveWriter& writer, zip_t* zip, const char* name, zip_source_t* source) {
    if (source == nullptr) writer.refuse(zip_strerror(zip));
    const zip_int64_t index = zip_file_add(zip, name, source, ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(source);
        writer.refuse(zip_strerror(zip));
    }
    zip_file_set_dostime(zip, static_cast<zip_uint64_t>(index), DOS_TIME, DOS_DATE, 0);
    zip_file_set_external_attributes(zip, static_cast<zip_uint64_t>(index), 0, ZIP_OPSYS_UNIX,
                                     UNIX_MODE);
}

void addSource(const ArchiveWriter& writer, zip_t* zip, const HUTZip::Source& source) {
    addMember(writer, zip, source.member.c_str(),
              source.file.empty()
                  ? zip_source_buffer(zip, source.content.data(), source.content.size(), 0)
                  : zip_source_file(zip, source.file.c_str(), 0, -1));
}

/// Copies the old archive's members without packing them again; those that are replaced get their
/// new content at the old place.
void copyMembers(const ArchiveWriter& writer, zip_t* from, zip_t* to,
                 std::unordered_map<std::string, const HUTZip::Source*>& replacements) {
    const zip_int64_t count = zip_get_num_entries(from, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const auto index = static_cast<zip_uint64_t>(i);
        const char* const name = zip_get_name(from, index, 0);
        if (name == nullptr) writer.refuse(zip_strerror(from));
        const auto replacement = replacements.find(name);
        if (replacement == replacements.end()) {
            addMember(writer, to, name, zip_source_zip(to, from, index, ZIP_FL_COMPRESSED, 0, -1));
        } else if (replacement->second != nullptr) {
            addSource(writer, to, *replacement->second);
            replacement->second = nullptr;
        }
    }
}

bool isBelow(const std::string& name, const std::string& dir) {
    return name.size() > dir.size() + 1 && name[dir.size()] == '/' &&
           name.compare(0, dir.size(), dir) == 0;
}

/// Makes the directories between `dir` and the member's file. Refuses to pass through a link, which
/// could lead out of `dir`.
void makeMemberDirs(const std::string& dir, const std::string& member) {
    if (!HUTFileUtils::makeDirs(dir)) {
        throw HEXUserException("The directory '" + dir + "' cannot be made");
    }
    for (std::size_t at = member.find('/'); at != std::string::npos;
         at = member.find('/', at + 1)) {
        const std::string path = dir + "/" + member.substr(0, at);
        struct stat status;
        if (::mkdir(path.c_str(), 0777) == 0) continue;
        if (::lstat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) {
            throw HEXUserException("The member '" + member + "' cannot be extracted: '" + path +
                                   "' is in the way and is not a directory");
        }
    }
}

void extractMember(zip_t* zip, zip_uint64_t index, const std::string& archive,
                   const std::string& dir) {
    const std::string member = zip_get_name(zip, index, 0);
    if (!isSafeMemberName(member)) {
        throw HEXUserException("The member '" + member + "' of the archive '" + archive +
                               "' is not extracted: its name leads out of the directory");
    }
    makeMemberDirs(dir, member);
    const std::string path = dir + "/" + member;
    if (member.back() == '/') return;
    const std::string temporary = HUTFileUtils::makeUniqueName(dir, ".extracting");
    std::ofstream file(temporary, std::ios::binary);
    try {
        streamMember(zip, index, archive, UINT64_MAX, [&](const char* data, std::size_t size) {
            file.write(data, static_cast<std::streamsize>(size));
        });
        file.close();
        // Renaming replaces a link itself and never what it points at.
        if (!file || ::rename(temporary.c_str(), path.c_str()) != 0) {
            throw HEXUserException("The file '" + path + "' cannot be written: " + systemText());
        }
    } catch (...) {
        HUTFile::rm(temporary);
        throw;
    }
}

}  // namespace
}  // namespace mav_host

using mav_host::ArchiveWriter;

bool HUTZip::isZip(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::array<char, 4> magic{};
    file.read(magic.data(), magic.size());
    return file && (std::memcmp(magic.data(), "PK\3\4", 4) == 0 ||
                    std::memcmp(magic.data(), "PK\5\6", 4) == 0);
}

bool HUTZip::containsFile(const std::string& archive, const std::string& member) {
    try {
        return mav_host::ZipArchive(archive).contains(member);
    } catch (const std::exception&) {
        return false;
    }
}

void HUTZip::add(const std::string& archive, const HSTVector<Source>& sources) {
    mav_host::checkSources(archive, sources);
    ArchiveWriter writer(archive);
    writer.lock();
    std::unordered_map<std::string, const Source*> replacements;
    for (const Source& source : sources) replacements[source.member] = &source;
    mav_host::ZipHandle old;
    if (writer.exists()) old = mav_host::openZip(archive);
    zip_t* const zip = writer.begin();
    if (old) mav_host::copyMembers(writer, old.get(), zip, replacements);
    for (const Source& source : sources) {
        if (replacements[source.member] == &source) mav_host::addSource(writer, zip, source);
    }
    writer.build();
    writer.commit();
}

void HUTZip::create(const std::string& archive, const HSTVector<Source>& sources) {
    mav_host::checkSources(archive, sources);
    if (sources.empty()) {
        throw HEXUserException("The archive '" + archive + "' would have no members");
    }
    ArchiveWriter writer(archive);
    writer.lock();
    zip_t* const zip = writer.begin();
    for (const Source& source : sources) mav_host::addSource(writer, zip, source);
    writer.build();
    writer.attachDigest();
    writer.commit();
}

void HUTZip::addDigest(const std::string& archive) {
    ArchiveWriter writer(archive);
    writer.lock();
    const mav_host::ZipHandle old = mav_host::openZip(archive);
    zip_t* const zip = writer.begin();
    std::unordered_map<std::string, const Source*> none;
    mav_host::copyMembers(writer, old.get(), zip, none);
    writer.build();
    writer.attachDigest();
    writer.commit();
}

bool HUTZip::extractFile(const std::string& archive, const std::string& member,
                         const std::string& dir) {
    const mav_host::ZipHandle zip = mav_host::openZip(archive);
    const zip_int64_t index = zip_name_locate(zip.get(), member.c_str(), 0);
    if (index < 0) return false;
    mav_host::extractMember(zip.get(), static_cast<zip_uint64_t>(index), archive, dir);
    return true;
}

bool HUTZip::extractDir(const std::string& archive, const std::string& member,
                        const std::string& dir) {
    const mav_host::ZipHandle zip = mav_host::openZip(archive);
    const zip_int64_t count = zip_get_num_entries(zip.get(), 0);
    HSTVector<zip_uint64_t> found;
    for (zip_int64_t i = 0; i < count; ++i) {
        const auto index = static_cast<zip_uint64_t>(i);
        const std::string name = zip_get_name(zip.get(), index, 0);
        if (!mav_host::isBelow(name, member)) continue;
        if (!mav_host::isSafeMemberName(name)) {
            throw HEXUserException("The member '" + name + "' of the archive '" + archive +
                                   "' is not extracted: its name leads out of the directory");
        }
        found.push_back(index);
    }
    for (const zip_uint64_t index : found) {
        mav_host::extractMember(zip.get(), index, archive, dir);
    }
    return !found.empty();
}
