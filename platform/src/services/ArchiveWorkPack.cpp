// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFolder.h"
#include "mav_platform/ArchiveWork.h"
#include "mav_platform/TypedMembers.h"

namespace fs = std::filesystem;

namespace mav_platform {
namespace {

using Sources = HSTVector<HUTZip::Source>;

std::string inQuotes(const fs::path& path) {
    return "'" + path.string() + "'";
}

/// "pka" or "dsa".
std::string kindOf(const fs::path& archive) {
    const std::string name = archive.filename().string();
    for (const char* kind : {"pka", "dsa"})
        if (name.ends_with(std::string(".") + kind)) return kind;
    throw HEXAlgException("the archive " + inQuotes(archive) +
                          " has another extension; let it end in .pka or .dsa");
}

bool isInside(const fs::path& path, const fs::path& dir) {
    const fs::path inner = fs::weakly_canonical(path);
    const fs::path outer = fs::canonical(dir);
    return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first ==
           outer.end();
}

void checkPlaces(const fs::path& dir, const fs::path& archive) {
    if (!fs::exists(dir)) throw HEXFileNotFoundException(dir.string());
    if (!fs::is_directory(dir)) throw HEXAlgException(inQuotes(dir) + " is no folder; name one");
    if (fs::is_directory(archive))
        throw HEXAlgException("the archive " + inQuotes(archive) + " is a folder; name a file");
    const fs::path parent = fs::absolute(archive).parent_path();
    if (!fs::is_directory(parent)) throw HEXFileNotFoundException(parent.string());
    if (isInside(archive, dir))
        throw HEXAlgException("the archive " + inQuotes(archive) + " lies inside the folder " +
                              inQuotes(dir) + " and would become part of itself; write it outside");
}

void refuseUnpackable(HUTFolder::Kind kind, const std::string& path) {
    if (kind == HUTFolder::Kind::LINK)
        throw HEXUserException(inQuotes(path) +
                               " is a link, and an archive holds plain files only; put a copy of "
                               "the file in its place or remove the link");
    if (kind == HUTFolder::Kind::OTHER)
        throw HEXUserException(inQuotes(path) + " is neither a file nor a folder; remove it");
}

/// Tells of an unreadable file before anything is made.
void checkReadable(const HUTFolder& folder, const std::string& name) {
    const int file = folder.open(name);
    if (file < 0)
        throw HEXUserException(inQuotes(folder.pathOf(name)) + " cannot be read: " +
                               std::generic_category().message(errno) + "; change its permissions");
    ::close(file);
}

/// What is swapped for a link or a pipe behind this look is refused when it is packed.
Sources collect(const std::string& dir) {
    const auto folder = std::make_shared<const HUTFolder>(dir);
    Sources sources;
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
    const auto names = metadataMembers(kind);
    return static_cast<int>(std::find(names.begin(), names.end(), member) - names.begin());
}

void sortMembers(Sources& sources, const std::string& kind) {
    std::sort(sources.begin(), sources.end(), [&](const auto& a, const auto& b) {
        const int rankA = metadataRank(a.member, kind);
        const int rankB = metadataRank(b.member, kind);
        return rankA != rankB ? rankA < rankB : a.member < b.member;
    });
}

void checkMembers(const Sources& sources, const std::string& directory, const std::string& kind,
                  bool withoutMetadata) {
    if (sources.empty())
        throw HEXUserException("the folder " + inQuotes(directory) +
                               " holds no files to pack; check its path");
    if (!withoutMetadata && metadataRank(sources.front().member, kind) > 1)
        throw HEXUserException("the folder " + inQuotes(directory) + " holds no metadata member '" +
                               kind + ".json' (or 'alt_" + kind +
                               ".json'), so the archive could not be loaded; add it, or ask to "
                               "pack all the same");
}

}  // namespace

void ArchiveWork::pack(const std::string& directory, const std::string& archive,
                       bool withoutMetadata) {
    const std::string kind = kindOf(archive);
    checkPlaces(directory, archive);
    Sources sources = collect(directory);
    sortMembers(sources, kind);
    checkMembers(sources, directory, kind, withoutMetadata);
    HUTZip::create(archive, sources);
}

}  // namespace mav_platform
