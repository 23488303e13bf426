// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include "capi/Progress.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/Printable.h"
#include "mav_host/xp.h"
#include "mav_platform/ArchiveAnswers.h"
#include "mav_platform/TypedMembers.h"

using namespace capi;
using mav_host::printable;
using mav_host::ZipArchive;
using mav_platform::ArchiveListing;
using mav_platform::ArchiveSoundness;
using mav_platform::ArchiveWork;

struct hmav_archive {
    capi::Listener listener;
    ZipArchive archive;
    HSTVector<mav_host::ZipMember> members = archive.members();
    std::vector<std::string> types{};  ///< of each member; empty until they are asked for
    std::vector<hmav_member> views{};
};

struct hmav_reader {
    capi::Listener listener;
    zip_istream stream;
};

namespace {

namespace xp = isl::iostreams::xp;

template <class Handle>
Listener listenerOn(const Handle* handle) {
    return handle != nullptr ? handle->listener : Listener();
}

std::string joined(const HSTVector<std::string>& types) {
    std::string text;
    for (const std::string& type : types) text.append(text.empty() ? "" : ",").append(type);
    return text;
}

void makeViews(hmav_archive& archive) {
    if (archive.views.size() == archive.members.size()) return;
    const mav_platform::TypedMembers typed(archive.archive);
    std::vector<std::string> types;
    for (const auto& one : typed.typesOf(archive.members)) types.push_back(joined(one));
    archive.types = std::move(types);
    std::vector<hmav_member> views;
    for (std::size_t i = 0; i < archive.members.size(); ++i) {
        const mav_host::ZipMember& member = archive.members[i];
        views.push_back({sizeof(hmav_member), member.name.c_str(), archive.types[i].c_str(),
                         member.size, member.packed});
    }
    archive.views = std::move(views);
}

void refuseAbsent(const hmav_archive& archive, const char* member) {
    if (archive.archive.contains(member)) return;
    throw Failure{HMAV_NOT_FOUND,
                  "The archive '" + printable(archive.archive.path()) + "' has no member '" +
                      printable(member) + "'",
                  "hmav_archive_member gives the members that it has."};
}

std::string extracted(const hmav_archive& archive, const char* what, const char* directory) {
    std::string made = ArchiveWork::extract(archive.archive, what, directory);
    if (!made.empty()) return made;
    throw Failure{HMAV_NOT_FOUND,
                  "The archive '" + printable(archive.archive.path()) +
                      "' has neither a member nor a type '" + printable(what) + "'",
                  "hmav_archive_member gives the members that it has."};
}

ArchiveSoundness soundnessOf(const hmav_archive& archive, Progress& progress) {
    return ArchiveSoundness(archive.archive, [&](const std::string& member, double done) {
        progress.step(member, done);
    });
}

std::string linesOf(const HSTVector<ArchiveWork::Fault>& faults) {
    std::string text;
    for (const ArchiveWork::Fault& fault : faults) text += printable(fault.text) + "\n";
    return text;
}

/// Gives a text that is made of the archive while the caller is told how far it is.
template <class Make>
int textOf(const hmav_archive* archive, const hmav_progress_options* progress, char** json,
           hmav_error** error, Make&& make) noexcept {
    return call(listenerOn(archive), error, HMAV_NOT_LOADABLE, [&] {
        clearResult(json, "json");
        refuseNull(archive, "archive");
        const hmav_progress_options wanted = optionsOf(progress);
        withProgress(wanted.on_progress, wanted.user, [&](Progress& told) {
            *json = newText(make(told).answer(archive->archive.path()).text());
        });
    });
}

/// A result that the caller may not want.
template <class Result>
void setWanted(Result* target, Result value) {
    if (target != nullptr) *target = value;
}

constexpr std::uint64_t MAX_PROTECTED = std::uint64_t{1} << 30;

void protect(const char* source, const char* target) {
    const mav_host::SecretText content(HUTFileUtils::readWhole(source, MAX_PROTECTED));
    if (xp::is_container(content.text()))
        throw Failure{HMAV_REFUSED, "'" + printable(source) + "' is protected already",
                      "Give the file in the clear."};
    std::optional<std::string> key = mav_host::key();
    if (!key)
        throw Failure{HMAV_REFUSED, "The host has no key",
                      "Set MAV_KEY_FILE to the path of a key file."};
    mav_host::wipe(*key);
    xp::write(target, content.text());
}

mav_host::SecretText deciphered(const char* source) {
    if (!xp::is_xp_format(source))
        throw Failure{HMAV_NOT_LOADABLE, "'" + printable(source) + "' is no protected file",
                      "Give one that hmav_protect or 'mav protect' made."};
    try {
        return mav_host::SecretText(xp::read(source));
    } catch (const HEXError& error) {
        throw splitFailure(HMAV_REFUSED, error.what());
    }
}

}  // namespace

