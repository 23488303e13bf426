// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HVMAArchive.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <optional>

#include "json/Document.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/JSONObjectWriter.h"

namespace {

using mav_platform::json::Node;

std::string textOf(const Node& node, std::string_view key) {
    const std::optional<Node> child = node.find(key);
    return child ? std::string(child->data()) : "";
}

void addFiles(const Node& root, HVMAFiles& out) {
    const std::optional<Node> files = root.find("files");
    if (!files) return;
    for (const Node& item : *files) out.add(textOf(item, "type"), textOf(item, "name"));
}

/// The whole index; nothing when it cannot be read.
std::optional<std::string> readIndex(const std::string& archive, const std::string& index) {
    try {
        return mav_host::ZipArchive(archive).read(index, HUTZip::MAX_METADATA_SIZE);
    } catch (const HEXError&) {
        return std::nullopt;
    }
}

}  // namespace

std::string HVMAArchive::getJsonFileName() const {
    return "vma.json";
}

bool HVMAArchive::parse() {
    if (!HUTFile::isFile(file_)) {
        ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::ERROR, "@74-89@%s", {file_});
        return false;
    }
    const std::string index = getJsonFileName();
    std::optional<std::string> text = readIndex(file_, index);
    if (!text) {
        ComMsgMgr::sendMsg(2, "platform", ComMsgMgr::ERROR, "@74-67@%s%s", {index, file_});
        return false;
    }
    try {
        const mav_platform::json::Document document(std::move(*text));
        const Node root = document.root();
        instPath_ = textOf(root, "instPath");
        drBdInstName_ = textOf(root, "drBdInstName");
        pfmName_ = textOf(root, "pfmName");
        hierName_ = textOf(root, "hierName");
        files_.clear();
        addFiles(root, files_);
        seen_ = files_;
    } catch (const boost::property_tree::json_parser::json_parser_error& error) {
        ComMsgMgr::sendMsg(
            1, "platform", ComMsgMgr::ERROR, "@74-64@%s%s%s",
            {file_, index, "line " + std::to_string(error.line()) + ": " + error.message()});
        return false;
    }
    return true;
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
    if (type == "DR_BD") return extractDir_("bd", destination);
    const std::string name = files_.get(type);
    const bool isDir = type == "BOARD_REPO_PATH" || type == "IP_REPO_PATH";
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
                          const std::string& source) {
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
    HVMAFiles before = files_;
    try {
        HUTZip::updateWithDigest(file_, [&]() -> HSTVector<HUTZip::Source> {
            takeOverOthers_(index);
            files_.add(type, name);
            return {{name, source, ""}, {index, "", toJSONString()}};
        });
    } catch (...) {
        files_ = std::move(before);
        throw;
    }
    seen_ = files_;
}

void HVMAArchive::takeOverOthers_(const std::string& index) {
    std::optional<std::string> text = readIndex(file_, index);
    if (!text) return;
    try {
        HVMAFiles there;
        addFiles(mav_platform::json::Document(std::move(*text)).root(), there);
        for (const auto& [type, name] : there.getMap()) {
            const bool isOurs = files_.has(type) && files_.get(type) != seen_.get(type);
            if (!isOurs && seen_.get(type) != name) files_.add(type, name);
        }
    } catch (const boost::property_tree::json_parser::json_parser_error&) {
        return;  // an index that nobody can read is written anew
    }
}

void HVMAArchive::archiveFile(const std::string& name, const std::string& source) {
    checkSource_(name, source);
    HUTZip::add(file_, {{name, source, ""}});
}

void HVMAArchive::checkSource_(const std::string& name, const std::string& source) const {
    if (!HUTFile::isFile(source) || !HUTFile::isReadable(source)) {
        throw HEXUserException("HVMAArchive::archiveFile() - Could not open file for reading: " +
                               source);
    }
    if (!HUTZip::isMemberName(name)) {
        throw HEXUserException("HVMAArchive::archiveFile() - Could not open file for streaming: " +
                               file_);
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
