// SPDX-License-Identifier: Apache-2.0
// The members of a hardware archive: "=== NAME" on a line of its own begins each. Packing them here
// gets the fuzzer past the checksums.
#include <algorithm>

#include "archive.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text(1, '\n');
    text += fuzz::text(data, size);
    const std::string mark = "\n=== ";
    HSTVector<HUTZip::Source> sources;
    for (std::size_t at = text.find(mark); at != std::string::npos;) {
        const std::size_t name = at + mark.size();
        const std::size_t content = std::min(text.find('\n', name), text.size());
        at = text.find(mark, content);
        const std::size_t end = std::min(at, text.size());
        sources.push_back(
            {text.substr(name, content - name), "", text.substr(content, end - content)});
    }
    fuzz::refusable([&] {
        const std::string path = fuzz::surroundings().dir() + "/members.pka";
        HUTZip::create(path, sources);
        fuzz::useArchive(path);
    });
    return 0;
}
