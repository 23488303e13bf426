// SPDX-License-Identifier: Apache-2.0
#include "check/CheckSoftware.h"

#include <algorithm>
#include <set>

#include "check/CheckValues.h"
#include "check/CheckXml.h"
#include "formats/software/MAVSoftwarePlatformLMX.h"
#include "mav_host/Letters.h"

namespace mav_platform::check {
namespace {

class SoftwareCheck {
  public:
    SoftwareCheck(const std::string& path, bool whole, Report& report)
        : path_(path), whole_(whole), report_(report) {}

    void run(const lmx::SoftwarePlatform& document) {
        const lmx::SystemConfigurations& configs = document.systemConfigurations;
        if (whole_ && configs.configurations.empty()) {
            report_.add("software-empty", {path_, configs.line, configs.column},
                        "the software platform has no configuration");
        }
        std::set<std::string> names;
        for (const lmx::SystemConfiguration& config : configs.configurations) {
            if (whole_) content(config);
            unique({path_, config.line, config.column}, "configuration", config.name, names);
            std::set<std::string> groups;
            for (const lmx::ProcessorGroup& group : config.processorGroups) {
                unique({path_, group.line, group.column}, "processor group", group.name, groups);
            }
            standard({path_, config.line, config.column}, "processor group",
                     config.defaultProcessorGroup, groups);
            if (config.bootImages) {
                standard({path_, config.line, config.column}, "boot image",
                         config.bootImages->defaultImage, {config.bootImages->image.name});
            }
        }
        standard({path_, configs.line, configs.column}, "configuration",
                 configs.defaultConfiguration, names);
    }

  private:
    void content(const lmx::SystemConfiguration& config) {
        const Place place{path_, config.line, config.column};
        if (config.processorGroups.empty()) {
            report_.add("software-empty", place,
                        "the configuration " + shown(config.name) + " has no processor group");
        }
        std::string_view rest = config.runtimes;
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find_first_of(" \t\r\n,;"), rest.size());
            const std::string runtime = mav_host::lowerCase(std::string(rest.substr(0, end)));
            checkWord(runtime, "the runtime", place, {"ocl", "cpp", "opencl", "c/c++"}, true,
                      report_);
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        for (const lmx::ProcessorGroup& group : config.processorGroups) {
            checkWord(mav_host::lowerCase(group.os.name), "the operating system",
                      {path_, group.line, group.column}, {"linux", "standalone"}, true, report_);
        }
    }

    void unique(const Place& place, const char* kind, const std::string& name,
                std::set<std::string>& names) {
        if (name.empty() || names.insert(name).second) return;
        report_.add("duplicate", place,
                    std::string("the ") + kind + " " + shown(name) + " stands more than once");
    }
    void standard(const Place& place, const char* kind, const std::string& name,
                  const std::set<std::string>& names) {
        if (!whole_ || name.empty() || names.count(name) > 0) return;
        report_.add("software-default", place,
                    std::string("the default ") + kind + " " + shown(name) +
                        " is not there; the first one stands in for it");
    }

    const std::string& path_;
    /// The document has no fault. What is missing from one that has may be what the fault concerns.
    const bool whole_;
    Report& report_;
};

}  // namespace

void checkSoftware(std::string_view text, const std::string& path, Report& report) {
    bool whole = true;
    const auto document = bindDocument(lmx::softwarePlatformFormat(), text, path, report, &whole);
    if (document) SoftwareCheck(path, whole, report).run(*document);
}

}  // namespace mav_platform::check
