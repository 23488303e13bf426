// SPDX-License-Identifier: Apache-2.0
#include "Output.h"

#include <fcntl.h>
#include <locale.h>
#include <poll.h>
#include <unistd.h>
#include <wchar.h>

#include <cerrno>
#include <cwchar>
#include <iostream>
#include <system_error>

#include "Command.h"

namespace cli {
namespace {

/// Characters of UTF-8 as the system's locales describe them, whatever the caller's locale.
class Utf8Locale {
  public:
    Utf8Locale() : locale_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {}
    ~Utf8Locale() {
        if (locale_ != nullptr) ::freelocale(locale_);
    }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

    cli::Character first(std::string_view text) const {
        if (locale_ == nullptr) return {lengthOnly(text), 1};
        const locale_t before = ::uselocale(locale_);
        wchar_t wide = 0;
        std::mbstate_t state{};
        const std::size_t bytes = std::mbrtowc(&wide, text.data(), text.size(), &state);
        const bool valid = bytes > 0 && bytes <= text.size();
        const int columns = valid ? ::wcwidth(wide) : -1;
        ::uselocale(before);
        return {valid ? bytes : 1, columns < 0 ? 1 : static_cast<std::size_t>(columns)};
    }

  private:
    /// For systems without the locale.
    static std::size_t lengthOnly(std::string_view text) {
        std::size_t end = 1;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xc0U) == 0x80U) ++end;
        return end;
    }

    locale_t locale_;
};

}  // namespace

void holdStandardStreams() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(fd, F_GETFD) != -1) continue;
        // The lowest free number is taken, which is `fd` itself; read-only, so that writing fails.
        const int flags = fd == STDERR_FILENO ? O_WRONLY : O_RDONLY;
        if (::open("/dev/null", flags) == -1) ::_exit(FAILED);
    }
}

void writeAnswer(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            pollfd ready{STDOUT_FILENO, POLLOUT, 0};
            ::poll(&ready, 1, -1);
        } else if (errno == EPIPE) {
            throw NoReader();
        } else if (errno != EINTR) {
            throw Failure(
                "cannot write to standard output: " + std::generic_category().message(errno) +
                ". Make room or send the output elsewhere, then run the command again.");
        }
    }
}

void writeData(std::string_view text) {
    if (::isatty(STDOUT_FILENO) == 1) {
        writeAnswer(printableLines(text));
    } else {
        writeAnswer(text);
    }
}

LongAnswer& LongAnswer::operator+=(std::string_view text) {
    constexpr std::size_t PIECE = std::size_t{1} << 16U;
    waiting_ += text;
    if (waiting_.size() >= PIECE) end();
    return *this;
}

void LongAnswer::end() {
    writeAnswer(waiting_);
    waiting_.clear();
}

void complain(std::string_view sentence) {
    std::cerr << "mav: " << printableLines(sentence) << std::endl;
}

std::string brief(std::string_view name) {
    constexpr std::size_t MOST = 80;
    const std::string_view told = mav_host::beginning(name, MOST);
    return std::string(told) + (told.size() < name.size() ? ".." : "");
}

Character firstCharacter(std::string_view text) {
    if (static_cast<unsigned char>(text.front()) < 0x80U) return {1, 1};
    static const Utf8Locale locale;
    return locale.first(text);
}

std::size_t columns(std::string_view text) {
    std::size_t taken = 0;
    while (!text.empty()) {
        const Character next = firstCharacter(text);
        taken += next.columns;
        text.remove_prefix(next.bytes);
    }
    return taken;
}

std::string_view shortened(std::string_view text, std::size_t columns) {
    std::size_t end = 0;
    for (std::size_t taken = 0; end < text.size();) {
        const Character next = firstCharacter(text.substr(end));
        taken += next.columns;
        if (taken > columns) break;
        end += next.bytes;
    }
    return text.substr(0, end);
}

std::string clause(std::string_view text) {
    while (!text.empty() && (text.back() == '.' || text.back() == '\n')) text.remove_suffix(1);
    return printable(text);
}

std::string withAdvice(std::string_view text, std::string_view advice) {
    constexpr std::string_view REASSURANCE = "; it is as it was";
    std::string sentence = clause(text);
    const bool told = sentence.find("; ") != std::string::npos && !sentence.ends_with(REASSURANCE);
    sentence += '.';
    if (!told) sentence.append(" ").append(advice);
    return sentence;
}

}  // namespace cli
