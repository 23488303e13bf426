// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/HMAVPlatformMgr.h"
#include "mav_platform/JSONValue.h"

namespace mav_platform {

/// One platform as a list names it; the hardware's data, or that of the default partition.
struct MAV_API PlatformRow {
    std::string name, vendor, board, version, type, device, part, state, file;
    std::string partOf;  ///< the description that an archive belongs to; empty without one
};

/// What is to be listed.
struct MAV_API PlatformFilter {
    std::string vendor, board;       ///< exactly; empty: any
    std::string part, type;          ///< in any letter case; empty: any
    bool latest = false;             ///< of each vendor, board and name the greatest version alone
    bool parts = false;              ///< also archives that belong to a description in the list
    HSTVector<std::string> ignored;  ///< patterns as in a file .mavignore
};

/// The platforms below directories, searched for once when it is made. What a file .mavignore in a
/// searched directory names, by the rules of git's ignore files, is passed over; patterns of the
/// filter come behind those of the file.
class MAV_API PlatformList {
  public:
    /// What became of a file, in a word ("found", "refused", "hidden", "outside" of what is
    /// searched, "absent") and a sentence, with the searched directory that it lies below.
    struct Answer {
        std::string file;
        std::string state;
        std::string reason;
        std::string directory;
    };

    /// Searches the directories, which are made canonical, in their order. Reports as
    /// HMAVPlatformMgr does; who wants to show progress sets HUTDirWalk::setProgress.
    PlatformList(const HSTVector<std::string>& dirs, const PlatformFilter& filter);
    ~PlatformList();
    PlatformList(const PlatformList&) = delete;
    PlatformList& operator=(const PlatformList&) = delete;

    const HSTVector<PlatformRow>& rows() const { return rows_; }
    /// What the search left out because of faults, and directories that it did not get through.
    const HSTVector<HMAVPlatformMgr::Refusal>& refusals() const { return refusals_; }
    /// Sound platforms that the filter keeps out of the list.
    std::size_t hidden() const { return hidden_.size(); }
    /// Whether and why the file is listed.
    Answer why(const std::string& file) const;
    /// The answer of `mav list`; `why` null: it was not asked.
    JSONValue answer(const Answer* why) const;

  private:
    class Ignored;
    struct Hidden {
        std::string file;
        std::string reason;
    };

    void hide(const PlatformRow& row, const std::string& reason);
    void leaveOutFaulty(HSTVector<HMAVPlatform*>& platforms);
    void choose(HSTVector<HMAVPlatform*>& platforms, const PlatformFilter& filter);
    std::string whyUnlisted(const std::string& file, const std::string& directory) const;

    HSTVector<std::string> dirs_;
    std::unique_ptr<Ignored> ignored_;
    HSTVector<PlatformRow> rows_;
    HSTVector<HMAVPlatformMgr::Refusal> refusals_;
    HSTVector<Hidden> hidden_;
};

}  // namespace mav_platform
