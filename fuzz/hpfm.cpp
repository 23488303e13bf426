// SPDX-License-Identifier: Apache-2.0
// Hardware platform metadata: its reader, its rewriter, and the tree that the rewriter keeps whole.
#include "mav_host/xml/BindingError.h"
#include "mav_host/xml/Tree.h"
#include "mav_platform/HMAVHpfmReader.h"
#include "mav_platform/HMAVHpfmUtl.h"
#include "mav_platform/HPLPlatform.h"
#include "support.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using mav_host::xml::Tree;
    const std::string text = fuzz::text(data, size);
    HPLPlatform platform;
    const bool ok = HMAVHpfmReader(text, &platform).parseStream();
    fuzz::requireJson(platform.toJSONString());

    const std::string path = fuzz::file("card.hpfm", data, size);
    HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(path);
    HPLPlatform rewritten;
    HMAVHpfmReader reader("", &rewritten);
    reader.setPlatformFile(path);
    if (ok && size > 0) fuzz::require(reader.parseFile(), "rewritten into what does not bind");
    try {
        const std::string written = Tree::parse(text).write();
        fuzz::require(Tree::parse(written).write() == written, "written twice and not the same");
    } catch (const mav_host::xml::BindingError&) {
        // Refused, as it may be.
    }
    return 0;
}
