// SPDX-License-Identifier: Apache-2.0
#include "check/CheckWalk.h"

#include <algorithm>
#include <set>

#include "check/CheckArchive.h"
#include "check/CheckMetadata.h"
#include "check/CheckSoftware.h"
#include "check/CheckXml.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_host/Letters.h"
#include "mav_platform/HMAVHardwarePlatform.h"

namespace mav_platform::check {
namespace {

constexpr std::uint64_t LARGEST = std::uint64_t{256} << 20;
constexpr std::uint64_t START = 64;  ///< bytes that tell a file's kind

std::string joined(const std::string& path, const lmx::FileReference& reference) {
    const std::string parent = HUTFile::getParent(path);
    return tidied((parent.empty() ? "." : parent) + "/" + reference.path + "/" + reference.name);
}

/// "1.04" is "1.4", and so is "1.40" for who reads versions as decimal numbers.
bool isSameVersion(const std::string& a, const std::string& b) {
    const auto split = [](const std::string& text) {
        const std::size_t point = std::min(text.find('.'), text.size());
        const std::string minor = point < text.size() ? text.substr(point + 1) : "";
        return std::pair(sameNumber(text.substr(0, point)),
                         minor.empty() ? "0" : sameNumber(minor));
    };
    auto [majorA, minorA] = split(a);
    auto [majorB, minorB] = split(b);
    while (minorA.size() > 1 && minorA.ends_with('0') && minorA.size() > minorB.size())
        minorA.pop_back();
    return majorA == majorB && minorA == minorB;
}

/// What a file is whose name ends as if it were something else; empty when it may be what it seems.
std::string otherKind(const std::string& path) {
    const std::string extension = HUTPathUtils::extension(path);
    const bool isArchive = HMAVHardwarePlatform::isValidPlatformExt(extension);
    if (!isArchive && HUTZip::isZip(path)) {
        return "this is a zip archive; platform archives end in .pka or .dsa, in small letters";
    }
    const std::string lower = mav_host::lowerCase(extension);
    if (lower == ".spfm" && lower != extension) {
        return "this is read as a platform description; software platforms end in .spfm, in small "
               "letters";
    }
    const std::string start = HUTFileUtils::tryRead(path, START).value_or(std::string());
    const std::size_t first = start.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
    const char begin = first == std::string::npos ? '\0' : start[first];
    if (isArchive && begin == '<') {
        return "this is an XML document; platform descriptions end in .qpfm, software platforms in "
               ".spfm";
    }
    if (begin == '{') {
        return "this is a JSON document; metadata is a member of a platform archive, see 'mav "
               "pack'";
    }
    return {};
}

}  // namespace

/// The path without "." pieces and doubled slashes; ".." stays, for links may lead through it.
std::string tidied(std::string_view path) {
    std::string result = path.substr(0, 1) == "/" ? "/" : "";
    while (!path.empty()) {
        const std::string_view piece = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(piece.size() + 1, path.size()));
        if (piece.empty() || piece == ".") continue;
        if (!result.empty() && result.back() != '/') result += '/';
        result += piece;
    }
    return result.empty() ? "." : result;
}

void Walk::file(const std::string& path) {
    if (!isNew(path)) return;
    if (!HUTFile::isFile(path)) {
        report_.add("unreadable", {path},
                    HUTFile::exists(path) ? "this is no regular file; give the path of one"
                                          : "there is no such file; check the path");
        return;
    }
    if (isOtherwiseNamed(path)) return;
    const std::string extension = HUTPathUtils::extension(path);
    if (HMAVHardwarePlatform::isValidPlatformExt(extension)) {
        checkArchive(path, report_);
    } else if (extension == ".spfm") {
        software(path);
    } else {
        description(path);
    }
}

bool Walk::isOtherwiseNamed(const std::string& path) {
    const std::string kind = otherKind(path);
    if (!kind.empty()) report_.add("extension", {path}, kind);
    return !kind.empty();
}

std::string Walk::shownPath(const std::string& path) const {
    const auto known = seen_.find(HUTFile::getCanonicalName(path));
    return known == seen_.end() ? tidied(path) : known->second;
}

bool Walk::isNew(const std::string& path) {
    if (!seen_.emplace(HUTFile::getCanonicalName(path), path).second) return false;
    policy_.look(path);
    if (onFile_) onFile_(path);
    return true;
}