int hmav_archive_open(const hmav_session* session, const char* path, hmav_archive** archive,
                      hmav_error** error) noexcept {
    return call(listenerOf(session), error, HMAV_NOT_LOADABLE, [&] {
        clearResult(archive, "archive");
        refuseNull(path, "path");
        *archive = new hmav_archive{listenerOf(session), ZipArchive(path)};
    });
}

void hmav_archive_free(hmav_archive* archive) noexcept {
    delete archive;
}

std::size_t hmav_archive_count(const hmav_archive* archive) noexcept {
    return archive != nullptr ? archive->members.size() : 0;
}

int hmav_archive_member(hmav_archive* archive, std::size_t index, const hmav_member** member,
                        hmav_error** error) noexcept {
    return call(listenerOn(archive), error, HMAV_NOT_LOADABLE, [&] {
        clearResult(member, "member");
        refuseNull(archive, "archive");
        makeViews(*archive);
        if (index >= archive->views.size())
            throw Failure{HMAV_NOT_FOUND,
                          "The archive has " + std::to_string(archive->views.size()) +
                              " members and none of the index " + std::to_string(index),
                          "Indices begin at 0."};
        *member = &archive->views[index];
    });
}

int hmav_reader_open(hmav_archive* archive, const char* member, hmav_reader** reader,
                     hmav_error** error) noexcept {
    return call(listenerOn(archive), error, HMAV_NOT_LOADABLE, [&] {
        clearResult(reader, "reader");
        refuseNull(archive, "archive");
        refuseNull(member, "member");
        refuseAbsent(*archive, member);
        std::unique_ptr<hmav_reader> made(
            new hmav_reader{archive->listener, zip_istream(archive->archive, member)});
        if (!made->stream)
            throw Failure{HMAV_NOT_LOADABLE,
                          "The member '" + printable(member) + "' cannot be opened",
                          "Pack the archive again with it."};
        made->stream.exceptions(std::ios_base::badbit);
        *reader = made.release();
    });
}

int hmav_reader_read(hmav_reader* reader, void* buffer, std::size_t room, std::size_t* got,
                     hmav_error** error) noexcept {
    return call(listenerOn(reader), error, HMAV_NOT_LOADABLE, [&] {
        clearResult(got, "got");
        refuseNull(reader, "reader");
        refuseNull(buffer, "buffer");
        constexpr std::size_t MOST = std::numeric_limits<std::streamsize>::max();
        if (reader->stream.eof()) return;
        reader->stream.read(static_cast<char*>(buffer),
                            static_cast<std::streamsize>(std::min(room, MOST)));
        *got = static_cast<std::size_t>(reader->stream.gcount());
    });
}

void hmav_reader_free(hmav_reader* reader) noexcept {
    delete reader;
}

