// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "mav_host/HUTZip.h"

namespace fs = std::filesystem;

namespace {

using cli::Failure;
using cli::UsageError;

std::string shown(const fs::path& path) {
    return "'" + cli::printable(path.string()) + "'";
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

void refuseUnpackable(const fs::directory_entry& entry) {
    if (entry.is_symlink())
        throw Failure(shown(entry.path()) +
                      " is a link, and an archive holds plain files only. "
                      "Put a copy of the file in its place or remove the link.");
    if (!entry.is_directory() && !entry.is_regular_file())
        throw Failure(shown(entry.path()) + " is neither a file nor a folder. Remove it.");
    // Asked here because a failing walk does not tell where it stands.
    const int wanted = entry.is_directory() ? R_OK | X_OK : R_OK;
    if (::access(entry.path().c_str(), wanted) != 0)
        throw Failure(shown(entry.path()) + " cannot be read: " +
                      std::generic_category().message(errno) + ". Change its permissions.");
}

HSTVector<HUTZip::Source> collect(const fs::path& dir) {
    HSTVector<HUTZip::Source> sources;
    for (auto at = fs::recursive_directory_iterator(dir); at != fs::end(at); ++at) {
        if (at->path().filename().string().starts_with('.')) {
            at.disable_recursion_pending();
            continue;
        }
        refuseUnpackable(*at);
        if (!at->is_regular_file()) continue;
        sources.push_back({at->path().lexically_relative(dir).string(), at->path().string(), {}});
    }
    return sources;
}

/// Place of a member among the metadata members of an archive of that kind: 0 and 1 for those of
/// the platform, 2 and 3 for those of its merged emulation platform, 4 for any other.
int metadataRank(const std::string& member, const std::string& kind) {
    const std::string names[] = {kind + ".json", "alt_" + kind + ".json",
                                 "hw_emu/" + kind + ".json", "hw_emu/alt_" + kind + ".json"};
    return static_cast<int>(std::find(std::begin(names), std::end(names), member) -
                            std::begin(names));
}

void sortMembers(HSTVector<HUTZip::Source>& sources, const std::string& kind) {
    std::sort(sources.begin(), sources.end(), [&](const auto& a, const auto& b) {
        const int rankA = metadataRank(a.member, kind);
        const int rankB = metadataRank(b.member, kind);
        return rankA != rankB ? rankA < rankB : a.member < b.member;
    });
}

void checkMembers(const HSTVector<HUTZip::Source>& sources, const cli::PackOptions& options,
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

void pack(const cli::PackOptions& options, const std::string& kind) {
    checkPlaces(options.directory, options.archive);
    auto sources = collect(options.directory);
    sortMembers(sources, kind);
    checkMembers(sources, options, kind);
    const cli::ProgressLine progress;
    cli::endingCleanly([&] { HUTZip::create(options.archive, sources); });
}

}  // namespace

void cli::runPack(const PackOptions& options) {
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
