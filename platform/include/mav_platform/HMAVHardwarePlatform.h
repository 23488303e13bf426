// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HHSMHwManager.h"
#include "mav_host/HSTFwdIter.h"
#include "mav_host/HSTVector.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/HMAVDesignIPInstance.h"
#include "mav_platform/HMAVDesignIntentStorage.h"
#include "mav_platform/HMAVDevice.h"
#include "mav_platform/HMAVDpeHardware.h"
#include "mav_platform/HMAVDpePartition.h"
#include "mav_platform/HMAVHardwareBusInterface.h"
#include "mav_platform/HMAVHardwareFeatureRom.h"
#include "mav_platform/HMAVHardwareIPParam.h"
#include "mav_platform/HMAVHardwareNocConnectivity.h"
#include "mav_platform/HMAVPfmFileTypes.h"
#include "mav_platform/HMAVReconfigPartition.h"
#include "mav_platform/HMAVSystemClock.h"
#include "mav_platform/JSONSerializable.h"
#include "mav_platform/OwnedList.h"

/// The hardware side of a platform: the interface with the state and the questions that need
/// nothing of the board description. HPLPlatform is the one concrete class.
///
/// Questions never throw for missing data: they answer an empty text, 0, false or null. Lists are
/// in the order of addition; list questions append to `out` unless they say otherwise. Objects
/// handed out by pointer belong to the platform and live as long as it does.
class MAV_API HMAVHardwarePlatform : public mav_platform::JSONSerializable {
  public:
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;
    ~HMAVHardwarePlatform() override;
    HMAVHardwarePlatform(const HMAVHardwarePlatform&) = delete;
    HMAVHardwarePlatform& operator=(const HMAVHardwarePlatform&) = delete;

    virtual std::string getName() const = 0;
    virtual std::string getVendor() const = 0;
    virtual std::string getBoardPart() const = 0;
    /// The variable BOARD_REPO_PATH; empty when it is not set.
    virtual std::string getBoardRepo() const;
    /// "NAME=CONNECTED" of the board's connectors that something is connected to, joined by " ";
    /// of all of them, the locked ones, the others.
    virtual std::string getBoardConnectionsString() const = 0;
    virtual std::string getLockedBoardConnectionsString() const = 0;
    virtual std::string getUnlockedBoardConnectionsString() const = 0;
    virtual std::string getBoardId() const = 0;
    /// Major and minor joined by ".".
    virtual std::string getVersion() const = 0;
    virtual std::string getDescription() const = 0;
    virtual std::string getDetailedDescription() const = 0;
    /// The platform file.
    virtual std::string getUniqueName() const = 0;
    /// The name in capitals, then " (", the VBNV and ")".
    virtual std::string getPrettyName() const = 0;
    /// The first device's part, else the board's; the two names ask the same. An empty text is no
    /// part.
    virtual std::string getPartName() const = 0;
    virtual std::string getFpgaPart() const = 0;
    /// The first device's part device, else that device's name.
    virtual std::string getFpgaDevice() const = 0;
    /// The first device's name.
    virtual std::string getDeviceName() const = 0;

    /// Number of memories whose type begins with "ddr", in any letter case.
    virtual unsigned getNumDDRs() const = 0;
    /// Type and size of the first memory; "ddr4" and "8 GB" when none is known.
    virtual std::string getMemType() const = 0;
    virtual std::string getMemSize() const = 0;
    /// Whether memory banks are addressed by index. The first bus interface with memory port
    /// "memss" makes it so; one with another port of its own and no "default" tag rules it out.
    /// Both answers are kept; without either the answer is false and is worked out again at the
    /// next call.
    virtual bool isMemoryResourceIndexed() const;
    virtual unsigned getUniqueMemoryTypeCount() const = 0;
    /// Appends each memory type once, in order of first appearance.
    virtual void getUniqueMemoryTypeStrings(HSTVector<std::string>& out) const = 0;
    /// Number of memories of exactly this type.
    virtual unsigned getMemoryTypeCount(const std::string& type) const = 0;
    /// Place of the memory of that name in the list; -1 when there is none.
    virtual int getMemoryIndex(const std::string& name) const = 0;
    /// Size of the memory of that name; "16GB" when it is unknown.
    virtual std::string getMemorySize(const std::string& name) const = 0;
    /// SLR of the first memory bus interface, or of its first address segment, whose memory
    /// instance has that name.
    virtual std::string getMemorySLR(const std::string& name) const;
    /// "PCIe gen3x8" for a server-managed or externally hosted card ("PCIe gen3x16" on device
    /// xq-g3x16); name and type of the first interface when it has both; else empty.
    virtual std::string getInterfaceDesc() const = 0;
    /// Canonical path of the archive.
    virtual std::string getPlatformFile() const;
    /// Appends the board's image files that are named.
    virtual void getBoardImgZipEntries(HSTVector<std::string>& out) const = 0;
    /// Appends "Acceleration".
    virtual void getTargetCategories(HSTVector<std::string>& out) const;
    virtual void getDevices(HSTVector<HMAVDevice*>& out) const = 0;
    /// The first device of that name; null when there is none.
    virtual HMAVDevice* getDevice(const std::string& name) const = 0;

