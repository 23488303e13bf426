// SPDX-License-Identifier: Apache-2.0
// Platforms, their hardware, and the loader.
%module MavModel
%include "common.i"
%import(module="MavServices") "mav_platform/JSONSerializable.h"
%import(module="MavServices") "tree.i"
%import(module="MavServices") "mav_platform/JSONWriter.h"
%import(module="MavServices") "mav_platform/JSONObjectWriter.h"
%import(module="MavArchives") "mav_platform/HMAVPfmFileTypes.h"
%import(module="MavArchives") "zip.i"
%import(module="MavRepository") "mav_platform/HMAVSoftwarePlatform.h"

// --- the loader: an error in the place of an empty pointer ------------------------------------------

%typemap(javainterfaces) mav_platform::PlatformLoader "AutoCloseable"
%typemap(javacode) mav_platform::PlatformLoader %{
  private String path;

  /** Reads metadata as it is there; throws as the other constructor does. */
  public PlatformLoader(String path) {
    this(path, HwMetadataMode.HW_METADATA_AUTO);
  }

  /** Frees the loader and its platform; using them, or what came from them, is an error from now on. */
  @Override
  public void close() {
    handle().close();
  }
%}
%typemap(javaconstruct) mav_platform::PlatformLoader {
    this(new NativeHandle(Messages.opening(() -> $imcall), PlatformLoader::swigDestroy));
    this.path = path;
  }
%exception mav_platform::PlatformLoader::PlatformLoader %{
  try {
    $action
  } catch (...) {
    mav_java::raise(jenv, *arg1);
    return $null;
  }
%}
%typemap(javaout) std::shared_ptr< HMAVPlatform > mav_platform::PlatformLoader::load {
    return new HMAVPlatform(Messages.loading(path, () -> $jnicall), owner());
  }

// --- lists ------------------------------------------------------------------------------------------

MAV_POINTERS(HMAVReconfigurablePartition, HMAVReconfigurablePartition, HMAVReconfigurablePartition)
MAV_POINTERS(HMAVReconfigPartition, HMAVReconfigPartition, HMAVReconfigPartition)
MAV_POINTERS(HMAVSystemClock, HMAVSystemClock, HMAVSystemClock)
MAV_POINTERS(HMAVHardwareIPParam, HMAVHardwareIPParam, HMAVHardwareIPParam)
MAV_POINTERS(HMAVHardwareNocConnectivity, HMAVHardwareNocConnectivity, HMAVHardwareNocConnectivity)
MAV_POINTERS(HMAVHardwareFeatureRom, HMAVHardwareFeatureRom, HMAVHardwareFeatureRom)
MAV_POINTERS(HMAVHardwareAddressSegment, HMAVHardwareAddressSegment, HMAVHardwareAddressSegment)
MAV_POINTERS(HMAVDesignIPInstance, HMAVDesignIPInstance, HMAVDesignIPInstance)
MAV_POINTERS(HMAVDpePartition, HMAVDpePartition, HMAVDpePartition)
MAV_POINTERS(HPLBoard::DimmConnector, HPLBoard.DimmConnector, HPLBoard::DimmConnector)
MAV_POINTERS(DimmConnector, HPLBoard.DimmConnector, HPLBoard::DimmConnector)
MAV_POINTERS(HPLDriver, HPLDriver, HPLDriver)
MAV_POINTERS(HPLCore::PBlock, HPLCore.PBlock, HPLCore::PBlock)
MAV_POINTERS(PBlock, HPLCore.PBlock, HPLCore::PBlock)
MAV_POINTERS(HPLPort, HPLPort, HPLPort)
MAV_POINTERS(HPLDevice::Clock, HPLDevice.Clock, HPLDevice::Clock)
MAV_POINTERS(Clock, HPLDevice.Clock, HPLDevice::Clock)
MAV_POINTERS(HPLMemory, HPLMemory, HPLMemory)
MAV_POINTERS(HPLInterface, HPLInterface, HPLInterface)
MAV_POINTERS(HPLFile, HPLFile, HPLFile)
MAV_POINTERS(HMAVEmulation, HMAVEmulation, HMAVEmulation)
MAV_POINTERS(HMAVEmulationFile, HMAVEmulationFile, HMAVEmulationFile)
MAV_POINTERS(HMAVEmuFeatureRom, HMAVEmuFeatureRom, HMAVEmuFeatureRom)

