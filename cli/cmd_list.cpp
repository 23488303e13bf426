// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <utility>

#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "Screen.h"
#include "mav_host/HUTDirWalk.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/ReportScope.h"
#include "mav_platform/HMAVPlatformMgr.h"
#include "mav_platform/PlatformList.h"

namespace cli {
namespace {

using mav_platform::PlatformFilter;
using mav_platform::PlatformList;
using mav_platform::PlatformRow;

using Refusal = HMAVPlatformMgr::Refusal;
using Refusals = HSTVector<Refusal>;

constexpr const char* NOTES =
    "Descriptions (.qpfm) are found in each DIR and three levels below, bare archives (.pka, "
    ".dsa)\n"
    "at any depth. Without a DIR the default directories are searched; 'mav dirs' shows them.\n"
    "Vendor and board are compared exactly, part and type in any letter case; of those that fit,\n"
    "--latest keeps the greatest version of each vendor, board and name. Archives that belong to "
    "a\n"
    "listed description are listed with --all alone. A file .mavignore in a searched directory\n"
    "names what the search passes over, with the rules of git's ignore files.\n";

struct Options {
    std::vector<std::string> dirs;  ///< empty: the default search directories
    std::vector<std::string> ignored;
    PlatformFilter filter;
    std::string why;   ///< a file to tell about; empty: all are listed
    bool all = false;  ///< also parts of others, and those that were left out, with the reason
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

/// A column of the table, shown always or when it is asked for.
struct Column {
    const char* name;
    std::string PlatformRow::*cell;
    bool shown = true;
};

void writeTable(const HSTVector<PlatformRow>& list, const Options& options) {
    const PlatformFilter& filter = options.filter;
    const bool hasParts = std::any_of(list.begin(), list.end(),
                                      [](const PlatformRow& row) { return !row.partOf.empty(); });
    const std::array<Column, 10> columns{{{"NAME", &PlatformRow::name},
                                          {"VENDOR", &PlatformRow::vendor},
                                          {"BOARD", &PlatformRow::board, !filter.board.empty()},
                                          {"VERSION", &PlatformRow::version},
                                          {"TYPE", &PlatformRow::type},
                                          {"DEVICE", &PlatformRow::device},
                                          {"PART", &PlatformRow::part, !filter.part.empty()},
                                          {"STATE", &PlatformRow::state},
                                          {"PART OF", &PlatformRow::partOf, hasParts},
                                          {"FILE", &PlatformRow::file}}};
    Screen::Row names;
    std::vector<Screen::Row> rows(list.size());
    for (const Column& column : columns) {
        if (!column.shown) continue;
        names.emplace_back(column.name);
        for (std::size_t i = 0; i < list.size(); ++i) rows[i].push_back(list[i].*column.cell);
    }
    LongAnswer answer;
    for (const std::string& line : Screen::fitting(names, std::move(rows))) answer += line + "\n";
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

std::unique_ptr<PlatformList> find(const Options& options) {
    const HSTVector<std::string> dirs = searched(options);
    PlatformFilter filter = options.filter;
    filter.parts = options.all;
    filter.ignored = options.ignored;
    Reports reports;
    std::unique_ptr<PlatformList> list;
    {
        const SearchLine line;
        list = std::make_unique<PlatformList>(dirs, filter);
    }
    reports.tellTheRest(list->refusals());
    return list;
}

std::string sentence(const PlatformList::Answer& why) {
    std::string text = printable(why.file) + ": " + why.state;
    if (!why.directory.empty()) text += " below " + printable(why.directory);
    return text + ": " + printable(why.reason) + "\n";
}

bool run(const Options& options) {
    const auto list = find(options);
    std::optional<PlatformList::Answer> why;
    if (!options.why.empty()) why = list->why(options.why);
    if (options.json) {
        writeData(list->answer(why ? &*why : nullptr).text());
    } else if (why) {
        writeAnswer(sentence(*why));
    } else {
        writeTable(list->rows(), options);
        if (options.all) writeAnswer(refusedText(list->refusals()));
    }
    if (!options.all && !why) tellRefusals(list->refusals());
    return !why || why->state == "found";
}

}  // namespace

void commands::list(Command& command) {
    command.description = "List the platforms that are found in directories";
    command.notes = NOTES;
    command.no = "with --why: the file is not listed";
    command.failed = "a DIR is no directory, or the result cannot be written";
    command.examples = {{"mav list", "all that the tools find by themselves"},
                        {"mav list /proj --type pellux --latest", "the newest of a type"},
                        {"mav list /proj --why /proj/a/card.pka", "why a platform is not listed"},
                        {"mav list /proj --json | jq -r '.platforms[].file'", "paths alone"}};
    auto& options = command.runs(run);
    PlatformFilter& filter = options.filter;
    command.argument("DIR", &options.dirs, "Directories to search").required = false;
    command.option("--part", &filter.part, "PART", "Only platforms of this part");
    command.option("--board", &filter.board, "BOARD", "Only platforms of this board");
    command.option("--vendor", &filter.vendor, "VENDOR", "Only platforms of this vendor");
    command
        .option("--type", &filter.type, "pellux|quorin|acceleration|undefined",
                "Only platforms of this type")
        .oneOf("platform type", {"pellux", "quorin", "acceleration", "undefined"});
    command.flag("--latest", filter.latest, "Only the latest versions");
    command.option("--ignore", &options.ignored, "PATTERN",
                   "Pass over names or folders, as a line of .mavignore does; may be repeated");
    command.option("--why", &options.why, "FILE", "Tell whether this file is found, and why not")
        .kind = ValueKind::FILES;
    command.flag("--all", options.all,
                 "Also archives that belong to descriptions, and what was left out, and why");
    command.typedJson(options.json);
}

}  // namespace cli
