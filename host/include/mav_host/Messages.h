// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "mav_host/ComMsgMgr.h"

namespace mav_host {

/// One row of the catalogue: how a report goes out, its id with a placeholder for each argument,
/// and its sentence with %1, %2, … for them.
struct MessageRow {
    int level;
    std::uint32_t mask;
    std::string_view id;
    std::string_view sentence;

    /// "74-14" of "@74-14@%s%s".
    constexpr std::string_view key() const { return id.substr(1, id.rfind('@') - 1); }
    constexpr std::size_t placeholders() const {
        std::size_t count = 0;
        for (const char c : id) count += c == '%' ? 1U : 0U;
        return count;
    }
    /// The id has its form, and the sentence ends in a full stop and names each argument.
    constexpr bool isWhole() const {
        if (id.size() < 3 || id.front() != '@' || id.rfind('@') == 0) return false;
        for (std::size_t i = 1; i <= 9; ++i) {
            const char name[] = {'%', static_cast<char>('0' + i)};
            const bool isNamed = sentence.find({name, 2}) != std::string_view::npos;
            if (isNamed != (i <= placeholders())) return false;
        }
        return sentence.ends_with('.');
    }
};

/// A row whose number of arguments the compiler knows.
template <std::size_t Arguments>
struct Message : MessageRow {
    /// A sink asks this of what it receives.
    bool is(const ComMsg& message) const { return message.id == id; }
};

/// Hands the report to who listens, see ComMsgMgr::sendMsg. Never throws.
template <std::size_t Arguments, class... Texts>
void report(const Message<Arguments>& message, const Texts&... arguments) {
    static_assert(sizeof...(Texts) == Arguments, "one text for each placeholder of the id");
    ComMsgMgr::sendMsg(message.level, "platform", message.mask, std::string(message.id),
                       {std::string(arguments)...});
}

/// Every message that the library raises, by number: name, level, mask, id, sentence. A part of a
/// sentence in brackets ends with an argument and is left out when that is 0.
// clang-format off
#define MAV_MESSAGES(MESSAGE) \
    MESSAGE(DIRECTORY_STAYS, 1, WARNING, "@1-1874@%s", "The temporary directory '%1' could not be removed; remove it by hand.") \
    MESSAGE(NO_SUCH_DIRECTORY, 1, WARNING, "@74-1@%s", "The directory '%1' does not exist, so no hardware platforms were looked for there; check the path.") \
    MESSAGE(DESCRIPTION_LEFT_OUT, 1, CRITICAL_WARNING, "@74-3@%s", "The platform description '%1' could not be parsed, so this platform is left out; mend the description.") \
    MESSAGE(SOFTWARE_LEFT_OUT, 1, CRITICAL_WARNING, "@74-4@%s", "The software platform that '%1' names could not be parsed, so this platform is left out; mend the software platform file.") \
    MESSAGE(SEARCH_ENDED_EARLY, 1, WARNING, "@74-5@%s", "The search for platforms in the directory '%1' ended early because of an error; check the directory's permissions.") \
    MESSAGE(DESCRIPTION_NOT_VALID, 1, ERROR, "@74-9@%s", "The platform description '%1' is not valid; mend the line that was printed with the reason.") \
    MESSAGE(FILE_WRITTEN, 1, STATUS, "@74-10@%s", "The file '%1' has been written.") \
    MESSAGE(HPFM_FILE_NOT_VALID, 1, ERROR, "@74-12@", "A hardware platform metadata file cannot be read; check that it exists and is valid.") \
    MESSAGE(HARDWARE_FILE_MISSING, 2, CRITICAL_WARNING, "@74-14@%s%s", "The hardware platform file '%1' that the platform '%2' names does not exist; correct the reference or put the file there.") \
    MESSAGE(FILE_NOT_PROCESSED, 1, ERROR, "@74-15@%s%s%s%s", "The file '%1' could not be processed: %2 (%3, %4); check the file and its permissions.") \
    MESSAGE(SAME_VBNV, 3, WARNING, "@74-17@%s%s%s", "The platform '%1' is in the archive '%2' and in the archive '%3'; the first one is left out; remove one of them or give it a name of its own.") \
    MESSAGE(ARCHIVE_FOUND_TWICE, 1, WARNING, "@74-23@%s", "The archive '%1' has been found more than once; it counts once.") \
    MESSAGE(EMULATION_NOT_VALID, 1, ERROR, "@74-24@%s%d", "The emulation metadata file '%1' cannot be read[ at line %2]; mend the file.") \
    MESSAGE(HPFM_MEMBER_NOT_VALID, 1, ERROR, "@74-31@", "The hardware platform metadata inside an archive is not valid; validate the archive and pack it again with valid metadata.") \
    MESSAGE(MEMBER_NOT_OPENED, 1, ERROR, "@74-34@%s%s", "The archive '%1' has no readable member '%2'; pack the archive again with it.") \
    MESSAGE(SUPPORT_LIST_UNUSABLE, 1, WARNING, "@74-49@%s", "The support list '%1' is empty, not protected or unreadable; platforms are judged without it.") \
    MESSAGE(SUPPORT_LIST_MALFORMED, 1, WARNING, "@74-50@%s", "The support list '%1' is malformed: it must hold 'black_list' and 'white_list' with 'products' in every entry; platforms are judged without it.") \
    MESSAGE(SOFTWARE_NOT_VALID, 2, ERROR, "@74-51@%s%d", "The software platform file '%1' cannot be read[ at line %2]; mend the file.") \
    MESSAGE(HARDWARE_EXTENSION, 3, CRITICAL_WARNING, "@74-55@%s%s%s", "The hardware platform file '%1' that the platform '%2' names has no known extension; use one of%3.") \
    MESSAGE(NOT_LOADED, 1, CRITICAL_WARNING, "@74-60@%s", "The platform cannot be loaded: %1; correct this and load it again.") \
    MESSAGE(METADATA_UNUSABLE, 1, ERROR, "@74-63@%s%s", "The metadata of '%1' cannot be used: %2.") \
    MESSAGE(MEMBER_FAULT, 1, ERROR, "@74-64@%s%s%s", "The metadata member '%2' of '%1' has a fault: %3; correct it and pack the archive again.") \
    MESSAGE(NO_SUCH_ARCHIVE, 1, ERROR, "@74-66@%s", "The hardware platform archive '%1' does not exist; check the path.") \
    MESSAGE(NO_INDEX, 2, ERROR, "@74-67@%s%s", "The index member '%1' of the archive '%2' cannot be opened; the archive may be damaged or of another kind.") \
    MESSAGE(JUDGED_FOR_RELEASE, 1, STATUS, "@74-78@%s", "Platform support is judged for the tool version %1.") \
    MESSAGE(WARRANTY_UNREADABLE, 1, WARNING, "@74-79@%s", "The extended warranty of the platform cannot be read: %1; the platform is judged without it.") \
    MESSAGE(ARCHIVE_NO_FILE, 1, ERROR, "@74-89@%s", "The archive '%1' is not a file; check the path.") \
    MESSAGE(HPFM_NOT_REWRITTEN, 1, ERROR, "@74-260@%s%s%s", "The hardware platform metadata file '%1' cannot be read for rewriting: %2 (%3); check the file and its permissions.") \
    MESSAGE(HBM_PARTLY_PREFERRED, 1, STATUS, "@74-261@", "Only some of the auto-assignable HBM memory banks are tagged as preferred; tag all of them or none.") \
    MESSAGE(NOT_UNSIGNED, 1, WARNING, "@74-268@%s", "The text '%1' is not an unsigned number that fits; the default is used in its place.") \
    MESSAGE(UNKNOWN_FILE_TYPE, 1, WARNING, "@74-271@%s", "'%1' is not a platform file type; the file is kept, but no tool will look for it.") \
    MESSAGE(KEY_FILE_OPEN_TO_OTHERS, 2, WARNING, "@74-301@%s", "The key file '%1' can be read by its group or by others; take their permission away with 'chmod go-r' and make a new key.")
// clang-format on

namespace messages {
#define MAV_MESSAGE_CONSTANT(NAME, LEVEL, MASK, ID, SENTENCE)                           \
    inline constexpr auto NAME =                                                        \
        Message<MessageRow{(LEVEL), ComMsgMgr::MASK, (ID), (SENTENCE)}.placeholders()>{ \
            {(LEVEL), ComMsgMgr::MASK, (ID), (SENTENCE)}};                              \
    static_assert((NAME).isWhole());
MAV_MESSAGES(MAV_MESSAGE_CONSTANT)
#undef MAV_MESSAGE_CONSTANT
}  // namespace messages

}  // namespace mav_host
