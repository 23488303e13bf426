// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "mav_host/Export.h"

class HMAVEmulations;

namespace mav_host {
class ZipArchive;
}
namespace mav_platform::emulation {
struct Place;
}

/// Reads emulation metadata in its XML form.
///
/// A document that is refused fills nothing and is reported: "@74-34@%s%s" (archive, member) when
/// the member cannot be opened, "@74-24@%s%d" (file, line) when it does not bind. The file of a
/// member is ARCHIVE/MEMBER; the line of a file that cannot be read is 0. A document that is read
/// adds to what the emulations hold already; they stay owned by the caller.
class MAV_API HMAVEmulationXMLReader {
  public:
    HMAVEmulationXMLReader(std::string path, HMAVEmulations* emulations)
        : path_(std::move(path)), emulations_(emulations) {}

    /// Reads the file that the reader was made for. False after a report.
    bool parseXml();
    /// Reads a member of an archive, by path or opened already, into `emulations`. The name is
    /// taken without one leading character that slashes follow ("./x" is "x"). False after a
    /// report.
    bool parseFromDsa(const std::string& archive, const std::string& member,
                      HMAVEmulations* emulations);
    bool parseFromDsa(const mav_host::ZipArchive& archive, const std::string& member,
                      HMAVEmulations* emulations);

  private:
    bool parse_(const std::string& text, const mav_platform::emulation::Place& place) const;

    std::string path_;
    HMAVEmulations* emulations_;
};
