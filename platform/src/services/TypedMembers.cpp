// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/TypedMembers.h"

#include <algorithm>
#include <map>
#include <memory>
#include <new>
#include <numeric>
#include <set>
#include <string_view>

#include "mav_host/HUTFile.h"
#include "mav_host/Messages.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HPLPlatform.h"
#include "mav_platform/HVMAArchive.h"
#include "mav_platform/PlatformLoader.h"

namespace mav_platform {
namespace {

constexpr const char* INDEX = "vma.json";

void appendPlatform(TypedMembers& out, const HMAVHardwarePlatform* hardware,
                    const std::string& archive) {
    const auto* const platform = dynamic_cast<const HPLPlatform*>(hardware);
    if (platform == nullptr) return;
    const bool inside = HUTFile::getCanonicalName(platform->getPlatformFile()) ==
                        HUTFile::getCanonicalName(archive);
    if (!inside) return;
    for (const HPLFile* file : platform->getFiles()) {
        out.entries.emplace_back(file->getType(), platform->memberName(file->getName()));
    }
}

void appendMetadata(TypedMembers& out, const std::string& archive) {
    try {
        PlatformLoader loader(archive, HW_METADATA_AUTO);
        const auto platform = loader.load();
        if (!platform) return;
        appendPlatform(out, platform->getHardwarePlatform(), archive);
        appendPlatform(out, platform->getHardwareEmulationPlatform(), archive);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        mav_host::report(mav_host::messages::METADATA_UNUSABLE, archive, error.what());
    }
}

/// Orders paths so that what lies in a folder follows the folder at once.
struct PathBefore {
    bool operator()(std::string_view a, std::string_view b) const {
        const auto [atA, atB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
        if (atA == a.end() || atB == b.end()) return atB != b.end();
        return rank(*atA) < rank(*atB);
    }
    static int rank(char c) { return c == '/' ? -1 : static_cast<unsigned char>(c); }
};

bool isAtOrBelow(std::string_view member, std::string_view folder) {
    if (!member.starts_with(folder)) return false;
    return member.size() == folder.size() || (!folder.empty() && member[folder.size()] == '/');
}

/// What the types of one member may take, in bytes; whoever made the archive wrote them.
constexpr std::size_t MAX_TYPES = 256;

/// The types that a path is listed under, each with its first place among the entries.
using Types = std::map<std::string_view, std::size_t>;
using Listed = std::map<std::string_view, Types, PathBefore>;

/// The distinct types of all these paths, in the order of their places.
HSTVector<std::string> distinct(const std::vector<Listed::const_iterator>& paths) {
    std::map<std::size_t, std::string_view> places;
    for (const auto& path : paths) {
        for (const auto& [type, place] : path->second) places.emplace(place, type);
    }
    HSTVector<std::string> types;
    std::size_t taken = 0;
    std::set<std::string_view> seen;
    for (const auto& [place, type] : places) {
        if (!seen.insert(type).second) continue;
        taken += type.size() + 1;
        const bool fits = taken <= MAX_TYPES + 1;
        types.emplace_back(fits ? type : "...");
        if (!fits) break;
    }
    return types;
}

Listed listedOf(const TypedMembers& members) {
    Listed listed;
    for (std::size_t i = 0; i < members.entries.size(); ++i) {
        Types& types = listed[members.entries[i].second];
        if (types.size() <= MAX_TYPES) types.emplace(members.entries[i].first, i);
    }
    return listed;
}

}  // namespace

HSTVector<std::string> metadataMembers(const std::string& extension) {
    const std::string own = extension + ".json";
    const std::string alternative = "alt_" + own;
    return {own, alternative, HMAVHardwarePlatform::hwEmuMemberName(own),
            HMAVHardwarePlatform::hwEmuMemberName(alternative)};
}

bool holdsPlatform(const mav_host::ZipArchive& archive) {
    const std::string extension = HUTPathUtils::extension(archive.path());
    if (!HMAVHardwarePlatform::isValidPlatformExt(extension)) return false;
    const HSTVector<std::string> members = metadataMembers(extension.substr(1));
    return archive.contains(members[0]) || archive.contains(members[1]);
}

TypedMembers::TypedMembers(const mav_host::ZipArchive& archive) {
    if (holdsPlatform(archive)) appendMetadata(*this, archive.path());
    if (!archive.contains(INDEX)) return;
    HVMAArchive index(archive.path());
    index.parse();
    for (const auto& [type, name] : index.getFiles().getMap()) {
        entries.emplace_back(type, HVMAArchive::placeOf(type, name));
    }
}

const std::string* TypedMembers::find(const std::string& type) const {
    for (const auto& entry : entries) {
        if (entry.first == type) return &entry.second;
    }
    return nullptr;
}

std::vector<HSTVector<std::string>> TypedMembers::typesOf(
    const HSTVector<mav_host::ZipMember>& members) const {
    const Listed listed = listedOf(*this);
    std::vector<std::size_t> order(members.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return PathBefore()(members[a].name, members[b].name);
    });
    std::vector<HSTVector<std::string>> types(members.size());
    std::vector<Listed::const_iterator> around;  // the listed paths that hold the present one
    const auto leave = [&](std::string_view path) {
        while (!around.empty() && !isAtOrBelow(path, around.back()->first)) around.pop_back();
    };
    auto next = listed.cbegin();
    for (const std::size_t index : order) {
        const std::string& name = members[index].name;
        for (; next != listed.cend() && !PathBefore()(name, next->first); ++next) {
            leave(next->first);
            around.push_back(next);
        }
        leave(name);
        types[index] = distinct(around);
    }
    return types;
}

}  // namespace mav_platform
