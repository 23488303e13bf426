// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "Screen.h"
#include "mav_platform/ArchiveAnswers.h"

namespace cli {
namespace {

using mav_platform::ArchiveListing;

struct Options {
    std::string archive;
    bool json = false;
    bool names = false;
};

std::string joined(const HSTVector<std::string>& types) {
    std::string text;
    for (const std::string& type : types) text.append(text.empty() ? "" : ",").append(type);
    return text;
}

std::string table(const ArchiveListing& listing) {
    std::vector<Screen::Row> rows;
    for (std::size_t i = 0; i < listing.members.size(); ++i)
        rows.push_back({joined(listing.types[i]), std::to_string(listing.members[i].size),
                        listing.members[i].name});
    std::string text;
    for (const std::string& line : Screen::lines({"TYPE", "SIZE", "MEMBER"}, rows))
        text.append(line).append("\n");
    return text + "digest: " + mav_platform::digestWord(listing.digest) + "\n";
}

ArchiveListing read(const mav_host::ZipArchive& archive) {
    const ProgressLine progress;
    return ArchiveListing(archive);
}

void listMembers(const Options& options) {
    const mav_host::ZipArchive archive = openArchive(options.archive);
    if (options.names) {
        LongAnswer answer;
        for (const auto& member : archive.members()) answer += printable(member.name) + "\n";
        answer.end();
        return;
    }
    const ArchiveListing listing = read(archive);
    writeData(options.json ? listing.answer(options.archive).text() : table(listing));
}

void run(const Options& options) {
    guarded("list", options.archive, [&] { listMembers(options); });
}

}  // namespace

void commands::files(Command& command) {
    command.description = "List what an archive holds: members, types, sizes";
    command.failed = "the archive cannot be read, or the result cannot be written";
    command.examples = {{"mav files card.pka", "every member"},
                        {"mav files card.pka --names", "names alone, at once"}};
    auto& options = command.runs(run);
    command.argument("ARCHIVE", &options.archive, "Archive to list");
    command.typedJson(options.json);
    command
        .flag("--names", options.names,
              "Print the members' names alone, without reading them for the digest")
        .excludes = "--json";
}

}  // namespace cli
