// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "Screen.h"
#include "mav_platform/JSONValue.h"

namespace cli {
namespace {

using mav_platform::JSONValue;

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

std::string table(const HSTVector<mav_host::ZipMember>& members, const TypedMembers& types) {
    const auto listed = types.typesOf(members);
    std::vector<Screen::Row> rows;
    for (std::size_t i = 0; i < members.size(); ++i)
        rows.push_back({joined(listed[i]), std::to_string(members[i].size), members[i].name});
    std::string text;
    for (const std::string& line : Screen::lines({"TYPE", "SIZE", "MEMBER"}, rows))
        text.append(line).append("\n");
    return text;
}

std::string json(const std::string& archive, const HSTVector<mav_host::ZipMember>& members,
                 const TypedMembers& types, const std::string& digest) {
    const auto listed = types.typesOf(members);
    JSONValue list = JSONValue::list();
    for (std::size_t i = 0; i < members.size(); ++i) {
        list.add(JSONValue::object()
                     .addPath("path", members[i].name)
                     .add("types", JSONValue::list(listed[i]))
                     .add("size", members[i].size));
    }
    return JSONValue::answer("files")
        .addPath("file", archive)
        .add("digest", digest)
        .add("members", std::move(list))
        .text();
}

void listMembers(const Options& options) {
    const mav_host::ZipArchive archive = openArchive(options.archive);
    if (options.names) {
        LongAnswer answer;
        for (const auto& member : archive.members()) answer += printable(member.name) + "\n";
        answer.end();
        return;
    }
    const TypedMembers types = typedMembers(archive);
    std::string digest;
    {
        const ProgressLine progress;
        digest = digestText(HUTZip::verifyDigest(options.archive));
    }
    const auto members = archive.members();
    writeData(options.json ? json(options.archive, members, types, digest)
                           : table(members, types) + "digest: " + digest + "\n");
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