int hmav_archive_extract(hmav_archive* archive, const char* what, const char* directory,
                         const hmav_progress_options* progress, char** made,
                         hmav_error** error) noexcept {
    setWanted<char*>(made, nullptr);
    return call(listenerOn(archive), error, HMAV_CANNOT_WRITE, [&] {
        refuseNull(archive, "archive");
        refuseNull(what, "what");
        refuseNull(directory, "directory");
        const hmav_progress_options wanted = optionsOf(progress);
        withProgress(wanted.on_progress, wanted.user, [&](Progress&) {
            const std::string path = extracted(*archive, what, directory);
            if (made != nullptr) *made = newText(path);
        });
    });
}

int hmav_archive_add(hmav_archive* archive, const char* type, const char* file,
                     const hmav_add_options* options, hmav_error** error) noexcept {
    return call(listenerOn(archive), error, HMAV_CANNOT_WRITE, [&] {
        refuseNull(archive, "archive");
        refuseNull(type, "type");
        refuseNull(file, "file");
        const hmav_add_options wanted = optionsOf(options);
        const ArchiveWork::Place place{type, wanted.member != nullptr ? wanted.member : ""};
        const auto resign = wanted.resign != 0 ? mav_host::Resign::YES : mav_host::Resign::NO;
        withProgress(wanted.on_progress, wanted.user, [&](Progress&) {
            ArchiveWork::add(archive->archive.path(), place, file, resign);
        });
        *archive = hmav_archive{archive->listener, ZipArchive(archive->archive.path())};
    });
}

int hmav_archive_verify(hmav_archive* archive, const hmav_progress_options* progress, int* digest,
                        char** faults, hmav_error** error) noexcept {
    setWanted<char*>(faults, nullptr);
    return call(listenerOn(archive), error, HMAV_NOT_LOADABLE, [&] {
        clearResult(digest, "digest");
        refuseNull(archive, "archive");
        const hmav_progress_options wanted = optionsOf(progress);
        withProgress(wanted.on_progress, wanted.user, [&](Progress& told) {
            const ArchiveSoundness soundness = soundnessOf(*archive, told);
            if (faults != nullptr) *faults = newText(linesOf(soundness.faults));
            *digest = static_cast<int>(soundness.digest);
        });
    });
}

int hmav_archive_soundness(hmav_archive* archive, const hmav_progress_options* progress,
                           char** json, hmav_error** error) noexcept {
    return textOf(archive, progress, json, error,
                  [&](Progress& told) { return soundnessOf(*archive, told); });
}

int hmav_archive_listing(hmav_archive* archive, const hmav_progress_options* progress, char** json,
                         hmav_error** error) noexcept {
    return textOf(archive, progress, json, error,
                  [&](Progress&) { return ArchiveListing(archive->archive); });
}

int hmav_pack(const hmav_session* session, const char* directory, const char* archive,
              const hmav_pack_options* options, hmav_error** error) noexcept {
    return call(listenerOf(session), error, HMAV_CANNOT_WRITE, [&] {
        refuseNull(directory, "directory");
        refuseNull(archive, "archive");
        const hmav_pack_options wanted = optionsOf(options);
        withProgress(wanted.on_progress, wanted.user, [&](Progress&) {
            ArchiveWork::pack(directory, archive, wanted.without_metadata != 0);
        });
    });
}

int hmav_protect(const hmav_session* session, const char* source, const char* target,
                 hmav_error** error) noexcept {
    return call(listenerOf(session), error, HMAV_CANNOT_WRITE, [&] {
        refuseNull(source, "source");
        refuseNull(target, "target");
        refuseMissing(source);
        protect(source, target);
    });
}

int hmav_unprotect(const hmav_session* session, const char* source, const char* target,
                   hmav_error** error) noexcept {
    return call(listenerOf(session), error, HMAV_CANNOT_WRITE, [&] {
        refuseNull(source, "source");
        refuseNull(target, "target");
        refuseMissing(source);
        const mav_host::SecretText content = deciphered(source);
        HUTFileUtils::writeWhole(target, content.text(), {.ownerOnly = true});
    });
}
