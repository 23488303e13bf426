// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "Suggest.h"
#include "mav_platform/TypedMembers.h"

namespace cli {
namespace {

using mav_platform::TypedMembers;

constexpr const char* NOTES =
    "A type is looked for first, in the metadata of the platform and of its merged emulation\n"
    "platform and in the index vma.json; then a member or a folder of that name. Members keep\n"
    "their path inside the archive below DIR; the path made is printed.\n";

struct Options {
    std::string archive;
    std::string what;  ///< type, member or folder
    std::string directory;
};

[[noreturn]] void notThere(const mav_host::ZipArchive& archive, const TypedMembers& types,
                           const std::string& what) {
    std::vector<std::string> names;
    for (const auto& entry : types.entries) names.push_back(entry.first);
    for (const auto& member : archive.members()) names.push_back(member.name);
    throw Failure("it has neither a member nor a type " + shown(what) + "." +
                  didYouMean(nearest(what, names)) + " 'mav files' lists what it has.");
}

void extract(const Options& options) {
    const mav_host::ZipArchive archive = openArchive(options.archive);
    const TypedMembers types(archive);
    const std::string* const typed = types.find(options.what);
    std::string member = typed != nullptr ? *typed : options.what;
    while (member.ends_with('/')) member.pop_back();
    const std::string dir = options.directory.empty() ? "." : options.directory;
    const ProgressLine progress;
    bool done = false;
    endingCleanly([&] {
        done = archive.contains(member) ? HUTZip::extractFile(options.archive, member, dir)
                                        : HUTZip::extractDir(options.archive, member, dir);
    });
    if (!done && typed != nullptr)
        throw Failure("type " + shown(options.what) + " is listed as " + shown(member) +
                      ", which the archive lacks. Make the archive again.");
    if (!done) notThere(archive, types, options.what);
    writeAnswer(printable(dir + "/" + member) + "\n");
}

void run(const Options& options) {
    if (options.what.empty()) throw UsageError("TYPE or MEMBER must not be empty.", "extract");
    guarded("extract from", options.archive, [&] { extract(options); });
}

}  // namespace

void commands::extract(Command& command) {
    command.description = "Take a member or a folder out of an archive";
    command.notes = NOTES;
    command.failed = "the archive cannot be read, or the result cannot be written";
    command.examples = {{"mav extract card.pka BIT -o /tmp", "what is listed under the type BIT"}};
    auto& options = command.runs(run);
    command.argument("ARCHIVE", &options.archive, "Archive to read");
    command.argument("WHAT", &options.what, "Type, member or folder");
    command.option("-o,--output", &options.directory, "DIR",
                   "Folder to extract into, made when it is missing; without it the present one");
}

}  // namespace cli
