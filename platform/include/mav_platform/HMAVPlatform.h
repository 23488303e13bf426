// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HMAVReconfigurablePartition.h"
#include "mav_platform/HMAVSoftwarePlatform.h"
#include "mav_platform/HPLPlatform.h"
#include "mav_platform/JSONSerializable.h"

/// One platform: its identity, the files that it names, and what was built from them. Owns every
/// hardware and software platform that was created through it, attached or not, and its partitions;
/// pointers that it hands out live as long as it does.
///
/// Questions never fail: without the hardware they are about, they answer false, an empty text or
/// nothing. "Effective hardware" is the own hardware platform, else the default partition's.
class MAV_API HMAVPlatform : public mav_platform::JSONSerializable {
  public:
    HMAVPlatform();
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;
    /// "uniqueName", "file" and "description" alone.
    void toShortJSON(mav_platform::JSONObjectWriter& writer) const;
    ~HMAVPlatform() override;
    HMAVPlatform(const HMAVPlatform&) = delete;
    HMAVPlatform& operator=(const HMAVPlatform&) = delete;

    /// Writes the hardware platforms, the partitions and the software platform.
    void writePlatforms(mav_platform::JSONObjectWriter& writer) const;

    /// New empty objects, which only this platform accepts for attaching.
    std::shared_ptr<HPLPlatform> createMutableHardwarePlatform();
    std::shared_ptr<HMAVSoftwarePlatform> createMutableSoftwarePlatform();

    /// Takes a part in the ownership of a hardware platform that another platform created, and then
    /// accepts it for attaching like its own. Not null.
    void shareHardwarePlatform(const std::shared_ptr<HPLPlatform>& hardware);

    /// Attach an object that this platform created or shares. For any other, null included, they
    /// throw HEXAlgException and change nothing: "invalid set hardware platform", "set invalid
    /// hardware emulation platform", "invalid set default RP hardware platform", "set invalid
    /// hardware emulation platform", "added invalid software platform".
    void setHardwarePlatform(HMAVHardwarePlatform* platform);
    void setHardwareEmulationPlatform(HMAVHardwarePlatform* platform);
    void setDefaultRPHardwarePlatform(HMAVHardwarePlatform* platform);
    void setDefaultRPHardwareEmulationPlatform(HMAVHardwarePlatform* platform);
    void addSoftwarePlatform(HMAVSoftwarePlatform* platform);
    /// Appends; the platform takes ownership. Equal ids are not refused; null adds nothing.
    void addReconfigurablePartition(HMAVReconfigurablePartition* partition);

    unsigned getDefaultRPId() const { return defaultRPId_; }
    void setDefaultRPId(unsigned id) { defaultRPId_ = id; }

    /// The platform came from a platform description.
    bool isQpfm() const { return qpfm_; }
    void setQpfm(bool value) { qpfm_ = value; }
    /// The platform came from a bare archive or a bare software platform file.
    bool isPartial() const { return partial_; }
    void setPartial(bool value) { partial_ = value; }
    bool isComplete() const { return !partial_; }
    /// The platform was found unusable, and why.
    bool isBad() const { return bad_; }
    void setBad(bool value) { bad_ = value; }
    std::string getBadReason() const { return badReason_; }
    void setBadReason(const std::string& reason) { badReason_ = reason; }

    const std::string& getVendor() const { return vendor_; }
    void setVendor(std::string value) { vendor_ = std::move(value); }
    const std::string& getLibrary() const { return library_; }
    void setLibrary(std::string value) { library_ = std::move(value); }
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    std::string getVersion() const { return version_; }
    void setVersion(std::string value) { version_ = std::move(value); }
    const std::string& getDescription() const { return description_; }
    void setDescription(std::string value) { description_ = std::move(value); }
    /// The file that the platform was read from, as it was given.
    std::string getPlatformFile() const { return platformFile_; }
    void setPlatformFile(std::string path) { platformFile_ = std::move(path); }
    std::string getHardwarePlatformFile() const { return hardwarePlatformFile_; }
    void setHardwarePlatformFile(std::string path) { hardwarePlatformFile_ = std::move(path); }
    std::string getHardwareEmuPlatformFile() const { return hardwareEmuPlatformFile_; }
    void setHardwareEmuPlatformFile(std::string path) {
        hardwareEmuPlatformFile_ = std::move(path);
    }
    std::string getSoftwarePlatformFile() const { return softwarePlatformFile_; }
    void setSoftwarePlatformFile(std::string path) { softwarePlatformFile_ = std::move(path); }

    /// The platform file: two platforms are the same when they were read from the same path text.
    std::string getUniqueName() const { return platformFile_; }
    /// Parent directory and stem of the platform file.
    std::string getPlatformDir() const;
    std::string getPlatformBaseName() const;
    /// The own hardware platform's device for a partial platform that has one, else the base name.
    std::string getDeviceName() const;
    /// The description names an emulation archive.
    bool hasDistinctHardwareEmulationPlatform() const { return !hardwareEmuPlatformFile_.empty(); }

