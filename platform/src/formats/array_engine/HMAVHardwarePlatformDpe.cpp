// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <atomic>

#include "formats/array_engine/HMAVDpePartitionsJsonReader.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/PlatformDpeprjFileExtractor.h"

namespace {

/// A file of this process in the host's temporary directory; removed at the end of the scope.
class ScratchFile {
  public:
    ScratchFile() {
        static std::atomic<unsigned> made{0};
        path_ = HUTEnv::getHDITmpDir() + "/dpe_partitions";
        // Platforms of several threads ask at once.
        if (const unsigned number = made++; number != 0)
            path_.append("_").append(std::to_string(number));
        path_ += ".json";
    }
    ~ScratchFile() { HUTFile::rm(path_); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

constexpr const char* PARTITIONS = "dpearchive/arch/dpe_partition.json";

void reportProject(const HMAVHardwarePlatform& platform, const std::string& project,
                   const std::string& fault) {
    ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::WARNING, "@74-64@%s%s%s",
                       {platform.getPlatformFile(), project, fault});
}

bool opens(const std::string& archive) {
    try {
        const mav_host::ZipArchive opened(archive);
        return true;
    } catch (const HEXError&) {
        return false;
    }
}

/// Tells why a project that is listed gave no partitions; one without the file is in order.
void reportUnreadProject(const HMAVHardwarePlatform& platform) {
    const PlatformDpeprjFileExtractor::PlatformDPEPRJFile project(platform);
    if (!HUTFile::isFile(project.getPath())) {
        reportProject(platform, project.getName(),
                      "it is listed as DPEPRJ and absent from the archive");
    } else if (!opens(project.getPath())) {
        reportProject(platform, project.getName(),
                      "it is listed as DPEPRJ and is no zip archive, or one that is cut off");
    }
}

}  // namespace

void HMAVHardwarePlatform::initDpePartitions() const {
    if (isExpandable() || dpePartitionsRead_) return;
    dpePartitionsRead_ = true;
    if (!hasFile(HMAVPfmFileTypes::DPEPRJ)) return;
    const ScratchFile scratch;
    const PlatformDpeprjFileExtractor project(*this);
    try {
        if (!project.extractFile(PARTITIONS, scratch.path())) return reportUnreadProject(*this);
        parseDPEPartitions(scratch.path());
    } catch (const HEXDataException&) {
        reportProject(*this, getFile(HMAVPfmFileTypes::DPEPRJ),
                      std::string("its member '") + PARTITIONS + "' is damaged");
        throw;
    } catch (const HEXAlgException&) {
        reportProject(*this, getFile(HMAVPfmFileTypes::DPEPRJ),
                      std::string("its member '") + PARTITIONS + "' is no JSON document");
        throw;
    }
}

void HMAVHardwarePlatform::parseDPEPartitions(const std::string& path) const {
    HMAVDpePartitionsJsonReader(dpePartitions_).parse(path);
}

std::list<HMAVDpePartition>& HMAVHardwarePlatform::getDpePartitions() {
    initDpePartitions();
    return dpePartitions_;
}

const std::list<HMAVDpePartition>& HMAVHardwarePlatform::getDpePartitions() const {
    initDpePartitions();
    return dpePartitions_;
}

const HMAVDpePartition& HMAVHardwarePlatform::findDpePartition(const std::string& name) const {
    for (const HMAVDpePartition& partition : dpePartitions_) {
        if (partition.dpeInst() == name) return partition;
    }
    return HMAVDpePartition::none();
}

bool HMAVHardwarePlatform::hasDpePartition(const std::string& id) const {
    const std::list<HMAVDpePartition>& partitions = getDpePartitions();
    return std::any_of(
        partitions.begin(), partitions.end(),
        [&](const HMAVDpePartition& partition) { return partition.hasPartition(id); });
}

HMAVDpePartition& HMAVHardwarePlatform::addDpePartition(int startColumn, int numColumns) {
    return dpePartitions_.emplace_back(startColumn, numColumns);
}
