// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HPLPlatform.h"

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/property_tree/ptree.hpp>
#include <limits>
#include <locale>
#include <set>
#include <stdexcept>
#include <string_view>

#include "mav_host/Letters.h"
#include "mav_host/Messages.h"
#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONObjectWriter.h"
#include "model/writeList.h"

using mav_host::equalLetters;
using mav_platform::JSONObjectWriter;

namespace {

/// The card whose host link is twice as wide as that of the others.
constexpr const char* WIDE_LINK_DEVICE = "xq-g3x16";

std::string join(const HSTVector<std::string>& parts, const char* separator) {
    std::string text;
    for (const std::string& part : parts) {
        if (!text.empty()) text += separator;
        text += part;
    }
    return text;
}

/// Replaces "([0-9]+).*GB" by its digits and reads the leading number of what results, so that a
/// text of another form keeps its leading number.
int sizeInGb(const std::string& text) {
    const std::size_t first = text.find_first_of("0123456789");
    const std::size_t unit = text.rfind("GB");
    if (first == std::string::npos || unit == std::string::npos) return std::stoi(text);
    const std::size_t end = std::min(text.find_first_not_of("0123456789", first), text.size());
    return std::stoi(unit < end ? text : text.substr(0, end) + text.substr(unit + 2));
}

}  // namespace

HPLPlatform::HPLPlatform() = default;

HPLPlatform::~HPLPlatform() = default;

std::string HPLPlatform::getVersion() const {
    return std::to_string(versionMajor_) + "." + std::to_string(versionMinor_);
}

std::string HPLPlatform::getPrettyName() const {
    return boost::algorithm::to_upper_copy(name_, std::locale()) + " (" + getVBNV() + ")";
}

std::string HPLPlatform::getBoardPart() const {
    return board_ ? board_->getBoardPart() : "";
}

template <class Pick>
std::string HPLPlatform::connections_(Pick pick) const {
    HSTVector<std::string> parts;
    if (board_) {
        for (const HPLBoard::DimmConnector* connector : board_->getDimmConnectors()) {
            if (connector->isConnected() && pick(*connector)) {
                parts.push_back(connector->getName() + "=" + connector->getConnectedName());
            }
        }
    }
    return join(parts, " ");
}

std::string HPLPlatform::getBoardConnectionsString() const {
    return connections_([](const HPLBoard::DimmConnector&) { return true; });
}

std::string HPLPlatform::getLockedBoardConnectionsString() const {
    return connections_([](const HPLBoard::DimmConnector& c) { return c.isLocked(); });
}

std::string HPLPlatform::getUnlockedBoardConnectionsString() const {
    return connections_([](const HPLBoard::DimmConnector& c) { return !c.isLocked(); });
}

std::string HPLPlatform::getFpgaPart() const {
    const std::string part =
        devices_.items().empty() ? "" : devices_.items().front()->getFpgaPart();
    return part.empty() && board_ ? board_->getPart() : part;
}

std::string HPLPlatform::getFpgaDevice() const {
    if (devices_.items().empty()) return "";
    const HPLDevice& device = *devices_.items().front();
    const std::string& name = device.getPart().getDevice();
    return name.empty() ? device.getName() : name;
}

std::string HPLPlatform::getDeviceName() const {
    return devices_.items().empty() ? "" : devices_.items().front()->getName();
}

unsigned HPLPlatform::getNumDDRs() const {
    return static_cast<unsigned>(
        std::count_if(getMemories().begin(), getMemories().end(), [](const HPLMemory* memory) {
            return equalLetters(memory->getType().substr(0, 3), "ddr");
        }));
}

std::string HPLPlatform::getMemType() const {
    for (const HPLMemory* memory : getMemories()) {
        if (!memory->getType().empty()) return memory->getType();
    }
    return "ddr4";
}

std::string HPLPlatform::getMemSize() const {
    for (const HPLMemory* memory : getMemories()) {
        if (!memory->getSize().empty()) return memory->getSize();
    }
    return "8 GB";
}

