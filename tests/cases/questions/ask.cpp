// SPDX-License-Identifier: Apache-2.0
// Answers questions through the C++ classes; questions and answers as in ask.c.
#include <mav_platform/mav_platform.h>
#include <mav_platform/mav_platform_c.h>

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <functional>
#include <iostream>
#include <map>
#include <string>

namespace {

using mav_platform::PlatformLoader;
using namespace mav::platform;

/// A code with nothing to say.
struct Nothing {
    int code;
};

/// Keeps the library silent.
class Silence final : public mav_host::ReportScope {
  public:
    ~Silence() override { close(); }

  private:
    void onReport(const ComMsg&) override {}
    void onLines(const std::string&) override {}
};

using Ask = std::function<std::string(PlatformLoader& loader, const std::string& with)>;

std::string get(PlatformLoader& loader, const std::string& with) {
    bool found = false;
    const auto node = NativeObjectService().getObjectsByPath(&loader, with, found);
    if (!found) throw Nothing{HMAV_NOT_FOUND};
    return NativeObjectService::getNodeAsJsonStr(node);
}

std::string dict(PlatformLoader& loader, const std::string& with) {
    bool found = false;
    const auto made = NativeDictService().getAsDict(&loader, with, found);
    if (!found) throw Nothing{HMAV_NOT_FOUND};
    return NativeDictService::getAsJsonStr(made);
}

std::string supported(PlatformLoader& loader, const std::string& with) {
    NativeCatalogService service;
    service.setTestCompilerVersion_(with);
    std::string reason;
    return service.isUnderWarranty(&loader, reason) ? "true" : "false";
}

const std::map<std::string, Ask> PLATFORM = {
    {"get", get},
    {"dict", dict},
    {"supported", supported},
    {"keys", [](auto& loader, auto&) { return NativeKeyService().getAsJsonStr(&loader); }},
    {"transform",
     [](auto& loader, auto& with) { return NativeTransformService().getAsJsonStr(&loader, with); }},
};

std::string askPlatform(const Ask& ask, const std::string& file, const std::string& with) {
    if (!HUTFile::exists(file)) throw Nothing{HMAV_NOT_FOUND};
    PlatformLoader loader(file, mav_platform::HW_METADATA_AUTO);
    if (!loader.load()) throw Nothing{HMAV_NOT_LOADABLE};
    return ask(loader, with);
}

std::string documentation(const std::string& key) {
    const NativeDocService service;
    boost::property_tree::ptree doc;
    if (!service.isValidDocKey(doc, key)) throw Nothing{HMAV_NOT_FOUND};
    return service.getAsJsonStr(service.getDocKeyBranch(doc, key));
}

std::string errors(const std::string& file) {
    const auto findings = mav_platform::PlatformCheck::run(file);
    return std::to_string(std::count_if(findings.begin(), findings.end(), [](const auto& one) {
        return one.severity == mav_platform::CheckFinding::ERROR;
    }));
}

std::string digest(const std::string& file) {
    static const char* const TEXTS[] = {"valid", "missing", "mismatch", "no key", "unkeyed"};
    return std::string("\"") + TEXTS[static_cast<int>(HUTZip::verifyDigest(file))] + "\"";
}

std::string ask(const std::string& what, const std::string& file, const std::string& with) {
    if (what == "doc") return documentation(with);
    if (what == "errors") return errors(file);
    if (what == "digest") return digest(file);
    if (what == "members") return std::to_string(mav_host::ZipArchive(file).members().size());
    return askPlatform(PLATFORM.at(what), file, with);
}

void answer(int code, const std::string& text) {
    std::cout << code << " " << text.size() << "\n" << text << "\n";
}

}  // namespace

int main() {
    for (std::string line; std::getline(std::cin, line);) {
        const std::size_t file = line.find('\t');
        const std::size_t with = line.find('\t', file + 1);
        const Silence silence;
        try {
            answer(HMAV_DONE, ask(line.substr(0, file), line.substr(file + 1, with - file - 1),
                                  line.substr(with + 1)));
        } catch (const Nothing& nothing) {
            answer(nothing.code, "");
        } catch (const mav_platform::PlatformParseException&) {
            answer(HMAV_NOT_LOADABLE, "");
        }
    }
    return 0;
}
