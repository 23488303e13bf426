// SPDX-License-Identifier: Apache-2.0
#include "mav_host/HUTZip.h"

#include <algorithm>
#include <map>
#include <set>

#include "mav_host/HEXError.h"
#include "mav_host/HI18N.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Printable.h"
#include "zip/ArchiveWriter.h"
#include "zip/ZipDirectory.h"
#include "zip/zipInternal.h"

namespace mav_host {

bool isSafeMemberName(const std::string& name) {
    if (name.empty() || name.front() == '/' || name.find('\\') != std::string::npos ||
        name.find('\0') != std::string::npos) {
        return false;
    }
    for (std::size_t start = 0; start <= name.size();) {
        const std::size_t end = std::min(name.find('/', start), name.size());
        if (name.compare(start, end - start, "..") == 0) return false;
        start = end + 1;
    }
    return true;
}

namespace {

bool isRelativePath(const std::string& name) {
    if (!isSafeMemberName(name)) return false;
    const std::string parts = "/" + name + "/";
    return parts.find("//") == std::string::npos && parts.find("/./") == std::string::npos;
}

/// Those that the zip library refuses.
bool isControl(char c) {
    return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' && c != '\r';
}

/// What is wrong with a name and what to do; null when nothing is.
const char* nameFault(const std::string& name) {
    static_assert(HUTZip::MAX_MEMBER_NAME == 65535);
    if (name.size() > HUTZip::MAX_MEMBER_NAME) {
        return "is longer than 65535 bytes, the most that an archive can hold; give a shorter one";
    }
    if (!isRelativePath(name)) {
        return "is empty, absolute, climbs out or holds an empty or '.' part, a backslash or null "
               "byte; use a relative path with '/'";
    }
    if (!HI18N_isUTF8(name)) return "is not UTF-8; give it in UTF-8";
    if (std::any_of(name.begin(), name.end(), isControl)) {
        return "holds a control character; leave it out";
    }
    return nullptr;
}

std::string shownName(const std::string& name) {
    constexpr std::size_t LONGEST = 200;
    std::string shown(beginning(name, LONGEST));
    if (shown.size() < name.size()) shown += "...";
    for (std::size_t at; (at = shown.find('\0')) != std::string::npos;) {
        shown.replace(at, 1, "\\0");  // a text ends at a null byte
    }
    return shown;
}

using Replacements = std::map<std::string, const HUTZip::Source*>;

void checkSources(const std::string& archive, const HSTVector<HUTZip::Source>& sources) {
    for (const HUTZip::Source& source : sources) {
        HUTZip::checkMemberName(source.member, archive);
        if (!source.folder && !source.file.empty() && !HUTFile::isFile(source.file)) {
            throw HEXUserException("The file '" + source.file + "' for the archive '" + archive +
                                   "' does not exist or is not a file");
        }
    }
}

void checkDistinct(const std::string& archive, const HSTVector<HUTZip::Source>& sources) {
    if (sources.empty()) {
        throw HEXUserException("The archive '" + archive + "' would have no members");
    }
    std::set<std::string> names;
    NameTable table;
    for (const HUTZip::Source& source : sources) {
        table.add(source.member);
        if (!names.insert(source.member).second) {
            throw HEXUserException("The member name '" + source.member + "' for the archive '" +
                                   archive + "' is given twice");
        }
    }
    const std::string fault = table.fault();
    if (!fault.empty()) {
        throw HEXUserException("The archive '" + archive + "' is not made: " + fault +
                               "; give its files other names");
    }
}

/// Copies the old archive's members; those that are replaced get their new content at the old place
/// and leave `replacements`.
void copyMembers(ArchiveWriter& writer, Replacements& replacements) {
    const zip_int64_t count = zip_get_num_entries(writer.oldZip(), 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const auto index = static_cast<zip_uint64_t>(i);
        const std::string name = memberName(writer.oldZip(), index);
        if (findMember(writer.oldZip(), name) != i) continue;  // of equal names the first counts
        const auto replacement = replacements.find(name);
        if (replacement == replacements.end()) {
            writer.copy(index);
        } else {
            writer.add(*replacement->second);
            replacements.erase(replacement);
        }
    }
}

}  // namespace
}  // namespace mav_host

using mav_host::ArchiveWriter;

bool HUTZip::isZip(const std::string& path) {
    const mav_host::FileDescriptor file = mav_host::openRegular(path);
    std::string start;
    if (!file.isOpen() || !mav_host::readAll(file.get(), 3, start)) return false;
    return start == "PK\3\4" || start == "PK\5\6";
}

bool HUTZip::containsFile(const std::string& archive, const std::string& member) {
    try {
        return mav_host::ZipArchive(archive).contains(member);
    } catch (const std::exception&) {
        return false;
    }
}

namespace mav_host {
namespace {

/// Builds the archive with the sources in it; the writer is ready to commit then.
void addSources(ArchiveWriter& writer, const HSTVector<HUTZip::Source>& sources, bool withDigest) {
    Replacements replacements;
    for (const HUTZip::Source& source : sources) replacements[source.member] = &source;
    if (withDigest) writer.checkOldSize();
    if (writer.old() != nullptr) {
        copyMembers(writer, replacements);
        if (!withDigest) writer.keepComment();
    }
    for (const HUTZip::Source& source : sources) {
        const auto at = replacements.find(source.member);
        if (at != replacements.end() && at->second == &source) writer.add(source);
    }
    writer.build();
    if (withDigest) writer.attachDigest();
}

}  // namespace
}  // namespace mav_host

void HUTZip::add(const std::string& archive, const HSTVector<Source>& sources) {
    mav_host::checkSources(archive, sources);
    if (!sources.empty()) update(archive, [&](const auto*) { return sources; });
}

void HUTZip::update(const std::string& archive, const Sources& sources) {
    ArchiveWriter writer(archive, true);
    const HSTVector<Source> added = sources(writer.old());
    mav_host::checkSources(archive, added);
    mav_host::addSources(writer, added, false);
    writer.commit();
}

void HUTZip::addWithDigest(const std::string& archive, const HSTVector<Source>& sources,
                           mav_host::Resign resign) {
    mav_host::checkSources(archive, sources);
    updateWithDigest(
        archive, [&](const auto*) { return sources; }, resign);
}

void HUTZip::updateWithDigest(const std::string& archive, const Sources& sources,
                              mav_host::Resign resign) {
    ArchiveWriter writer(archive, true);
    const HSTVector<Source> added = sources(writer.old());
    mav_host::checkSources(archive, added);
    if (resign == mav_host::Resign::NO) writer.checkOldDigest();
    mav_host::addSources(writer, added, true);
    writer.commit();
}

bool HUTZip::isMemberName(const std::string& name) {
    return mav_host::nameFault(name) == nullptr;
}

void HUTZip::checkMemberName(const std::string& name, const std::string& archive) {
    const char* const fault = mav_host::nameFault(name);
    if (fault == nullptr) return;
    throw HEXUserException("The member name '" + mav_host::shownName(name) + "' for the archive '" +
                           archive + "' " + fault);
}

void HUTZip::create(const std::string& archive, const HSTVector<Source>& sources) {
    mav_host::checkSources(archive, sources);
    mav_host::checkDistinct(archive, sources);
    ArchiveWriter writer(archive, false);
    for (const Source& source : sources) writer.add(source);
    writer.build();
    writer.attachDigest();
    writer.commit();
}

void HUTZip::addDigest(const std::string& archive) {
    if (!HUTPathUtils::exists(archive)) throw HEXFileNotFoundException(archive);
    addWithDigest(archive, {}, mav_host::Resign::YES);
}
