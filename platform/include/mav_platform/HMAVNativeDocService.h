// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"
#include "mav_platform/HMAVDocService.h"

namespace mav::platform {

/// The documentation of the document's keys, a file that ships with the library. It holds one
/// branch for each class under "documentation_keys", named as the class that writes the object
/// ("HMAVPlatform" for the whole document), with one branch for each member: `meaning`, `type`,
/// `example`, where it applies `unit`, `values` and, for objects and lists of them, `object`, the
/// class of what is inside.
///
/// A documentation key is "CLASS", "CLASS.MEMBER" or an object path into the document, such as
/// "hardwarePlatform.systemClocks[].name". Faults are told on the console.
class MAV_API NativeDocService : public DocService {
  public:
    ~NativeDocService() override;

    /// Reads ROOT/platforms/platform_keys_doc.json, ROOT being the application root, into `doc`.
    /// False when it is not there ("Could not find the <FILE >. Check the install area.  Can not
    /// continue with this task."), does not parse or has no "documentation_keys" ("Exception: " and
    /// the reason, with the file's name).
    bool getFromFile(ptree& doc) const override;
    /// The key's branch under "documentation_keys"; that of the object of any form that the key
    /// lies in; empty when there is none.
    ptree getDocKeyBranch(const ptree& doc, const std::string& key) const override;
    /// True for "all" and "list_keys" and for every key with a branch in `doc`, which is read from
    /// the file first when it is empty. Otherwise tells "Could not find the specified key: <KEY>.",
    /// or "Exception: " and the reason.
    bool isValidDocKey(ptree& doc, const std::string& key) const override;
    /// The node at an object path of `doc` itself.
    ptree getBranch(const ptree& doc, const std::string& key, bool& found) const override;
    std::string getAsJsonStr(const ptree& doc) const override;
};

}  // namespace mav::platform
