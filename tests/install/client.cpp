// SPDX-License-Identifier: Apache-2.0
// A C++ program against the installed library: loads an archive, writes its description, and
// catches the library's exceptions by class. Usage: client ARCHIVE. Exit code 0: all is as said.
#include <mav_host/HEXError.h>
#include <mav_platform/HMAVJSONUtils.h>
#include <mav_platform/HMAVPlatform.h>
#include <mav_platform/JSONObjectWriter.h>
#include <mav_platform/PlatformLoader.h>
#include <mav_platform/PlatformParseException.h>
#include <mav_platform/mav_platform_c.h>

#include <boost/property_tree/ptree.hpp>
#include <exception>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

namespace {

using mav_platform::JSONObjectWriter;
using mav_platform::PlatformLoader;

int failures = 0;

void expect(bool truth, const char* what) {
    if (truth) return;
    std::cerr << "client.cpp: " << what << '\n';
    ++failures;
}

std::string viaObjects(const std::string& archive) {
    PlatformLoader loader(archive, PlatformLoader::HW_METADATA_AUTO);
    const std::shared_ptr<HMAVPlatform> platform = loader.load();
    expect(platform != nullptr, "the archive loads");
    if (!platform) return {};
    expect(loader.load() == platform, "a second load gives the same platform");
    JSONObjectWriter writer;
    writer.writeObject(*platform);
    std::ostringstream text;
    writer.write(text);
    return text.str();
}

std::string viaC(const std::string& archive) {
    const std::unique_ptr<char, void (*)(char*)> text(hmav_get_platform_json(archive.c_str()),
                                                      hmav_free_json_string);
    return text ? text.get() : "";
}

template <class Exception, class Call>
void expectThrow(Call call, const char* what) {
    try {
        call();
        expect(false, what);
    } catch (const Exception& error) {
        expect(std::string(error.what()).size() > 10, "an exception carries a sentence");
    } catch (const std::exception&) {
        expect(false, what);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const std::string text = viaObjects(argv[1]);
    expect(!text.empty() && text == viaC(argv[1]), "objects and C entry point give the same bytes");
    expectThrow<HEXAlgException>([] { HMAVJSONUtils::readJson(std::string()); },
                                 "the empty JSON text throws HEXAlgException");
    expectThrow<HEXFileNotFoundException>(
        [] { PlatformLoader("/nonexistent/none.qpfm", PlatformLoader::HW_METADATA_AUTO); },
        "a missing description throws HEXFileNotFoundException");
    if (failures == 0) std::cout << "client.cpp: all well\n";
    return failures == 0 ? 0 : 1;
}