    virtual void getSystemClockNames(HSTVector<std::string>& out) const;
    /// Appends the one name "CPU", whatever the clocks are.
    virtual void getCpuClockNames(HSTVector<std::string>& out) const;
    /// Frequency of the last clock of exactly that name.
    virtual std::string getClockFrequency(const std::string& name) const;
    virtual void getAllClockFrequencies(HSTVector<std::string>& out) const;
    /// Appends type and count of each resource.
    virtual void getAllResources(HSTVector<std::pair<std::string, std::string>>& out) const;
    /// Id of the last clock of exactly that name, in decimal; empty when there is none.
    virtual std::string getClockId(const std::string& name) const;
    /// Frequency of the last clock with that id.
    virtual std::string getPlatformFrequency(unsigned id) const;
    /// The last clock with the default id; null when none has it.
    virtual HMAVSystemClock* getDefaultClock() const;
    virtual std::string getDefaultClockFrequency() const;
    /// The default id in decimal, whether a clock has it or not.
    virtual std::string getDefaultClockId() const;
    virtual std::string getDefaultClockName() const;

    /// Counts of the first device's core, as written; FF and register count are the same.
    virtual std::string getBRAMCount() const = 0;
    virtual std::string getDSPCount() const = 0;
    virtual std::string getLUTCount() const = 0;
    virtual std::string getFFCount() const = 0;
    virtual std::string getURAMCount() const = 0;
    virtual std::string getRegisterCount() const = 0;
    virtual unsigned getNumComputeUnits() const = 0;
    virtual std::string getHostArch() const = 0;

    /// Each iterator is new and belongs to the caller.
    virtual HSTFwdIter<HMAVSystemClock*>* createSystemClockIter() const;
    virtual void getSystemClocks(HSTVector<HMAVSystemClock*>& out) const;
    virtual HSTFwdIter<HMAVHardwareIPParam*>* createIPParamIter() const;
    virtual void getHardwareIPParams(HSTVector<HMAVHardwareIPParam*>& out) const;
    virtual HSTFwdIter<HMAVHardwareNocConnectivity*>* createNocConnectivityIter() const;
    virtual HSTFwdIter<HMAVHardwareBusInterface*>* createBusInterfaceIter() const;
    virtual void getNocConnectivity(HSTVector<HMAVHardwareNocConnectivity*>& out) const;
    virtual void getBusInterfaces(HSTVector<HMAVHardwareBusInterface*>& out) const;
    /// The first bus interface of exactly that name; null when there is none.
    virtual HMAVHardwareBusInterface* getBusInterfaceByName(const std::string& name) const;
    /// Appends the interfaces that carry memory: with indexed memory those of port "memss", else
    /// those of any other memory port that are not tagged "default". Answers the size of `out`.
    virtual std::size_t getMemoryBusInterfaces(HSTVector<HMAVHardwareBusInterface*>& out) const;

    /// Text of the archive's member of type "HPFM"; empty when it has none or it cannot be read.
    virtual std::string getHpfmString() const = 0;
    /// Name of the hardware database, which is opened from the archive's hardware definition at the
    /// first call; empty when the archive has none.
    virtual std::string getHwDbName();
    /// The opened database; null before it has been opened.
    virtual std::shared_ptr<HHSMHwDb> getHwDb();
    virtual std::shared_ptr<const HHSMHwDb> getHwDb() const;

