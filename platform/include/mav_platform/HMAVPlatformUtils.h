// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/HMAVDesignIntentStorage.h"
#include "mav_platform/HPLDevice.h"

class HMAVPlatform;

/// Questions over the active list of the process's repository (HMAVPlatformMgr::getGlobal), which
/// owns every platform that is answered.
///
/// Fields are those of the platform's hardware platform, else of its default partition's; a
/// platform without either matches empty arguments alone. Names, vendors, boards, categories and
/// VBNVs are compared exactly, parts and families ignoring case; an empty argument matches
/// everything. Lists are in the order of the active list and appended to `out`. A question about a
/// platform by name finds it as HMAVPlatformMgr::getPlatform does; for an unknown one the answer is
/// null, empty, 0 or false.
class MAV_API HMAVPlatformUtils {
  public:
    using Platforms = HSTVector<HMAVPlatform*>;
    using Texts = HSTVector<std::string>;

    /// Appends of each application root "platforms" and "base_platforms", canonical, whether they
    /// exist or not, then "/opt/tarvek/platforms".
    static void getRootInstallPlatformDirs(Texts& out);
    /// The text equals one of them.
    static bool isInstallPlatformDir(const std::string& dir);
    /// The platform's file lies in a directory that is no installation directory; one below an
    /// installation directory is none.
    static bool isUserPlatform(const std::string& name);
    /// One entry for each platform whose directory is an installation directory, or is none, or is
    /// none while the platform is unified. Duplicates stay.
    static void getAllFactoryPlatformDirs(Texts& out);
    static void getAllUserPlatformDirs(Texts& out);
    static void getUnifiedPlatformDirs(Texts& out);
    /// Without directories removes the platforms of every user directory. With some, adds their
    /// platforms to those that are there and answers what was wrong: "No Platforms Found." and an
    /// empty line when the repository stays empty, then each error text and a line break.
    static std::string setUserPlatformDirs(const Texts& dirs);
    /// The canonical name of each piece between ":", in order.
    static Texts splitToFullDirs(const std::string& text);

    /// The first match; null when there is none. An empty path matches nothing. While the variable
    /// GET_PLATFORM_BY_PATH_DEBUG_VAR is set, the last one shows its comparisons on the console.
    static HMAVPlatform* getPlatform(const std::string& name);
    static HMAVPlatform* getPlatformByQpfmFileBaseName(const std::string& baseName);
    static HMAVPlatform* getPlatformByUniqueName(const std::string& name);
    static HMAVPlatform* getPlatformByFilePath(const std::string& path);
    static void getPlatformsByUniqueName(const std::string& name, Platforms& out);
    static void getPlatformsByVBNV(const std::string& vbnv, Platforms& out);
    /// The latest versions among those.
    static void getLatestPlatformsByVBNV(const std::string& vbnv, Platforms& out);
    static void getPlatformsByPart(const std::string& part, Platforms& out);
    /// The category is one of the platform's target categories, the family the architecture of its
    /// first device's part.
    static void getPlatformsByCategoryFamilyVendorAndBoard(const std::string& category,
                                                           const std::string& family,
                                                           const std::string& vendor,
                                                           const std::string& board,
                                                           Platforms& out);
    /// Platforms that have each intent that is true in `intent`.
    static void getPlatformsByDesignIntent(const HMAVDesignIntentStorage& intent, Platforms& out);

    /// The device and the part of a platform.
    static std::string getDevice(const std::string& name);
    static std::string getFpgaPart(const std::string& name);
    /// The pieces of its first device's part; owned by the platform.
    static const HPLDevice::Part* getFpgaPartAsFields(const std::string& name);
    /// Each part (ignoring case) or board once, in order of first appearance; empty ones are left
    /// out.
    static void getSupportedFpgaParts(Texts& out);
    static void getBoardsByCategoryFamilyAndVendor(const std::string& category,
                                                   const std::string& family,
                                                   const std::string& vendor, Texts& out);
    static void getBoardsByPartAndVendor(const std::string& part, const std::string& vendor,
                                         Texts& out);

    /// All runtimes: "ocl" and "cpp"; as people read them "OpenCL" and "C/C++".
    static void getRuntimes(Texts& out);
    static void getRuntimesByPrettyName(Texts& out);
    /// Those that the platform's software platform lists.
    static void getRuntimes(const std::string& name, Texts& out);
    static void getRuntimesByPrettyName(const std::string& name, Texts& out);
    static std::size_t getNumRuntimes(const std::string& name);
    static bool supportsMultipleRuntimes(const std::string& name);
    /// A system configuration of the platform has a processor group, or one that runs linux.
    static bool isProcessorGroupRelevant(const std::string& name);
    static bool isLinuxRootFSPathRelevant(const std::string& name);
    static bool isFixedPlatform(const std::string& name);
    static bool isExpandablePlatform(const std::string& name);
    static bool isUnifiedPlatform(const std::string& name);
    /// The platform's archive lists hardware platform metadata (a file of type "HPFM").
    static bool isKOBPlatform(const std::string& name);
    /// The platform's type is "pellux".
    static bool isPelluxPlatform(const std::string& name);

    /// No other candidate of the same vendor, board and name has a greater version. Versions
    /// compare by the numbers before and behind their first dot; what is no number counts as 0.
    /// False for null. Without candidates all platforms of the repository count, those with a
    /// description and bare archives.
    static bool isLatestVersion(const HMAVPlatform* platform, const Platforms& candidates);
    static bool isLatestVersion(const HMAVPlatform* platform);
    /// The platforms of the list that are the latest within it, in order.
    static Platforms filterOutOldPlatforms(const Platforms& list);

    /// Appends "c-callable", "shared", "static".
    static void getAllLibraryTypes(Texts& out);
    /// "C-Callable Library", "Shared Library", "Static Library"; any other type as it is.
    static std::string getPrettyNameForLibType(const std::string& type);
    /// "Pellux", "Quorin", for any other type "Mav".
    static std::string getPrettyNameForProductType(const std::string& type);
};
