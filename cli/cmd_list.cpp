// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <set>
#include <sstream>
#include <utility>

#include "Archive.h"
#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "Screen.h"
#include "mav_host/HUTDirWalk.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/Letters.h"
#include "mav_host/ReportScope.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVPlatformMgr.h"
#include "mav_platform/HMAVPlatformUtils.h"
#include "mav_platform/JSONValue.h"
#include "mav_platform/partitionsFault.h"

namespace cli {
namespace {

using mav_platform::JSONValue;
using mav_platform::partitionsFault;

using Platforms = HSTVector<HMAVPlatform*>;
using Refusal = HMAVPlatformMgr::Refusal;
using Refusals = HSTVector<Refusal>;

constexpr const char* NOTES =
    "Descriptions (.qpfm) are found in each DIR and three levels below, bare archives (.pka, "
    ".dsa)\n"
    "at any depth. Without a DIR the default directories are searched; 'mav dirs' shows them.\n"
    "Vendor and board are compared exactly, part and type in any letter case; of those that fit,\n"
    "--latest keeps the greatest version of each vendor, board and name.\n";

struct Options {
    std::vector<std::string> dirs;  ///< empty: the default search directories
    std::string part, board, vendor, type;
    bool latest = false;
    bool all = false;  ///< also those that were left out, and why
    bool json = false;
};

/// Takes in what the search reports and holds it back to its end: most of it is told as the reason
/// why a platform was left out, and a line of progress is not torn meanwhile.
class Reports final : public mav_host::ReportScope {
  public:
    ~Reports() override { close(); }

    /// Writes what was reported of files that are not at fault in a refusal, each text once.
    void tellTheRest(const Refusals& refused) const {
        std::set<std::string> told;
        for (const Refusal& refusal : refused) {
            told.insert(refusal.file);
            for (const std::string& file : refusal.faulty) {
                told.insert(HUTFile::getCanonicalName(file));
            }
        }
        std::set<std::string> written;
        for (const auto& [subject, text] : waiting_) {
            if (told.contains(subject) || !written.insert(text).second) continue;
            std::cerr << text << "\n";
        }
    }

  private:
    void onReport(const ComMsg& message) override {
        std::string subject;
        if (!message.args.empty()) subject = HUTFile::getCanonicalName(message.args[0]);
        waiting_.emplace_back(std::move(subject), ComMsgMgr::format(message));
    }
    void onLines(const std::string&) override {}

