// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVPlatformXMLReader.h"

#include <memory>
#include <ostream>
#include <utility>

#include "formats/description/MAVPlatformLMX.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/Messages.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVReconfigurablePartition.h"

namespace lmx = mav_platform::lmx;
using mav_host::xml::BindingError;

HMAVPlatformXMLReader::HMAVPlatformXMLReader(std::string path, HMAVPlatform* platform)
    : platform_(platform), filePath_(std::move(path)) {
    if (!HUTPathUtils::exists(filePath_)) throw HEXFileNotFoundException(filePath_);
}

bool HMAVPlatformXMLReader::parseFile() {
    try {
        parsePlatform_(lmx::platformFormat().parseFile(filePath_));
        platform_->setPlatformFile(filePath_);
        return true;
    } catch (const BindingError& error) {
        report_(error.what(), error.line());
        return false;
    }
}

void HMAVPlatformXMLReader::report_(const std::string& text, std::size_t line) {
    const std::string head = "Error parsing platform file: " + filePath_;
    const std::string detail = "Line number:" + std::to_string(line) + ". " + text + "\n";
    mav_host::console() << head << "\n" << detail << std::flush;
    errorMsg_ += head + detail;
    reason_ = (line == 0 ? "" : "line " + std::to_string(line) + ": ") + text;
    mav_host::report(mav_host::messages::DESCRIPTION_NOT_VALID, filePath_);
}

void HMAVPlatformXMLReader::parsePlatform_(const lmx::Platform& root) {
    platform_->setVendor(root.vendor);
    platform_->setLibrary(root.library);
    platform_->setName(root.name);
    platform_->setVersion(root.version.text);
    platform_->setDescription(root.description);
    if (!root.hardwarePlatforms)
        throw BindingError(
            BindingError::Kind::Format,
            "element 'mav:platform': required element 'mav:hardwarePlatforms' is missing",
            root.line);
    parseHardwarePlatforms_(*root.hardwarePlatforms);
    if (root.softwarePlatforms) parseSoftwarePlatforms_(*root.softwarePlatforms);
}

void HMAVPlatformXMLReader::parseHardwarePlatforms_(const lmx::HardwarePlatforms& element) {
    if (element.hardwarePlatform) {
        parseAnonHardwarePlatform_(element);
    } else if (element.hwEmuPlatform) {
        parseHardwareEmulationOnlyPlatform_(*element.hwEmuPlatform);
    } else {
        for (const lmx::ReconfigurablePartition& partition : element.reconfigurablePartitions)
            parseReconfigurablePartition_(partition);
        if (element.defaultRP) platform_->setDefaultRPId(*element.defaultRP);
    }
}

void HMAVPlatformXMLReader::parseAnonHardwarePlatform_(const lmx::HardwarePlatforms& element) {
    parseHardwarePlatform_(*element.hardwarePlatform);
    if (element.hwEmuPlatform) parseHardwareEmulationPlatform_(*element.hwEmuPlatform);
}

void HMAVPlatformXMLReader::parseHardwarePlatform_(const FileReference& element) {
    platform_->setHardwarePlatformFile(joinCanonical_(element));
}

void HMAVPlatformXMLReader::parseHardwareEmulationPlatform_(const FileReference& element) {
    platform_->setHardwareEmuPlatformFile(joinCanonical_(element));
}

void HMAVPlatformXMLReader::parseHardwareEmulationOnlyPlatform_(const FileReference& element) {
    parseHardwareEmulationPlatform_(element);
    platform_->setHardwarePlatformFile(platform_->getHardwareEmuPlatformFile());
}

void HMAVPlatformXMLReader::parseReconfigurablePartition_(
    const lmx::ReconfigurablePartition& element) {
    auto partition = std::make_unique<HMAVReconfigurablePartition>(element.id);
    parseRPAnonHardwarePlatform_(element, *partition);
    platform_->addReconfigurablePartition(partition.release());
}

void HMAVPlatformXMLReader::parseRPAnonHardwarePlatform_(
    const lmx::ReconfigurablePartition& element, HMAVReconfigurablePartition& partition) {
    if (element.hardwarePlatform)
        partition.setHardwarePlatformFile(joinCanonical_(*element.hardwarePlatform));
    if (element.hwEmuPlatform)
        partition.setHardwareEmuPlatformFile(joinCanonical_(*element.hwEmuPlatform));
}

void HMAVPlatformXMLReader::parseSoftwarePlatforms_(const lmx::SoftwarePlatforms& element) {
    platform_->setSoftwarePlatformFile(join_(element.softwarePlatform));
}

std::string HMAVPlatformXMLReader::join_(const FileReference& element) const {
    std::string joined = HUTFile::getParent(filePath_);
    // A bare file name lies in the working directory, not in the root.
    if (joined.empty()) joined.push_back('.');
    const std::string& separator = HUTFile::getDirSeparator();
    joined.reserve(joined.size() + element.path.size() + element.name.size() + 2);
    joined.append(separator).append(element.path);
    joined.append(separator).append(element.name);
    return joined;
}

std::string HMAVPlatformXMLReader::joinCanonical_(const FileReference& element) const {
    return HUTFile::getCanonicalName(join_(element));
}
