// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "mav_host/HUTFolder.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/TypedMembers.h"

namespace fs = std::filesystem;

namespace cli {
namespace {

constexpr const char* NOTES =
    "Every regular file below DIR becomes a member, named by its path inside DIR: the metadata\n"
    "members first, the others sorted by name. The archive carries a digest; the same files give\n"
    "the same bytes. An archive that exists is replaced only when the new one is complete.\n"
    "Files and folders whose name begins with a dot are left out. Links and devices are refused.\n"
    "ARCHIVE ends in .pka or .dsa and lies outside DIR. The top of DIR holds pka.json or\n"
    "alt_pka.json for a .pka archive, dsa.json or alt_dsa.json for a .dsa archive.\n";

struct Options {
    std::string directory;
    std::string archive;
    bool force = false;  ///< pack also without a metadata member
};

std::string shown(const fs::path& path) {
    return "'" + printable(path.string()) + "'";
}

/// "pka" or "dsa".
std::string kindOf(const fs::path& archive) {
    const std::string name = archive.filename().string();
    for (const char* kind : {"pka", "dsa"})
        if (name.ends_with(std::string(".") + kind)) return kind;
    throw UsageError("ARCHIVE " + shown(archive) + " must end in .pka or .dsa.", "pack");
}

bool isInside(const fs::path& path, const fs::path& dir) {
    const fs::path inner = fs::weakly_canonical(path);
    const fs::path outer = fs::canonical(dir);
    return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first ==
           outer.end();
}

void checkPlaces(const fs::path& dir, const fs::path& archive) {
    if (!fs::exists(dir))
        throw Failure("there is no folder " + shown(dir) + ". Check the path of DIR.");
    if (!fs::is_directory(dir)) throw UsageError("DIR " + shown(dir) + " is no folder.", "pack");
    if (fs::is_directory(archive))
        throw UsageError("ARCHIVE " + shown(archive) + " is a folder; name a file.", "pack");
    const fs::path parent = fs::absolute(archive).parent_path();
    if (!fs::is_directory(parent))
        throw Failure("there is no folder " + shown(parent) + ". Create it first.");
    if (isInside(archive, dir))
        throw UsageError("ARCHIVE " + shown(archive) + " lies inside DIR " + shown(dir) +
                             " and would become part of itself; write it outside.",
                         "pack");
}

void refuseUnpackable(HUTFolder::Kind kind, const std::string& path) {
    if (kind == HUTFolder::Kind::LINK)
        throw Failure(shown(path) +
                      " is a link, and an archive holds plain files only. "
                      "Put a copy of the file in its place or remove the link.");
    if (kind == HUTFolder::Kind::OTHER)
        throw Failure(shown(path) + " is neither a file nor a folder. Remove it.");
}

/// Tells of an unreadable file before anything is made.
void checkReadable(const HUTFolder& folder, const std::string& name) {
    const int file = folder.open(name);
    if (file < 0)
        throw Failure(shown(folder.pathOf(name)) + " cannot be read: " +
                      std::generic_category().message(errno) + ". Change its permissions.");
    ::close(file);
}

/// What is swapped for a link or a pipe behind this look is refused when it is packed.
HSTVector<HUTZip::Source> collect(const std::string& dir) {
    const auto folder = std::make_shared<const HUTFolder>(dir);
    HSTVector<HUTZip::Source> sources;
    HSTVector<std::string> left{""};
    while (!left.empty()) {
        const std::string below = std::move(left.back());
        left.pop_back();
        for (const HUTFolder::Entry& entry : folder->list(below)) {
            if (entry.name.starts_with('.')) continue;
            const std::string name = below.empty() ? entry.name : below + "/" + entry.name;
            refuseUnpackable(entry.kind, folder->pathOf(name));
            if (entry.kind == HUTFolder::Kind::FOLDER) {
                left.push_back(name);
            } else {
                checkReadable(*folder, name);
                sources.push_back({name, name, {}, folder});
            }
        }
    }
    return sources;
}

/// Place of a member among the metadata members of an archive of that kind: 0 and 1 for those of
/// the platform, 2 and 3 for those of its merged emulation platform, 4 for any other.
int metadataRank(const std::string& member, const std::string& kind) {
    const auto names = mav_platform::metadataMembers(kind);
    return static_cast<int>(std::find(names.begin(), names.end(), member) - names.begin());
}

void sortMembers(HSTVector<HUTZip::Source>& sources, const std::string& kind) {
    std::sort(sources.begin(), sources.end(), [&](const auto& a, const auto& b) {
        const int rankA = metadataRank(a.member, kind);
        const int rankB = metadataRank(b.member, kind);
        return rankA != rankB ? rankA < rankB : a.member < b.member;
    });
}

void checkMembers(const HSTVector<HUTZip::Source>& sources, const Options& options,
                  const std::string& kind) {
    if (sources.empty())
        throw Failure("the folder " + shown(options.directory) +
                      " holds no files to pack. Check the path of DIR.");
    if (!options.force && metadataRank(sources.front().member, kind) > 1)
        throw Failure("the folder " + shown(options.directory) + " holds no metadata member '" +
                      kind + ".json' (or 'alt_" + kind +
                      ".json'), so the archive could not be loaded. Add it, or pack all the same "
                      "with --force.");
}

void pack(const Options& options, const std::string& kind) {
    checkPlaces(options.directory, options.archive);
    auto sources = collect(options.directory);
    sortMembers(sources, kind);
    checkMembers(sources, options, kind);
    const ProgressLine progress;
    endingCleanly([&] { HUTZip::create(options.archive, sources); });
}

void run(const Options& options) {
    if (options.directory.empty() || options.archive.empty())
        throw UsageError("DIR and ARCHIVE must not be empty.", "pack");
    const std::string kind = kindOf(options.archive);
    try {
        pack(options, kind);
    } catch (const UsageError&) {
        throw;
    } catch (const Failure& error) {
        throw Failure("cannot pack " + shown(options.archive) + ": " + error.what());
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const fs::filesystem_error& error) {
        throw Failure("cannot pack " + shown(options.archive) + ": " + shown(error.path1()) +
                      " cannot be read: " + error.code().message() +
                      ". Change its permissions and run the command again.");
    } catch (const std::exception& error) {
        throw Failure("cannot pack " + shown(options.archive) + ": " + clause(error.what()) +
                      ". Nothing was changed; remove the cause and run the command again.");
    }
}

}  // namespace

void commands::pack(Command& command) {
    command.description = "Pack a folder into a platform archive with a digest";
    command.notes = NOTES;
    command.failed = "the folder cannot be read, or the archive cannot be written";
    command.examples = {{"mav pack card/ card.pka", "the folder's files as members"}};
    auto& options = command.runs(run);
    command.argument("DIR", &options.directory, "Folder with the files");
    command.argument("ARCHIVE", &options.archive, "Archive to write");
    command.flag("--force", options.force, "Pack also without a metadata member");
}

}  // namespace cli
