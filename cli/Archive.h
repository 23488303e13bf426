// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "mav_host/HUTZip.h"

class HMAVPlatform;

namespace cli {

/// The path in quotes, on one line.
std::string shown(const std::string& path);

/// Opens the archive. Throws Failure with what to do when that fails.
mav_host::ZipArchive openArchive(const std::string& path);

/// Loads the platform of an archive; null when it does not load, which the messages explain.
std::shared_ptr<HMAVPlatform> loadPlatform(const std::string& path);

/// Runs `work`; what it throws becomes "cannot ACTION 'PATH': REASON. Correct the cause …",
/// without the advice where the reason holds one.
void guarded(const std::string& action, const std::string& path, const std::function<void()>& work);

/// Runs work that writes an archive so that SIGINT, SIGTERM and SIGHUP end it with nothing left
/// behind: Interrupted is thrown then. A signal that comes too late, when the archive stands, is
/// let be.
void endingCleanly(const std::function<void()>& work);

/// Shows the progress of long work on standard error, when that is a terminal, and ends it when a
/// signal has come inside endingCleanly.
class ProgressLine final : public mav_host::ZipProgress {
  public:
    ProgressLine();
    ~ProgressLine() override;
    void advance(const std::string& what, double done) override;
    bool cancelled() override;

  private:
    void clear();
    bool visible_;
    int percent_ = -1;
    std::string what_;
};
}  // namespace cli
