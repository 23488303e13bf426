// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <algorithm>
#include <array>
#include <boost/algorithm/string/predicate.hpp>
#include <chrono>
#include <iostream>
#include <sstream>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "Suggest.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/HI18N.h"
#include "mav_host/HUTDirWalk.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVPlatformMgr.h"
#include "mav_platform/HMAVPlatformUtils.h"
#include "mav_platform/JSONObjectWriter.h"

namespace {

using Platforms = HSTVector<HMAVPlatform*>;
using Refusal = HMAVPlatformMgr::Refusal;

/// Takes in what the search reports and holds it back to its end: most of it is told as the reason
/// why a platform was left out, and a line of progress is not torn meanwhile.
class Reports final : public ComMsgSink {
  public:
    Reports() : before_(ComMsgMgr::setSink(this)), console_(mav_host::setConsole(&dropped_)) {}
    ~Reports() override {
        mav_host::setConsole(console_);
        ComMsgMgr::setSink(before_);
    }
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

    void send(const ComMsg& message) override {
        // The manager keeps these as texts.
        static constexpr std::array KEPT = {"@74-3@%s",    "@74-4@%s",    "@74-9@%s",
                                            "@74-14@%s%s", "@74-51@%s%d", "@74-55@%s%s%s"};
        if (std::find(KEPT.begin(), KEPT.end(), message.id) != KEPT.end()) return;
        std::string subject;
        if (!message.args.empty()) subject = HUTFile::getCanonicalName(message.args[0]);
        if (message.mask == ComMsgMgr::ERROR) {
            faults_[subject] =
                message.args.size() > 1 ? message.args.back() : ComMsgMgr::format(message);
        }
        waiting_.emplace_back(std::move(subject), ComMsgMgr::format(message));
    }

    /// Why the archive of a platform could not be read; empty when it could. What ended the reading
    /// was reported last.
    std::string faultOf(const HMAVHardwarePlatform& hardware) {
        if (hardware.isMetadataRead()) return "";
        const std::string file = hardware.getPlatformFile();
        told_.insert(file);
        const auto found = faults_.find(file);
        return found != faults_.end() ? found->second : "it cannot be read";
    }

    /// Writes what was reported and is no reason of a refusal, each text once.
    void tellTheRest(const std::vector<Refusal>& refused) {
        for (const Refusal& refusal : refused) told_.insert(refusal.file);
        std::unordered_set<std::string> written;
        for (const auto& [subject, text] : waiting_) {
            if (told_.contains(subject) || !written.insert(text).second) continue;
            std::cerr << text << "\n";
        }
    }

  private:
    ComMsgSink* before_;
    std::ostringstream dropped_;
    std::ostream* console_;
    std::unordered_map<std::string, std::string> faults_;
    std::vector<std::pair<std::string, std::string>> waiting_;
    std::unordered_set<std::string> told_;
};

/// Shows on a terminal that a search of more than a second goes on.
class SearchLine final : public HUTDirWalkProgress {
  public:
    SearchLine() {
        if (::isatty(STDERR_FILENO) == 1) HUTDirWalk::setProgress(this);
    }
    ~SearchLine() override {
        HUTDirWalk::setProgress(nullptr);
        if (shown_) std::cerr << "\r\033[K" << std::flush;
    }
    SearchLine(const SearchLine&) = delete;
    SearchLine& operator=(const SearchLine&) = delete;

    void visit(const std::string& path) override {
        ++count_;
        const auto now = std::chrono::steady_clock::now();
        if (now < next_) return;
        next_ = now + std::chrono::milliseconds(200);
        shown_ = true;
        std::string line = "\r\033[K" + std::to_string(count_) + " names  ";
        line += cli::shortened(cli::printable(HUTPathUtils::stem(path)), 40);
        std::cerr << line << std::flush;
    }

