// SPDX-License-Identifier: Apache-2.0
#include "formats/software/MAVSoftwarePlatformLMX.h"

namespace mav_platform::lmx {
namespace {

using mav_host::xml::Format;
using mav_host::xml::Items;
using mav_host::xml::Need;

Items<OperatingSystem> operatingSystem() {
    using Os = OperatingSystem;
    Items<Os> items;
    items.attribute("mav:name", &Os::name)
        .attribute("mav:displayName", &Os::displayName)
        .attribute("mav:includePaths", &Os::includePaths)
        .attribute("mav:libraryPaths", &Os::libraryPaths)
        .attribute("mav:compilerOptions", &Os::compilerOptions)
        .attribute("mav:linkerOptions", &Os::linkerOptions);
    for (const char* name :
         {"mav:bspIncludePaths", "mav:bspLibraryPaths", "mav:sysRoot", "mav:hypervisorGuest",
          "mav:bspConfig", "mav:bspRepo", "mav:crossCompilerType", "mav:ldscript",
          "mav:libraryNames", "mav:osDependency", "mav:toolConfig"}) {
        items.attribute(name, &Os::accepted);
    }
    return items;
}

Items<ProcessorGroup> processorGroup() {
    using Group = ProcessorGroup;
    Items<Group> items;
    items.line(&Group::line)
        .column(&Group::column)
        .attribute("mav:name", &Group::name, Need::Required)
        .attribute("mav:displayName", &Group::displayName)
        .attribute("mav:cpuType", &Group::cpuType)
        .attribute("mav:cpuInstance", &Group::cpuInstance)
        .attribute("mav:architecture", &Group::architecture)
        .element("mav:os", &Group::os, operatingSystem(), Need::Required);
    return items;
}

Items<BootImages> bootImages() {
    using Image = BootImage;
    Items<Image> image;
    image.attribute("mav:name", &Image::name)
        .attribute("mav:type", &Image::type)
        .attribute("mav:bif", &Image::bif)
        .attribute("mav:imageData", &Image::imageData)
        .attribute("mav:bootmode", &Image::bootmode)
        .attribute("mav:rootfs", &Image::rootfs)
        .attribute("mav:mountPath", &Image::mountPath)
        .attribute("mav:readme", &Image::readme)
        .attribute("mav:qemuArguments", &Image::qemuArguments)
        .attribute("mav:qemuBoot", &Image::qemuBoot)
        .attribute("mav:qemuDevicetree", &Image::qemuDevicetree)
        .attribute("mav:hwBootBin", &Image::hwBootBin);
    Items<BootImages> items;
    items.attribute("mav:default", &BootImages::defaultImage)
        .element("mav:image", &BootImages::image, image, Need::Required);
    return items;
}

Items<SystemConfiguration> systemConfiguration() {
    using Config = SystemConfiguration;
    Items<Prebuilt> prebuilt;
    prebuilt.attribute("mav:data", &Prebuilt::data);
    Items<Config> items;
    items.line(&Config::line)
        .column(&Config::column)
        .attribute("mav:name", &Config::name, Need::Required)
        .attribute("mav:displayName", &Config::displayName)
        .attribute("mav:defaultProcessorGroup", &Config::defaultProcessorGroup)
        .attribute("mav:runtimes", &Config::runtimes)
        .element("mav:description", &Config::description)
        .element("mav:prebuilt", &Config::prebuilt, prebuilt)
        .element("mav:processorGroup", &Config::processorGroups, processorGroup())
        .element("mav:bootImages", &Config::bootImages, bootImages());
    return items;
}

Items<SoftwarePlatform> softwarePlatform() {
    using Platform = SoftwarePlatform;
    using Configs = SystemConfigurations;
    Items<Configs> configs;
    configs.line(&Configs::line)
        .column(&Configs::column)
        .attribute("mav:defaultConfiguration", &Configs::defaultConfiguration)
        .element("mav:configuration", &Configs::configurations, systemConfiguration());
    Items<Platform> items;
    items.attribute("mav:name", &Platform::name)
        .attribute("mav:vendor", &Platform::vendor)
        .attribute("mav:version", &Platform::version)
        .attribute("mav:schemaVersion", &Platform::schemaVersion)
        .attribute("mav:library", &Platform::library)
        .element("mav:description", &Platform::description)
        .element("mav:systemConfigurations", &Platform::systemConfigurations, configs,
                 Need::Required);
    return items;
}

}  // namespace

const Format<SoftwarePlatform>& softwarePlatformFormat() {
    static const Format<SoftwarePlatform> format("mav:platform", softwarePlatform());
    return format;
}

}  // namespace mav_platform::lmx