int HPLPlatform::getMemSizeInGb(std::size_t index) const {
    return getMemories().empty() ? 0 : sizeInGb(getMemories().at(index)->getSize());
}

int HPLPlatform::getTotalMemSizeInGb() const {
    long long total = 0;
    for (const HPLMemory* memory : getMemories()) {
        try {
            total += sizeInGb(memory->getSize());
        } catch (const std::logic_error&) {
            // A size that is no number adds nothing.
        }
    }
    constexpr long long LARGEST = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(total, -LARGEST, LARGEST));
}

unsigned HPLPlatform::getUniqueMemoryTypeCount() const {
    HSTVector<std::string> types;
    getUniqueMemoryTypeStrings(types);
    return static_cast<unsigned>(types.size());
}

void HPLPlatform::getUniqueMemoryTypeStrings(HSTVector<std::string>& out) const {
    std::set<std::string_view> seen;
    for (const HPLMemory* memory : getMemories()) {
        if (seen.insert(memory->getType()).second) out.push_back(memory->getType());
    }
}

unsigned HPLPlatform::getMemoryTypeCount(const std::string& type) const {
    return static_cast<unsigned>(
        std::count_if(getMemories().begin(), getMemories().end(),
                      [&](const HPLMemory* memory) { return memory->getType() == type; }));
}

int HPLPlatform::getMemoryIndex(const std::string& name) const {
    const auto found =
        std::find_if(getMemories().begin(), getMemories().end(),
                     [&](const HPLMemory* memory) { return memory->getName() == name; });
    return found == getMemories().end() ? -1 : static_cast<int>(found - getMemories().begin());
}

std::string HPLPlatform::getMemorySize(const std::string& name) const {
    const int index = getMemoryIndex(name);
    const std::string size =
        index < 0 ? "" : getMemories()[static_cast<std::size_t>(index)]->getSize();
    return size.empty() ? "16GB" : size;
}

std::string HPLPlatform::getInterfaceDesc() const {
    std::string description;
    const HMAVDesignIntentStorage intent = getDesignIntent();
    if (intent.getServerManaged() || intent.getExternalHost()) {
        const bool wide = equalLetters(getFpgaDevice(), WIDE_LINK_DEVICE);
        description = wide ? "PCIe gen3x16" : "PCIe gen3x8";
    }
    if (interfaces_.items().empty()) return description;
    const HPLInterface& first = *interfaces_.items().front();
    if (first.getName().empty() || first.getType().empty()) return description;
    return first.getName() + " " + first.getType();
}

void HPLPlatform::getBoardImgZipEntries(HSTVector<std::string>& out) const {
    if (!board_) return;
    for (const std::string& file :
         {board_->getImageFileHdpi(), board_->getImageFileMdpi(), board_->getImageFileLdpi()}) {
        if (!file.empty()) out.push_back(file);
    }
}

void HPLPlatform::getDevices(HSTVector<HMAVDevice*>& out) const {
    out.insert(out.end(), devices_.items().begin(), devices_.items().end());
}

HMAVDevice* HPLPlatform::getDevice(const std::string& name) const {
    for (HPLDevice* device : devices_.items()) {
        if (device->getName() == name) return device;
    }
    return nullptr;
}

const HPLCore* HPLPlatform::firstCore_() const {
    return devices_.items().empty() ? nullptr : devices_.items().front()->getCore();
}

std::string HPLPlatform::getBRAMCount() const {
    return firstCore_() != nullptr ? firstCore_()->getBramCount() : "";
}

std::string HPLPlatform::getDSPCount() const {
    return firstCore_() != nullptr ? firstCore_()->getDspCount() : "";
}

std::string HPLPlatform::getLUTCount() const {
    return firstCore_() != nullptr ? firstCore_()->getLutCount() : "";
}

