// SPDX-License-Identifier: Apache-2.0
#include "formats/description/MAVPlatformLMX.h"

namespace mav_platform::lmx {
namespace {

using mav_host::xml::Format;
using mav_host::xml::Items;
using mav_host::xml::Need;

Items<FileReference> fileReference() {
    Items<FileReference> items;
    items.line(&FileReference::line)
        .column(&FileReference::column)
        .attribute("mav:path", &FileReference::path, Need::Required)
        .attribute("mav:name", &FileReference::name, Need::Required);
    return items;
}

Items<ReconfigurablePartition> reconfigurablePartition(const Items<FileReference>& file) {
    using Element = ReconfigurablePartition;
    Items<Element> items;
    items.line(&Element::line)
        .column(&Element::column)
        .attribute("mav:id", &Element::id, Need::Required)
        .element("mav:hardwarePlatform", &Element::hardwarePlatform, file)
        .element("mav:hwEmuPlatform", &Element::hwEmuPlatform, file)
        .choice({{"mav:hardwarePlatform", "mav:hwEmuPlatform?"}, {"mav:hwEmuPlatform"}});
    return items;
}

Items<HardwarePlatforms> hardwarePlatforms(const Items<FileReference>& file) {
    using Element = HardwarePlatforms;
    Items<Element> items;
    items.line(&Element::line)
        .column(&Element::column)
        .attribute("mav:defaultRP", &Element::defaultRP)
        .element("mav:hardwarePlatform", &Element::hardwarePlatform, file)
        .element("mav:hwEmuPlatform", &Element::hwEmuPlatform, file)
        .element("mav:reconfigurablePartition", &Element::reconfigurablePartitions,
                 reconfigurablePartition(file))
        .choice({{"mav:hardwarePlatform", "mav:hwEmuPlatform?"},
                 {"mav:hwEmuPlatform"},
                 {"mav:reconfigurablePartition"}});
    return items;
}

Items<SoftwarePlatforms> softwarePlatforms(const Items<FileReference>& file) {
    Items<SoftwarePlatforms> items;
    items.element("mav:softwarePlatform", &SoftwarePlatforms::softwarePlatform, file,
                  Need::Required);
    return items;
}

Items<Platform> platform() {
    const Items<FileReference> file = fileReference();
    Items<Platform> items;
    items.attribute("mav:vendor", &Platform::vendor, Need::Required)
        .attribute("mav:library", &Platform::library, Need::Required)
        .attribute("mav:name", &Platform::name, Need::Required)
        .attribute("mav:version", &Platform::version, Need::Required)
        .attribute("mav:schemaVersion", &Platform::schemaVersion)
        .element("mav:description", &Platform::description)
        .element("mav:hardwarePlatforms", &Platform::hardwarePlatforms, hardwarePlatforms(file))
        .element("mav:softwarePlatforms", &Platform::softwarePlatforms, softwarePlatforms(file))
        .line(&Platform::line)
        .column(&Platform::column);
    return items;
}

}  // namespace

const Format<Platform>& platformFormat() {
    static const Format<Platform> format("mav:platform", platform());
    return format;
}

}  // namespace mav_platform::lmx