    virtual void getFeatureRoms(HSTVector<HMAVHardwareFeatureRom*>& out) const;
    virtual HSTFwdIter<HMAVHardwareFeatureRom*>* createFeatureRomIter() const;

    /// Names of the board's memory module connectors: all, the locked ones, the connected ones.
    virtual bool hasDimmConnectors() const = 0;
    virtual void getDimmConnectors(HSTVector<std::string>& out) const = 0;
    virtual void getLockedDimmConnectors(HSTVector<std::string>& out) const = 0;
    virtual void getConnectedDimmConnectors(HSTVector<std::string>& out) const = 0;
    /// Display name of the connector of that name; empty when there is none.
    virtual std::string getConnectorDisplayName(const std::string& name) const = 0;
    /// Appends the valid SLRs of every device's core.
    virtual void getValidSLRNames(HSTVector<std::string>& out) const = 0;

    virtual std::string getGeneratedName() const;
    virtual std::string getGeneratedVersion() const;
    virtual std::string getGeneratedTimestamp() const;
    virtual unsigned getGeneratedChangeList() const;
    virtual std::string getGeneratedIpChangeList() const;
    virtual std::string getGeneratedSharedDataChangeList() const;
    virtual bool isGeneratedByLink() const;
    virtual bool isGeneratedBySwEmuLink() const;
    virtual std::string getIdCode() const;
    virtual std::string getExtendedIdCode() const;

    /// Name of the first member file of that type; empty when there is none.
    virtual std::string getFile(const std::string& type) const = 0;
    virtual std::string getFile(HMAVPfmFileTypes::FileType type) const = 0;
    virtual bool hasFile(const std::string& type) const = 0;
    virtual bool hasFile(HMAVPfmFileTypes::FileType type) const = 0;

    /// The extension tree as pretty JSON text.
    virtual std::string getExtMetaJsonAsString() const = 0;
    virtual bool supportsHardware() const;
    virtual bool supportsSWEmulation() const;
    virtual bool supportsHWEmulation() const;
    virtual bool supportsTwoHwEmuBd() const;
    virtual bool supportsMemoryResourceIndex() const;
    virtual bool supportsSegmentedConfiguration() const;
    virtual bool supportsDynamicReload() const;
    virtual void setUsesNIFD(bool value);
    virtual bool usesNIFD() const;
    /// First and behind-the-last element of the feature ROM list; valid until a ROM is added.
    virtual std::pair<HSTVector<HMAVHardwareFeatureRom*>::const_iterator,
                      HSTVector<HMAVHardwareFeatureRom*>::const_iterator>
    getFeatureRomVecRange() const;
    /// The extension tree as it stood in the metadata.
    virtual const boost::property_tree::ptree& getExtMetaJsonAsPtree() const = 0;

    virtual void setExpandable(bool value);
    virtual void setUnifiedPlatform(bool value);
    virtual void setName(std::string value) = 0;
    virtual void setDescription(std::string value) = 0;
    virtual void setDetailedDescription(std::string value) = 0;
    virtual void setVendor(std::string value) = 0;
    virtual void setBoardId(std::string value) = 0;
    virtual void setComputedDesignIntent(const HMAVDesignIntentStorage& intent);
    virtual void setExplicitDesignIntent(const HMAVDesignIntentStorage& intent);
    virtual void setPlatformFile(std::string path);
    /// The metadata of the archive has been read whole. False where a reader stopped at a fault,
    /// which it has reported; the platform then holds what was read up to there.
    bool isMetadataRead() const { return metadataRead_; }
    void setMetadataRead(bool value) { metadataRead_ = value; }

    /// Each appends an empty element, owned by the platform, and answers it.
    virtual HMAVHardwareIPParam* addHardwareIPParam();
    virtual HMAVHardwareNocConnectivity* addNocConnectivity();
    virtual HMAVHardwareBusInterface* addBusInterface();
    virtual HMAVSystemClock* addSystemClock();
    virtual HMAVHardwareFeatureRom* addFeatureRom();

