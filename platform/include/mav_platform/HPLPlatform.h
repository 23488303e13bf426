// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/HMAVEmulations.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HPLBoard.h"
#include "mav_platform/HPLDevice.h"
#include "mav_platform/HPLFile.h"
#include "mav_platform/HPLInterface.h"
#include "mav_platform/HPLMemory.h"

/// The concrete hardware platform, with the board description and what the archive metadata says.
/// Created by HMAVPlatform::createMutableHardwarePlatform and owned by that platform.
class MAV_API HPLPlatform : public HMAVHardwarePlatform {
  public:
    HPLPlatform();
    ~HPLPlatform() override;

    void toJSON(mav_platform::JSONObjectWriter& writer) const override;
    std::string getName() const override { return name_; }
    std::string getVendor() const override { return vendor_; }
    std::string getBoardPart() const override;
    std::string getBoardConnectionsString() const override;
    std::string getLockedBoardConnectionsString() const override;
    std::string getUnlockedBoardConnectionsString() const override;
    std::string getBoardId() const override { return boardId_; }
    std::string getVersion() const override;
    std::string getDescription() const override { return description_; }
    std::string getDetailedDescription() const override { return detailedDescription_; }
    std::string getUniqueName() const override { return getPlatformFile(); }
    std::string getPrettyName() const override;
    std::string getPartName() const override { return getFpgaPart(); }
    std::string getFpgaPart() const override;
    std::string getFpgaDevice() const override;
    std::string getDeviceName() const override;
    unsigned getNumDDRs() const override;
    std::string getMemType() const override;
    std::string getMemSize() const override;
    unsigned getUniqueMemoryTypeCount() const override;
    void getUniqueMemoryTypeStrings(HSTVector<std::string>& out) const override;
    unsigned getMemoryTypeCount(const std::string& type) const override;
    int getMemoryIndex(const std::string& name) const override;
    std::string getMemorySize(const std::string& name) const override;
    std::string getInterfaceDesc() const override;
    void getBoardImgZipEntries(HSTVector<std::string>& out) const override;
    void getDevices(HSTVector<HMAVDevice*>& out) const override;
    HMAVDevice* getDevice(const std::string& name) const override;
    std::string getBRAMCount() const override;
    std::string getDSPCount() const override;
    std::string getLUTCount() const override;
    std::string getFFCount() const override { return getRegisterCount(); }
    std::string getURAMCount() const override;
    std::string getRegisterCount() const override;
    unsigned getNumComputeUnits() const override;
    std::string getHostArch() const override { return hostArch_; }
    std::string getHpfmString() const override;
    bool hasDimmConnectors() const override;
    void getDimmConnectors(HSTVector<std::string>& out) const override;
    void getLockedDimmConnectors(HSTVector<std::string>& out) const override;
    void getConnectedDimmConnectors(HSTVector<std::string>& out) const override;
    std::string getConnectorDisplayName(const std::string& name) const override;
    void getValidSLRNames(HSTVector<std::string>& out) const override;
    std::string getFile(const std::string& type) const override;
    std::string getFile(HMAVPfmFileTypes::FileType type) const override;
    bool hasFile(const std::string& type) const override;
    bool hasFile(HMAVPfmFileTypes::FileType type) const override;
    std::string getExtMetaJsonAsString() const override;
    const boost::property_tree::ptree& getExtMetaJsonAsPtree() const override;
    void setName(std::string value) override { name_ = std::move(value); }
    void setDescription(std::string value) override { description_ = std::move(value); }
    void setDetailedDescription(std::string value) override {
        detailedDescription_ = std::move(value);
    }
    void setVendor(std::string value) override { vendor_ = std::move(value); }
    void setBoardId(std::string value) override { boardId_ = std::move(value); }
    int getTotalMemSizeInGb() const override;
    void getYarcCompileXpSwitches(HSTVector<std::string>& out) const override;
    void getYarcLinkXpSwitches(HSTVector<std::string>& out) const override;
    bool hasUserDefinedScalableClocks() const override;

    /// Size of one memory in GB: the number before "GB", or the leading number of another text; 0
    /// when the platform has no memories. Throws std::out_of_range for an index past the end and
    /// std::invalid_argument for a text without a leading number.
    int getMemSizeInGb(std::size_t index) const;

