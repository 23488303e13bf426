// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

#include "mav_host/Export.h"

class HMAVPlatform;
class HMAVReconfigurablePartition;

namespace mav_platform::lmx {
struct FileReference;
struct HardwarePlatforms;
struct Platform;
struct ReconfigurablePartition;
struct SoftwarePlatforms;
}  // namespace mav_platform::lmx

/// Reads a platform description (.qpfm) into a platform: its identity and the paths of the files
/// that it refers to. The files themselves are neither opened nor looked for.
class MAV_API HMAVPlatformXMLReader {
  public:
    /// `platform` stays owned by the caller and must outlive the reader. Throws
    /// HEXFileNotFoundException carrying `path` when it is empty or nothing exists there.
    HMAVPlatformXMLReader(std::string path, HMAVPlatform* platform);

    /// Reads and applies the description. True on success. False when the file is unreadable, not
    /// well-formed or not of the format: two console lines, `getErrorMsg` and the message
    /// "@74-9@%s" with the path then tell why. What the platform received before the fault stays in
    /// it: the identity when only mav:hardwarePlatforms is missing, else nothing.
    bool parseFile();

    /// The texts of every failure so far, one line each; empty without one.
    std::string getErrorMsg() const { return errorMsg_; }
    /// The latest failure for people who know the file: "line 3: " and the fault, which stands
    /// alone when it concerns no line. Empty without one.
    const std::string& getReason() const { return reason_; }

  private:
    using FileReference = mav_platform::lmx::FileReference;

    void parsePlatform_(const mav_platform::lmx::Platform& root);
    void parseHardwarePlatforms_(const mav_platform::lmx::HardwarePlatforms& element);
    void parseAnonHardwarePlatform_(const mav_platform::lmx::HardwarePlatforms& element);
    void parseHardwarePlatform_(const FileReference& element);
    void parseHardwareEmulationPlatform_(const FileReference& element);
    void parseHardwareEmulationOnlyPlatform_(const FileReference& element);
    void parseReconfigurablePartition_(const mav_platform::lmx::ReconfigurablePartition& element);
    void parseRPAnonHardwarePlatform_(const mav_platform::lmx::ReconfigurablePartition& element,
                                      HMAVReconfigurablePartition& partition);
    void parseSoftwarePlatforms_(const mav_platform::lmx::SoftwarePlatforms& element);

    std::string join_(const FileReference& element) const;
    std::string joinCanonical_(const FileReference& element) const;
    void report_(const std::string& text, std::size_t line);

    HMAVPlatform* platform_;
    std::string filePath_;
    std::string errorMsg_;
    std::string reason_;
};