std::optional<std::string> Walk::read(const std::string& path) {
    try {
        return HUTFileUtils::readWhole(path, LARGEST);
    } catch (const HEXError& error) {
        report_.add("unreadable", {path}, error.what());
        return std::nullopt;
    }
}

void Walk::description(const std::string& path) {
    const auto text = read(path);
    if (!text) return;
    const auto document = bindDocument(lmx::platformFormat(), *text, path, report_, &whole_);
    if (!document) return;
    vendor_ = document->vendor;
    version_ = document->version.text;
    if (document->hardwarePlatforms) {
        const lmx::HardwarePlatforms& hardware = *document->hardwarePlatforms;
        archive(path, hardware.hardwarePlatform);
        archive(path, hardware.hwEmuPlatform);
        partitions(path, hardware);
    } else {
        report_.add("schema", {path, document->line, document->column},
                    "element 'mav:platform': required element 'mav:hardwarePlatforms' is "
                    "missing");
    }
    if (document->softwarePlatforms) {
        const lmx::FileReference& reference = document->softwarePlatforms->softwarePlatform;
        const std::string target = joined(path, reference);
        if (!isPartial(reference) && exists(path, reference, target) && isNew(target)) {
            software(target);
        }
    }
}

void Walk::partitions(const std::string& path, const lmx::HardwarePlatforms& hardware) {
    std::set<unsigned> ids;
    for (const lmx::ReconfigurablePartition& partition : hardware.reconfigurablePartitions) {
        // Without one of its own an id reads as 0.
        const bool isKnown = whole_ || partition.id != 0;
        if (!ids.insert(partition.id).second && isKnown) {
            report_.add("duplicate", {path, partition.line, partition.column},
                        "the partition id " + std::to_string(partition.id) +
                            " stands more than once; the last one counts");
        }
        archive(path, partition.hardwarePlatform);
        archive(path, partition.hwEmuPlatform);
    }
    const unsigned standard = hardware.defaultRP.value_or(0);
    if (whole_ && !ids.empty() && ids.count(standard) == 0) {
        report_.add("default-partition", {path, hardware.line, hardware.column},
                    "the default partition is " + std::to_string(standard) +
                        (hardware.defaultRP ? "" : ", for none is named,") +
                        " and no partition has that id");
    }
}

/// A part of the name is missing, which has been reported.
bool Walk::isPartial(const lmx::FileReference& reference) const {
    return !whole_ && (reference.path.empty() || reference.name.empty());
}

bool Walk::exists(const std::string& path, const lmx::FileReference& reference,
                  const std::string& target) {
    if (HUTFile::isFile(target)) return true;
    report_.add("missing-file", {path, reference.line, reference.column},
                shown(target, target.size()) + " is no file");
    return false;
}

void Walk::archive(const std::string& path, const std::optional<lmx::FileReference>& reference) {
    if (!reference || isPartial(*reference)) return;
    const std::string target = joined(path, *reference);
    if (!exists(path, *reference, target)) return;
    if (!HMAVHardwarePlatform::isValidPlatformExt(HUTPathUtils::extension(target))) {
        report_.add("extension", {path, reference->line, reference->column},
                    shown(reference->name) + " does not end in .pka or .dsa");
        return;
    }
    if (isNew(target)) compare(*reference, path, checkArchive(target, report_));
}

void Walk::compare(const lmx::FileReference& reference, const std::string& path,
                   const ArchiveIdentity& identity) {
    const Place place{path, reference.line, reference.column};
    const auto differs = [&](const char* what, const std::string& own, const std::string& other) {
        report_.add("contradiction", place,
                    std::string("the description tells the ") + what + " " + shown(own) +
                        ", the archive " + shown(reference.name) + " tells " + shown(other));
    };
    if (!vendor_.empty() && !identity.vendor.empty() &&
        !mav_host::equalLetters(vendor_, identity.vendor)) {
        differs("vendor", vendor_, identity.vendor);
    }
    if (!version_.empty() && !identity.version.empty() &&
        !isSameVersion(version_, identity.version)) {
        differs("version", version_, identity.version);
    }
}

void Walk::software(const std::string& path) {
    const auto text = read(path);
    if (text) checkSoftware(*text, path, report_);
}

}  // namespace mav_platform::check
