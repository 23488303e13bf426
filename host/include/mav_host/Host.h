// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <utility>

#include "mav_host/Export.h"

namespace mav_host {

/// The stream that takes the lines which the library prints on standard output: that of this
/// thread's innermost ReportScope, else the process's, which a tool sends elsewhere with
/// `setConsole`. The default one shows control characters printable on a terminal.
MAV_API std::ostream& console();

/// Replaces the process's console stream; null restores standard output. The stream stays owned by
/// the caller and must outlive its installation. Answers the one in force before (null: standard
/// output).
MAV_API std::ostream* setConsole(std::ostream* stream);

/// Overwrites what the text holds and makes it empty.
MAV_API void wipe(std::string& secret);

/// A text that is wiped when it goes. Moves and is not copied.
class SecretText {
  public:
    SecretText() = default;
    explicit SecretText(std::string text) : text_(std::move(text)) {}
    SecretText(SecretText&& other) noexcept { text_.swap(other.text_); }
    SecretText& operator=(SecretText&& other) noexcept {
        text_.swap(other.text_);
        return *this;
    }
    ~SecretText() { wipe(text_); }

    std::string& text() { return text_; }
    const std::string& text() const { return text_; }
    char* data() { return text_.data(); }
    std::size_t size() const { return text_.size(); }

  private:
    std::string text_;
};

/// Gives the key of protected files and archive digests.
class MAV_API KeyProvider {
  public:
    virtual ~KeyProvider();
    /// The key's bytes, 16 at least; empty when the host has none. Throws HEXUserException naming
    /// the file when a key is configured but cannot be read.
    virtual std::optional<std::string> key() const = 0;
};

/// The key in force. The default provider reads the file that MAV_KEY_FILE names, afresh each time,
/// and sends "@74-301@%s" once for a file that its group or others can read. Throws
/// HEXUserException for a key of fewer than 16 bytes. Who is done with the key wipes it.
MAV_API std::optional<std::string> key();

/// Replaces the key provider; null restores the default one. It stays owned by the caller and must
/// outlive its installation. Answers the one in force before (null: the default one).
MAV_API KeyProvider* setKeyProvider(KeyProvider* provider);

/// Puts every host service back to its default: environment, message sink, console, key provider,
/// board data and hardware database; and, on this thread, who is told of progress. Host services
/// belong to the process: they are replaced while no other thread uses the library, and must
/// themselves take calls from several threads where the library is used from several.
MAV_API void resetHost();

}  // namespace mav_host
