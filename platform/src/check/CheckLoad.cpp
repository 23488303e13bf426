// SPDX-License-Identifier: Apache-2.0
#include "check/CheckLoad.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "check/CheckArray.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Messages.h"
#include "mav_host/ReportScope.h"
#include "mav_host/xml/Binding.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HMAVNativeCatalogService.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVReconfigurablePartition.h"
#include "mav_platform/HMAVTmpDirObject.h"
#include "mav_platform/PlatformDpeprjFileExtractor.h"
#include "mav_platform/PlatformLoader.h"

namespace mav_platform::check {
namespace {

/// Whether what the report is about is a finding already, with its place.
bool isFound(const ComMsg& message, const Report& report) {
    namespace messages = mav_host::messages;
    if (messages::NOT_UNSIGNED.is(message)) return report.has("schema");
    if (messages::UNKNOWN_FILE_TYPE.is(message)) return report.has("file-type");
    if (messages::HBM_PARTLY_PREFERRED.is(message)) return report.has("hbm-preferred");
    return message.mask >= ComMsgMgr::CRITICAL_WARNING && report.hasErrors();
}

/// Takes reports and console lines aside as long as it lives.
class Aside final : public mav_host::ReportScope {
  public:
    ~Aside() override { close(); }
    /// The sentence of the last report, without severity and number.
    std::string last() const {
        if (last_.empty()) return "the platform does not load";
        return last_.substr(last_.find("] ") + 2);
    }
    /// The fault of each report about a member since the last call.
    HSTVector<std::string> takeFaults() { return std::exchange(faults_, {}); }
    /// A finding for each warning and error that no finding tells of.
    void tell(const std::string& path, Report& report) const {
        std::set<std::string> told;
        for (const ComMsg& message : kept_) {
            const std::string text = ComMsgMgr::format(message);
            if (isFound(message, report) || !told.insert(text).second) continue;
            report.add("library-report", {path}, text.substr(text.find("] ") + 2));
        }
    }

  private:
    void onReport(const ComMsg& message) override {
        last_ = ComMsgMgr::format(message);
        if (message.mask < ComMsgMgr::WARNING) return;
        if (++counts_[message.id] <= MOST) kept_.push_back(message);
        if (mav_host::messages::MEMBER_FAULT.is(message)) faults_.push_back(message.args.back());
        if (mav_host::messages::MEMBER_NOT_OPENED.is(message)) {
            faults_.emplace_back("it is no zip archive, or is cut off");
        }
    }
    void onLines(const std::string&) override {}

    static constexpr std::size_t MOST = 100;  ///< of one message; others still come through
    std::string last_;
    HSTVector<std::string> faults_;
    std::vector<ComMsg> kept_;
    std::map<std::string, std::size_t> counts_;  ///< by message
};

/// The partitions file of the project, where it counts.
void partitionsFile(const HMAVHardwarePlatform& hardware, const std::string& file, Report& report) {
    constexpr const char* PARTITIONS = "dpearchive/arch/dpe_partition.json";
    if (hardware.isExpandable()) return;
    HMAVTmpDirObject scratch("check");
    const std::string path = scratch.get() + "/partitions.json";
    try {
        if (PlatformDpeprjFileExtractor(hardware).extractFile(PARTITIONS, path)) {
            checkArrayProject(HUTFileUtils::readWhole(path, mav_host::xml::Limits().bytes),
                              file + "/" + PARTITIONS, report);
        } else {
            report.add("array-engine", {file},
                       std::string("the project has no partitions file ") + shown(PARTITIONS));
        }
    } catch (const HEXError& error) {
        report.add("array-engine", {file}, error.what());
    }
    scratch.deleteTmpDir();
}

/// The nested array-engine project, which is read on the first question about it.
void arrayProject(const HMAVHardwarePlatform& hardware, Aside& aside, const Walk& walk,
                  Report& report) {
    aside.takeFaults();
    std::string cause;
    try {
        hardware.initDpePartitions();
    } catch (const HEXError& error) {
        cause = error.what();
    }
    HSTVector<std::string> faults = aside.takeFaults();
    if (faults.empty() && !cause.empty()) faults.push_back("it cannot be read: " + cause);
    const std::string listed = hardware.getFile(HMAVPfmFileTypes::DPEPRJ);
    const std::string project = hardware.memberName(listed);
    const std::string file = walk.shownPath(hardware.getPlatformFile()) + "/" + project;
    for (const std::string& fault : faults) report.add("array-engine", {file}, fault);
    if (faults.empty() && !listed.empty()) partitionsFile(hardware, file, report);
}

/// Whether it loads after all, and what is read only on the first question.
void load(const std::string& path, Aside& aside, const Walk& walk, Report& report) {
    const std::string shownPath = walk.shownPath(path);
    try {
        PlatformLoader loader(path, PlatformLoader::HW_METADATA_AUTO);
        const auto platform = loader.load();
        if (!platform) {
            // Mostly its cause has been found already.
            if (!report.hasErrors()) report.add("load", {shownPath}, aside.last());
            return;
        }
        HSTVector<const HMAVHardwarePlatform*> all{platform->getHardwarePlatform(),
                                                   platform->getHardwareEmulationPlatform()};
        HSTVector<HMAVReconfigurablePartition*> partitions;
        platform->getReconfigurablePartitions(partitions);
        for (const auto* partition : partitions) {
            all.push_back(partition->getHardwarePlatform());
            all.push_back(partition->getHardwareEmulationPlatform());
        }
        all.erase(std::remove(all.begin(), all.end(), nullptr), all.end());
        // The policy is about hardware.
        if (!all.empty()) {
            const auto verdict = mav::platform::NativeCatalogService().judgeByPolicy(loader);
            if (!verdict.supported) report.add("release", {shownPath}, verdict.sentence());
        }
        // One that stands twice is read once.
        for (const HMAVHardwarePlatform* hardware : all) {
            arrayProject(*hardware, aside, walk, report);
        }
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        if (!report.hasErrors()) report.add("load", {shownPath}, error.what());
    }
}

}  // namespace

void checkPlatform(const std::string& path, Walk& walk, Report& report) {
    Aside aside;
    walk.file(path);
    if (!HUTFile::isFile(path)) return;
    load(path, aside, walk, report);
    aside.tell(walk.shownPath(path), report);
}

}  // namespace mav_platform::check
