// SPDX-License-Identifier: Apache-2.0
// The protected container: nothing but what was made with the key is accepted.
#include "mav_host/HEXError.h"
#include "mav_host/xp.h"
#include "support.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    namespace xp = isl::iostreams::xp;
    fuzz::useKey();
    const std::string path = fuzz::file("card.xp", data, size);
    const bool container = xp::is_xp_format(path);
    try {
        const std::string content = xp::read(path);
        fuzz::require(container, "read without its magic number");
        xp::write(path, content);
        fuzz::require(xp::read(path) == content, "what was written is read otherwise");
    } catch (const HEXDataException&) {
        // Refused, as it may be.
    }
    return 0;
}