    /// Sum over the memories whose size text begins with a number, in GB as getMemSizeInGb reads
    /// it; the largest int when the sum does not fit.
    virtual int getTotalMemSizeInGb() const = 0;
    /// Both replace the contents of `out`.
    virtual void getYarcCompileXpSwitches(HSTVector<std::string>& out) const = 0;
    virtual void getYarcLinkXpSwitches(HSTVector<std::string>& out) const = 0;

    /// Vendor, board, name and version joined by ":".
    std::string getVBNV() const;
    bool isExpandable() const { return expandable_; }
    bool isUnifiedPlatform() const { return unifiedPlatform_; }

    /// Extension of the platform file without the dot; empty when no file is set.
    std::string getPlatformExt() const;
    /// Names of the metadata members: EXT.json, "alt_" before it, and both below "hw_emu/". Without
    /// an extension the primary names are empty and the others end with "alt_".
    std::string getJsonFileName() const;
    std::string getAltJsonFileName() const;
    std::string getHwEmuJsonFileName() const;
    std::string getAltHwEmuJsonFileName() const;
    /// The last two when the platform file is an archive that holds that member, else empty. Each
    /// call opens the archive.
    std::string getHwEmuJsonFileNameIfExist() const;
    std::string getAltHwEmuJsonFileNameIfExist() const;
    /// Folder of a child hardware-emulation platform inside the archive: "hw_emu".
    static const std::string& getHwEmuDir();
    /// The full name of one of the platform's members inside the archive: `hwEmuMemberName` for a
    /// child hardware-emulation platform, else as given.
    std::string memberName(const std::string& member) const;
    /// The member's name below "hw_emu/".
    static std::string hwEmuMemberName(const std::string& member);
    /// True for ".dsa" and ".pka" alone, exact.
    static bool isValidPlatformExt(const std::string& extension);
    /// ".dsa", ".pka".
    static const HSTVector<std::string>& getValidPlatformExts();

    const std::string& getPlatformState() const { return platformState_; }
    void setPlatformState(std::string text) { platformState_ = std::move(text); }
    /// 0 for "synth", 1 for "impl", 2 for "pre_synth", 3 for any other text.
    int getState() const;
    /// The text of a number; an empty one for a number that has none.
    void setState(int state);

    void setDefaultClockId(unsigned id) { defaultClockId_ = id; }
    bool hasFixedClocks() const;
    /// True when a clock is scalable, else the answer of hasUserDefinedScalableClocks.
    bool hasScalableClocks() const;
    /// True when the device with the core "fpga0" has clocks of its own.
    virtual bool hasUserDefinedScalableClocks() const = 0;

    /// Largest data width in bits; negative ones count as 0.
    int getBusInterfaceMaxDataWidth() const;
    /// Bus interfaces of type "aximm" and mode "master", of type "aximm" and mode "slave", of type
    /// "interrupt"; case is ignored.
    int getMaxAXIMMManagers() const;
    int getMaxAXIMMSubordinates() const;
    int getMaxInterrupts() const;

    /// Notes one bank of the HBM memory subsystem `instance`: "false" takes it out of automatic
    /// assignment, "preferred" tags it as default, any other text leaves it assignable. The last
    /// word on a bank counts; banks without a name count each, and those of different interfaces
    /// are kept apart. Raises "@74-261@" when the assignable banks of a first interface become
    /// mixed: some, but not all, are preferred.
    void updateHBMBankInfo(const std::string& instance, const std::string& bank,
                           const std::string& automatic,
                           const HMAVHardwareBusInterface* interface = nullptr);
    /// Prints for each instance with mixed banks, once, how to attain better bandwidth.
    void issueNormalizeMemoryBanksMessage(std::ostream& out) const;

    /// True when a member file of type "SIM_BINARY" is listed.
    bool hasSimContent() const;
    /// Opens the hardware database of the platform's archive, or of another one. False when there
    /// is none to open.
    bool createHwDb();
    bool createHwDb(const std::string& archive);
    /// Takes effect only on an expandable platform.
    void enableSegmentedConfiguration(bool value);
    /// Takes effect only on a platform that is not expandable.
    void enableDynamicReload(bool value);

