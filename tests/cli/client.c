/* SPDX-License-Identifier: Apache-2.0 */
/* Prints the description of a platform: client FILE [--short]. */
#include <mav_platform/mav_platform_c.h>
#include <stdio.h>
#include <string.h>

int main(int argc, char** argv) {
    char* text;
    size_t size;
    int written;
    if (argc < 2) return 2;
    text = argc > 2 ? hmav_get_short_platform_json(argv[1]) : hmav_get_platform_json(argv[1]);
    if (text == NULL) return 3;
    size = strlen(text);
    written = fwrite(text, 1, size, stdout) == size;
    hmav_free_json_string(text);
    return written ? 0 : 4;
}