%define FILLS(NAME, JAVA)
MAV_FILLS(void, NAME, JAVA, owner())
%enddef
FILLS(getSoftwarePlatforms, HMAVSoftwarePlatform)
FILLS(getReconfigurablePartitions, HMAVReconfigurablePartition)
FILLS(getReconfigPartitions, HMAVReconfigPartition)
FILLS(getDevices, HPLDevice)
FILLS(getSystemClocks, HMAVSystemClock)
FILLS(getHardwareIPParams, HMAVHardwareIPParam)
FILLS(getNocConnectivity, HMAVHardwareNocConnectivity)
FILLS(HMAVHardwarePlatform::getBusInterfaces, HMAVHardwareBusInterface)
FILLS(HMAVHardwarePlatform::getFeatureRoms, HMAVHardwareFeatureRom)
FILLS(getDesignIPInstances, HMAVDesignIPInstance)
MAV_FILLS(std::size_t, getMemoryBusInterfaces, HMAVHardwareBusInterface, owner())
MAV_FILLS_TEXTS(void, getTargetCategories)
MAV_FILLS_TEXTS(void, HMAVPlatform::getDimmConnectors)
MAV_FILLS_TEXTS(void, HMAVHardwarePlatform::getDimmConnectors)
MAV_FILLS_TEXTS(void, getLockedDimmConnectors)
MAV_FILLS_TEXTS(void, getConnectedDimmConnectors)
MAV_FILLS_TEXTS(void, getUniqueMemoryTypeStrings)
MAV_FILLS_TEXTS(void, getBoardImgZipEntries)
MAV_FILLS_TEXTS(void, getSystemClockNames)
MAV_FILLS_TEXTS(void, getCpuClockNames)
MAV_FILLS_TEXTS(void, getAllClockFrequencies)
MAV_FILLS_TEXTS(void, getValidSLRNames)
MAV_FILLS_TEXTS(void, getYarcCompileXpSwitches)
MAV_FILLS_TEXTS(void, getYarcLinkXpSwitches)
MAV_FILLS_PAIRS(void, getAllResources)

// --- what has no place in Java ----------------------------------------------------------------------

// The host's hardware database, streams, iterator pairs and raw arrays.
%ignore getHwDb;
%ignore getFeatureRomVecRange;
%ignore issueNormalizeMemoryBanksMessage;
%ignore setFPGAPartName;
%ignore HMAVHardwareFeatureRom::setVBNVName;
%ignore getUUIDBytes;
%ignore getArchMap;
// Names and values of the enumeration say the same.
%ignore NAME_SIZE;
%ignore CDMA_COUNT;
// They take away, or replace, what Java objects may stand for.
%ignore HPLPlatform::removeFile;
%ignore HPLPlatform::setEmulations;
%ignore HMAVDpePartition::clear;
%ignore HMAVDpePartition::fromJSON;
%ignore HPLPlatform::setExtensions;
// A partition is made by its platform, which owns it with its hardware.
%ignore HMAVReconfigurablePartition::HMAVReconfigurablePartition;
%ignore HMAVReconfigurablePartition::setHardwarePlatform;
%ignore HMAVReconfigurablePartition::setHardwareEmulationPlatform;
%ignore HMAVPlatform::addReconfigurablePartition(HMAVReconfigurablePartition *);
%ignore HMAVPlatform::shareHardwarePlatform;
%extend HMAVPlatform {
    /// Appends a partition of that id, owned by the platform, and answers it.
    HMAVReconfigurablePartition* addReconfigurablePartition(unsigned id) {
        auto made = std::make_unique<HMAVReconfigurablePartition>(id);
        $self->addReconfigurablePartition(made.get());
        return made.release();
    }
}
%typemap(javaout) const HMAVDpePartition & HMAVDpePartition::none {
    return new HMAVDpePartition($jnicall, NativeHandle.PROCESS);
  }

%include "mav_platform/HwMetadataMode.h"
%include "model_classes.i"
