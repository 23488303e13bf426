// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/ArchiveWork.h"

#include <set>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HMAVPfmFileTypes.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HVMAArchive.h"
#include "mav_platform/PlatformLoader.h"
#include "mav_platform/TypedMembers.h"

namespace mav_platform {
namespace {

using mav_host::ZipArchive;
using Faults = HSTVector<ArchiveWork::Fault>;

std::string quoted(const std::string& text) {
    return std::string("'").append(text).append("'");
}

std::string baseName(const std::string& file) {
    return file.substr(file.rfind('/') + 1);
}

void findDamaged(const ZipArchive& archive, const ArchiveWork::OnMember& onMember, Faults& faults) {
    const HSTVector<mav_host::ZipMember> members = archive.members();
    double before = 0;
    for (const auto& member : members) {
        if (onMember) onMember(member.name, before++ / static_cast<double>(members.size()));
        try {
            archive.read(member.name, UINT64_MAX, [](const char*, std::size_t) {});
        } catch (const HEXDataException& error) {
            faults.push_back({member.name, "", error.what()});
        }
    }
}

void findAbsent(const ZipArchive& archive, Faults& faults) {
    std::set<std::string> names;
    for (const auto& member : archive.members()) names.insert(member.name);
    for (const auto& [type, name] : TypedMembers(archive).entries) {
        const auto inside = names.lower_bound(name + "/");
        const bool there =
            names.contains(name) || (inside != names.end() && inside->starts_with(name + "/"));
        if (!there) faults.push_back({name, type, "listed as " + type + " and absent: " + name});
    }
}

void checkType(const std::string& type) {
    if (HMAVPfmFileTypes::toFileType(type) == HMAVPfmFileTypes::FILE_TYPE_COUNT)
        throw HEXAlgException("unknown file type " + quoted(type) + "; give one of its list");
}

void checkNoFolder(const std::string& type) {
    if (HMAVPfmFileTypes::isFolder(type))
        throw HEXAlgException("type " + quoted(type) +
                              " stands for a folder; put it into the platform's files and pack "
                              "them");
}

/// Refuses names that no member may have, and those that would make a file of what is a folder.
void checkMember(const std::string& name, const ZipArchive& archive) {
    HUTZip::checkMemberName(name, archive.path());
    for (std::size_t at = name.find('/'); at != std::string::npos; at = name.find('/', at + 1)) {
        if (archive.contains(name.substr(0, at)))
            throw HEXAlgException("the member " + quoted(name.substr(0, at)) + " is a file, so " +
                                  quoted(name) + " cannot lie in it; name another one");
    }
    for (const auto& member : archive.members()) {
        if (member.name.starts_with(name + "/"))
            throw HEXAlgException(quoted(name) + " is a folder in the archive; name another one");
    }
}

/// The member that is asked for, the one that the type is listed with, or one of the file's name.
std::string memberFor(const ArchiveWork::Place& place, const std::string& file,
                      const ZipArchive& archive, const std::string& listed) {
    if (!place.member.empty()) return place.member;
    if (!listed.empty()) return listed;
    std::string name = baseName(file);
    if (archive.contains(name))
        throw HEXAlgException("the archive has a member " + quoted(name) +
                              " that is not listed as " + quoted(place.type) +
                              "; name another one, or this one to replace it");
    return name;
}

void addToPlatform(const ZipArchive& archive, const ArchiveWork::Place& place,
                   const std::string& file, mav_host::Resign resign) {
    checkType(place.type);
    checkNoFolder(place.type);
    PlatformLoader loader(archive.path(), HW_METADATA_AUTO);
    const auto platform = loader.load();
    HMAVHardwarePlatform* const hardware = platform ? platform->getHardwarePlatform() : nullptr;
    if (hardware == nullptr)
        throw HEXDataException("the platform of the archive " + quoted(archive.path()) +
                               " does not load; correct what the messages name");
    const std::string member = memberFor(place, file, archive, hardware->getFile(place.type));
    checkMember(member, archive);
    hardware->archiveFile(place.type, member, file, resign);
}

/// The member for type DR_BD in an archive with an index alone.
std::string blockDesignMember(const ArchiveWork::Place& place, const std::string& file) {
    const std::string folder = HVMAArchive::placeOf(place.type, {}) + "/";
    if (place.member.empty()) return folder + baseName(file);
    if (place.member.starts_with(folder)) return place.member;
    throw HEXAlgException("type 'DR_BD' stands for the folder 'bd', so " + quoted(place.member) +
                          " must begin with 'bd/'; name such a member");
}

void addToIndexed(const ZipArchive& archive, const ArchiveWork::Place& place,
                  const std::string& file, mav_host::Resign resign) {
    HVMAArchive indexed(archive.path());
    if (archive.contains(indexed.getJsonFileName()) && !indexed.parse())
        throw HEXDataException("the index of the archive " + quoted(archive.path()) +
                               " does not parse; correct what the messages name");
    checkNoFolder(place.type);
    const std::string member =
        place.type == "DR_BD" ? blockDesignMember(place, file)
                              : memberFor(place, file, archive, indexed.getFiles().get(place.type));
    if (member == indexed.getJsonFileName())
        throw HEXAlgException(quoted(member) + " is the index itself; name another member");
    checkMember(member, archive);
    indexed.archive(place.type, member, file, resign);
}

}  // namespace

HSTVector<ArchiveWork::Fault> ArchiveWork::faults(const ZipArchive& archive,
                                                  const OnMember& onMember) {
    Faults faults;
    findDamaged(archive, onMember, faults);
    findAbsent(archive, faults);
    return faults;
}

std::string ArchiveWork::extract(const ZipArchive& archive, const std::string& what,
                                 const std::string& directory) {
    const TypedMembers types(archive);
    const std::string* const typed = types.find(what);
    std::string member = typed != nullptr ? *typed : what;
    while (member.ends_with('/')) member.pop_back();
    if (member.empty()) return "";
    const std::string dir = directory.empty() ? "." : directory;
    const bool done = archive.contains(member) ? HUTZip::extractFile(archive.path(), member, dir)
                                               : HUTZip::extractDir(archive.path(), member, dir);
    if (!done && typed != nullptr)
        throw HEXDataException("type " + quoted(what) + " is listed as " + quoted(member) +
                               ", which the archive lacks; make the archive again");
    return done ? dir + "/" + member : "";
}

void ArchiveWork::add(const std::string& path, const Place& place, const std::string& file,
                      mav_host::Resign resign) {
    if (place.type.empty()) throw HEXAlgException("the type is empty; give one");
    const ZipArchive archive(path);
    if (!HUTFile::isFile(file)) throw HEXFileNotFoundException(file);
    if (holdsPlatform(archive)) {
        addToPlatform(archive, place, file, resign);
    } else {
        addToIndexed(archive, place, file, resign);
    }
}

}  // namespace mav_platform
