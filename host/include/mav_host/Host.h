// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "mav_host/Export.h"

namespace mav_host {

/// The stream that takes the lines which the library prints on standard output. A tool sends them
/// elsewhere with `setConsole`.
MAV_API std::ostream& console();

/// Replaces the console stream; null restores standard output. The stream stays owned by the caller
/// and must outlive its installation. Answers the one in force before (null: standard output).
MAV_API std::ostream* setConsole(std::ostream* stream);

/// Gives the key of protected files and archive digests.
class MAV_API KeyProvider {
  public:
    virtual ~KeyProvider();
    /// The key's bytes; empty when the host has none. Throws HEXUserException naming the file when
    /// a key is configured but cannot be read.
    virtual std::optional<std::string> key() const = 0;
};

/// The key in force. The default provider reads the file that MAV_KEY_FILE names, afresh each time.
MAV_API std::optional<std::string> key();

/// Replaces the key provider; null restores the default one. It stays owned by the caller and must
/// outlive its installation. Answers the one in force before (null: the default one).
MAV_API KeyProvider* setKeyProvider(KeyProvider* provider);

/// Puts every host service back to its default: environment, message sink, console, key provider,
/// progress of archives,
/// board data and hardware database.
MAV_API void resetHost();

}  // namespace mav_host