    std::vector<std::pair<std::string, std::string>> waiting_;
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
        line += shortened(printable(HUTPathUtils::stem(path)), 40);
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

bool fits(const Entry& entry, const Options& options) {
    const auto exact = [](const std::string& wanted, const std::string& text) {
        return wanted.empty() || wanted == text;
    };
    const auto anyCase = [](const std::string& wanted, const std::string& text) {
        return wanted.empty() || mav_host::equalLetters(wanted, text);
    };
    return anyCase(options.part, entry.part) && exact(options.board, entry.board) &&
           exact(options.vendor, entry.vendor) && anyCase(options.type, entry.type);
}

void writeTable(const std::vector<Entry>& entries) {
    std::vector<Screen::Row> rows;
    rows.reserve(entries.size());
    for (const Entry& entry : entries) {
        rows.push_back({entry.name, entry.vendor, entry.version, entry.type, entry.device,
                        entry.state, entry.file});
    }
    LongAnswer answer;
    for (const std::string& line :
         Screen::lines({"NAME", "VENDOR", "VERSION", "TYPE", "DEVICE", "STATE", "FILE"}, rows))
        answer += line + "\n";
    answer.end();
}

std::string refusedText(const Refusals& refused) {
    std::string text;
    for (const Refusal& refusal : refused) {
        text += (text.empty() ? "\nleft out:\n" : "") + printable(refusal.file) + "\n";
        std::istringstream lines(refusal.reason);
        for (std::string line; std::getline(lines, line);) {
            text += "    " + printable(line) + "\n";
        }
    }
    return text;
}

std::string json(const std::vector<Entry>& entries, const Refusals& refused, bool all) {
    JSONValue platforms = JSONValue::list();
    for (const Entry& entry : entries) {
        platforms.add(JSONValue::object()
                          .addUnlessEmpty("name", entry.name)
                          .addUnlessEmpty("vendor", entry.vendor)
                          .addUnlessEmpty("board", entry.board)
                          .addUnlessEmpty("version", entry.version)
                          .addUnlessEmpty("type", entry.type)
                          .addUnlessEmpty("device", entry.device)
                          .addUnlessEmpty("part", entry.part)
                          .addUnlessEmpty("state", entry.state)
                          .add("file", entry.file));
    }
    JSONValue document = JSONValue::object().add("platforms", std::move(platforms));
    if (!all) return document.text();
    JSONValue left = JSONValue::list();
    for (const Refusal& refusal : refused) {
        left.add(
            JSONValue::object().add("file", refusal.file).addUnlessEmpty("reason", refusal.reason));
    }
    return document.add("refused", std::move(left)).text();
}

HSTVector<std::string> searched(const Options& options) {
    for (const std::string& dir : options.dirs) {
        if (!HUTFile::isDir(dir)) {
            throw Failure("cannot search " + shown(dir) + ": it is no directory. Check the path.");
        }
    }
    if (!options.dirs.empty()) return options.dirs;
    HSTVector<std::string> dirs;
    HMAVPlatformMgr::getDefaultMavPlatformDirs(dirs);
    if (dirs.empty()) {
        complain(
            "no default directory exists. Name a directory; 'mav dirs' shows the default ones.");
    }
    return dirs;
}

/// Tells how many platforms were left out and which searches ended early.
void tellRefusals(const Refusals& refused) {
    std::size_t platforms = 0;
    for (const Refusal& refusal : refused) {
        if (!refusal.isDir) {
            ++platforms;
            continue;
        }
        complain(shown(refusal.file) +
                 " was not searched to its end: " + printable(refusal.reason));
    }
    if (platforms == 0) return;
    complain(std::to_string(platforms) +
             " left out because of faults. 'mav list --all' tells which and why.");
}

/// Moves the platforms that have no whole document to the refusals.
void leaveOutPartial(Platforms& platforms, Refusals& refused) {
    std::erase_if(platforms, [&](const HMAVPlatform* platform) {
        const std::string fault = platform->isBad() ? "" : partitionsFault(*platform);
        if (!fault.empty()) refused.push_back({platform->getPlatformFile(), fault, {}, false});
        return !fault.empty();
    });
}

void run(const Options& options) {
    const HSTVector<std::string> dirs = searched(options);
    HMAVPlatformMgr manager;
    Platforms platforms;
    Refusals refused;
    {
        Reports reports;
        {
            const SearchLine line;
            manager.addPlatformsFromDirs(dirs);
        }
        manager.getAllPlatforms(platforms);
        refused = manager.getRefusals();
        leaveOutPartial(platforms, refused);
        reports.tellTheRest(refused);
    }
    std::erase_if(platforms,
                  [&](const auto* one) { return one->isBad() || !fits(entryOf(*one), options); });
    if (options.latest) platforms = HMAVPlatformUtils::filterOutOldPlatforms(platforms);
    std::vector<Entry> entries;
    for (const HMAVPlatform* platform : platforms) entries.push_back(entryOf(*platform));
    if (options.json) {
        writeData(json(entries, refused, options.all));
    } else {
        writeTable(entries);
        if (options.all) writeAnswer(refusedText(refused));
    }
    if (!options.all) tellRefusals(refused);
}

}  // namespace

void commands::list(Command& command) {
    command.description = "List the platforms of search directories";
    command.notes = NOTES;
    auto& options = command.runs(run);
    command.argument("DIR", &options.dirs, "Directories to search").required = false;
    command.option("--part", &options.part, "PART", "Only platforms of this part");
    command.option("--board", &options.board, "BOARD", "Only platforms of this board");
    command.option("--vendor", &options.vendor, "VENDOR", "Only platforms of this vendor");
    command
        .option("--type", &options.type, "pellux|quorin|acceleration|undefined",
                "Only platforms of this type")
        .oneOf("platform type", {"pellux", "quorin", "acceleration", "undefined"});
    command.flag("--latest", options.latest, "Only the latest versions");
    command.flag("--all", options.all, "Also what was left out, and why");
    command.flag("--json", options.json, "Print JSON");
}

}  // namespace cli
