// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"

/// Work on hardware platform metadata files on disk.
class MAV_API HMAVHpfmUtl {
  public:
    /// Makes every auto-assignable address segment of a component's bus interface
    /// "hbm_memory_subsystem" "preferred" when some of them, but not all, are. Nothing else of the
    /// document changes: comments, unknown items and other namespaces stay; a prefix "qd:" that is
    /// not declared gets its declaration; it is laid out anew with line ends and tabs between
    /// elements and between attributes. The file is replaced as a whole, reported as "@74-10@%s"
    /// with the path; otherwise it is left as it is.
    ///
    /// Never throws for a bad file. A missing file prints "File: PATH doesn't exist.\n" with
    /// "@74-12@"; an unreadable one is reported as "@74-260@%s%s%s" (path, reason, step), one
    /// that does not bind or cannot be written as "@74-15@%s%s%s%s" (path, text, line, column or
    /// path, text, step, what became of the file).
    static void ChangeAndWriteHpfmIfNeeded(const std::string& path);
};
