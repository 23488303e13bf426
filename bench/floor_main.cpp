// SPDX-License-Identifier: Apache-2.0
#include <cstdio>

#include "floor.h"

int main(int, char** arguments) {
    const FloorText text = floorJson(arguments[1]);
    return std::fwrite(text.data.get(), 1, text.size, stdout) == text.size ? 0 : 1;
}
