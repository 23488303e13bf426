// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "Suggest.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVPfmFileTypes.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HPLPlatform.h"
#include "mav_platform/HVMAArchive.h"

namespace {

using cli::Failure;
using cli::shown;
using cli::UsageError;

[[noreturn]] void notThere(const mav_host::ZipArchive& archive, const cli::TypedMembers& types,
                           const std::string& what) {
    std::vector<std::string> names;
    for (const auto& entry : types.entries) names.push_back(entry.first);
    for (const auto& member : archive.members()) names.push_back(member.name);
    const std::string meant = cli::nearest(what, names);
    throw Failure("it has neither a member nor a type " + shown(what) + "." +
                  (meant.empty() ? "" : " Did you mean " + shown(meant) + "?") +
                  " 'mav files' lists what it has.");
}

void extract(const cli::ExtractOptions& options) {
    const mav_host::ZipArchive archive = cli::openArchive(options.archive);
    const cli::TypedMembers types = cli::typedMembers(archive);
    const std::string* const typed = types.find(options.what);
    std::string member = typed != nullptr ? *typed : options.what;
    while (member.ends_with('/')) member.pop_back();
    const std::string dir = options.directory.empty() ? "." : options.directory;
    const cli::ProgressLine progress;
    bool done = false;
    cli::endingCleanly([&] {
        done = archive.contains(member) ? HUTZip::extractFile(options.archive, member, dir)
                                        : HUTZip::extractDir(options.archive, member, dir);
    });
    if (!done && typed != nullptr)
        throw Failure("type " + shown(options.what) + " is listed as " + shown(member) +
                      ", which the archive lacks. Make the archive again.");
    if (!done) notThere(archive, types, options.what);
    cli::writeAnswer(cli::printable(dir + "/" + member) + "\n");
}

void checkType(const std::string& type) {
    if (HMAVPfmFileTypes::toFileType(type) == HMAVPfmFileTypes::FILE_TYPE_COUNT) {
        std::vector<std::string> names;
        for (const auto& entry : HMAVPfmFileTypes::getFileTypeMap()) names.push_back(entry.second);
        const std::string meant = cli::nearest(type, names);
        throw UsageError("unknown file type " + shown(type) + "." +
                             (meant.empty() ? "" : " Did you mean '" + meant + "'?"),
                         "add");
    }
    for (const char* folder : {"IP_REPO_PATH", "IP_CACHE_DIR", "BOARD_REPO_PATH"})
        if (type == folder)
            throw UsageError("type '" + type +
                                 "' stands for a folder, and 'add' takes one file; "
                                 "put the folder into the platform's files and pack them.",
                             "add");
}

/// Refuses names that no member may have, and those that would make a file of what is a folder.
void checkMember(const std::string& name, const mav_host::ZipArchive& archive) {
    if (!HUTZip::isMemberName(name))
        throw Failure(shown(name) +
                      " cannot name a member. Give --as a path inside the archive with '/' between "
                      "its parts, without empty parts, '.', '..' and backslashes.");
    for (std::size_t at = name.find('/'); at != std::string::npos; at = name.find('/', at + 1)) {
        if (archive.contains(name.substr(0, at)))
            throw Failure("its member " + shown(name.substr(0, at)) + " is a file, so " +
                          shown(name) + " cannot lie in it. Name another one with --as.");
    }
    for (const auto& member : archive.members()) {
        if (member.name.starts_with(name + "/"))
            throw Failure(shown(name) + " is a folder in it. Name another member with --as.");
    }
}

/// The member to write: the one that is asked for, the one that the type is listed with, or one of
/// the file's own name, unless that is taken by something else.
std::string memberFor(const cli::AddOptions& options, const mav_host::ZipArchive& archive,
                      const std::string& listed) {
    if (!options.member.empty()) return options.member;
    if (!listed.empty()) return listed;
    std::string name = options.file.substr(options.file.rfind('/') + 1);
    if (archive.contains(name))
        throw Failure("it has a member " + shown(name) + " that is not listed as '" +
                      cli::printable(options.type) +
                      "'. Name another one with --as, or this one "
                      "to replace it.");
    return name;
}

void addToPlatform(const cli::AddOptions& options, const mav_host::ZipArchive& archive) {
    checkType(options.type);
    const auto platform = cli::loadPlatform(options.archive);
    HMAVHardwarePlatform* const hardware = platform ? platform->getHardwarePlatform() : nullptr;
    if (hardware == nullptr)
        throw Failure(
            "its platform does not load. Correct what the messages name and run the "
            "command again.");
    const std::string member = memberFor(options, archive, hardware->getFile(options.type));
    checkMember(member, archive);
    hardware->archiveFile(options.type, member, options.file);
}

void addToIndexed(const cli::AddOptions& options, const mav_host::ZipArchive& archive) {
    HVMAArchive indexed(options.archive);
    if (archive.contains(indexed.getJsonFileName()) && !indexed.parse())
        throw Failure(
            "its index does not parse. Correct what the messages name and run the "
            "command again.");
    const std::string member = memberFor(options, archive, indexed.getFiles().get(options.type));
    if (member == indexed.getJsonFileName())
        throw UsageError("'" + member + "' is the index itself.", "add");
    checkMember(member, archive);
    indexed.archive(options.type, member, options.file);
}

void add(const cli::AddOptions& options) {
    const mav_host::ZipArchive archive = cli::openArchive(options.archive);
    if (!HUTFile::isFile(options.file) || !HUTFile::isReadable(options.file))
        throw Failure("FILE " + shown(options.file) +
                      " is no file that can be read. Check its path and permissions.");
    const cli::ProgressLine progress;
    if (HUTZip::verifyDigest(options.archive) == mav_host::DigestState::MISMATCH)
        throw Failure(
            "its members do not match its digest, and adding would give them a new one. "
            "See 'mav verify', get the archive afresh or pack it again.");
    cli::endingCleanly([&] {
        if (cli::holdsPlatform(archive)) {
            addToPlatform(options, archive);
        } else {
            addToIndexed(options, archive);
        }
    });
}

}  // namespace

void cli::runExtract(const ExtractOptions& options) {
    if (options.what.empty()) throw UsageError("TYPE or MEMBER must not be empty.", "extract");
    guarded("extract from", options.archive, [&] { extract(options); });
}

void cli::runAdd(const AddOptions& options) {
    if (options.type.empty()) throw UsageError("TYPE must not be empty.", "add");
    guarded("add to", options.archive, [&] { add(options); });
}
