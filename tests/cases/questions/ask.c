/* SPDX-License-Identifier: Apache-2.0 */
/* Answers questions through the C interface. Standard input holds a line for each: what is asked,
 * the file and an argument, with tabs between them. For each it prints the code, the size of the
 * answer in bytes, a line break, the answer, which is JSON, and a line break. */
#include <mav_platform/mav_platform_c.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void answer(int code, const char* text) {
    printf("%d %lu\n%s\n", code, (unsigned long)strlen(text), text);
}

static void answer_text(int code, char* text) {
    answer(code, text != NULL ? text : "");
    hmav_free_text(text);
}

static void ask_platform(const char* what, const char* file, const char* with) {
    hmav_platform* platform = NULL;
    char* text = NULL;
    int supported = 0;
    int code = hmav_platform_open(NULL, file, NULL, &platform, NULL);
    if (code != HMAV_DONE) {
        answer(code, "");
        return;
    }
    if (strcmp(what, "get") == 0) {
        code = hmav_platform_get(platform, with, HMAV_FORM_JSON, &text, NULL, NULL);
    } else if (strcmp(what, "dict") == 0) {
        code = hmav_platform_dict(platform, with, NULL, 0, &text, NULL);
    } else if (strcmp(what, "transform") == 0) {
        code = hmav_platform_transform(platform, with, &text, NULL);
    } else if (strcmp(what, "keys") == 0) {
        code = hmav_platform_keys(platform, &text, NULL);
    } else if (strcmp(what, "supported") == 0) {
        hmav_support_options options = {0};
        options.size = sizeof options;
        options.tool_release = with;
        code = hmav_platform_support(platform, &options, &supported, NULL, NULL);
        answer(code, supported ? "true" : "false");
        hmav_platform_free(platform);
        return;
    } else if (strcmp(what, "verdict") == 0) {
        hmav_support_options options = {0};
        options.size = sizeof options;
        options.tool_release = with;
        code = hmav_platform_verdict(platform, &options, &text, NULL);
    } else {
        code = HMAV_INTERNAL;
    }
    answer_text(code, text);
    hmav_platform_free(platform);
}

/* The number of members or the digest of an archive. */
static void ask_archive(const char* what, const char* file) {
    static const char* const DIGESTS[] = {"\"valid\"", "\"missing\"", "\"mismatch\"", "\"no key\"",
                                          "\"unkeyed\""};
    hmav_archive* archive = NULL;
    char* text = NULL;
    int digest = 0;
    char number[32];
    int code = hmav_archive_open(NULL, file, &archive, NULL);
    if (code == HMAV_DONE && strcmp(what, "digest") == 0) {
        code = hmav_archive_verify(archive, NULL, &digest, NULL, NULL);
        answer(code, code == HMAV_DONE ? DIGESTS[digest] : "");
    } else if (code == HMAV_DONE && (strcmp(what, "files") == 0 || strcmp(what, "verify") == 0)) {
        code = (*what == 'f' ? hmav_archive_listing : hmav_archive_soundness)(archive, NULL, &text,
                                                                              NULL);
        answer_text(code, text);
    } else {
        sprintf(number, "%lu", (unsigned long)hmav_archive_count(archive));
        answer(code, code == HMAV_DONE ? number : "");
    }
    hmav_archive_free(archive);
}

static int is_about_archives(const char* what) {
    return strcmp(what, "digest") == 0 || strcmp(what, "members") == 0 ||
           strcmp(what, "files") == 0 || strcmp(what, "verify") == 0;
}

static void ask(const char* what, const char* file, const char* with) {
    char* text = NULL;
    size_t errors = 0;
    char number[32];
    int code;
    if (strcmp(what, "list") == 0) {
        code = hmav_find(NULL, &file, 1, NULL, &text, NULL);
        answer_text(code, text);
    } else if (strcmp(what, "doc") == 0) {
        code = hmav_key_documentation(NULL, with, &text, NULL);
        answer_text(code, text);
    } else if (strcmp(what, "errors") == 0) {
        code = hmav_validate(NULL, file, NULL, NULL, NULL, &errors, NULL);
        sprintf(number, "%lu", (unsigned long)errors);
        answer(code, number);
    } else if (is_about_archives(what)) {
        ask_archive(what, file);
    } else {
        ask_platform(what, file, with);
    }
}

int main(void) {
    static char line[65536];
    while (fgets(line, sizeof line, stdin) != NULL) {
        char* const file = strchr(line, '\t');
        char* const with = file != NULL ? strchr(file + 1, '\t') : NULL;
        if (with == NULL) return 2;
        *file = '\0';
        *with = '\0';
        with[1 + strcspn(with + 1, "\n")] = '\0';
        ask(line, file + 1, with + 1);
    }
    return 0;
}