    /// The identity record of a partition; null when none has that design id.
    HMAVReconfigPartition* findReconfigPartition(unsigned id) const;
    void getReconfigPartitions(HSTVector<HMAVReconfigPartition*>& out) const;
    HMAVReconfigPartition* addReconfigPartition() { return reconfigPartitions_.add(); }
    /// Identity of the design itself: made on first use; null when there is none.
    HMAVReconfigPartition& createDesignIDs();
    const HMAVReconfigPartition* getDesignIDs() const { return designIDs_.get(); }

    HMAVDesignIPInstance* addDesignIPInstance() { return designIPs_.add(); }
    void getDesignIPInstances(HSTVector<HMAVDesignIPInstance*>& out) const;
    void addResource(std::string type, std::string count);

    /// What the metadata states; where it leaves an intent unstated, what the tool computed.
    HMAVDesignIntentStorage getDesignIntent() const;

    HMAVDpeHardware& getDpeHardware() { return dpeHardware_; }
    const HMAVDpeHardware& getDpeHardware() const { return dpeHardware_; }
    /// Reads the partitions file of the archive's array-engine project, when it has one, unless the
    /// platform is expandable. Runs at most once, also when it fails. What the file lists is
    /// appended unless an equal partition is there. A project that the archive lacks is silent; one
    /// that is no archive is reported by "@74-34@%s%s" (archive, project); both give nothing.
    ///
    /// Throws HEXAlgException: as parseDPEPartitions does, in place of the path with the names of
    /// file, project and archive, after "@74-64@%s%s%s" (archive, project, fault), or "The
    /// array-engine project 'PROJECT' of 'ARCHIVE' cannot be read: " and the reason when it, or the
    /// file in it, is damaged, climbs out, claims too much or cannot be extracted.
    void initDpePartitions() const;
    /// The root partitions in the order in which they were added, after initDpePartitions().
    std::list<HMAVDpePartition>& getDpePartitions();
    const std::list<HMAVDpePartition>& getDpePartitions() const;
    bool hasDpePartitions() const { return !getDpePartitions().empty(); }
    /// The first root partition of that name; the shared empty partition when there is none. Looks
    /// at what is there already: it does not read the project.
    const HMAVDpePartition& findDpePartition(const std::string& name) const;
    /// True when a sub-partition of some root partition has that interface id, after
    /// initDpePartitions().
    bool hasDpePartition(const std::string& id) const;
    /// Reads a partitions file. A path that is no file changes nothing. Throws HEXAlgException "An
    /// error occurred while parsing the dpe partitions json file: " + path.
    void parseDPEPartitions(const std::string& path) const;
    HMAVDpePartition& addDpePartition() { return dpePartitions_.emplace_back(); }
    HMAVDpePartition& addDpePartition(int startColumn, int numColumns);
    /// Writes getDpePartitions() under "dpePartitions".
    void writeDpePartitions(mav_platform::JSONObjectWriter& writer) const;

    /// Extracts the file of one role into the directory `dir`, which is made; the file keeps the
    /// last part of its name. Answers the path of the file, empty when the platform has none or the
    /// archive lacks it. Throws as PlatformFileExtractor::extract does. Listed files are of type
    /// "HPFM" (brought to the present form on `rewrite`), "NOC_TRAFFIC", "NOC_SOLUTION", "DR_BD",
    /// and "DPEPRJ", else "ME_ARCHIVE".
    std::string extractHPFMFile(const std::string& dir, bool rewrite = false) const;
    std::string extractNTSFile(const std::string& dir) const;
    std::string extractNCRFile(const std::string& dir) const;
    std::string extractDrBdFile(const std::string& dir) const;
    std::string extractDPEPRJFile(const std::string& dir) const;
    /// The same for files of the array-engine project. Interface constraints and logical
    /// architecture are first looked for among the listed files, under the types "ME_CONSTRAINT"
    /// and "ME_LOGICAL_ARCH".
    std::string extractINTFCSTFile(const std::string& dir) const;
    std::string extractINTFSOLFile(const std::string& dir) const;
    std::string extractDPECSTFile(const std::string& dir) const;
    std::string extractDPEMetadataFile(const std::string& dir) const;
    std::string extractLARCHFile(const std::string& dir) const;

