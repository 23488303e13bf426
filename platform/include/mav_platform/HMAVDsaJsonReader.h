// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "mav_host/Export.h"
#include "mav_platform/HwMetadataMode.h"

class HMAVDsaJsonReaderImpl;
class HPLPlatform;

namespace mav_platform {
class OpenArchives;
}

/// Fills a hardware platform from the JSON metadata member of its archive.
///
/// Answers are bools; the details go to the message manager. A failure leaves the platform partly
/// filled. The platform stays owned by the caller and outlives the reader.
class MAV_API HMAVDsaJsonReader {
  public:
    using Mode = mav_platform::HwMetadataMode;

    /// The library hands in the archives that a load has opened; without them the reader opens
    /// archives for itself.
    explicit HMAVDsaJsonReader(HPLPlatform* platform,
                               mav_platform::OpenArchives* archives = nullptr);
    ~HMAVDsaJsonReader();
    HMAVDsaJsonReader(const HMAVDsaJsonReader&) = delete;
    HMAVDsaJsonReader& operator=(const HMAVDsaJsonReader&) = delete;

    /// True when the mode admits JSON and the archive holds a metadata member; `member` receives
    /// the name of the one to read, the alternative before the primary one. Sets the platform file
    /// to the canonical path unless the mode is XML. Reports "@74-66@%s" for an empty or missing
    /// path.
    bool canParse(const std::string& path, Mode mode, std::string& member);
    /// The same for the metadata of the hardware-emulation platform inside the archive.
    bool canParseHwEmu(const std::string& path, Mode mode, std::string& member);

    /// Reads the archive's metadata with what its emulation and hpfm members add. False after a
    /// report: "@74-64@%s%s%s" (path, member, text) for text that is no JSON, "@74-63@%s%s" (path,
    /// text) for all else.
    bool parseDSA(const std::string& path, Mode mode);
    /// The same for the hardware-emulation platform inside the archive; silent when there is none.
    bool parseHwEmuPKA(const std::string& path, Mode mode);
    /// Reads the member that canParse has named; reports as parseDSA does.
    bool parseMember(const std::string& path, const std::string& member);

    /// What ended the last reading that failed, as reported; empty before.
    const std::string& getErrorMsg() const;

    /// Reads metadata that stands in a file of its own, or in a text. Reports as parseDSA does,
    /// with the file (or "text") in place of the archive.
    bool parseFile(const std::string& path);
    bool parseJsonString(const std::string& text);

    /// Name of the archive's hpfm member, with its folder; empty when the platform lists none.
    std::string getHpfmFile() const;
    /// Text of that member; empty when it is absent, or cannot be read or is larger than an XML
    /// document may be, reported as "@74-31@" with "Error parsing hardware platform stream from
    /// DSA: " and the reason on the console.
    std::string getHpfmStr();
    /// Fill the bus interfaces, or the NoC records, from the text of an hpfm document. A text that
    /// does not bind is reported as HMAVHpfmReader does, fills nothing and answers false.
    bool readHpfmBusInterfaces(std::string text);
    bool readHpfmNocConnectivity(std::string text);

  private:
    std::unique_ptr<HMAVDsaJsonReaderImpl> impl_;
};
