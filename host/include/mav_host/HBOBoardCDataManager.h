// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"

/// The host's board-part data. The default host keeps the repository paths and reports whether
/// they changed; a tool that has board data derives its own and installs a factory for it.
class MAV_API HBOBoardCDataManager {
  public:
    using Factory = HBOBoardCDataManager* (*)();

    virtual ~HBOBoardCDataManager();
    /// Stores the paths; `changed` tells whether they differ from those stored before.
    virtual void setBoardPartRepoPaths(const HSTVector<std::string>& paths, bool& changed);
    /// Replaces `out` with the stored paths.
    virtual void getBoardPartRepoPaths(HSTVector<std::string>& out) const;

    /// A new manager from the factory in force, the default one when it makes none; never null. The
    /// caller owns it.
    static HBOBoardCDataManager* create();
    /// Replaces the factory; null restores the default. Answers the one in force before.
    static Factory setFactory(Factory factory);

  private:
    HSTVector<std::string> paths_;
};