    /// Adds the file `source` to the platform's archive as member `name` ("hw_emu/" before it for a
    /// child hardware-emulation platform), lists it under `type` at the end of "files" in each
    /// metadata member, which stay byte for byte otherwise, and puts a digest over the archive, all
    /// in one step; then lists it here too. An index member "vma.json" of the archive takes the
    /// file under `type` as HVMAArchive::archive does. Content of a member that is there is
    /// replaced, and an equal item is not listed twice. An unknown type is reported by "@74-271@%s"
    /// and listed.
    ///
    /// Throws HEXAlgException, the text after "HMAVHardwarePlatform::archiveFile() - ": "pkaFile is
    /// not set", "pkaFile does not exist", "jsonFile is not set" (the platform file has no
    /// extension), "Could not cast this to HPLPlatform", "Could not open file for reading: " +
    /// source, "Could not open file for streaming: " + archive (the name is refused, or the archive
    /// cannot take a member; the reason is nested), or, without that beginning, a sentence on
    /// metadata that is missing, takes no file or would be replaced; as HUTZip::add does when
    /// writing fails later; and mav_host::DigestRefusal as HUTZip::updateWithDigest does. Archive
    /// and platform are then as they were.
    void archiveFile(const std::string& type, const std::string& name, const std::string& source,
                     mav_host::Resign resign = mav_host::Resign::NO);

    bool isStatic() const { return static_; }
    void setStatic(bool value) { static_ = value; }
    bool isRM() const { return rm_; }
    void setRM(bool value) { rm_ = value; }
    bool hasExternalSources() const { return hasExternalSources_; }
    void setHasExternalSources(bool value) { hasExternalSources_ = value; }
    bool hasVMAContent() const { return hasVMAContent_; }
    void setHasVMAContent(bool value) { hasVMAContent_ = value; }
    bool isHWEmuPlatform() const { return hwEmuPlatform_; }
    void setHWEmuPlatform(bool value) { hwEmuPlatform_ = value; }
    bool usesPR() const { return usesPR_; }
    void setUsesPR(bool value) { usesPR_ = value; }
    bool isChildHardwareEmuPlatform() const { return childHardwareEmuPlatform_; }
    void setIsChildHardwareEmuPlatform(bool value) { childHardwareEmuPlatform_ = value; }
    void setGeneratedByLink(bool value) { generatedByLink_ = value; }
    void setGeneratedBySwEmuLink(bool value) { generatedBySwEmuLink_ = value; }
    void setSupportsHardware(bool value) { supportsHardware_ = value; }
    void setSupportsSWEmulation(bool value) { supportsSWEmulation_ = value; }
    void setSupportsHWEmulation(bool value) { supportsHWEmulation_ = value; }
    void setSupportsTwoHwEmuBd(bool value) { supportsTwoHwEmuBd_ = value; }
    void setGeneratedName(std::string value) { generatedName_ = std::move(value); }
    void setGeneratedVersion(std::string value) { generatedVersion_ = std::move(value); }
    void setGeneratedTimestamp(std::string value) { generatedTimestamp_ = std::move(value); }
    void setGeneratedIpChangeList(std::string value) { generatedIpChangeList_ = std::move(value); }
    void setGeneratedSharedDataChangeList(std::string value) {
        generatedSharedDataChangeList_ = std::move(value);
    }
    void setIdCode(std::string value) { idCode_ = std::move(value); }
    void setExtendedIdCode(std::string value) { extendedIdCode_ = std::move(value); }
    void setGeneratedChangeList(unsigned value) { generatedChangeList_ = value; }
    const std::string& getDrBdInstName() const { return drBdInstName_; }
    void setDrBdInstName(std::string value) { drBdInstName_ = std::move(value); }
    const std::string& getFlashInterfaceType() const { return flashInterfaceType_; }
    void setFlashInterfaceType(std::string value) { flashInterfaceType_ = std::move(value); }
    const std::string& getFlashOffsetAddress() const { return flashOffsetAddress_; }
    void setFlashOffsetAddress(std::string value) { flashOffsetAddress_ = std::move(value); }
    const std::string& getFlashSize() const { return flashSize_; }
    void setFlashSize(std::string value) { flashSize_ = std::move(value); }

  protected:
    HMAVHardwarePlatform();

  private:
    friend class HMAVDpePartitionsJsonReader;

