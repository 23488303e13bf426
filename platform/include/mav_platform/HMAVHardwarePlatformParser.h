// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"

class HMAVHardwarePlatform;
class HMAVPlatform;
class HPLPlatform;

/// Finds bare archives, those that no platform description accompanies, and turns each into a
/// hardware platform in a container of its own. Nothing is kept between calls.
class MAV_API HMAVHardwarePlatformParser {
  public:
    using Platforms = HSTVector<HMAVHardwarePlatform*>;
    /// Containers under the canonical path of their archive.
    using Containers = std::unordered_map<std::string, HMAVPlatform*>;

    /// What one search has read for descriptions, by canonical path: hardware platforms that were
    /// read without a report and that read nothing on demand. A bare archive among them is not read
    /// again; its container shares the hardware platform.
    using Parsed = std::unordered_map<std::string, std::shared_ptr<HPLPlatform>>;

    /// Scans each directory that exists, in order, all levels deep, without following links to
    /// directories; then merges what was found into `platforms`: an older entry with the unique
    /// name of a new one goes, and the new ones follow at the end. With `filterByVbnv` the first
    /// archive of each VBNV counts ("@74-17@%s%s%s" with VBNV, dropped file, kept file), and an
    /// archive found twice counts once ("@74-23@%s").
    ///
    /// Each new container is put into `seen`, filtered out or not, and belongs to the caller. An
    /// archive that is in `seen` is not read again; the hardware platform of its container counts.
    /// An archive that cannot be read is reported and gives a hardware platform without identity.
    /// A directory that cannot be walked to its end is reported by "@74-5@%s"; what was found up to
    /// there counts.
    static void loadBareHardwarePlatforms(const HSTVector<std::string>& directories,
                                          Platforms& platforms, Containers& seen,
                                          bool filterByVbnv);
    /// A directory that was not searched to its end.
    struct Unsearched {
        std::string dir;
        std::string reason;
    };
    /// The same; appends the directories that it reports by "@74-5@%s".
    static void loadBareHardwarePlatforms(const HSTVector<std::string>& directories,
                                          Platforms& platforms, Containers& seen, bool filterByVbnv,
                                          HSTVector<Unsearched>& unsearched);
    static void loadBareHardwarePlatforms(const HSTVector<std::string>& directories,
                                          Platforms& platforms, Containers& seen, bool filterByVbnv,
                                          HSTVector<Unsearched>& unsearched, const Parsed& parsed);

    /// Reads one archive into a new hardware platform of `platform`, which owns it and has yet to
    /// attach it. An archive whose metadata cannot be read is reported, its hardware platform is
    /// answered as far as it came, and `platform` is marked bad with the reason. Null for a null
    /// container alone.
    static HMAVHardwarePlatform* addPlatform(const std::string& file, HMAVPlatform* platform);
    /// The same; adds to `parsed` what may be shared.
    static HMAVHardwarePlatform* addPlatform(const std::string& file, HMAVPlatform* platform,
                                             Parsed& parsed);

  private:
    static std::shared_ptr<HPLPlatform> parseDSAFile_(const std::string& file,
                                                      HMAVPlatform* platform);
    static bool parseBareDSAFiles_(const std::string& dir, Platforms& found, Containers& seen,
                                   HSTVector<Unsearched>& unsearched, const Parsed& parsed);
    static void parseBareDSAFile_(const std::string& path, Platforms& found, Containers& seen,
                                  const Parsed& parsed);
    static void filterByVBNV_(const Platforms& candidates, Platforms& accepted);
    static void addPlatforms_(const Platforms& additions, Platforms& platforms);
};
