/* SPDX-License-Identifier: Apache-2.0 */
/* A C program against the installed library. Usage: client ARCHIVE. Exit code 0: all is as said. */
#include <mav_platform/mav_platform_c.h>
#include <stdio.h>
#include <string.h>

static int failures = 0;

static void expect(int truth, const char* what) {
    if (truth) return;
    fprintf(stderr, "client.c: %s\n", what);
    ++failures;
}

static void ask_whole(const char* archive) {
    char* plain = hmav_get_platform_json(archive);
    char* tried = NULL;
    char* error = NULL;
    expect(plain != NULL && plain[0] == '{', "the whole description is a JSON object");
    expect(plain != NULL && plain[strlen(plain) - 1] == '\n', "the text ends with a line break");
    expect(hmav_try_get_platform_json(archive, &tried, &error) == 0, "the trying form answers 0");
    expect(error == NULL, "no error text on success");
    expect(plain && tried && strcmp(plain, tried) == 0, "both forms give the same bytes");
    hmav_free_json_string(plain);
    hmav_free_json_string(tried);
}

static void ask_short(const char* archive) {
    char* text = hmav_get_short_platform_json(archive);
    expect(text != NULL && strstr(text, "\"uniqueName\"") != NULL, "the short form names it");
    hmav_free_json_string(text);
}

static void ask_for_nothing(void) {
    char* text = NULL;
    char* error = NULL;
    expect(hmav_try_get_platform_json("/nonexistent/none.pka", &text, &error) == 1,
           "a missing file answers 1");
    expect(text == NULL && error != NULL && strstr(error, "none.pka") != NULL,
           "the error text names the file");
    hmav_free_json_string(error);
    hmav_free_json_string(NULL);
}

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    expect(strlen(hmav_get_version()) > 0, "the library tells its version");
    ask_whole(argv[1]);
    ask_short(argv[1]);
    ask_for_nothing();
    if (failures == 0) puts("client.c: all well");
    return failures == 0 ? 0 : 1;
}
