// SPDX-License-Identifier: Apache-2.0
// Extraction from any archive: nothing is written outside of the directory.
#include "archive.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = fuzz::file("extract.pka", data, size);
    const std::string parent = fuzz::freshDir("extract");
    const std::string dir = parent + "/out";
    fuzz::refusable([&] {
        for (const auto& member : mav_host::ZipArchive(path).members()) {
            fuzz::refusable([&] { HUTZip::extractFile(path, member.name, dir); });
            const std::string folder = member.name.substr(0, member.name.find('/'));
            fuzz::refusable([&] { HUTZip::extractDir(path, folder, dir); });
        }
    });
    for (const auto& entry : std::filesystem::directory_iterator(parent)) {
        fuzz::require(entry.path().filename() == "out", "written beside: " + entry.path().string());
    }
    return 0;
}
