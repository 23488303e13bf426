/* SPDX-License-Identifier: Apache-2.0 */
#ifndef MAV_PLATFORM_MAV_PLATFORM_C_H
#define MAV_PLATFORM_MAV_PLATFORM_C_H

/*
 * The platform library for callers that know nothing of C++.
 *
 * Memory: every text that a function hands out belongs to the caller, who gives it back through
 * hmav_free_json_string, exactly once. free() is wrong: the memory is not from malloc. Nothing else
 * outlives a call.
 *
 * Texts: paths are bytes as the file system has them; JSON is NUL-terminated UTF-8, pretty-printed,
 * with a line break at its end.
 *
 * Exceptions: the hmav_get_... functions let C++ exceptions pass: std::logic_error for a null path,
 * HEXFileNotFoundException for a description file that does not exist,
 * mav_platform::PlatformParseException for one that does not parse; HEXAlgException,
 * HEXDataException and HEXUserException for an array-engine project, or another file inside an
 * archive, that cannot be extracted or parsed once the platform is loaded;
 * boost::property_tree::json_parser_error for an object that JSON cannot hold; std::bad_alloc. All
 * derive from std::exception. A caller that cannot let an exception pass uses the
 * hmav_try_get_... functions, which never throw.
 *
 * Threads: no lock anywhere; one thread at a time.
 */

#ifdef __cplusplus
extern "C" {
#endif

#include "mav_host/Export.h"

/* The whole description of the platform file (description, hardware archive or software platform).
 * Null, never an empty text, when the platform cannot be loaded; the reasons have then gone to the
 * message sink. */
MAV_API char* hmav_get_platform_json(const char* path);

/* A short object with uniqueName, file and description, empty ones left out; null as above. */
MAV_API char* hmav_get_short_platform_json(const char* path);

/* Frees a text of any function here; null is ignored. */
MAV_API void hmav_free_json_string(char* text);

/* The same two questions without exceptions. 0: *json holds the text and *error is null. 1: the
 * platform cannot be loaded, *json is null and *error says why in one or more lines: what the
 * library reported and printed on its console meanwhile. Either pointer may be null when the caller
 * does not want that text. A null path is an error like any other. When
 * memory runs out even for the error text, both are null and the answer is 1. */
MAV_API int hmav_try_get_platform_json(const char* path, char** json, char** error);
MAV_API int hmav_try_get_short_platform_json(const char* path, char** json, char** error);

/* Version of the library, such as "1.0.0". Static storage: not to be freed. */
MAV_API const char* hmav_get_version(void);

#ifdef __cplusplus
}
#endif

#endif
