// SPDX-License-Identifier: Apache-2.0
// Software platforms, the repository of platforms, questions over all of them.
%module MavRepository
%include "common.i"
%import(module="MavServices") "mav_platform/JSONSerializable.h"
%import(module="MavServices") "tree.i"
%import(module="MavServices") "mav_platform/JSONWriter.h"
%import(module="MavServices") "mav_platform/JSONObjectWriter.h"
%import(module="MavServices") "mav_platform/JSONValue.h"
%import(module="MavModel") "mav_platform/HwMetadataMode.h"
%import(module="MavModel") "model_classes.i"

// --- software platforms -----------------------------------------------------------------------------

MAV_POINTERS(HMAVSystemConfig, HMAVSystemConfig, HMAVSystemConfig)
MAV_POINTERS(HMAVProcessorGroup, HMAVProcessorGroup, HMAVProcessorGroup)
MAV_POINTERS(HMAVBootImg, HMAVBootImg, HMAVBootImg)
MAV_FILLS(void, getSystemConfigs, HMAVSystemConfig, owner())
MAV_FILLS(void, getBootImgs, HMAVBootImg, owner())
MAV_FILLS(void, getProcessorGroups, HMAVProcessorGroup, owner())
// Names alone; in Java the two forms would look the same.
%ignore HMAVSystemConfig::getProcessorGroups(HSTVector< std::string > &) const;
%extend HMAVSystemConfig {
    /// The names of the processor groups, in order.
    HSTVector<std::string> getProcessorGroupNames() const {
        HSTVector<std::string> names;
        $self->getProcessorGroups(names);
        return names;
    }
}
MAV_FILLS_TEXTS(void, HMAVSystemConfig::getRuntimes)
MAV_FILLS_TEXTS(void, getRuntimesByPrettyName)
MAV_FILLS_TEXTS(void, getSupportedRuntimes)
MAV_FILLS_TEXTS(void, getSupportedRuntimesByPrettyName)
MAV_FILLS_TEXTS(std::size_t, getSystemConfigNames)
MAV_KEEPS(HMAVSoftwarePlatformXMLReader, platform)
MAV_KEEPS(HMAVPlatformXMLReader, platform)
%include "mav_platform/HMAVBootImg.h"
%include "mav_platform/HMAVProcessorGroup.h"
%include "mav_platform/HMAVSystemConfig.h"
%include "mav_platform/HMAVSoftwarePlatform.h"
%include "mav_platform/HMAVSoftwarePlatformXMLReader.h"
%include "mav_platform/HMAVPlatformXMLReader.h"

// --- the repository: what it removes is closed for Java ---------------------------------------------

%typemap(javainterfaces) HMAVPlatformMgr "AutoCloseable"
%typemap(javacode) HMAVPlatformMgr %{
  /** What it hands out lives until it is removed. */
  @Override
  NativeHandle owner() {
    return handle().contents();
  }

  /** Frees a repository of one's own with its platforms; that of the process stays. */
  @Override
  public void close() {
    handle().close();
  }
%}
%typemap(javaout) HMAVPlatformMgr *getGlobal, HMAVPlatformMgr *getGlobalNoInit {
    long address = $jnicall;
    return address == 0 ? null : new HMAVPlatformMgr(address, NativeHandle.PROCESS);
  }
%typemap(javaout) void clearAllPlatforms, void removePlatformsFromDirs, void removeHardwareHandoffFromDirs {
    handle().dropContents();
    $jnicall;
  }