    enum class Tristate : std::uint8_t { UNSET, ON, OFF };
    enum class Indexed : std::uint8_t { UNKNOWN, YES, NO };

    void writeGeneration_(mav_platform::JSONObjectWriter& writer) const;
    void writeSupport_(mav_platform::JSONObjectWriter& writer) const;
    void writeClocks_(mav_platform::JSONObjectWriter& writer) const;
    bool hasHardwareDef_() const;
    std::string extractTypedFile_(const char* type, const std::string& dir,
                                  bool rewriteHpfm = false) const;
    /// Throws when a file would take the place of metadata or index.
    void checkNoMetadata_(const std::string& member, const std::string& name) const;
    void addToArchive_(const std::string& type, const std::string& name,
                       const HUTZip::Source& source, mav_host::Resign resign) const;
    HSTVector<HUTZip::Source> listInMetadata_(const mav_host::ZipArchive& archive,
                                              const std::string& type,
                                              const std::string& name) const;
    int countBusInterfaces_(const char* type, const char* mode) const;
    std::size_t getMemoryResourceBusInterfacesIndexed_(
        HSTVector<HMAVHardwareBusInterface*>& out) const;
    std::size_t getMemoryResourceBusInterfacesNonIndexed_(
        HSTVector<HMAVHardwareBusInterface*>& out) const;

    std::string platformFile_;
    std::string platformState_;
    std::string generatedName_;
    std::string generatedVersion_;
    std::string generatedTimestamp_;
    std::string generatedIpChangeList_;
    std::string generatedSharedDataChangeList_;
    std::string idCode_;
    std::string extendedIdCode_;
    std::string drBdInstName_;
    std::string flashInterfaceType_;
    std::string flashOffsetAddress_;
    std::string flashSize_;
    unsigned generatedChangeList_ = 0;
    unsigned defaultClockId_ = 0;
    Tristate segmentedConfiguration_ = Tristate::UNSET;
    Tristate dynamicReload_ = Tristate::UNSET;
    mutable Indexed memoryResourceIndexed_ = Indexed::UNKNOWN;
    bool expandable_ = false;
    bool unifiedPlatform_ = false;
    bool usesNIFD_ = false;
    bool static_ = false;
    bool rm_ = false;
    bool hasExternalSources_ = false;
    bool hasVMAContent_ = false;
    bool generatedByLink_ = false;
    bool generatedBySwEmuLink_ = false;
    bool supportsHardware_ = false;
    bool supportsSWEmulation_ = false;
    bool supportsHWEmulation_ = false;
    bool supportsTwoHwEmuBd_ = false;
    bool hwEmuPlatform_ = false;
    bool usesPR_ = false;
    bool childHardwareEmuPlatform_ = false;
    bool metadataRead_ = false;
    HMAVDesignIntentStorage explicitIntent_;
    HMAVDesignIntentStorage computedIntent_;
    HMAVDpeHardware dpeHardware_;
    mutable std::list<HMAVDpePartition> dpePartitions_;  ///< read late, on the first question
    mutable bool dpePartitionsRead_ = false;
    /// The assignable banks of one HBM interface.
    struct HBMBanks {
        std::multimap<std::string, bool> preferredByName;
        std::size_t preferred = 0;
        bool areMixed() const { return preferred != 0 && preferred != preferredByName.size(); }
    };
    /// By instance and interface; the address alone tells interfaces apart.
    std::map<std::pair<std::string, const HMAVHardwareBusInterface*>, HBMBanks> hbmBanks_;
    std::size_t mixedHBMs_ = 0;
    std::unique_ptr<HMAVReconfigPartition> designIDs_;
    std::shared_ptr<HHSMHwDb> hwDb_;
    HSTVector<std::pair<std::string, std::string>> resources_;
    OwnedList<HMAVSystemClock> systemClocks_;
    OwnedList<HMAVHardwareBusInterface> busInterfaces_;
    OwnedList<HMAVHardwareNocConnectivity> nocConnectivity_;
    OwnedList<HMAVHardwareIPParam> ipParams_;
    OwnedList<HMAVDesignIPInstance> designIPs_;
    OwnedList<HMAVHardwareFeatureRom> featureRoms_;
    OwnedList<HMAVReconfigPartition> reconfigPartitions_;
};
