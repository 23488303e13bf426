/* SPDX-License-Identifier: Apache-2.0 */
#ifndef MAV_PLATFORM_MAV_PLATFORM_C_H
#define MAV_PLATFORM_MAV_PLATFORM_C_H

/*
 * The platform library for callers that know nothing of C++. Compiles as C89, C11 and C++.
 * docs/c.md shows how the pieces go together.
 *
 * Results: functions that can fail answer a code of hmav_code and hand results out through
 * pointers, which are null, 0 or empty after a failure. None of them lets an exception out.
 *
 * Errors: the last argument takes an error object or is null when the caller wants the code alone.
 * It is set by every call: to null when the code is HMAV_DONE, else to an object that the caller
 * gives to hmav_error_free.
 *
 * Memory: texts that a function hands out through a char** belong to the caller, who gives them to
 * hmav_free_text, exactly once; free() is wrong. Handles have a free function each, which ignores
 * null. Texts behind a const char* belong to the handle or struct that they come from.
 *
 * Texts: paths and names of members are bytes as the file system and the archive have them; JSON is
 * UTF-8, pretty-printed, with a line break at its end. All end with a null byte.
 *
 * Structs begin with their size in bytes. Of option structs the caller sets it (sizeof) and sets
 * every other field that is not wanted to 0, which is the default; a null pointer is all defaults.
 * Structs may grow at their end: a field of a struct that the library hands out is there when
 * `size` covers it.
 *
 * Callbacks get the caller's pointer `user` last and run on the thread of the call that they are
 * for. They may call the library. They must not throw or jump out.
 *
 * Threads: calls on different handles may run at the same time, and so may all calls that share a
 * session. One platform, archive or reader is used by one thread at a time.
 *
 * Lifetimes: a session may be freed before what was opened with it; its callback is then still
 * called, so `user` must outlive all of them. A reader may outlive its archive.
 */

#include <stddef.h>
#include <stdint.h>

#include "mav_host/Export.h"