    unsigned getVersionMajor() const { return versionMajor_; }
    void setVersionMajor(unsigned value) { versionMajor_ = value; }
    unsigned getVersionMinor() const { return versionMinor_; }
    void setVersionMinor(unsigned value) { versionMinor_ = value; }
    /// "unknown" until it is set.
    const std::string& getHostArchAsStr() const { return hostArch_; }
    void setHostArch(std::string value) { hostArch_ = std::move(value); }
    const std::string& getHostInterface() const { return hostInterface_; }
    void setHostInterface(std::string value) { hostInterface_ = std::move(value); }
    const std::string& getTopModuleName() const { return topModuleName_; }
    void setTopModuleName(std::string value) { topModuleName_ = std::move(value); }
    /// "bitstream" until it is set.
    const std::string& getAcceleratorBinaryContent() const { return acceleratorBinaryContent_; }
    void setAcceleratorBinaryContent(std::string value) {
        acceleratorBinaryContent_ = std::move(value);
    }
    /// "qclbin2" until it is set.
    const std::string& getAcceleratorBinaryFormat() const { return acceleratorBinaryFormat_; }
    void setAcceleratorBinaryFormat(std::string value) {
        acceleratorBinaryFormat_ = std::move(value);
    }
    const std::string& getDefaultOutputType() const { return defaultOutputType_; }
    void setDefaultOutputType(std::string value) { defaultOutputType_ = std::move(value); }
    void addValidBinaryContentValue(std::string value);
    const HSTVector<std::string>& getValidBinaryContentValues() const {
        return validBinaryContentValues_;
    }
    /// The values joined by ",".
    std::string getValidBinaryContentValuesAsStr() const;
    void addValidOutputTypeValue(std::string value);
    const HSTVector<std::string>& getValidOutputTypeValues() const {
        return validOutputTypeValues_;
    }
    bool isDcpEncrypt() const { return dcpEncrypt_; }
    void setDcpEncrypt(bool value) { dcpEncrypt_ = value; }
    bool isDcpFuncStripped() const { return dcpFuncStripped_; }
    void setDcpFuncStripped(bool value) { dcpFuncStripped_ = value; }
    void addYarcCompileXpSwitch(std::string value);
    void addYarcLinkXpSwitch(std::string value);

    /// The board description, made on first use; null when there is none.
    HPLBoard& createBoard();
    const HPLBoard* getBoard() const { return board_.get(); }
    /// Each appends an empty element, owned by the platform, and answers it.
    HPLDevice* addDevice() { return devices_.add(); }
    HPLInterface* addInterface() { return interfaces_.add(); }
    HPLMemory* addMemory() { return memories_.add(); }
    const HSTVector<HPLMemory*>& getMemories() const { return memories_.items(); }
    const HSTVector<HPLInterface*>& getInterfaces() const { return interfaces_.items(); }

    /// Appends a member file, owned by the platform, and answers it.
    HPLFile* addFile(HMAVPfmFileTypes::FileType type, const std::string& name);
    HPLFile* addFile(const std::string& typeText, const std::string& name);
    const HSTVector<HPLFile*>& getFiles() const { return files_.items(); }
    /// The first member file of that type; null when there is none.
    HPLFile* findFile(const std::string& type) const;
    HPLFile* findFile(HMAVPfmFileTypes::FileType type) const;
    /// Takes the first member file of that type off the list; false when there is none.
    bool removeFile(const std::string& type);
    bool removeFile(HMAVPfmFileTypes::FileType type);
    /// False after a warning "@74-271@%s" with the text when it names no file type.
    static bool validateFileType(const std::string& text);

    /// What the archive's emulation members say; null when none was read. Owned by the platform.
    const HMAVEmulations* getEmulations() const { return emulations_.get(); }
    void setEmulations(std::unique_ptr<HMAVEmulations> emulations) {
        emulations_ = std::move(emulations);
    }

    /// The extensions of the metadata, kept whole for the document.
    void setExtensions(boost::property_tree::ptree tree);

  private:
    const HPLCore* firstCore_() const;
    template <class Pick>
    std::string connections_(Pick pick) const;

    std::string name_;
    std::string vendor_;
    std::string boardId_;
    std::string description_;
    std::string detailedDescription_;
    std::string hostArch_ = "unknown";
    std::string hostInterface_;
    std::string topModuleName_;
    std::string acceleratorBinaryContent_ = "bitstream";
    std::string acceleratorBinaryFormat_ = "qclbin2";
    std::string defaultOutputType_;
    HSTVector<std::string> validBinaryContentValues_;
    HSTVector<std::string> validOutputTypeValues_;
    HSTVector<std::string> yarcCompileXpSwitches_;
    HSTVector<std::string> yarcLinkXpSwitches_;
    unsigned versionMajor_ = 0;
    unsigned versionMinor_ = 0;
    bool dcpEncrypt_ = false;
    bool dcpFuncStripped_ = false;
    std::unique_ptr<HPLBoard> board_;
    OwnedList<HPLDevice> devices_;
    OwnedList<HPLInterface> interfaces_;
    OwnedList<HPLMemory> memories_;
    OwnedList<HPLFile> files_;
    std::unique_ptr<boost::property_tree::ptree> extensions_;
    std::unique_ptr<HMAVEmulations> emulations_;
};
