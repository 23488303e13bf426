/* SPDX-License-Identifier: Apache-2.0 */
#include <stdio.h>
#include <string.h>

#include "mav_platform/mav_platform_c.h"

int main(int count, char** arguments) {
    char* json = count == 2 ? hmav_get_platform_json(arguments[1]) : NULL;
    size_t size;
    if (json == NULL) return 3;
    size = strlen(json);
    if (fwrite(json, 1, size, stdout) != size) return 1;
    hmav_free_json_string(json);
    return 0;
}