#ifdef __cplusplus
#define HMAV_NOEXCEPT noexcept
extern "C" {
#else
#define HMAV_NOEXCEPT
#endif

/* --- Version ---------------------------------------------------------------------------------- */

/* Version of this header. It grows by one with each release that adds names; what an older header
 * promises stays true. */
#define HMAV_API_VERSION 1

/* Version of the interface that the loaded library offers: at least that of the header, or the
 * library is too old. */
MAV_API int hmav_api_version(void) HMAV_NOEXCEPT;

/* Version of the library, such as "1.0.0". Static storage: not to be freed. */
MAV_API const char* hmav_get_version(void) HMAV_NOEXCEPT;

/* --- Codes and errors ------------------------------------------------------------------------- */

typedef enum hmav_code {
    HMAV_DONE = 0,
    HMAV_WRONG_ARGUMENT = 1, /* null, an unknown option, a malformed specification */
    HMAV_NOT_FOUND = 2,      /* no such file, path of a document, key or member */
    HMAV_NOT_LOADABLE = 3,   /* a file is there and is unusable */
    HMAV_REFUSED = 4,      /* possible but not allowed: a digest that does not vouch, a wrong key */
    HMAV_CANNOT_WRITE = 5, /* what was there before is there still */
    HMAV_OUT_OF_MEMORY = 6,
    HMAV_STOPPED = 7, /* a callback asked for it */
    HMAV_INTERNAL = 8 /* a fault of the library */
} hmav_code;

typedef enum hmav_severity {
    HMAV_SEVERITY_NOTE = 0,
    HMAV_SEVERITY_WARNING = 1,
    HMAV_SEVERITY_CRITICAL_WARNING = 2,
    HMAV_SEVERITY_ERROR = 3
} hmav_severity;

/* What the library tells on its way. A line that it prints is a report with an empty id. */
typedef struct hmav_report {
    size_t size;
    int severity;     /* hmav_severity */
    const char* id;   /* such as "74-14" */
    const char* text; /* one sentence, with the arguments in it */
    size_t argument_count;
    const char* const* arguments; /* such as the file that it is about */
} hmav_report;

typedef struct hmav_error hmav_error;

/* All take null, which stands for no error: HMAV_DONE, "", 0, null. What they give lives as long as
 * the error. */
MAV_API int hmav_error_code(const hmav_error* error) HMAV_NOEXCEPT;
/* What is wrong: a sentence that names the file, member, key or line. Of foreign names in it, what
 * is not printable is shown as \xNN. */
MAV_API const char* hmav_error_text(const hmav_error* error) HMAV_NOEXCEPT;
/* What to do: a sentence. */
MAV_API const char* hmav_error_hint(const hmav_error* error) HMAV_NOEXCEPT;
/* What was reported during the call, in order; null for an index that is too large. */
MAV_API size_t hmav_error_report_count(const hmav_error* error) HMAV_NOEXCEPT;
MAV_API const hmav_report* hmav_error_report(const hmav_error* error, size_t index) HMAV_NOEXCEPT;
MAV_API void hmav_error_free(hmav_error* error) HMAV_NOEXCEPT;

/* The code in words, such as "not found". Static storage. */
MAV_API const char* hmav_code_text(int code) HMAV_NOEXCEPT;

/* Frees a text of any function here; null is ignored. */
MAV_API void hmav_free_text(char* text) HMAV_NOEXCEPT;

/* --- Sessions --------------------------------------------------------------------------------- */

/* Where reports go. Wherever a session is asked for, null is one in silence. Reports of a session
 * never reach the process's message sink or console. */
typedef struct hmav_session hmav_session;

/* The report is valid during the call alone. */
typedef void (*hmav_report_callback)(const hmav_report* report, void* user);

typedef struct hmav_session_options {
    size_t size;
    hmav_report_callback on_report; /* null: silence */
    void* user;
} hmav_session_options;

MAV_API int hmav_session_new(const hmav_session_options* options, hmav_session** session,
                             hmav_error** error) HMAV_NOEXCEPT;
MAV_API void hmav_session_free(hmav_session* session) HMAV_NOEXCEPT;

/* Told how far long work has come: `what` is the file or member at work, `done` goes from 0 to 1,
 * and is below 0 where nobody knows. Any answer but 0 ends the work with HMAV_STOPPED. */
typedef int (*hmav_progress_callback)(const char* what, double done, void* user);

typedef struct hmav_progress_options {
    size_t size;
    hmav_progress_callback on_progress;
    void* user;
} hmav_progress_options;

/* --- Platforms -------------------------------------------------------------------------------- */

/* A loaded platform. */
typedef struct hmav_platform hmav_platform;

/* How the metadata of hardware archives is read. */
typedef enum hmav_metadata_mode {
    HMAV_METADATA_AUTO = 0,         /* JSON, the "alt_" member before the primary one, else XML */
    HMAV_METADATA_PRIMARY_JSON = 1, /* JSON when the primary member is there, else XML */
    HMAV_METADATA_XML = 2
} hmav_metadata_mode;

typedef struct hmav_open_options {
    size_t size;
    int metadata_mode;
} hmav_open_options;

/* Loads a platform with all that it refers to. The extension tells what the file is: ".pka" and
 * ".dsa" are hardware archives, ".spfm" is a software platform, anything else a description.
 * HMAV_NOT_FOUND when nothing is at the path, HMAV_NOT_LOADABLE with the reports that tell why. */
MAV_API int hmav_platform_open(const hmav_session* session, const char* path,
                               const hmav_open_options* options, hmav_platform** platform,
                               hmav_error** error) HMAV_NOEXCEPT;
MAV_API void hmav_platform_free(hmav_platform* platform) HMAV_NOEXCEPT;

/* The whole description as JSON. Every scalar in it is a text: frequencies in MHz, periods and
 * latencies in ns, sizes and addresses in bytes unless the key documentation says otherwise. */
MAV_API int hmav_platform_document(hmav_platform* platform, char** json,
                                   hmav_error** error) HMAV_NOEXCEPT;
/* An object with uniqueName, file and description; empty ones are left out. */
MAV_API int hmav_platform_short(hmav_platform* platform, char** json,
                                hmav_error** error) HMAV_NOEXCEPT;

typedef enum hmav_form {
    HMAV_FORM_TEXT = 0, /* a single value as its text, without quotes and line break; else JSON */
    HMAV_FORM_JSON = 1
} hmav_form;

/* What is at a path of the description, such as
 * "hardwarePlatforms.hardwarePlatform.systemClocks[0].name"; "[*]" and ".." stand for every element
 * of a list. A path that begins with hardwarePlatform finds the hardware platform wherever the
 * description holds it. The empty path is the whole. `size` takes the length of the text in bytes,
 * which may hold null bytes, and may be null. HMAV_NOT_FOUND when nothing is there. */
MAV_API int hmav_platform_get(hmav_platform* platform, const char* path, int form, char** text,
                              size_t* size, hmav_error** error) HMAV_NOEXCEPT;
/* {"keys": [{"path": "systemClocks[].name", "count": "2"}, ...]}: every path that occurs. */
MAV_API int hmav_platform_keys(hmav_platform* platform, char** json,
                               hmav_error** error) HMAV_NOEXCEPT;
/* Every value below a path in one flat object, by its path from there. With names (`name_count`
 * above 0) only those. HMAV_NOT_FOUND when nothing is there. */
MAV_API int hmav_platform_dict(hmav_platform* platform, const char* path, const char* const* names,
                               size_t name_count, char** json, hmav_error** error) HMAV_NOEXCEPT;
/* What a transform specification makes of the description, see docs/services.md.
 * HMAV_WRONG_ARGUMENT names the place of a fault in it. */
MAV_API int hmav_platform_transform(hmav_platform* platform, const char* specification, char** json,
                                    hmav_error** error) HMAV_NOEXCEPT;

typedef struct hmav_summary_options {
    size_t size;
    int with_support;    /* not 0: also "warranty" and "warrantyReason" */
    int with_partitions; /* not 0: also "reconfigurablePartitions" */
} hmav_summary_options;

/* The summary: a flat object whose members always stand in the same order. */
MAV_API int hmav_platform_summary(hmav_platform* platform, const hmav_summary_options* options,
                                  char** json, hmav_error** error) HMAV_NOEXCEPT;

typedef enum hmav_support_question {
    HMAV_SUPPORT_PLATFORM = 0,
    HMAV_SUPPORT_PRE_SYNTHESIS = 1, /* as a platform in the pre-synthesis state */
    HMAV_SUPPORT_ARCHIVE = 2        /* as a device support archive */
} hmav_support_question;

typedef struct hmav_support_options {
    size_t size;
    int question;             /* hmav_support_question */
    const char* tool_release; /* such as "2026.1"; null: that of the host */
    const char* product;      /* that the support list is for; null: that of the host */
} hmav_support_options;

/* Whether the tool release supports the platform: 1 or 0. `reason` is empty when there is nothing
 * to explain, and may be null. A platform whose array-engine project is unreadable is not
 * supported. */
MAV_API int hmav_platform_support(hmav_platform* platform, const hmav_support_options* options,
                                  int* supported, char** reason, hmav_error** error) HMAV_NOEXCEPT;
/* The same verdict with the rule and the list entry that decided, as an item of what `mav check
 * --json` prints: {"file": ..., "verdict": "unsupported", "rule": ..., "reason": ..., ...}. */
MAV_API int hmav_platform_verdict(hmav_platform* platform, const hmav_support_options* options,
                                  char** json, hmav_error** error) HMAV_NOEXCEPT;

/* What differs between two platforms, as `mav diff --json` prints it: {"schema": "mav.diff/1",
 * "differ": true, "changes": [{"kind": "changed", "path": ..., "from": ..., "to": ...}, ...]} with
 * the kinds changed, added and removed. Reports go to the session of the first. */
MAV_API int hmav_difference(hmav_platform* first, hmav_platform* second, char** json,
                            hmav_error** error) HMAV_NOEXCEPT;

/* The documentation of a key: "CLASS", "CLASS.MEMBER" or a path into the document, such as
 * "hardwarePlatform.systemClocks[].frequency"; with null the names of all classes, as the branches
 * of one object with all their documentation. HMAV_NOT_FOUND for an unknown key. */
MAV_API int hmav_key_documentation(const hmav_session* session, const char* key, char** json,
                                   hmav_error** error) HMAV_NOEXCEPT;

/* --- Directories ------------------------------------------------------------------------------ */

/* Null and empty fields match everything. */
typedef struct hmav_find_options {
    size_t size;
    const char* part;   /* ignoring case */
    const char* board;  /* exactly */
    const char* vendor; /* exactly */
    const char* type;   /* "pellux", "quorin", "acceleration" or "undefined" */
    int latest;         /* not 0: only the latest versions */
} hmav_find_options;

/* The platforms in the directories, and with a count of 0 in the default ones, as `mav list --json
 * --all` prints them: {"schema": "mav.list/1", "platforms": [{"name": ..., "file": ...}, ...],
 * "refused": [{"file": ..., "reason": ...}, ...], ...}; docs/outputs.md tells of the shape.
 * HMAV_NOT_FOUND for a directory that is not there. */
MAV_API int hmav_find(const hmav_session* session, const char* const* directories, size_t count,
                      const hmav_find_options* options, char** json,
                      hmav_error** error) HMAV_NOEXCEPT;

/* --- Validation ------------------------------------------------------------------------------- */

/* Something that is not as it should be, or may not be meant, and where. */
typedef struct hmav_finding {
    size_t size;
    const char* file; /* the path; a member of an archive stands behind it and a "/" */
    size_t line;      /* from 1; 0: about the file as a whole */
    size_t column;    /* in bytes from 1; 0: only the line is known */
    int severity;     /* HMAV_SEVERITY_ERROR, _WARNING or _NOTE */
    const char* rule; /* its name; docs/rules holds a page for each */
    const char* text; /* one sentence without a full stop */
    size_t more;      /* not 0: so many more of the rule are not shown; this one stands for them */
} hmav_finding;

/* The finding is valid during the call alone. Any answer but 0 ends the work with HMAV_STOPPED. */
typedef int (*hmav_finding_callback)(const hmav_finding* finding, void* user);

/* Looks at the platform file and all that it refers to. The callback gets every finding, file by
 * file and by line inside a file, once all have been looked at; before each file, progress is told.
 * `errors` takes how many are errors, and may be null. A bad file is a finding and no failure. */
MAV_API int hmav_validate(const hmav_session* session, const char* path,
                          hmav_finding_callback on_finding, void* user,
                          const hmav_progress_options* progress, size_t* errors,
                          hmav_error** error) HMAV_NOEXCEPT;

/* --- Archives --------------------------------------------------------------------------------- */

/* An archive opened for reading: its directory as it was then. */
typedef struct hmav_archive hmav_archive;

typedef struct hmav_member {
    size_t size;
    const char* name;  /* path inside the archive, as stored */
    const char* types; /* those that it is listed under, joined by ","; empty: it is not listed */
    uint64_t bytes;    /* size that the directory claims, in bytes */
    uint64_t packed;   /* size inside the archive, in bytes */
} hmav_member;

MAV_API int hmav_archive_open(const hmav_session* session, const char* path, hmav_archive** archive,
                              hmav_error** error) HMAV_NOEXCEPT;
MAV_API void hmav_archive_free(hmav_archive* archive) HMAV_NOEXCEPT;

/* In the archive's order. What it gives lives as long as the archive and until the next
 * hmav_archive_add. Types are read from metadata and index at the first question for a member. */
MAV_API size_t hmav_archive_count(const hmav_archive* archive) HMAV_NOEXCEPT;
MAV_API int hmav_archive_member(hmav_archive* archive, size_t index, const hmav_member** member,
                                hmav_error** error) HMAV_NOEXCEPT;

/* Members with types and sizes, and the digest, as `mav files --json` prints them: {"schema":
 * "mav.files/1", "file": ..., "digest": "valid", "members": [{"path": ..., "types": [...],
 * "size": ...}, ...]}. Every member is read for the digest. */
MAV_API int hmav_archive_listing(hmav_archive* archive, const hmav_progress_options* progress,
                                 char** json, hmav_error** error) HMAV_NOEXCEPT;

/* A member read in pieces, in constant memory. */
typedef struct hmav_reader hmav_reader;

MAV_API int hmav_reader_open(hmav_archive* archive, const char* member, hmav_reader** reader,
                             hmav_error** error) HMAV_NOEXCEPT;
/* Reads up to `room` bytes. `got` of 0 is the end. HMAV_NOT_LOADABLE for a member that is damaged
 * or not of the size that it claims, which may show behind pieces that were given already. */
MAV_API int hmav_reader_read(hmav_reader* reader, void* buffer, size_t room, size_t* got,
                             hmav_error** error) HMAV_NOEXCEPT;
MAV_API void hmav_reader_free(hmav_reader* reader) HMAV_NOEXCEPT;

/* Extracts what `what` names, a type, a member or a folder of members, below the directory, which
 * is made. `made` takes the path of what was made, and may be null. Names that climb out and links
 * on the way are refused. */
MAV_API int hmav_archive_extract(hmav_archive* archive, const char* what, const char* directory,
                                 const hmav_progress_options* progress, char** made,
                                 hmav_error** error) HMAV_NOEXCEPT;

typedef struct hmav_add_options {
    size_t size;
    const char* member; /* path inside the archive; null: that of the type, else the file's name */
    int resign;         /* not 0: give a new digest, whatever the present one says */
    hmav_progress_callback on_progress;
    void* user;
} hmav_add_options;

/* Adds a file under a type, lists it, and puts a new digest over the archive, all in one step.
 * HMAV_REFUSED when the present digest does not vouch for the members. The handle then stands for
 * the new archive. */
MAV_API int hmav_archive_add(hmav_archive* archive, const char* type, const char* file,
                             const hmav_add_options* options, hmav_error** error) HMAV_NOEXCEPT;

typedef enum hmav_digest {
    HMAV_DIGEST_VALID = 0,
    HMAV_DIGEST_MISSING = 1,
    HMAV_DIGEST_MISMATCH = 2, /* a member, the order or the digest was changed, or another key */
    HMAV_DIGEST_NO_KEY = 3,   /* it was made with a key, and the host has none */
    HMAV_DIGEST_UNKEYED = 4   /* it was made without a key, while the host has one */
} hmav_digest;

/* Reads every member and compares the digest; refuses one that would inflate beyond all measure.
 * `faults` takes a line for each member that cannot be
 * read or is listed and absent; it is empty when there is none, and may be null. */
MAV_API int hmav_archive_verify(hmav_archive* archive, const hmav_progress_options* progress,
                                int* digest, char** faults, hmav_error** error) HMAV_NOEXCEPT;
/* The same as `mav verify --json` prints it: {"schema": "mav.verify/1", "file": ..., "good": true,
 * "digest": "valid", "faults": [...]}. */
MAV_API int hmav_archive_soundness(hmav_archive* archive, const hmav_progress_options* progress,
                                   char** json, hmav_error** error) HMAV_NOEXCEPT;

typedef struct hmav_pack_options {
    size_t size;
    int without_metadata; /* not 0: pack also a folder without a metadata member */
    hmav_progress_callback on_progress;
    void* user;
} hmav_pack_options;

/* Packs the files below a folder into an archive that ends in .pka or .dsa, with a digest. The same
 * files give the same bytes. Files and folders whose name begins with a dot are left out; links and
 * devices are refused. */
MAV_API int hmav_pack(const hmav_session* session, const char* directory, const char* archive,
                      const hmav_pack_options* options, hmav_error** error) HMAV_NOEXCEPT;

/* --- Protected files -------------------------------------------------------------------------- */

/* Enciphers and deciphers a file with the host's key (see MAV_KEY_FILE in docs/archives.md). A file
 * at the target is replaced only when the new one is complete; a deciphered one is for its owner
 * alone. HMAV_REFUSED without a key, for another one, and for a file that is protected already. */
MAV_API int hmav_protect(const hmav_session* session, const char* source, const char* target,
                         hmav_error** error) HMAV_NOEXCEPT;
MAV_API int hmav_unprotect(const hmav_session* session, const char* source, const char* target,
                           hmav_error** error) HMAV_NOEXCEPT;

/* --- The first interface ---------------------------------------------------------------------- */

/*
 * What these report goes to the process's message sink and console, so one thread at a time where
 * those are replaced.
 *
 * The hmav_get_... functions let C++ exceptions pass: std::logic_error for a null path,
 * HEXFileNotFoundException for a description file that does not exist,
 * mav_platform::PlatformParseException for one that does not parse; HEXAlgException,
 * HEXDataException and HEXUserException for an array-engine project, or another file inside an
 * archive, that cannot be extracted or parsed once the platform is loaded;
 * boost::property_tree::json_parser_error for an object that JSON cannot hold; std::bad_alloc. All
 * derive from std::exception. A caller that cannot let an exception pass uses any other function.
 */

/* The whole description of the platform file (description, hardware archive or software platform).
 * Null, never an empty text, when the platform cannot be loaded; the reasons have then gone to the
 * message sink. */
MAV_API char* hmav_get_platform_json(const char* path);

/* A short object with uniqueName, file and description, empty ones left out; null as above. */
MAV_API char* hmav_get_short_platform_json(const char* path);

/* As hmav_free_text. */
MAV_API void hmav_free_json_string(char* text);

/* The same two questions without exceptions. 0: *json holds the text and *error is null. 1: the
 * platform cannot be loaded, *json is null and *error says why in one or more lines: what the
 * library reported and printed on its console meanwhile. Either pointer may be null when the caller
 * does not want that text. A null path is an error like any other. When
 * memory runs out even for the error text, both are null and the answer is 1. */
MAV_API int hmav_try_get_platform_json(const char* path, char** json, char** error) HMAV_NOEXCEPT;
MAV_API int hmav_try_get_short_platform_json(const char* path, char** json,
                                             char** error) HMAV_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
