// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <string>

#include "mav_host/Export.h"

/// Is told of every entry that a walk comes to, so that a tool can show that a search goes on.
class MAV_API HUTDirWalkProgress {
  public:
    virtual ~HUTDirWalkProgress();
    /// Called before the walk's own visitor. What it throws ends the walk and passes through.
    virtual void visit(const std::string& path) = 0;
};

/// Walks a directory with all that is below it, in an order that does not depend on the file
/// system: the names of each directory by bytes, what is in a directory right behind it.
class MAV_API HUTDirWalk {
  public:
    struct Entry {
        std::string path;       ///< the walked directory, "/" and the names on the way
        std::size_t depth = 0;  ///< 0 in the walked directory itself
        bool isDir = false;     ///< a directory that the walk can enter
    };
    struct Options {
        /// Enter directories behind links, and pass over links that lead nowhere. Without it a
        /// link is an entry that is no directory, wherever it leads.
        bool followLinks = false;
        /// Directories at this depth are entries still and are not entered.
        std::size_t maxDepth = std::numeric_limits<std::size_t>::max();
        /// Names in all the directories that are entered, each as often as it is entered.
        std::size_t mostEntries = 1'000'000;
    };
    /// Answers false to end the walk.
    using Visitor = std::function<bool(const Entry& entry)>;

    /// Visits every entry; answers false when the visitor ended the walk. What vanishes meanwhile
    /// is passed over. A directory is not entered again below itself: one that is open on the way,
    /// by device and inode, is an entry alone. Throws HEXUserException "The directory 'PATH' cannot
    /// be read: REASON" for the walked directory and any below it, also for the one whose names
    /// would be more entries than are left and for one behind more links than the system follows;
    /// what a visitor throws passes through.
    static bool walk(const std::string& dir, const Options& options, const Visitor& visit);

    /// Installs who is told of every entry on this thread; null tells nobody. It stays owned by the
    /// caller and must outlive its installation. Answers the one in force before.
    static HUTDirWalkProgress* setProgress(HUTDirWalkProgress* progress);
};

/// Is asked of every entry that a walk comes to.
class MAV_API HUTDirWalkFilter {
  public:
    virtual ~HUTDirWalkFilter();
    /// False: the walk of the directory `top` passes over the entry and all that is below it.
    virtual bool passes(const std::string& top, const HUTDirWalk::Entry& entry) = 0;
};

/// While one lives, the filter, which it does not own, is asked by the walks on its thread. The
/// innermost one counts.
class MAV_API HUTDirWalkFiltering {
  public:
    explicit HUTDirWalkFiltering(HUTDirWalkFilter& filter);
    ~HUTDirWalkFiltering();
    HUTDirWalkFiltering(const HUTDirWalkFiltering&) = delete;
    HUTDirWalkFiltering& operator=(const HUTDirWalkFiltering&) = delete;

  private:
    HUTDirWalkFilter* before_;
};

/// While one lives, what walks on its thread see of directories is remembered: a second walk does
/// not read them again, and HUTFile answers from it whether something exists, is a file or a
/// directory, and what its canonical name is. A search asks the system once for each directory that
/// way, instead of a dozen times for each file. What has not been seen is asked of the system as
/// ever; what vanishes meanwhile may still be called existing. Belongs to a scope; the innermost
/// one counts. What a directory holds is kept once, however many links lead there.
class MAV_API HUTDirMemory {
  public:
    HUTDirMemory();
    ~HUTDirMemory();
    HUTDirMemory(const HUTDirMemory&) = delete;
    HUTDirMemory& operator=(const HUTDirMemory&) = delete;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};
