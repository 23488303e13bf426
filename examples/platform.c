/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Tells about a platform in a few lines. Usage: platform_c FILE
 *
 * Build it with what pkg-config says:
 *   gcc platform.c $(pkg-config --cflags --libs mav-platform) -o platform_c
 */
#include <mav_platform/mav_platform_c.h>
#include <stdio.h>

/* Every failure comes with what is wrong and what to do. The error is ours to free. */
static int fail(hmav_error* error) {
    fprintf(stderr, "%s. %s\n", hmav_error_text(error), hmav_error_hint(error));
    hmav_error_free(error);
    return 1;
}

/* What the library tells on its way, such as a reference that leads nowhere. */
static void on_report(const hmav_report* report, void* user) {
    (void)user;
    if (report->severity >= HMAV_SEVERITY_WARNING) fprintf(stderr, "%s\n", report->text);
}

/* Prints what is at a path of the description; what is not there is left out. */
static int print(hmav_platform* platform, const char* label, const char* path, const char* unit) {
    char* text = NULL;
    hmav_error* error = NULL;
    int code = hmav_platform_get(platform, path, HMAV_FORM_TEXT, &text, NULL, &error);
    if (code == HMAV_DONE) printf("%-12s%s%s\n", label, text, unit);
    hmav_free_text(text);
    if (code == HMAV_DONE || code == HMAV_NOT_FOUND) {
        hmav_error_free(error);
        return 0;
    }
    return fail(error);
}

static int print_verdict(hmav_platform* platform) {
    /* Fields that stay 0 mean the default; the size tells which ones there are. */
    hmav_support_options options = {0};
    int supported = 0;
    char* reason = NULL;
    hmav_error* error = NULL;
    options.size = sizeof options;
    options.tool_release = "2026.1";
    if (hmav_platform_support(platform, &options, &supported, &reason, &error) != HMAV_DONE)
        return fail(error);
    printf("%-12s%s%s%s\n", "in 2026.1", supported ? "supported" : "not supported",
           reason[0] != '\0' ? ": " : "", reason);
    hmav_free_text(reason);
    return 0;
}

int main(int argc, char** argv) {
    hmav_session_options options = {0};
    hmav_session* session = NULL;
    hmav_platform* platform = NULL;
    hmav_error* error = NULL;
    int failed;
    if (argc != 2) {
        fprintf(stderr, "Usage: %s FILE\n", argv[0]);
        return 2;
    }
    /* A session says where reports go; without one (NULL) there is silence. */
    options.size = sizeof options;
    options.on_report = on_report;
    if (hmav_session_new(&options, &session, &error) != HMAV_DONE) return fail(error);
    if (hmav_platform_open(session, argv[1], NULL, &platform, &error) != HMAV_DONE) {
        hmav_session_free(session);
        return fail(error);
    }
    failed = print(platform, "name", "hardwarePlatform.name", "") ||
             print(platform, "board", "hardwarePlatform.board.name", "") ||
             print(platform, "clock", "hardwarePlatform.systemClocks[0].name", "") ||
             print(platform, "frequency", "hardwarePlatform.systemClocks[0].frequency", " MHz") ||
             print_verdict(platform);
    /* Handles may be freed in any order. */
    hmav_platform_free(platform);
    hmav_session_free(session);
    return failed;
}