std::string HPLPlatform::getURAMCount() const {
    return firstCore_() != nullptr ? firstCore_()->getUramCount() : "";
}

std::string HPLPlatform::getRegisterCount() const {
    return firstCore_() != nullptr ? firstCore_()->getRegisterCount() : "";
}

unsigned HPLPlatform::getNumComputeUnits() const {
    return firstCore_() != nullptr ? firstCore_()->getNumComputeUnits() : 0;
}

bool HPLPlatform::hasDimmConnectors() const {
    return board_ && !board_->getDimmConnectors().empty();
}

namespace {

template <class Pick>
void appendConnectors(const HPLBoard* board, HSTVector<std::string>& out, Pick pick) {
    if (board == nullptr) return;
    for (const HPLBoard::DimmConnector* connector : board->getDimmConnectors()) {
        if (pick(*connector)) out.push_back(connector->getName());
    }
}

}  // namespace

void HPLPlatform::getDimmConnectors(HSTVector<std::string>& out) const {
    appendConnectors(board_.get(), out, [](const HPLBoard::DimmConnector&) { return true; });
}

void HPLPlatform::getLockedDimmConnectors(HSTVector<std::string>& out) const {
    appendConnectors(board_.get(), out,
                     [](const HPLBoard::DimmConnector& c) { return c.isLocked(); });
}

void HPLPlatform::getConnectedDimmConnectors(HSTVector<std::string>& out) const {
    appendConnectors(board_.get(), out,
                     [](const HPLBoard::DimmConnector& c) { return c.isConnected(); });
}

std::string HPLPlatform::getConnectorDisplayName(const std::string& name) const {
    if (!board_) return "";
    for (const HPLBoard::DimmConnector* connector : board_->getDimmConnectors()) {
        if (connector->getName() == name) return connector->getDisplayName();
    }
    return "";
}

void HPLPlatform::getValidSLRNames(HSTVector<std::string>& out) const {
    for (const HPLDevice* device : devices_.items()) {
        if (device->getCore() == nullptr) continue;
        const auto& slrs = device->getCore()->getValidSlrs();
        out.insert(out.end(), slrs.begin(), slrs.end());
    }
}

std::string HPLPlatform::getFile(const std::string& type) const {
    const HPLFile* const file = findFile(type);
    return file != nullptr ? file->getName() : "";
}

std::string HPLPlatform::getFile(HMAVPfmFileTypes::FileType type) const {
    return getFile(HMAVPfmFileTypes::toString(type));
}

bool HPLPlatform::hasFile(const std::string& type) const {
    return findFile(type) != nullptr;
}

bool HPLPlatform::hasFile(HMAVPfmFileTypes::FileType type) const {
    return hasFile(HMAVPfmFileTypes::toString(type));
}

HPLFile* HPLPlatform::findFile(const std::string& type) const {
    for (HPLFile* file : files_.items()) {
        if (file->getType() == type) return file;
    }
    return nullptr;
}

HPLFile* HPLPlatform::findFile(HMAVPfmFileTypes::FileType type) const {
    return findFile(HMAVPfmFileTypes::toString(type));
}

HPLFile* HPLPlatform::addFile(HMAVPfmFileTypes::FileType type, const std::string& name) {
    return addFile(HMAVPfmFileTypes::toString(type), name);
}

HPLFile* HPLPlatform::addFile(const std::string& typeText, const std::string& name) {
    HPLFile* const file = files_.add();
    file->setType(typeText);
    file->setName(name);
    return file;
}

bool HPLPlatform::removeFile(const std::string& type) {
    HPLFile* const file = findFile(type);
    if (file != nullptr) files_.remove(file);
    return file != nullptr;
}

bool HPLPlatform::removeFile(HMAVPfmFileTypes::FileType type) {
    return removeFile(HMAVPfmFileTypes::toString(type));
}

