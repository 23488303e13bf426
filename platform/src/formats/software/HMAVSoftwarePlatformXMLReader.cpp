// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVSoftwarePlatformXMLReader.h"

#include <algorithm>
#include <ostream>
#include <string_view>
#include <utility>

#include "formats/software/MAVSoftwarePlatformLMX.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/HI18N.h"
#include "mav_host/Host.h"
#include "mav_platform/HMAVSoftwarePlatform.h"

namespace lmx = mav_platform::lmx;

namespace {

/// Hands each piece between blanks, "," and ";" to `take`.
template <class Take>
void splitRuntimes(std::string_view list, Take take) {
    constexpr std::string_view SEPARATORS = " \t\r\n,;";
    for (std::size_t start = 0; start < list.size();) {
        const std::size_t end = std::min(list.find_first_of(SEPARATORS, start), list.size());
        if (end != start) take(list.substr(start, end - start));
        start = end + 1;
    }
}

}  // namespace

HMAVSoftwarePlatformXMLReader::HMAVSoftwarePlatformXMLReader(
    std::string path, std::shared_ptr<HMAVSoftwarePlatform> platform)
    : filePath_(std::move(path)), platform_(std::move(platform)) {}

bool HMAVSoftwarePlatformXMLReader::parseFile() {
    try {
        const lmx::SoftwarePlatform root = lmx::softwarePlatformFormat().parseFile(filePath_);
        const lmx::SystemConfigurations& configs = root.systemConfigurations;
        platform_->setDefaultConfigName(HI18N::convert(configs.defaultConfiguration));
        for (const lmx::SystemConfiguration& element : configs.configurations) {
            parseConfiguration_(element, *platform_->addSystemConfig());
        }
        return true;
    } catch (const mav_host::xml::BindingError& error) {
        report_(error.what(), error.line());
        return false;
    }
}

void HMAVSoftwarePlatformXMLReader::report_(const std::string& text, std::size_t line) {
    const std::string head = "Error parsing software platform file: " + filePath_;
    const std::string number = std::to_string(line);
    const std::string detail = "Line number:" + number + ". " + text;
    mav_host::console() << head << "\n" << detail << "\n" << std::flush;
    errorMsg_ = head + " " + detail;
    ComMsgMgr::sendMsg(2, "platform", ComMsgMgr::ERROR, "@74-51@%s%d", {filePath_, number});
}

void HMAVSoftwarePlatformXMLReader::parseConfiguration_(const lmx::SystemConfiguration& element,
                                                        HMAVSystemConfig& config) {
    config.setName(HI18N::convert(element.name));
    config.setPrettyName(HI18N::convert(element.displayName));
    config.setDesc(HI18N::convert(element.description));
    if (element.prebuilt) config.setPrebuiltData(HI18N::convert(element.prebuilt->data));
    config.setDefaultProcGrpName(HI18N::convert(element.defaultProcessorGroup));
    splitRuntimes(element.runtimes,
                  [&](std::string_view key) { config.addRuntime(HI18N::convert(key)); });
    if (element.bootImages) parseBootImages_(*element.bootImages, config);
    for (const lmx::ProcessorGroup& group : element.processorGroups) {
        parseProcessorGroup_(group, config);
    }
}

void HMAVSoftwarePlatformXMLReader::parseBootImages_(const lmx::BootImages& element,
                                                     HMAVSystemConfig& config) {
    config.setDefaultBootImgName(HI18N::convert(element.defaultImage));
    HMAVBootImg& image = *config.addBootImg();
    image.setName(HI18N::convert(element.image.name));
    image.setBif(HI18N::convert(element.image.bif));
    image.setReadMe(HI18N::convert(element.image.readme));
    image.setType(HI18N::convert(element.image.type));
    image.setImgData(HI18N::convert(element.image.imageData));
    image.setRootFS(HI18N::convert(element.image.rootfs));
    image.setBootMode(HI18N::convert(element.image.bootmode));
    image.setMountPath(HI18N::convert(element.image.mountPath));
    image.setQemuArgs(HI18N::convert(element.image.qemuArguments));
    image.setQemuBoot(HI18N::convert(element.image.qemuBoot));
    image.setQemuDevTree(HI18N::convert(element.image.qemuDevicetree));
    image.setHwBootBin(HI18N::convert(element.image.hwBootBin));
}

void HMAVSoftwarePlatformXMLReader::parseProcessorGroup_(const lmx::ProcessorGroup& element,
                                                         HMAVSystemConfig& config) {
    config.addProcessorGroup(HI18N::convert(element.name));
    HMAVProcessorGroup& group = *config.addProcessorGroup();
    group.setName(HI18N::convert(element.name));
    group.setPrettyName(HI18N::convert(element.displayName));
    group.setCpuType(HI18N::convert(element.cpuType));
    group.setCpuInstance(HI18N::convert(element.cpuInstance));
    group.setArch(HI18N::convert(element.architecture));
    group.setOSName(HI18N::convert(element.os.name));
    group.setOSPrettyName(HI18N::convert(element.os.displayName));
    group.setIncludePaths(HI18N::convert(element.os.includePaths));
    group.setLibraryPaths(HI18N::convert(element.os.libraryPaths));
    group.setCompilerOptions(HI18N::convert(element.os.compilerOptions));
    group.setLinkerOptions(HI18N::convert(element.os.linkerOptions));
}
