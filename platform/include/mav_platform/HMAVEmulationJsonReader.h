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

/// Reads emulation metadata in its JSON form.
///
/// A document that is refused fills nothing and is reported: "@74-34@%s%s" (archive, member) when
/// the member cannot be opened, "@74-64@%s%s%s" (archive, member, text) when it is no JSON,
/// "@74-63@%s%s" (path, text) for all else. One that is read adds to what the emulations hold
/// already; they stay owned by the caller.
class MAV_API HMAVEmulationJsonReader {
  public:
    HMAVEmulationJsonReader(std::string path, HMAVEmulations* emulations)
        : path_(std::move(path)), emulations_(emulations) {}
    explicit HMAVEmulationJsonReader(HMAVEmulations* emulations) : emulations_(emulations) {}

    /// Reads the file that the reader was made for. False after a report.
    bool parseJson();
    /// Reads a member of an archive, by path or opened already, into `emulations`. The name is
    /// taken without one leading character that slashes follow ("./x" is "x"). False after a
    /// report.
    bool parseFromDsa(const std::string& archive, const std::string& member,
                      HMAVEmulations* emulations);
    bool parseFromDsa(const mav_host::ZipArchive& archive, const std::string& member,
                      HMAVEmulations* emulations);
    /// True for JSON text whose root has the key "emulations". Reports nothing.
    static bool isJsonValid(const std::string& text);

  private:
    bool parse_(std::string text, const mav_platform::emulation::Place& place) const;

    std::string path_;
    HMAVEmulations* emulations_;
};