  private:
    std::size_t count_ = 0;
    std::chrono::steady_clock::time_point next_ =
        std::chrono::steady_clock::now() + std::chrono::seconds(1);
    bool shown_ = false;
};

/// One line of the list.
struct Entry {
    std::string name, vendor, board, version, type, device, part, state, file;
};

Entry entryOf(const HMAVPlatform& platform) {
    Entry entry;
    entry.file = platform.getPlatformFile();
    entry.type = platform.getTypeString();
    const HMAVHardwarePlatform* const hardware = platform.getHardwarePlatform();
    if (hardware == nullptr) {
        entry.name = platform.getName();
        entry.vendor = platform.getVendor();
        entry.version = platform.getVersion();
        return entry;
    }
    entry.name = platform.getName().empty() ? hardware->getName() : platform.getName();
    entry.vendor = hardware->getVendor();
    entry.board = hardware->getBoardId();
    entry.version = hardware->getVersion();
    entry.device = hardware->getFpgaDevice();
    entry.part = hardware->getFpgaPart();
    entry.state = hardware->getPlatformState();
    return entry;
}

bool fits(const Entry& entry, const cli::ListOptions& options) {
    const auto exact = [](const std::string& wanted, const std::string& text) {
        return wanted.empty() || wanted == text;
    };
    const auto anyCase = [](const std::string& wanted, const std::string& text) {
        return wanted.empty() || boost::iequals(wanted, text);
    };
    return anyCase(options.part, entry.part) && exact(options.board, entry.board) &&
           exact(options.vendor, entry.vendor) && anyCase(options.type, entry.type);
}

void writeTable(const std::vector<Entry>& entries) {
    constexpr std::size_t COLUMNS = 6;
    using Row = std::array<std::string, COLUMNS + 1>;
    std::vector<Row> rows{{"NAME", "VENDOR", "VERSION", "TYPE", "DEVICE", "STATE", "FILE"}};
    for (const Entry& entry : entries) {
        rows.push_back({entry.name, entry.vendor, entry.version, entry.type, entry.device,
                        entry.state, entry.file});
    }
    std::array<std::size_t, COLUMNS> widths{};
    for (Row& row : rows) {
        for (std::string& cell : row) cell = cell.empty() ? "-" : cli::printable(cell);
        for (std::size_t i = 0; i < COLUMNS; ++i)
            widths[i] = std::max(widths[i], cli::columns(row[i]));
    }
    cli::LongAnswer answer;
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < COLUMNS; ++i) {
            answer += row[i] + std::string(widths[i] - cli::columns(row[i]) + 2, ' ');
        }
        answer += row[COLUMNS] + "\n";
    }
    answer.end();
}

std::string refusedText(const std::vector<Refusal>& refused) {
    std::string text;
    for (const Refusal& refusal : refused) {
        text += (text.empty() ? "\nleft out:\n" : "") + cli::printable(refusal.file) + "\n";
        std::istringstream lines(refusal.reason);
        for (std::string line; std::getline(lines, line);) {
            text += "    " + cli::printable(line) + "\n";
        }
    }
    return text;
}

std::string json(const std::vector<Entry>& entries, const std::vector<Refusal>& refused, bool all) {
    mav_platform::JSONObjectWriter writer;
    writer.addList("platforms", [&](mav_platform::JSONListWriter& list) {
        for (const Entry& entry : entries) {
            list.addObject([&](mav_platform::JSONObjectWriter& item) {
                item.addKey("name", entry.name);
                item.addKey("vendor", entry.vendor);
                item.addKey("board", entry.board);
                item.addKey("version", entry.version);
                item.addKey("type", entry.type);
                item.addKey("device", entry.device);
                item.addKey("part", entry.part);
                item.addKey("state", entry.state);
                item.addKey("file", HI18N_convertToUTF8(entry.file));
            });
        }
    });
    if (!all) return cli::withEmptyLists(writer.text(), {{"platforms", entries.empty()}});
    writer.addList("refused", [&](mav_platform::JSONListWriter& list) {
        for (const Refusal& refusal : refused) {
            list.addObject([&](mav_platform::JSONObjectWriter& item) {
                item.addKey("file", HI18N_convertToUTF8(refusal.file));
                item.addKey("reason", HI18N_convertToUTF8(refusal.reason));
            });
        }
    });
    return cli::withEmptyLists(writer.text(),
                               {{"platforms", entries.empty()}, {"refused", refused.empty()}});
}

