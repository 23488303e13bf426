// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

#include "mav_host/Export.h"

class HMAVHardwareBusInterface;
class HPLPlatform;

namespace mav_platform::lmx {
struct HpfmBusInterface;
struct HpfmComponent;
struct HpfmDeviceInfo;
struct HpfmNocConnectivity;
struct HpfmParameter;
struct HpfmRepository;
struct HpfmSystemClocks;
}  // namespace mav_platform::lmx

/// Fills a hardware platform from hardware platform metadata (hpfm).
///
/// A document that does not bind fills nothing; the failure is printed on the host's console
/// stream, reported and kept for getErrorMsg. The text is bound once, however many operations in a
/// row ask for it. The platform stays owned by the caller and outlives the reader.
class MAV_API HMAVHpfmReader {
  public:
    /// `text` is the document that parseStream reads. Prints "CRITICAL WARNING: Empty hpfm string
    /// passed in" when it is empty.
    HMAVHpfmReader(std::string text, HPLPlatform* platform);
    ~HMAVHpfmReader();
    HMAVHpfmReader(const HMAVHpfmReader&) = delete;
    HMAVHpfmReader& operator=(const HMAVHpfmReader&) = delete;

    /// The file that parseFile reads.
    void setPlatformFile(std::string path) { path_ = std::move(path); }
    /// Reads the file into the platform: device, clocks, bus interfaces, parameters and NoC
    /// records. False after "Specified hardware platform file doens't exists\n", or after "Error
    /// parsing hardware platform file: PATH: TEXT. Line number:N" with "@74-12@".
    bool parseFile();
    /// The same for the text; an empty text fills nothing and is no failure. False after "Error
    /// parsing hardware platform stream from DSA", the line, the text and the platform's archive,
    /// with "@74-31@".
    bool parseStream();
    /// Read only the bus interfaces with their address segments, or only the NoC records, of what
    /// was parsed last; of the text when nothing was. False when that does not bind.
    bool parseBusInterfaces();
    bool parseNocConnectivity();
    /// Text of the last failure; empty when nothing has failed.
    const std::string& getErrorMsg() const { return errorMsg_; }
    /// True once a bus interface named "hbm_memory_subsystem" has been read.
    bool isHBMPresent() const { return hbmPresent_; }

  private:
    enum class Source { NONE, PATH, TEXT };

    bool isBound_();
    void bindText_();
    void fail_(std::string text);
    void parseRepository_();
    void parseDeviceInfo_(const mav_platform::lmx::HpfmDeviceInfo& element);
    void parseSystemClocks_(const mav_platform::lmx::HpfmSystemClocks& element);
    void parseBusInterface_(const mav_platform::lmx::HpfmBusInterface& element);
    void parseParameter_(const mav_platform::lmx::HpfmParameter& element);
    void parseNocConnectivity_(const mav_platform::lmx::HpfmNocConnectivity& element);
    void setHBMPresent_() { hbmPresent_ = true; }
    void updateHBMBankInfo_(const mav_platform::lmx::HpfmBusInterface& element,
                            const HMAVHardwareBusInterface& bus);
    template <class Take>
    void walk_(Take takeComponent);

    std::string text_;
    HPLPlatform* platform_;
    std::string path_;
    Source source_ = Source::NONE;                                 ///< what was parsed last
    std::unique_ptr<mav_platform::lmx::HpfmRepository> document_;  ///< null when that did not bind
    std::string errorMsg_;
    bool hbmPresent_ = false;
};
