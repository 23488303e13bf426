// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "mav_host/Export.h"
#include "mav_platform/HMAVTransformService.h"

namespace mav::platform {

/// A transform specification is a JSON object. Each member makes the member of the same name in the
/// result; its value is either an object path, or {"each": PATH, "select": {…}}, which makes a list
/// with one object for every element found at PATH, `select` being a specification whose paths
/// begin at the element. What is not there is left out. docs/services.md has examples.
///
/// All throw HEXAlgException "The transform specification is malformed " and the place: "in line 3:
/// …" or "at 'clocks.select.name': …"; the forms for platforms throw as NativeObjectService too.
class MAV_API NativeTransformService : public TransformService {
  public:
    ~NativeTransformService() override;

    /// The transform checked and as pretty JSON text.
    std::string getTransformSpecAsJsonStr(const std::string& spec) const override;
    /// What the transform makes of the platform's document.
    ptree getObjectsBySpec(const std::string& platformFile, const std::string& spec) const override;
    ptree getObjectsBySpec(PlatformLoader* loader, const std::string& spec) const override;
    /// The same as pretty JSON text.
    std::string getAsJsonStr(const std::string& platformFile,
                             const std::string& spec) const override;
    std::string getAsJsonStr(PlatformLoader* loader, const std::string& spec) const override;
};

}  // namespace mav::platform
