// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <atomic>

#include "formats/array_engine/HMAVDpePartitionsJsonReader.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
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

}  // namespace

void HMAVHardwarePlatform::initDpePartitions() const {
    if (isExpandable() || dpePartitionsRead_) return;
    dpePartitionsRead_ = true;
    if (!hasFile(HMAVPfmFileTypes::DPEPRJ)) return;
    const ScratchFile scratch;
    const PlatformDpeprjFileExtractor project(*this);
    if (project.extractFile("dpearchive/arch/dpe_partition.json", scratch.path())) {
        parseDPEPartitions(scratch.path());
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