    /// The own platform, else the default partition's; null when there is neither.
    HMAVHardwarePlatform* getHardwarePlatform();
    const HMAVHardwarePlatform* getHardwarePlatform() const;
    HMAVHardwarePlatform* getHardwareEmulationPlatform();
    const HMAVHardwarePlatform* getHardwareEmulationPlatform() const;
    /// The first software platform; null when there is none.
    HMAVSoftwarePlatform* getSoftwarePlatform();
    const HMAVSoftwarePlatform* getSoftwarePlatform() const;
    /// Appends to `out`.
    void getSoftwarePlatforms(HSTVector<HMAVSoftwarePlatform*>& out) const;
    /// Replaces the contents of `out`.
    void getReconfigurablePartitions(HSTVector<HMAVReconfigurablePartition*>& out) const;
    bool hasReconfigurablePartitions() const { return !reconfigurablePartitions_.empty(); }
    /// The last partition with that id; null when none has it.
    HMAVReconfigurablePartition* getReconfigurablePartition(unsigned id) const;
    /// Platforms of that partition, or of the one with the default id.
    HMAVHardwarePlatform* getRPHardwarePlatform(unsigned id) const;
    HMAVHardwarePlatform* getRPHardwareEmulationPlatform(unsigned id) const;
    HMAVHardwarePlatform* getDefaultRPHardwarePlatform() const;
    HMAVHardwarePlatform* getDefaultRPHardwareEmulationPlatform() const;

    /// Of the effective hardware.
    bool supportsHardware() const;
    bool supportsSWEmulation() const;
    bool hasSimContent() const;
    bool isExpandable() const;
    bool isFixed() const { return !isExpandable(); }
    bool isUnified() const;
    bool getDesignIntentDataCenter() const;
    bool getDesignIntentEmbedded() const;
    bool getDesignIntentExternalHost() const;
    bool getDesignIntentServerManaged() const;
    /// An own emulation platform, else that of any partition, else what the own hardware says.
    bool supportsHWEmulation() const;
    bool hasHWEmulationPlatform() const { return hardwareEmulationPlatform_ != nullptr; }
    bool hasRPHardwareEmulationPlatform() const;
    /// Of the own hardware alone, without a look at the partitions.
    bool supportsTwoHwEmuBd() const;
    bool isHWEmuPlatform() const;
    bool hasDimmConnectors() const;
    void getDimmConnectors(HSTVector<std::string>& out) const;
    /// Appends those of the own hardware and then those of the default partition's.
    void getTargetCategories(HSTVector<std::string>& out) const;
    /// The unique name is that of the hidden sample platform.
    bool isHidden() const;

    /// "pellux" for cards, "quorin" for embedded platforms, "acceleration" for both at once,
    /// "undefined" for neither; empty without effective hardware.
    std::string getTypeString() const;
    /// The same as people read it; "Undefined" for the last two.
    std::string getTypePrettyString() const;

  private:
    const HMAVHardwarePlatform* effectiveHardware_() const { return getHardwarePlatform(); }
    HPLPlatform* owned_(HMAVHardwarePlatform* platform, const char* refusal) const;
    HMAVDesignIntentStorage designIntent_() const;

    std::string vendor_;
    std::string library_;
    std::string name_;
    std::string version_;
    std::string description_;
    std::string platformFile_;
    std::string hardwarePlatformFile_;
    std::string softwarePlatformFile_;
    std::string hardwareEmuPlatformFile_;
    HMAVHardwarePlatform* hardwarePlatform_ = nullptr;
    HMAVHardwarePlatform* hardwareEmulationPlatform_ = nullptr;
    HSTVector<HMAVReconfigurablePartition*> reconfigurablePartitions_;
    HSTVector<HMAVSoftwarePlatform*> softwarePlatforms_;
    HMAVHardwarePlatform* defaultRPHardwarePlatform_ = nullptr;
    HMAVHardwarePlatform* defaultRPHardwareEmulationPlatform_ = nullptr;
    bool qpfm_ = false;
    bool partial_ = false;
    bool bad_ = false;
    std::string badReason_;
    unsigned defaultRPId_ = 0;
    HSTVector<std::shared_ptr<HPLPlatform>> ownedHardwarePlatforms_;
    std::unordered_map<HPLPlatform*, unsigned> ownedHardwareIndex_;
    HSTVector<std::shared_ptr<HMAVSoftwarePlatform>> ownedSoftwarePlatforms_;
    std::unordered_map<HMAVSoftwarePlatform*, unsigned> ownedSoftwareIndex_;
};