bool HPLPlatform::validateFileType(const std::string& text) {
    if (HMAVPfmFileTypes::toFileType(text) != HMAVPfmFileTypes::FILE_TYPE_COUNT) return true;
    mav_host::report(mav_host::messages::UNKNOWN_FILE_TYPE, text);
    return false;
}

const boost::property_tree::ptree& HPLPlatform::getExtMetaJsonAsPtree() const {
    static const boost::property_tree::ptree EMPTY;
    return extensions_ ? *extensions_ : EMPTY;
}

std::string HPLPlatform::getExtMetaJsonAsString() const {
    JSONObjectWriter writer;
    writer.getTree() = getExtMetaJsonAsPtree();
    return writer.text();
}

void HPLPlatform::setExtensions(boost::property_tree::ptree tree) {
    extensions_ = std::make_unique<boost::property_tree::ptree>();
    // A property tree copies where it could move.
    extensions_->swap(tree);
}

void HPLPlatform::addValidBinaryContentValue(std::string value) {
    validBinaryContentValues_.push_back(std::move(value));
}

std::string HPLPlatform::getValidBinaryContentValuesAsStr() const {
    return join(validBinaryContentValues_, ",");
}

void HPLPlatform::addValidOutputTypeValue(std::string value) {
    validOutputTypeValues_.push_back(std::move(value));
}

void HPLPlatform::addYarcCompileXpSwitch(std::string value) {
    yarcCompileXpSwitches_.push_back(std::move(value));
}

void HPLPlatform::addYarcLinkXpSwitch(std::string value) {
    yarcLinkXpSwitches_.push_back(std::move(value));
}

void HPLPlatform::getYarcCompileXpSwitches(HSTVector<std::string>& out) const {
    out = yarcCompileXpSwitches_;
}

void HPLPlatform::getYarcLinkXpSwitches(HSTVector<std::string>& out) const {
    out = yarcLinkXpSwitches_;
}

HPLBoard& HPLPlatform::createBoard() {
    if (!board_) board_ = std::make_unique<HPLBoard>();
    return *board_;
}

bool HPLPlatform::hasUserDefinedScalableClocks() const {
    const auto& devices = devices_.items();
    return std::any_of(devices.begin(), devices.end(), [](const HPLDevice* device) {
        const HPLCore* const core = device->getCore();
        return core != nullptr && core->getName() == "fpga0" && !device->getClocks().empty();
    });
}

void HPLPlatform::toJSON(JSONObjectWriter& writer) const {
    writer.addKey("versionMajor", versionMajor_);
    writer.addKey("versionMinor", versionMinor_);
    writer.addKey("hostArchitecture", hostArch_);
    writer.addKey("hostInterface", hostInterface_);
    writer.addKey("usesPR", usesPR());
    writer.addKey("platformState", getPlatformState());
    writer.addKey("topModuleName", topModuleName_);
    writer.addKey("acceleratorBinaryFormat", acceleratorBinaryFormat_);
    writer.addKey("acceleratorBinaryContent", acceleratorBinaryContent_);
    writer.addKey("validAcceleratorBinaryContentValues", getValidBinaryContentValuesAsStr());
    writer.addKey("yarcCompileXPSwitches", yarcCompileXpSwitches_);
    writer.addKey("yarcLinkXPSwitches", yarcLinkXpSwitches_);
    writer.addKey("dcpFunctionStripped", dcpFuncStripped_);
    writer.addKey("dcpEncrypted", dcpEncrypt_);
    writer.addKey("defaultOutputType", defaultOutputType_);
    const HMAVDesignIntentStorage intent = getDesignIntent();
    writer.addKey("designIntent", &intent);
    writer.addKey("board", board_.get());
    writeList(writer, "devices", devices_);
    writeList(writer, "interfaces", interfaces_);
    writeList(writer, "memories", memories_);
    writeList(writer, "files", files_);
    writer.addKey("extensions", getExtMetaJsonAsPtree());
    HMAVHardwarePlatform::toJSON(writer);
}
