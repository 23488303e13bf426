// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HVMAArchive.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <exception>
#include <optional>

#include "json/Document.h"
#include "json/Kinds.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_host/Messages.h"
#include "mav_platform/HMAVPfmFileTypes.h"
#include "mav_platform/JSONObjectWriter.h"

namespace {

using mav_platform::json::ConversionError;
using mav_platform::json::Node;

/// Runs the work; what it finds of the wrong kind is told with its place.
template <class Work>
void at(const std::string& place, const Work& work) {
    try {
        work();
    } catch (const ConversionError& error) {
        throw ConversionError((place.empty() ? "" : "'" + place + "': ") + error.what());
    }
}

/// The member's text; empty when there is none.
std::string textOf(const Node& object, const char* key, const std::string& place = {}) {
    const std::optional<Node> member = object.find(key);
    if (member) at(place + key, [&] { requireText(*member); });
    return member ? std::string(member->data()) : std::string();
}

void addFiles(const Node& root, HVMAFiles& out) {
    const std::optional<Node> files = root.find("files");
    if (!files) return;
    at("files", [&] { requireList(*files); });
    std::size_t count = 0;
    for (const Node& item : *files) {
        const std::string place = "files[" + std::to_string(count++) + "]";
        at(place, [&] { requireObject(item); });
        out.add(textOf(item, "type", place + "."), textOf(item, "name", place + "."));
    }
}

/// What an index holds.
struct Index {
    std::string instPath;
    std::string drBdInstName;
    std::string pfmName;
    std::string hierName;
    HVMAFiles files;
};

/// Throws ConversionError, whose text tells the line or the place, for what is no index.
Index indexOf(std::string text) {
    try {
        const auto document = mav_platform::json::Document::fromBytes(std::move(text));
        const Node root = document.root();
        requireObject(root);
        Index index{textOf(root, "instPath"),
                    textOf(root, "drBdInstName"),
                    textOf(root, "pfmName"),
                    textOf(root, "hierName"),
                    {}};
        addFiles(root, index.files);
        return index;
    } catch (const boost::property_tree::json_parser::json_parser_error& error) {
        throw ConversionError("line " + std::to_string(error.line()) + ": " + error.message());
    }
}

void takeIfEmpty(std::string& text, std::string&& there) {
    if (text.empty()) text = std::move(there);
}

/// What is being handled, if anything, goes along nested.
[[noreturn]] void refuseMember(const std::string& archive) {
    std::throw_with_nested(HEXUserException(
        "HVMAArchive::archiveFile() - Could not open file for streaming: " + archive));
}

bool reportUnreadable(const std::string& index, const std::string& archive) {
    mav_host::report(mav_host::messages::NO_INDEX, index, archive);
    return false;
}

}  // namespace

std::string HVMAArchive::getJsonFileName() const {
    return "vma.json";
}

bool HVMAArchive::parse() {
    if (!HUTFile::isFile(file_)) {
        mav_host::report(mav_host::messages::ARCHIVE_NO_FILE, file_);
        return false;
    }
    std::optional<mav_host::ZipArchive> archive;
    try {
        archive.emplace(file_);
    } catch (const HEXError&) {
        return reportUnreadable(getJsonFileName(), file_);
    }
    return parse(*archive);
}

bool HVMAArchive::parse(const mav_host::ZipArchive& archive) {
    const std::string name = getJsonFileName();
    try {
        Index index = indexOf(archive.read(name, HUTZip::MAX_METADATA_SIZE));
        instPath_ = std::move(index.instPath);
        drBdInstName_ = std::move(index.drBdInstName);
        pfmName_ = std::move(index.pfmName);
        hierName_ = std::move(index.hierName);
        files_ = std::move(index.files);
        seen_ = files_;
        read_ = true;
    } catch (const HEXError&) {
        return reportUnreadable(name, archive.path());
    } catch (const ConversionError& error) {
        mav_host::report(mav_host::messages::MEMBER_FAULT, archive.path(), name, error.what());
        return false;
    }
    return true;
}

std::string HVMAArchive::placeOf(const std::string& type, const std::string& name) {
    return type == "DR_BD" ? "bd" : name;
}

std::string HVMAArchive::extract(const std::string& type, const std::string& destination) const {
    if (destination.empty()) {
        throw HEXUserException("HVMAArchive::extract() - destDir argument must not be empty");
    }
    if (!HUTFileUtils::makeDirs(destination)) {
        throw HEXUserException("HVMAArchive::extract() - the directory cannot be made: " +
                               destination);
    }
    if (!files_.has(type)) return "";
    const std::string name = placeOf(type, files_.get(type));
    // A listed cache is taken as a file, unlike the other folders.
    const bool isDir =
        type == "DR_BD" || (HMAVPfmFileTypes::isFolder(type) && type != "IP_CACHE_DIR");
    return isDir ? extractDir_(name, destination) : extractFile_(name, destination);
}

