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

/// What an archive says about its members: (type, path in the archive) pairs. From the metadata in
/// its order, members of the merged emulation platform behind those of the platform, then from the
/// index. An entry may name a folder.
struct TypedMembers {
    std::vector<std::pair<std::string, std::string>> entries;

    /// The first entry of the type; null when there is none.
    const std::string* find(const std::string& type) const;
    /// For each member the types under which it, or a folder that it lies in, is listed; in the
    /// order of the entries. Beyond 256 bytes "..." stands for the others.
    std::vector<HSTVector<std::string>> typesOf(
        const HSTVector<mav_host::ZipMember>& members) const;
};

/// The path in quotes, on one line.
std::string shown(const std::string& path);

/// Opens the archive. Throws Failure with what to do when that fails.
mav_host::ZipArchive openArchive(const std::string& path);

/// The archive carries platform metadata and has an extension that tells so.
bool holdsPlatform(const mav_host::ZipArchive& archive);

/// Loads the platform of an archive; null when it does not load, which the messages explain.
std::shared_ptr<HMAVPlatform> loadPlatform(const std::string& path);

/// Metadata or index that cannot be read lists nothing, which the messages explain.
TypedMembers typedMembers(const mav_host::ZipArchive& archive);

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

/// "valid", "missing", "mismatch", "no key", "unkeyed".
const char* digestText(mav_host::DigestState state);

}  // namespace cli
