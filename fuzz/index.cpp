// SPDX-License-Identifier: Apache-2.0
// The index "vma.json" of an archive: what is read can be extracted, listed on and read again.
#include "archive.h"
#include "mav_platform/HVMAArchive.h"

namespace {

/// An entry without type and name is not written.
auto listed(const HVMAArchive& archive) {
    auto map = archive.getFiles().getMap();
    if (const auto empty = map.find(""); empty != map.end() && empty->second.empty())
        map.erase(empty);
    return map;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = fuzz::archive(
        "index.pka", {{"vma.json", "", fuzz::text(data, size)}, {"a", "", "a"}, {"bd/b", "", "b"}});
    HVMAArchive archive(path);
    if (!archive.parse()) return 0;
    fuzz::requireJson(archive.toJSONString());
    for (const auto& file : archive.getFiles().getMap()) {
        fuzz::refusable([&] { archive.extract(file.first, fuzz::freshDir("out")); });
    }
    archive.archive("FUZZ", "fuzz/member", path);
    HVMAArchive again(path);
    fuzz::require(again.parse(), "the index that was written is refused");
    fuzz::require(again.getFiles().get("FUZZ") == "fuzz/member", "the listed member is lost");
    fuzz::require(listed(again) == listed(archive), "the lists differ");
    return 0;
}