std::string HVMAArchive::extractFile_(const std::string& name,
                                      const std::string& destination) const {
    std::string path = destination + "/" + name;
    if (!HUTZip::extractFile(file_, name, destination)) {
        throw HEXUserException(
            "HVMAArchive::_extractFile() - file was not extracted to the expected location: " +
            path);
    }
    return path;
}

std::string HVMAArchive::extractDir_(const std::string& name,
                                     const std::string& destination) const {
    std::string path = destination + "/" + name;
    if (!HUTZip::extractDir(file_, name, destination) || !HUTFile::isDir(path)) {
        throw HEXUserException(
            "HVMAArchive::_extractDir() - dir was not extracted to the expected location: " + path);
    }
    return path;
}

void HVMAArchive::archive(const std::string& type, const std::string& name,
                          const std::string& source, mav_host::Resign resign) {
    const std::string index = getJsonFileName();
    if (file_.empty()) throw HEXAlgException("HVMAArchive::archive() - vmaFile is not set");
    if (index.empty()) throw HEXAlgException("HVMAArchive::archive() - jsonFile is not set");
    if (!HUTFile::isFile(file_)) {
        throw HEXAlgException("HVMAArchive::archive() - vmaFile does not exist");
    }
    checkSource_(name, source);
    if (name == index) {
        throw HEXUserException("HVMAArchive::archive() - '" + name +
                               "' is the name of the index itself; give the member another name");
    }
    if (!HUTZip::isMemberName(index)) {
        throw HEXUserException("HVMAArchive::writeJSON() - Could not open file for streaming: " +
                               file_);
    }
    const HVMAArchive before(*this);
    bool opened = false;
    try {
        const auto sources = [&](const mav_host::ZipArchive* there) -> HSTVector<HUTZip::Source> {
            opened = true;
            if (there != nullptr) takeOver_(*there);
            files_.add(type, name);
            return {{name, source, ""}, {index, "", toJSONString()}};
        };
        HUTZip::updateWithDigest(file_, sources, resign);
    } catch (...) {
        *this = before;
        if (opened) throw;
        refuseMember(file_);
    }
    seen_ = files_;
    read_ = true;
}

void HVMAArchive::takeOver_(const mav_host::ZipArchive& archive) {
    const std::string name = getJsonFileName();
    if (!archive.contains(name)) return;
    try {
        Index there = indexOf(archive.read(name, HUTZip::MAX_METADATA_SIZE));
        for (const auto& [type, member] : there.files.getMap()) {
            const bool isOurs = files_.has(type) && files_.get(type) != seen_.get(type);
            if (!isOurs && seen_.get(type) != member) files_.add(type, member);
        }
        if (read_) return;
        takeIfEmpty(instPath_, std::move(there.instPath));
        takeIfEmpty(drBdInstName_, std::move(there.drBdInstName));
        takeIfEmpty(pfmName_, std::move(there.pfmName));
        takeIfEmpty(hierName_, std::move(there.hierName));
    } catch (const HEXError&) {
        return;  // an index that nobody can read is written anew
    } catch (const ConversionError& error) {
        throw HEXUserException("The index '" + name + "' of the archive '" + archive.path() +
                               "' has a fault: " + error.what() +
                               "; correct it and pack the archive again");
    }
}

void HVMAArchive::archiveFile(const std::string& name, const std::string& source) {
    checkSource_(name, source);
    bool opened = false;
    try {
        HUTZip::update(file_, [&](const mav_host::ZipArchive*) -> HSTVector<HUTZip::Source> {
            opened = true;
            return {{name, source, ""}};
        });
    } catch (const HEXError&) {
        if (opened) throw;
        refuseMember(file_);
    }
}

void HVMAArchive::checkSource_(const std::string& name, const std::string& source) const {
    if (!HUTFile::isFile(source) || !HUTFile::isReadable(source)) {
        throw HEXUserException("HVMAArchive::archiveFile() - Could not open file for reading: " +
                               source);
    }
    try {
        HUTZip::checkMemberName(name, file_);
    } catch (const HEXError&) {
        refuseMember(file_);
    }
}

void HVMAArchive::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addObject("version", [](mav_platform::JSONObjectWriter& version) {
        version.addKey("major", 1);
        version.addKey("minor", 0);
    });
    writer.addKey("instPath", instPath_);
    writer.addKey("drBdInstName", drBdInstName_);
    writer.addKey("pfmName", pfmName_);
    writer.addKey("hierName", hierName_);
    writer.writeObject(files_);
}
