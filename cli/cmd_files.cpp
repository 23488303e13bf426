// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "mav_host/HI18N.h"
#include "mav_platform/JSONObjectWriter.h"

namespace {

using cli::TypedMembers;

std::string padded(const std::string& text, std::size_t width, bool right) {
    const std::string blanks(width - std::min(width, text.size()), ' ');
    return right ? blanks + text : text + blanks;
}

std::string table(const HSTVector<mav_host::ZipMember>& members, const TypedMembers& types) {
    std::vector<std::string> typeTexts;
    std::size_t typeWidth = 4;
    std::size_t sizeWidth = 4;
    for (const auto& member : members) {
        const std::string type = types.typesOf(member.name);
        typeTexts.push_back(type.empty() ? "-" : cli::printable(type));
        typeWidth = std::max(typeWidth, typeTexts.back().size());
        sizeWidth = std::max(sizeWidth, std::to_string(member.size).size());
    }
    std::string text =
        padded("TYPE", typeWidth, false) + "  " + padded("SIZE", sizeWidth, true) + "  MEMBER\n";
    for (std::size_t i = 0; i < members.size(); ++i) {
        text += padded(typeTexts[i], typeWidth, false) + "  " +
                padded(std::to_string(members[i].size), sizeWidth, true) + "  " +
                cli::printable(members[i].name) + "\n";
    }
    return text;
}

std::string json(const HSTVector<mav_host::ZipMember>& members, const TypedMembers& types,
                 const std::string& digest) {
    mav_platform::JSONObjectWriter writer;
    writer.addKey("digest", digest);
    writer.addList("members", [&](mav_platform::JSONListWriter& list) {
        for (const auto& member : members) {
            list.addObject([&](mav_platform::JSONObjectWriter& item) {
                item.addKey("name", HI18N_convertToUTF8(member.name));
                item.addKey("type", types.typesOf(member.name));
                item.addKey("size", member.size);
            });
        }
    });
    return cli::withEmptyLists(writer.text(), {{"members", members.empty()}});
}

void listMembers(const cli::FilesOptions& options) {
    const mav_host::ZipArchive archive = cli::openArchive(options.archive);
    if (options.names) {
        cli::LongAnswer answer;
        for (const auto& member : archive.members()) answer += cli::printable(member.name) + "\n";
        answer.end();
        return;
    }
    const TypedMembers types = cli::typedMembers(archive);
    std::string digest;
    {
        const cli::ProgressLine progress;
        digest = cli::digestText(HUTZip::verifyDigest(options.archive));
    }
    const auto members = archive.members();
    cli::writeAnswer(options.json ? json(members, types, digest)
                                  : table(members, types) + "digest: " + digest + "\n");
}

/// Sentences about members that cannot be read or that are listed and not there.
std::string findFaults(const mav_host::ZipArchive& archive) {
    const cli::ProgressLine progress;
    std::string faults;
    const auto members = archive.members();
    for (const auto& member : members) {
        try {
            archive.read(member.name, UINT64_MAX, [](const char*, std::size_t) {});
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& error) {
            faults += cli::clause(error.what()) + "\n";
        }
    }
    for (const auto& [type, name] : cli::typedMembers(archive).entries) {
        const std::string folder = name + "/";
        const bool there = archive.contains(name) ||
                           std::any_of(members.begin(), members.end(), [&](const auto& member) {
                               return member.name.starts_with(folder);
                           });
        if (!there)
            faults +=
                "listed as " + cli::printable(type) + " and absent: " + cli::printable(name) + "\n";
    }
    return faults;
}

}  // namespace

void cli::runFiles(const FilesOptions& options) {
    guarded("list", options.archive, [&] { listMembers(options); });
}

bool cli::runVerify(const VerifyOptions& options) {
    bool good = false;
    guarded("verify", options.archive, [&] {
        const mav_host::ZipArchive archive = openArchive(options.archive);
        const std::string faults = findFaults(archive);
        const mav_host::DigestState state = [&] {
            const ProgressLine progress;
            return HUTZip::verifyDigest(options.archive);
        }();
        good = faults.empty() && state == mav_host::DigestState::VALID;
        writeAnswer(faults + "digest: " + digestText(state) + "\n");
    });
    return good;
}
