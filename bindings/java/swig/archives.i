// SPDX-License-Identifier: Apache-2.0
// Hardware platform archives: members, types, indexes, metadata readers, extraction.
%module MavArchives
%include "common.i"
%import(module="MavServices") "mav_platform/JSONSerializable.h"
%import(module="MavServices") "tree.i"
%import(module="MavServices") "mav_platform/JSONWriter.h"
%import(module="MavServices") "mav_platform/JSONObjectWriter.h"
%import(module="MavModel") "mav_platform/HwMetadataMode.h"
%import(module="MavModel") "model_classes.i"

%nodefaultctor mav_platform::ArchiveWork;
%nodefaultctor HMAVPfmFileTypes;
%nodefaultctor HMAVHpfmUtl;
%nodefaultctor HMAVHardwarePlatformParser;
%ignore getFileTypeMap;
%ignore getTclFileTypeMap;
%include "mav_platform/HMAVPfmFileTypes.h"
%include "zip.i"

MAV_CLOSEABLE(HVMAArchive)
%include "mav_platform/HVMAFiles.h"
%include "mav_platform/HVMAArchive.h"

// Readers keep the platform that they fill.
MAV_KEEPS(HMAVDsaJsonReader, platform)
MAV_KEEPS(HMAVDsaXmlReader, platform)
MAV_KEEPS(HMAVHpfmReader, platform)
%ignore HMAVDsaJsonReader::HMAVDsaJsonReader(HPLPlatform *, mav_platform::OpenArchives *);
%ignore HMAVDsaXmlReader::HMAVDsaXmlReader(std::string, HPLPlatform *, mav_platform::OpenArchives *);
%include "mav_platform/HMAVDsaJsonReader.h"
%include "mav_platform/HMAVDsaXmlReader.h"
%include "mav_platform/HMAVHpfmReader.h"
%include "mav_platform/HMAVHpfmUtl.h"

MAV_KEEPS(PlatformFileExtractor, platform)
MAV_KEEPS(PlatformDpeprjFileExtractor, platform)
%typemap(javaconstruct) PlatformDpeprjFileExtractor::PlatformDPEPRJFile { this(new NativeHandle($imcall, PlatformDPEPRJFile::swigDestroy, keep(platform))); }
%include "mav_platform/PlatformFileExtractor.h"
%include "mav_platform/PlatformDpeprjFileExtractor.h"
%include "mav_platform/HMAVTmpDirObject.h"

// What a scan for bare archives finds belongs to the answer.
%ignore HMAVHardwarePlatformParser::loadBareHardwarePlatforms;
%ignore HMAVHardwarePlatformParser::Unsearched;
%ignore HMAVHardwarePlatformParser::addPlatform(const std::string &, HMAVPlatform *, Parsed &);
%typemap(javaout) HMAVHardwarePlatform *HMAVHardwarePlatformParser::addPlatform {
    long address = $jnicall;
    return address == 0 ? null : new HPLPlatform(address, platform.owner());
  }
%include "mav_platform/HMAVHardwarePlatformParser.h"
MAV_CLOSEABLE(BareHardwarePlatforms)
%inline %{
/// Hardware platforms of archives without a description; it owns them.
class BareHardwarePlatforms {
  public:
    /// Scans the directories as HMAVHardwarePlatformParser::loadBareHardwarePlatforms does.
    BareHardwarePlatforms(const HSTVector<std::string>& directories, bool filterByVbnv) {
        HMAVHardwarePlatformParser::Containers seen;
        try {
            HSTVector<HMAVHardwarePlatformParser::Unsearched> left;
            HMAVHardwarePlatformParser::loadBareHardwarePlatforms(directories, platforms_, seen,
                                                                  filterByVbnv, left);
            for (const auto& one : left) unsearched_[one.dir] = one.reason;
        } catch (...) {
            for (const auto& [path, container] : seen) containers_.emplace_back(container);
            throw;
        }
        for (const auto& [path, container] : seen) containers_.emplace_back(container);
    }
    BareHardwarePlatforms(const BareHardwarePlatforms&) = delete;

    const HSTVector<HMAVHardwarePlatform*>& getPlatforms() const { return platforms_; }
    /// Directories that were not searched to their end, and why.
    const std::map<std::string, std::string>& getUnsearched() const { return unsearched_; }

  private:
    HSTVector<HMAVHardwarePlatform*> platforms_;
    std::vector<std::unique_ptr<HMAVPlatform>> containers_;
    std::map<std::string, std::string> unsearched_;
};
%}

MAV_COPIES(mav_platform::ArchiveWork::Fault, ArchiveWork.Fault)
%ignore mav_platform::ArchiveWork::faults(const mav_host::ZipArchive &, const OnMember &);
%ignore mav_platform::ArchiveWork::Place;
%ignore mav_platform::ArchiveWork::add(const std::string &, const Place &, const std::string &, mav_host::Resign);
%ignore mav_platform::ArchiveWork::add(const std::string &, const Place &, const std::string &);
%include "mav_platform/ArchiveWork.h"
%extend mav_platform::ArchiveWork {
    /// Adds the file under the type with a new digest, all in one step; an empty member name is that
    /// of the type, else the file's. Throws as the library's function of this name does.
    static void add(const std::string& archive, const std::string& type, const std::string& member,
                    const std::string& file, mav_host::Resign resign = mav_host::Resign::NO) {
        mav_platform::ArchiveWork::add(archive, {type, member}, file, resign);
    }
}
%ignore mav_platform::TypedMembers::TypedMembers();
%ignore mav_platform::TypedMembers::entries;
%ignore mav_platform::TypedMembers::find;
%ignore mav_platform::TypedMembers::typesOf;
%ignore metadataMembers;
%ignore holdsPlatform;
%include "mav_platform/TypedMembers.h"
%extend mav_platform::TypedMembers {
    HSTVector<std::pair<std::string, std::string>> getEntries() const { return $self->entries; }
}
