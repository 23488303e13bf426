// SPDX-License-Identifier: Apache-2.0
// The bytes of a whole hardware archive.
#include "archive.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::useArchive(fuzz::file("card.pka", data, size));
    return 0;
}