%ignore HMAVPlatformMgr::getBoardDataMgr;
MAV_FILLS(void, HMAVPlatformMgr::getHardwarePlatformsFromDirs, HPLPlatform, owner())
MAV_FILLS(void, HMAVPlatformMgr::getPlatforms, HMAVPlatform, owner())
MAV_FILLS(void, getUnifiedPlatforms, HMAVPlatform, owner())
MAV_FILLS(void, getMAVPlatforms, HMAVPlatform, owner())
MAV_FILLS(void, getAllPlatforms, HMAVPlatform, owner())
MAV_FILLS(void, getDSAPlatforms, HMAVPlatform, owner())
MAV_FILLS_TEXTS(void, getDefaultMavPlatformDirs)
MAV_FILLS_TEXTS(void, getParsingErrorMsgs)
MAV_FILLS_TEXTS(void, getBoardRepoPaths)
MAV_COPIES(HMAVPlatformMgr::Refusal, HMAVPlatformMgr.Refusal)
%include "mav_platform/HMAVPlatformMgr.h"

// --- questions over the process's repository --------------------------------------------------------

%define OF_PROCESS(NAME)
%typemap(javaout) HMAVPlatform *HMAVPlatformUtils::NAME {
    long address = $jnicall;
    return address == 0 ? null : new HMAVPlatform(address, NativeHandle.PROCESS.contents());
  }
%enddef
OF_PROCESS(getPlatform)
OF_PROCESS(getPlatformByQpfmFileBaseName)
OF_PROCESS(getPlatformByUniqueName)
OF_PROCESS(getPlatformByFilePath)
%define LIST_OF_PROCESS(NAME)
MAV_FILLS(void, HMAVPlatformUtils::NAME, HMAVPlatform, NativeHandle.PROCESS.contents())
%enddef
LIST_OF_PROCESS(getPlatformsByUniqueName)
LIST_OF_PROCESS(getPlatformsByVBNV)
LIST_OF_PROCESS(getLatestPlatformsByVBNV)
LIST_OF_PROCESS(getPlatformsByPart)
LIST_OF_PROCESS(getPlatformsByCategoryFamilyVendorAndBoard)
LIST_OF_PROCESS(getPlatformsByDesignIntent)
MAV_FILLS_TEXTS(void, getRootInstallPlatformDirs)
MAV_FILLS_TEXTS(void, getAllFactoryPlatformDirs)
MAV_FILLS_TEXTS(void, getAllUserPlatformDirs)
MAV_FILLS_TEXTS(void, getUnifiedPlatformDirs)
MAV_FILLS_TEXTS(void, getSupportedFpgaParts)
MAV_FILLS_TEXTS(void, getBoardsByCategoryFamilyAndVendor)
MAV_FILLS_TEXTS(void, getBoardsByPartAndVendor)
MAV_FILLS_TEXTS(void, HMAVPlatformUtils::getRuntimes)
MAV_FILLS_TEXTS(void, getAllLibraryTypes)
%typemap(javaout) std::string setUserPlatformDirs {
    if (dirs.isEmpty()) NativeHandle.PROCESS.dropContents();
    return $jnicall;
  }
%typemap(javaout) const HPLDevice::Part *getFpgaPartAsFields {
    long address = $jnicall;
    return address == 0 ? null : new HPLDevice.Part(address, NativeHandle.PROCESS.contents());
  }
%typemap(javaout) HSTVector< HMAVPlatform * > filterOutOldPlatforms {
    return list($jnicall, address -> list.stream()
        .filter(platform -> HMAVPlatform.getCPtr(platform) == address).findFirst().orElseThrow());
  }
%include "mav_platform/HMAVEnv.h"
%nodefaultctor HMAVPlatformUtils;
%include "mav_platform/HMAVPlatformUtils.h"

// --- lists ------------------------------------------------------------------------------------------

MAV_COPIES(mav_platform::PlatformRow, PlatformRow)
%mutable mav_platform::PlatformFilter::vendor;
%mutable mav_platform::PlatformFilter::board;
%mutable mav_platform::PlatformFilter::part;
%mutable mav_platform::PlatformFilter::type;
%mutable mav_platform::PlatformFilter::latest;
%mutable mav_platform::PlatformFilter::parts;
%mutable mav_platform::PlatformFilter::ignored;
%typemap(check) const Answer *why ""
%include "mav_platform/PlatformList.h"
