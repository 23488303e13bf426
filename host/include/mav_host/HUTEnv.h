// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"

/// What the library asks of its environment. A tool replaces it with `HUTEnv::setProvider`.
class MAV_API HUTEnvProvider {
  public:
    virtual ~HUTEnvProvider();
    /// The variable's text, null when it is not set. Valid until the variable changes.
    virtual const char* getEnv(const std::string& name) const = 0;
    /// Application roots in the host's order; the first is the application root. Appends.
    virtual void getAppRootList(HSTVector<std::string>& out) const = 0;
    /// The private temporary directory of this process (mode 0700), made on first use and removed
    /// at normal exit; a forked child gets its own. Throws HEXUserException when none can be made.
    virtual std::string getTmpDir() const = 0;
    /// The tool release, such as 2026 and 1. Major 0 means a versionless tool.
    virtual unsigned getMajor() const = 0;
    virtual unsigned getMinor() const = 0;
};

/// The host's environment service.
///
/// The default provider reads MAV_APP_ROOT (roots joined by ":"; without it the installation's own
/// share directory), MAV_TOOL_RELEASE (such as 2026.1; without it the release compiled in) and
/// TMPDIR (parent of the temporary directory).
class MAV_API HUTEnv {
  public:
    static const char* getEnv(const std::string& name);
    /// The first application root; empty when the host has none.
    static std::string getHDIAppRoot();
    /// Appends every application root in the host's order.
    static void getRDIAppRootList(HSTVector<std::string>& out);
    static std::string getHDITmpDir();
    static unsigned getMajor();
    static unsigned getMinor();
    /// The product name last set; empty until one is set. Cleared by `setProvider`.
    static std::string getProductName();
    static void setProductName(const std::string& name);

    /// Two numbers joined by a dot, such as 2026.1.
    static bool isRelease(std::string_view text);
    /// The sentence about a MAV_TOOL_RELEASE that is no release; empty when it is one, not set, or
    /// the host has
    /// another provider. Such a variable otherwise counts as far as it is a number.
    static std::string getReleaseFault();

    /// Sets the variable TZ to ":/etc/localtime", which means the same zone, unless it is set. The
    /// C library otherwise asks the system about that file for each member of an archive that is
    /// opened, which takes half the time of opening a usual one. For the start of a program, before
    /// there are other threads; the library itself never changes the environment.
    static void pinTimeZone();

    /// Replaces the provider; null restores the default one. It stays owned by the caller and must
    /// outlive its installation. Answers the provider that was in force (null: the default one).
    static HUTEnvProvider* setProvider(HUTEnvProvider* provider);
};
