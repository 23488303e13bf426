// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVProcessorGroup.h"

#include "mav_platform/JSONObjectWriter.h"

HMAVProcessorGroup::~HMAVProcessorGroup() = default;

void HMAVProcessorGroup::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("prettyName", getPrettyName());
    writer.addKey("cpuType", cpuType_);
    writer.addKey("cpuInstance", cpuInstance_);
    writer.addKey("osPrettyName", osPrettyName_);
    writer.addKey("osName", osName_);
    writer.addKey("osIncludePaths", includePaths_);
    writer.addKey("osLibraryPaths", libraryPaths_);
    writer.addKey("osCompilerOptions", compilerOptions_);
    writer.addKey("osLinkerOptions", linkerOptions_);
    writer.addKey("osHypervisorGuest", hypervisorGuest_);
    writer.addKey("osBSPIncludePaths", bspIncludePaths_);
    writer.addKey("osBSPLibraryPaths", bspLibraryPaths_);
    writer.addKey("osSysRoot", sysRoot_);
}
