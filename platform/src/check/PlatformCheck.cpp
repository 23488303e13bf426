// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/PlatformCheck.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "check/CheckArchive.h"
#include "check/CheckXml.h"
#include "formats/description/MAVPlatformLMX.h"
#include "formats/software/MAVSoftwarePlatformLMX.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Messages.h"
#include "mav_host/ReportScope.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HMAVNativeCatalogService.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVReconfigurablePartition.h"
#include "mav_platform/PlatformLoader.h"

namespace mav_platform {
namespace {

using namespace check;

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

  private:
    void onReport(const ComMsg& message) override {
        last_ = ComMsgMgr::format(message);
        if (mav_host::messages::MEMBER_FAULT.is(message)) faults_.push_back(message.args.back());
        if (mav_host::messages::MEMBER_NOT_OPENED.is(message)) {
            faults_.emplace_back("it is no zip archive, or is cut off");
        }
    }
    void onLines(const std::string&) override {}

    std::string last_;
    HSTVector<std::string> faults_;
};

/// The path without "." pieces and doubled slashes; ".." stays, for links may lead through it.
std::string tidied(std::string_view path) {
    std::string result = path.substr(0, 1) == "/" ? "/" : "";
    while (!path.empty()) {
        const std::string_view piece = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(piece.size() + 1, path.size()));
        if (piece.empty() || piece == ".") continue;
        if (!result.empty() && result.back() != '/') result += '/';
        result += piece;
    }
    return result.empty() ? "." : result;
}

class Walk {
  public:
    Walk(Report& report, const PlatformCheck::OnFile& onFile) : report_(report), onFile_(onFile) {}

    /// `path` is how findings call the file.
    void file(const std::string& path) {
        if (!isNew(path)) return;
        if (!HUTFile::isFile(path)) {
            report_.add("unreadable", {path},
                        HUTFile::exists(path) ? "this is no regular file; give the path of one"
                                              : "there is no such file; check the path");
            return;
        }
        const std::string extension = HUTPathUtils::extension(path);
        if (HMAVHardwarePlatform::isValidPlatformExt(extension)) {
            checkArchive(path, report_);
        } else if (extension == ".spfm") {
            software(path);
        } else {
            description(path);
        }
    }

    /// How findings call the file that the library names by this path.
    std::string shownPath(const std::string& path) const {
        const auto known = seen_.find(HUTFile::getCanonicalName(path));
        return known == seen_.end() ? tidied(path) : known->second;
    }

  private:
    static constexpr std::uint64_t LARGEST = std::uint64_t{256} << 20;

    std::optional<std::string> read(const std::string& path) {
        try {
            return HUTFileUtils::readWhole(path, LARGEST);
        } catch (const HEXError& error) {
            report_.add("unreadable", {path}, error.what());
            return std::nullopt;
        }
    }

    void description(const std::string& path) {
        const auto text = read(path);
        if (!text) return;
        const auto document = bindDocument(lmx::platformFormat(), *text, path, report_, &whole_);
        if (!document) return;
        if (document->hardwarePlatforms) {
            const lmx::HardwarePlatforms& hardware = *document->hardwarePlatforms;
            archive(path, hardware.hardwarePlatform);
            archive(path, hardware.hwEmuPlatform);
            partitions(path, hardware);
        } else {
            report_.add("schema", {path, document->line, document->column},
                        "element 'mav:platform': required element 'mav:hardwarePlatforms' is "
                        "missing");
        }
        if (document->softwarePlatforms) {
            const lmx::FileReference& reference = document->softwarePlatforms->softwarePlatform;
            const std::string target = joined(path, reference);
            if (!isPartial(reference) && exists(path, reference, target)) software(target);
        }
    }

    void partitions(const std::string& path, const lmx::HardwarePlatforms& hardware) {
        std::set<unsigned> ids;
        for (const lmx::ReconfigurablePartition& partition : hardware.reconfigurablePartitions) {
            // Without one of its own an id reads as 0.
            const bool isKnown = whole_ || partition.id != 0;
            if (!ids.insert(partition.id).second && isKnown) {
                report_.add("duplicate", {path, partition.line, partition.column},
                            "the partition id " + std::to_string(partition.id) +
                                " stands more than once; the last one counts");
            }
            archive(path, partition.hardwarePlatform);
            archive(path, partition.hwEmuPlatform);
        }
        const unsigned standard = hardware.defaultRP.value_or(0);
        if (whole_ && !ids.empty() && ids.count(standard) == 0) {
            report_.add("default-partition", {path, hardware.line, hardware.column},
                        "the default partition is " + std::to_string(standard) +
                            (hardware.defaultRP ? "" : ", for none is named,") +
                            " and no partition has that id");
        }
    }

