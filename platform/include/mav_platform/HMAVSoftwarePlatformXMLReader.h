// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "mav_host/Export.h"

class HMAVSoftwarePlatform;

namespace mav_platform::lmx {
struct SystemConfiguration;
struct BootImages;
struct ProcessorGroup;
}  // namespace mav_platform::lmx
class HMAVSystemConfig;

/// Reads a software platform file (.spfm) into a software platform, which it shares with the
/// caller.
class MAV_API HMAVSoftwarePlatformXMLReader {
  public:
    HMAVSoftwarePlatformXMLReader(std::string path, std::shared_ptr<HMAVSoftwarePlatform> platform);

    /// True when the file was read and applied. False when it does not exist, is not well-formed or
    /// does not match the format: the software platform is then untouched, the reason stands on the
    /// console stream and in getErrorMsg, and "@74-51@%s%d" is reported with path and line.
    bool parseFile();

    /// "Error parsing software platform file: PATH Line number:N. MESSAGE" of the last failure;
    /// empty before one.
    std::string getErrorMsg() const { return errorMsg_; }

  private:
    static void parseConfiguration_(const mav_platform::lmx::SystemConfiguration& element,
                                    HMAVSystemConfig& config);
    static void parseBootImages_(const mav_platform::lmx::BootImages& element,
                                 HMAVSystemConfig& config);
    static void parseProcessorGroup_(const mav_platform::lmx::ProcessorGroup& element,
                                     HMAVSystemConfig& config);
    void report_(const std::string& text, std::size_t line);

    std::string filePath_;
    std::shared_ptr<HMAVSoftwarePlatform> platform_;
    std::string errorMsg_;
};
