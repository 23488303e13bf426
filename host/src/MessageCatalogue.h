// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace mav_host {

/// One message: its key, its whole id with one placeholder per argument, and its sentence.
struct CatalogueEntry {
    std::string_view key;
    std::string_view id;
    std::string_view sentence;
};

/// Every message that the library raises, by number.
inline constexpr CatalogueEntry MESSAGE_CATALOGUE[] = {
    {"1-1874", "@1-1874@%s",
     "The temporary directory '%1' could not be removed; remove it by hand."},
    {"74-1", "@74-1@%s",
     "The directory '%1' does not exist, so no hardware platforms were looked for there; check the "
     "path."},
    {"74-3", "@74-3@%s",
     "The platform description '%1' could not be parsed, so this platform is left out; mend the "
     "description."},
    {"74-4", "@74-4@%s",
     "The software platform that '%1' names could not be parsed, so this platform is left out; "
     "mend the software platform file."},
    {"74-5", "@74-5@%s",
     "The search for platforms in the directory '%1' ended early because of an error; check the "
     "directory's permissions."},
    {"74-9", "@74-9@%s",
     "The platform description '%1' is not valid; mend the line that was printed with the reason."},
    {"74-10", "@74-10@%s", "The file '%1' has been written."},
    {"74-12", "@74-12@%s",
     "The hardware platform metadata file '%1' cannot be read; check that it exists and is valid."},
    {"74-14", "@74-14@%s%s",
     "The hardware platform file '%1' that the platform '%2' names does not exist; correct the "
     "reference or put the file there."},
    {"74-15", "@74-15@%s%s%s%s",
     "The file '%1' could not be processed: %2 (%3, %4); check the file and its permissions."},
    {"74-17", "@74-17@%s%s%s",
     "The platform '%1' is in the archive '%2' and in the archive '%3'; the first one is left "
     "out; remove one of them or give it a name of its own."},
    {"74-23", "@74-23@%s", "The archive '%1' has been found more than once; it counts once."},
    {"74-24", "@74-24@%s%d",
     "The emulation metadata file '%1' is not valid at line %2; mend the file."},
    {"74-31", "@74-31@%s",
     "The hardware platform metadata inside the archive is not valid: %1; pack the archive again "
     "with valid metadata."},
    {"74-34", "@74-34@%s%s",
     "The archive '%1' has no readable member '%2'; pack the archive again with it."},
    {"74-49", "@74-49@%s",
     "The support list '%1' is empty, not protected or unreadable; platforms are judged without "
     "it."},
    {"74-50", "@74-50@%s",
     "The support list '%1' is malformed: it must hold 'black_list' and 'white_list' with "
     "'products' in every entry; platforms are judged without it."},
    {"74-51", "@74-51@%s%d",
     "The software platform file '%1' is not valid at line %2; mend the file."},
    {"74-55", "@74-55@%s%s%s",
     "The hardware platform file '%1' that the platform '%2' names has no known extension; use one "
     "of%3."},
    {"74-60", "@74-60@%s", "The platform cannot be loaded: %1; correct this and load it again."},
    {"74-63", "@74-63@%s%s", "The metadata of '%1' cannot be used: %2."},
    {"74-64", "@74-64@%s%s%s",
     "The metadata member '%2' of '%1' has a fault: %3; correct it and pack the archive again."},
    {"74-66", "@74-66@%s", "The hardware platform archive '%1' does not exist; check the path."},
    {"74-67", "@74-67@%s%s",
     "The index member '%1' of the archive '%2' cannot be opened; the archive may be damaged or of "
     "another kind."},
    {"74-78", "@74-78@%s", "Platform support is judged for the tool version %1."},
    {"74-79", "@74-79@%s",
     "The extended warranty of the platform cannot be read: %1; the platform is judged without "
     "it."},
    {"74-89", "@74-89@%s", "The archive '%1' is not a file; check the path."},
    {"74-260", "@74-260@%s%s%s",
     "The hardware platform metadata file '%1' cannot be read for rewriting: %2 (%3); check the "
     "file and its permissions."},
    {"74-261", "@74-261@",
     "Only some of the auto-assignable HBM memory banks are tagged as preferred; tag all of them "
     "or "
     "none."},
    {"74-268", "@74-268@%s",
     "The text '%1' is not an unsigned number that fits; the default is used in its place."},
    {"74-271", "@74-271@%s",
     "'%1' is not a platform file type; the file is kept, but no tool will look for it."},
};

}  // namespace mav_host
