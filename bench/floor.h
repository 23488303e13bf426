// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>

/// Text in one buffer.
struct FloorText {
    std::unique_ptr<char[]> data;
    std::size_t size = 0;
};

/// The document of a benchmark archive with the least work: the file is mapped, its metadata and
/// its hpfm inflated, walked once and written as text into one buffer. No model, no checks of the
/// values; it gives the bytes of hmav_get_platform_json only for archives of generate.py, whose
/// members stand in the document's order. Aborts on any other file.
FloorText floorJson(const char* path);
