// SPDX-License-Identifier: Apache-2.0
// Metadata that gains a listed file: it lists that file besides what it held.
#include "archive.h"
#include "mav_platform/HPLPlatform.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using mav_platform::json::Document;
    const std::string text = fuzz::text(data, size);
    fuzz::refusable([&] {
        const std::string path = fuzz::archive("listing.pka", {{"pka.json", "", text}});
        HPLPlatform platform;
        platform.setPlatformFile(path);
        platform.archiveFile("BIT", "a/member", path);
        const std::string written = mav_host::ZipArchive(path).read("pka.json", 1U << 30U);
        const Document before(text);
        const Document after(written);
        const auto files = after.root().find("files");
        fuzz::require(files && files->hasChildren(), "it lists no files");
        for (const auto& member : before.root()) {
            if (member.key() == "files") continue;
            const auto kept = after.root().find(member.key());
            fuzz::require(kept.has_value(), "it lost a member");
        }
        platform.archiveFile("BIT", "a/member", path);
        fuzz::require(mav_host::ZipArchive(path).read("pka.json", 1U << 30U) == written,
                      "it lists the file twice");
    });
    return 0;
}