    /// A part of the name is missing, which has been reported.
    bool isPartial(const lmx::FileReference& reference) const {
        return !whole_ && (reference.path.empty() || reference.name.empty());
    }

    static std::string joined(const std::string& path, const lmx::FileReference& reference) {
        const std::string parent = HUTFile::getParent(path);
        return tidied((parent.empty() ? "." : parent) + "/" + reference.path + "/" +
                      reference.name);
    }

    bool exists(const std::string& path, const lmx::FileReference& reference,
                const std::string& target) {
        if (HUTFile::isFile(target)) return true;
        report_.add("missing-file", {path, reference.line, reference.column},
                    shown(target, target.size()) + " is no file");
        return false;
    }

    void archive(const std::string& path, const std::optional<lmx::FileReference>& reference) {
        if (!reference || isPartial(*reference)) return;
        const std::string target = joined(path, *reference);
        if (!exists(path, *reference, target)) return;
        if (!HMAVHardwarePlatform::isValidPlatformExt(HUTPathUtils::extension(target))) {
            report_.add("extension", {path, reference->line, reference->column},
                        shown(reference->name) + " does not end in .pka or .dsa");
            return;
        }
        if (isNew(target)) checkArchive(target, report_);
    }

    void software(const std::string& path) {
        const auto text = read(path);
        if (!text) return;
        const auto document =
            bindDocument(lmx::softwarePlatformFormat(), *text, path, report_, &whole_);
        if (!document) return;
        const lmx::SystemConfigurations& configs = document->systemConfigurations;
        std::set<std::string> names;
        for (const lmx::SystemConfiguration& config : configs.configurations) {
            unique({path, config.line, config.column}, "configuration", config.name, names);
            std::set<std::string> groups;
            for (const lmx::ProcessorGroup& group : config.processorGroups) {
                unique({path, group.line, group.column}, "processor group", group.name, groups);
            }
            standard({path, config.line, config.column}, "processor group",
                     config.defaultProcessorGroup, groups);
            if (config.bootImages) {
                standard({path, config.line, config.column}, "boot image",
                         config.bootImages->defaultImage, {config.bootImages->image.name});
            }
        }
        standard({path, configs.line, configs.column}, "configuration",
                 configs.defaultConfiguration, names);
    }

    void unique(const Place& place, const char* kind, const std::string& name,
                std::set<std::string>& names) {
        if (name.empty() || names.insert(name).second) return;
        report_.add("duplicate", place,
                    std::string("the ") + kind + " " + shown(name) + " stands more than once");
    }
    void standard(const Place& place, const char* kind, const std::string& name,
                  const std::set<std::string>& names) {
        if (!whole_ || name.empty() || names.count(name) > 0) return;
        report_.add("software-default", place,
                    std::string("the default ") + kind + " " + shown(name) +
                        " is not there; the first one stands in for it");
    }

    Report& report_;
    const PlatformCheck::OnFile& onFile_;
    bool isNew(const std::string& path) {
        if (!seen_.emplace(HUTFile::getCanonicalName(path), path).second) return false;
        if (onFile_) onFile_(path);
        return true;
    }

    /// The document at hand has no fault. What is missing from one that has may be what the fault
    /// concerns, so nothing is said of it.
    bool whole_ = true;
    std::map<std::string, std::string> seen_;  ///< files looked at: canonical path, path to show
};

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
    const std::string project = hardware.memberName(hardware.getFile(HMAVPfmFileTypes::DPEPRJ));
    for (const std::string& fault : faults) {
        report.add("array-engine", {walk.shownPath(hardware.getPlatformFile()) + "/" + project},
                   fault);
    }
}

/// Whether it loads after all, and what is read only on the first question.
void load(const std::string& path, const Walk& walk, Report& report) {
    Aside aside;
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

HSTVector<CheckFinding> PlatformCheck::run(const std::string& path, const OnFile& onFile) {
    Report report;
    Walk walk(report, onFile);
    {
        const Aside aside;
        walk.file(path.empty() ? path : tidied(path));
    }
    if (HUTFile::isFile(path)) load(path, walk, report);
    return report.take();
}

}  // namespace mav_platform
