// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <stdexcept>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_host/Messages.h"
#include "mav_platform/HMAVDpePartitionsJsonReader.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HMAVTmpDirObject.h"
#include "mav_platform/PlatformDpeprjFileExtractor.h"

namespace {

constexpr const char* PARTITIONS = "dpearchive/arch/dpe_partition.json";

/// A directory of its own for the extracted file, removed at the end of the scope.
class ScratchDir {
  public:
    ScratchDir() = default;
    ~ScratchDir() { dir_.deleteTmpDir(); }
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    std::string file() const {
        if (!dir_.exists()) throw HEXUserException("no temporary directory can be made");
        return dir_.get() + "/dpe_partitions.json";
    }

  private:
    HMAVTmpDirObject dir_{"dpe_partitions"};
};

bool opens(const std::string& archive) {
    try {
        const mav_host::ZipArchive opened(archive);
        return true;
    } catch (const HEXError&) {
        return false;
    }
}

/// The extracted file; empty when there is none, which is reported for a project that is no
/// archive.
std::string extractPartitions(const HMAVHardwarePlatform& platform, const ScratchDir& scratch) {
    const PlatformDpeprjFileExtractor::PlatformDPEPRJFile project(platform);
    try {
        std::string path = scratch.file();
        if (PlatformDpeprjFileExtractor(platform).extractFile(PARTITIONS, path)) return path;
    } catch (const std::runtime_error& error) {
        throw HEXAlgException("The array-engine project '" + project.getName() + "' of '" +
                              platform.getPlatformFile() + "' cannot be read: " + error.what());
    }
    if (HUTFile::isFile(project.getPath()) && !opens(project.getPath())) {
        mav_host::report(mav_host::messages::MEMBER_NOT_OPENED, platform.getPlatformFile(),
                         project.getName());
    }
    return "";
}

}  // namespace

void HMAVHardwarePlatform::initDpePartitions() const {
    if (isExpandable() || dpePartitionsRead_) return;
    dpePartitionsRead_ = true;
    if (!hasFile(HMAVPfmFileTypes::DPEPRJ)) return;
    const ScratchDir scratch;
    const std::string path = extractPartitions(*this, scratch);
    if (path.empty()) return;
    const std::string project = getFile(HMAVPfmFileTypes::DPEPRJ);
    try {
        HMAVDpePartitionsJsonReader(this).parse(
            path, std::string("'") + PARTITIONS + "' in the array-engine project '" + project +
                      "' of '" + getPlatformFile() + "'");
    } catch (const HEXAlgException&) {
        mav_host::report(mav_host::messages::MEMBER_FAULT, getPlatformFile(), project,
                         std::string("its member '") + PARTITIONS + "' is no JSON document");
        throw;
    }
}

void HMAVHardwarePlatform::parseDPEPartitions(const std::string& path) const {
    HMAVDpePartitionsJsonReader(this).parse(path);
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
