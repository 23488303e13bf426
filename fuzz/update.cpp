// SPDX-License-Identifier: Apache-2.0
// Adding and replacing members of any archive: it takes them whole and keeps the others, or stays.
#include <map>

#include "archive.h"

namespace {

/// The readable members but those of these names; of equal names the first counts.
std::map<std::string, std::string> others(const std::string& path, const std::string& replaced) {
    const mav_host::ZipArchive archive(path);
    std::map<std::string, std::string> contents;
    for (const auto& member : archive.members()) {
        if (member.name == replaced || member.name == "new") continue;
        fuzz::refusable([&] {
            contents.emplace(member.name, archive.read(member.name, std::uint64_t{1} << 22));
        });
    }
    return contents;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = fuzz::file("update.pka", data, size);
    fuzz::refusable([&] {
        const auto members = mav_host::ZipArchive(path).members();
        const std::string first = members.empty() ? "new" : members.front().name;
        const auto before = others(path, first);
        try {
            HUTZip::addWithDigest(path, {{"new", "", "1"}, {first, "", "2"}});
        } catch (const HEXError&) {
            fuzz::require(fuzz::content(path) == fuzz::text(data, size), "refused and yet changed");
            return;
        }
        fuzz::require(HUTZip::verifyDigest(path) == mav_host::DigestState::VALID, "a bad digest");
        fuzz::require(others(path, first) == before, "another member changed");
        fuzz::require(mav_host::ZipArchive(path).read(first, 1) == "2", "it was not replaced");
    });
    return 0;
}