void checkType(const std::string& type) {
    static const std::vector<std::string> TYPES{"pellux", "quorin", "acceleration", "undefined"};
    const auto isType = [&](const std::string& known) { return boost::iequals(type, known); };
    if (type.empty() || std::any_of(TYPES.begin(), TYPES.end(), isType)) return;
    const std::string meant = cli::nearest(type, TYPES);
    throw cli::UsageError("unknown platform type " + cli::shown(type) +
                              ": use pellux, quorin, acceleration or undefined." +
                              (meant.empty() ? "" : " Did you mean '" + meant + "'?"),
                          "list");
}

HSTVector<std::string> searched(const cli::ListOptions& options) {
    for (const std::string& dir : options.dirs) {
        if (!HUTFile::isDir(dir)) {
            throw cli::Failure("cannot search " + cli::shown(dir) +
                               ": it is no directory. Check the path.");
        }
    }
    if (!options.dirs.empty()) return options.dirs;
    HSTVector<std::string> dirs;
    HMAVPlatformMgr::getDefaultMavPlatformDirs(dirs);
    if (dirs.empty()) {
        cli::complain(
            "no default directory exists. Name a directory; 'mav dirs' shows the default ones.");
    }
    return dirs;
}

/// The faults of the platform's archives, a line each; empty when there are none.
std::string faultsOf(const HMAVPlatform& platform, Reports& reports) {
    HSTVector<HMAVReconfigurablePartition*> partitions;
    platform.getReconfigurablePartitions(partitions);
    HSTVector<const HMAVHardwarePlatform*> hardware;
    for (const auto* partition : partitions) hardware.push_back(partition->getHardwarePlatform());
    if (partitions.empty()) hardware.push_back(platform.getHardwarePlatform());
    std::string faults;
    for (const HMAVHardwarePlatform* one : hardware) {
        const std::string fault = one != nullptr ? reports.faultOf(*one) : "";
        if (fault.empty()) continue;
        if (!faults.empty()) faults += "\n";
        faults += platform.isQpfm() ? one->getPlatformFile() + ": " + fault : fault;
    }
    return faults;
}

/// Without those of files that were met again, as in a directory that is listed twice.
std::vector<Refusal> onceEach(std::vector<Refusal> refused) {
    std::unordered_set<std::string> files;
    std::erase_if(refused, [&](const Refusal& one) { return !files.insert(one.file).second; });
    return refused;
}

/// Moves platforms with an archive that could not be read to the refusals.
void separate(Reports& reports, Platforms& platforms, std::vector<Refusal>& refused) {
    std::erase_if(platforms, [&](const HMAVPlatform* platform) {
        const std::string faults = faultsOf(*platform, reports);
        if (!faults.empty()) refused.push_back({platform->getPlatformFile(), faults});
        return !faults.empty();
    });
}

}  // namespace

void cli::runList(const ListOptions& options) {
    checkType(options.type);
    const HSTVector<std::string> dirs = searched(options);
    HMAVPlatformMgr manager;
    Platforms platforms;
    std::vector<Refusal> refused;
    {
        Reports reports;
        {
            const SearchLine line;
            manager.addPlatformsFromDirs(dirs);
        }
        Platforms bare;
        manager.getPlatforms(platforms);
        manager.getDSAPlatforms(bare);
        platforms.insert(platforms.end(), bare.begin(), bare.end());
        refused = onceEach(manager.getRefusals());
        separate(reports, platforms, refused);
        reports.tellTheRest(refused);
    }
    std::erase_if(platforms, [&](const auto* one) { return !fits(entryOf(*one), options); });
    if (options.latest) platforms = HMAVPlatformUtils::filterOutOldPlatforms(platforms);
    std::vector<Entry> entries;
    for (const HMAVPlatform* platform : platforms) entries.push_back(entryOf(*platform));
    if (options.json) {
        writeAnswer(json(entries, refused, options.all));
    } else {
        writeTable(entries);
        if (options.all) writeAnswer(refusedText(refused));
    }
    if (!options.all && !refused.empty()) {
        complain(std::to_string(refused.size()) +
                 " left out because of faults. 'mav list --all' tells which and why.");
    }
}
