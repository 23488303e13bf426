// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "Suggest.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVPfmFileTypes.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HVMAArchive.h"
#include "mav_platform/TypedMembers.h"

namespace cli {
namespace {

constexpr const char* NOTES =
    "The file becomes the member that TYPE is listed with; when TYPE is not listed, one of the\n"
    "file's own name, which is then listed. An archive with platform metadata lists it there,\n"
    "any other in its index vma.json. The archive gets a new digest and is replaced in one step.\n"
    "\n"
    "The digest that is there is checked first. What nobody vouches for is refused: members that\n"
    "do not match it; with a key, a digest that is missing or was made without one; without a\n"
    "key, one that was made with it. --resign gives the archive a new digest all the same.\n";

struct Options {
    std::string archive;
    std::string type;
    std::string file;
    std::string member;  ///< empty: chosen by type and file
    bool resign = false;

    mav_host::Resign signing() const {
        return resign ? mav_host::Resign::YES : mav_host::Resign::NO;
    }
};

void checkType(const std::string& type) {
    if (HMAVPfmFileTypes::toFileType(type) == HMAVPfmFileTypes::FILE_TYPE_COUNT) {
        std::vector<std::string> names;
        for (const auto& entry : HMAVPfmFileTypes::getFileTypeMap()) names.push_back(entry.second);
        throw UsageError(refusal("unknown file type", type, names), "add");
    }
}

void checkNoFolder(const std::string& type) {
    if (!HMAVPfmFileTypes::isFolder(type)) return;
    throw UsageError("type '" + type +
                         "' stands for a folder, and 'add' takes one file; "
                         "put the folder into the platform's files and pack them.",
                     "add");
}

/// Refuses names that no member may have, and those that would make a file of what is a folder.
void checkMember(const std::string& name, const mav_host::ZipArchive& archive) {
    HUTZip::checkMemberName(name, archive.path());
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
std::string memberFor(const Options& options, const mav_host::ZipArchive& archive,
                      const std::string& listed) {
    if (!options.member.empty()) return options.member;
    if (!listed.empty()) return listed;
    std::string name = options.file.substr(options.file.rfind('/') + 1);
    if (archive.contains(name))
        throw Failure("it has a member " + shown(name) + " that is not listed as '" +
                      printable(options.type) +
                      "'. Name another one with --as, or this one "
                      "to replace it.");
    return name;
}

void addToPlatform(const Options& options, const mav_host::ZipArchive& archive) {
    checkType(options.type);
    checkNoFolder(options.type);
    const auto platform = loadPlatform(options.archive);
    HMAVHardwarePlatform* const hardware = platform ? platform->getHardwarePlatform() : nullptr;
    if (hardware == nullptr)
        throw Failure(
            "its platform does not load. Correct what the messages name and run the "
            "command again.");
    const std::string member = memberFor(options, archive, hardware->getFile(options.type));
    checkMember(member, archive);
    hardware->archiveFile(options.type, member, options.file, options.signing());
}

/// The member for type DR_BD in an archive with an index alone.
std::string blockDesignMember(const Options& options) {
    const std::string folder = HVMAArchive::placeOf(options.type, {}) + "/";
    if (options.member.empty()) return folder + options.file.substr(options.file.rfind('/') + 1);
    if (options.member.starts_with(folder)) return options.member;
    throw UsageError("type 'DR_BD' stands for the folder 'bd', so " + shown(options.member) +
                         " must begin with 'bd/'.",
                     "add");
}

void addToIndexed(const Options& options, const mav_host::ZipArchive& archive) {
    HVMAArchive indexed(options.archive);
    if (archive.contains(indexed.getJsonFileName()) && !indexed.parse())
        throw Failure(
            "its index does not parse. Correct what the messages name and run the "
            "command again.");
    checkNoFolder(options.type);
    const std::string member =
        options.type == "DR_BD" ? blockDesignMember(options)
                                : memberFor(options, archive, indexed.getFiles().get(options.type));
    if (member == indexed.getJsonFileName())
        throw UsageError("'" + member + "' is the index itself.", "add");
    checkMember(member, archive);
    indexed.archive(options.type, member, options.file, options.signing());
}

void addChecked(const Options& options) {
    const mav_host::ZipArchive archive = openArchive(options.archive);
    if (!HUTFile::isFile(options.file) || !HUTFile::isReadable(options.file))
        throw Failure("FILE " + shown(options.file) +
                      " is no file that can be read. Check its path and permissions.");
    const ProgressLine progress;
    endingCleanly([&] {
        if (mav_platform::holdsPlatform(archive)) {
            addToPlatform(options, archive);
        } else {
            addToIndexed(options, archive);
        }
    });
}

void add(const Options& options) {
    try {
        addChecked(options);
    } catch (const mav_host::DigestRefusal& error) {
        throw Failure(clause(error.what()) +
                      ". See 'mav verify' and get the archive afresh, or give it a new digest all "
                      "the same with --resign.");
    }
}

void run(const Options& options) {
    if (options.type.empty()) throw UsageError("TYPE must not be empty.", "add");
    guarded("add to", options.archive, [&] { add(options); });
}

}  // namespace

void commands::add(Command& command) {
    command.description = "Add a file to an archive that exists, and list it there";
    command.notes = NOTES;
    command.failed = "the archive cannot be read or written; it stays as it was";
    command.examples = {{"mav add card.pka BIT new.bit", "list new.bit under the type BIT"}};
    auto& options = command.runs(run);
    command.argument("ARCHIVE", &options.archive, "Archive to change");
    command.argument("TYPE", &options.type, "File type");
    command.argument("FILE", &options.file, "File to add");
    command.flag("--resign", options.resign, "Sign it anew, whatever its digest says");
    command.option("--as", &options.member, "NAME", "Path inside the archive");
}

}  // namespace cli
