// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVSoftwarePlatformXMLReader.h"

#include <algorithm>
#include <ostream>
#include <string_view>
#include <utility>

#include "formats/software/MAVSoftwarePlatformLMX.h"
#include "mav_host/Host.h"
#include "mav_host/Messages.h"
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
        platform_->setDefaultConfigName(configs.defaultConfiguration);
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
    mav_host::report(mav_host::messages::SOFTWARE_NOT_VALID, filePath_, number);
}

void HMAVSoftwarePlatformXMLReader::parseConfiguration_(const lmx::SystemConfiguration& element,
                                                        HMAVSystemConfig& config) {
    config.setName(element.name);
    config.setPrettyName(element.displayName);
    config.setDesc(element.description);
    if (element.prebuilt) config.setPrebuiltData(element.prebuilt->data);
    config.setDefaultProcGrpName(element.defaultProcessorGroup);
    splitRuntimes(element.runtimes,
                  [&](std::string_view key) { config.addRuntime(std::string(key)); });
    if (element.bootImages) parseBootImages_(*element.bootImages, config);
    for (const lmx::ProcessorGroup& group : element.processorGroups) {
        parseProcessorGroup_(group, config);
    }
}

void HMAVSoftwarePlatformXMLReader::parseBootImages_(const lmx::BootImages& element,
                                                     HMAVSystemConfig& config) {
    config.setDefaultBootImgName(element.defaultImage);
    HMAVBootImg& image = *config.addBootImg();
    image.setName(element.image.name);
    image.setBif(element.image.bif);
    image.setReadMe(element.image.readme);
    image.setType(element.image.type);
    image.setImgData(element.image.imageData);
    image.setRootFS(element.image.rootfs);
    image.setBootMode(element.image.bootmode);
    image.setMountPath(element.image.mountPath);
    image.setQemuArgs(element.image.qemuArguments);
    image.setQemuBoot(element.image.qemuBoot);
    image.setQemuDevTree(element.image.qemuDevicetree);
    image.setHwBootBin(element.image.hwBootBin);
}

void HMAVSoftwarePlatformXMLReader::parseProcessorGroup_(const lmx::ProcessorGroup& element,
                                                         HMAVSystemConfig& config) {
    config.addProcessorGroup(element.name);
    HMAVProcessorGroup& group = *config.addProcessorGroup();
    group.setName(element.name);
    group.setPrettyName(element.displayName);
    group.setCpuType(element.cpuType);
    group.setCpuInstance(element.cpuInstance);
    group.setArch(element.architecture);
    group.setOSName(element.os.name);
    group.setOSPrettyName(element.os.displayName);
    group.setIncludePaths(element.os.includePaths);
    group.setLibraryPaths(element.os.libraryPaths);
    group.setCompilerOptions(element.os.compilerOptions);
    group.setLinkerOptions(element.os.linkerOptions);
}
