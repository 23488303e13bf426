// SPDX-License-Identifier: Apache-2.0
#include "capi/Call.h"

#include <algorithm>
#include <boost/property_tree/json_parser/error.hpp>
#include <exception>
#include <new>
#include <optional>
#include <sstream>
#include <system_error>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_host/Printable.h"
#include "mav_host/ReportScope.h"
#include "mav_platform/PlatformParseException.h"

struct hmav_error {
    int code = HMAV_INTERNAL;
    std::string text;
    std::string hint;
    capi::Reports reports;
};

namespace capi {
namespace {

int severityOf(std::uint32_t mask) {
    if (mask == ComMsgMgr::ERROR) return HMAV_SEVERITY_ERROR;
    if (mask == ComMsgMgr::CRITICAL_WARNING) return HMAV_SEVERITY_CRITICAL_WARNING;
    return mask == ComMsgMgr::WARNING ? HMAV_SEVERITY_WARNING : HMAV_SEVERITY_NOTE;
}

/// "74-14" of "@74-14@%s%s".
std::string keyOf(const std::string& id) {
    return id.starts_with('@') ? id.substr(1, id.find('@', 1) - 1) : id;
}

/// The report's sentence without severity and number.
std::string sentenceOf(const ComMsg& message) {
    const std::string line = ComMsgMgr::format(message);
    return line.substr(line.find("] ") + 2);
}

/// Keeps the reports of one call and tells the listener.
class Keeper final : public mav_host::ReportScope {
  public:
    explicit Keeper(const Listener& listener) : listener_(listener) {}
    ~Keeper() override { close(); }
    Reports take() {
        flush();
        return std::move(reports_);
    }

  private:
    void tell(const KeptReport& report) {
        if (listener_.onReport != nullptr) listener_.onReport(&report.view(), listener_.user);
    }
    void onReport(const ComMsg& message) override {
        tell(reports_.emplace_back(severityOf(message.mask), keyOf(message.id), sentenceOf(message),
                                   message.args));
    }
    void onLines(const std::string& text) override {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            if (line.empty()) continue;
            tell(reports_.emplace_back(HMAV_SEVERITY_NOTE, "", mav_host::printable(line),
                                       HSTVector<std::string>()));
        }
    }

    const Listener& listener_;
    Reports reports_;
};

/// "What is wrong; what to do." into its two halves, with `otherwise` where the second is missing.
Failure split(int code, const std::string& text, const char* otherwise) {
    const std::size_t at = text.find("; ");
    Failure failure{code, mav_host::printable(text.substr(0, at)), otherwise};
    while (failure.text.ends_with('.')) failure.text.pop_back();
    if (at == std::string::npos) return failure;
    failure.hint = mav_host::printable(text.substr(at + 2));
    if (!failure.hint.ends_with('.')) failure.hint += '.';
    char& first = failure.hint.front();
    if (first >= 'a' && first <= 'z') first = static_cast<char>(first - 'a' + 'A');
    return failure;
}

/// The exception's text with those of the ones inside it.
std::string withReasons(const std::exception& error) {
    std::string text = error.what();
    try {
        std::rethrow_if_nested(error);
    } catch (const std::exception& inside) {
        text += ": " + withReasons(inside);
    }
    return text;
}

constexpr const char* CORRECT = "Correct the cause, which the reports name, and try again.";

/// What the exception at hand means. Lets std::bad_alloc pass.
Failure explain(int usual) {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const HEXFileNotFoundException& error) {
        return split(HMAV_NOT_FOUND, error.what(), "Check the path.");
    } catch (const mav_host::DigestRefusal& error) {
        return split(HMAV_REFUSED, error.what(),
                     "Get the archive afresh, or ask for a new digest all the same.");
    } catch (const HEXError& error) {
        return split(usual, withReasons(error), CORRECT);
    } catch (const mav_platform::PlatformParseException& error) {
        return split(HMAV_NOT_LOADABLE, error.what(), CORRECT);
    } catch (const boost::property_tree::json_parser::json_parser_error& error) {
        return split(HMAV_NOT_LOADABLE, error.what(), CORRECT);
    } catch (const std::system_error& error) {
        return split(usual, error.what(), CORRECT);
    } catch (const std::exception& error) {
        return split(HMAV_INTERNAL, error.what(), "Report this as a fault of the library.");
    } catch (...) {
        return {HMAV_INTERNAL, "Unknown failure", "Report this as a fault of the library."};
    }
}

/// Stands in when there is no memory for an error object. Never freed.
hmav_error* noMemory() {
    // Short enough for the place inside a string, so making it takes no memory.
    static hmav_error error{HMAV_OUT_OF_MEMORY, "Out of memory", "Free memory.", {}};
    return &error;
}

/// What the first grave report says, or the line that was printed before it with the details.
std::string causeIn(const Reports& reports) {
    std::string line;
    for (const KeptReport& report : reports) {
        if (*report.view().id == '\0') line = report.view().text;
        if (report.view().severity < HMAV_SEVERITY_CRITICAL_WARNING) continue;
        if (line.empty()) line = report.view().text;
        return split(HMAV_DONE, line, "").text;
    }
    return "";
}

int fail(hmav_error** target, Failure&& failure, Keeper& keeper) {
    const int code = failure.code;
    if (target == nullptr) return code;
    Reports reports = keeper.take();
    const std::string cause = failure.becauseOfReport ? causeIn(reports) : "";
    if (!cause.empty()) failure.text += ": " + cause;
    *target =
        new hmav_error{code, std::move(failure.text), std::move(failure.hint), std::move(reports)};
    return code;
}

int runKept(const Listener& listener, hmav_error** error, int usual, void (*work)(void*),
            void* data) {
    Keeper keeper(listener);
    try {
        work(data);
        return HMAV_DONE;
    } catch (...) {
        return fail(error, explain(usual), keeper);
    }
}

}  // namespace

Failure splitFailure(int code, const std::string& text) {
    return split(code, text, CORRECT);
}

KeptReport::KeptReport(int severity, std::string id, std::string text,
                       HSTVector<std::string> arguments)
    : id_(std::move(id)), text_(std::move(text)), arguments_(std::move(arguments)) {
    for (const std::string& argument : arguments_) pointers_.push_back(argument.c_str());
    view_ = {sizeof(hmav_report), severity,         id_.c_str(),
             text_.c_str(),       pointers_.size(), pointers_.data()};
}

int guarded(const Listener& listener, hmav_error** error, int usual, void (*work)(void*),
            void* data) noexcept {
    if (error != nullptr) *error = nullptr;
    try {
        return runKept(listener, error, usual, work, data);
    } catch (...) {
        if (error != nullptr) *error = noMemory();
        return HMAV_OUT_OF_MEMORY;
    }
}

void refuseNull(const void* pointer, const char* argument) {
    if (pointer != nullptr) return;
    throw Failure{HMAV_WRONG_ARGUMENT, std::string("The argument '") + argument + "' is null",
                  "Give one."};
}

void refuseBeyond(int number, int last, const char* argument) {
    if (number >= 0 && number <= last) return;
    throw Failure{HMAV_WRONG_ARGUMENT,
                  std::to_string(number) + " is no value of '" + argument + "'",
                  "Give one from 0 to " + std::to_string(last) + "."};
}

void refuseMissing(const char* path) {
    if (HUTFile::exists(path)) return;
    throw Failure{HMAV_NOT_FOUND, "Nothing is at '" + mav_host::printable(path) + "'",
                  "Check the path."};
}

char* newText(std::string_view text) {
    char* const copy = new char[text.size() + 1];
    std::copy(text.begin(), text.end(), copy);
    copy[text.size()] = '\0';
    return copy;
}

void readOptions(const void* given, void* options, std::size_t size) {
    if (given == nullptr) return;
    std::size_t stated = 0;
    std::memcpy(&stated, given, sizeof stated);
    const char* const bytes = static_cast<const char*>(given);
    if (stated < sizeof stated || stated > 4096) {
        throw Failure{HMAV_WRONG_ARGUMENT, "The size of an option struct is not set",
                      "Set its first field to the size of the struct."};
    }
    if (std::any_of(bytes + std::min(size, stated), bytes + stated, [](char c) { return c != 0; }))
        throw Failure{HMAV_WRONG_ARGUMENT, "An option is set that this library does not know",
                      "Compare HMAV_API_VERSION with hmav_api_version()."};
    std::memcpy(options, given, std::min(size, stated));
}

}  // namespace capi

int hmav_error_code(const hmav_error* error) noexcept {
    return error != nullptr ? error->code : HMAV_DONE;
}

const char* hmav_error_text(const hmav_error* error) noexcept {
    return error != nullptr ? error->text.c_str() : "";
}

const char* hmav_error_hint(const hmav_error* error) noexcept {
    return error != nullptr ? error->hint.c_str() : "";
}

std::size_t hmav_error_report_count(const hmav_error* error) noexcept {
    return error != nullptr ? error->reports.size() : 0;
}

const hmav_report* hmav_error_report(const hmav_error* error, std::size_t index) noexcept {
    return index < hmav_error_report_count(error) ? &error->reports[index].view() : nullptr;
}

void hmav_error_free(hmav_error* error) noexcept {
    if (error != capi::noMemory()) delete error;
}

const char* hmav_code_text(int code) noexcept {
    static constexpr const char* TEXTS[] = {"done",          "wrong argument", "not found",
                                            "not loadable",  "refused",        "cannot write",
                                            "out of memory", "stopped",        "internal fault"};
    return code >= 0 && code <= HMAV_INTERNAL ? TEXTS[code] : "unknown code";
}

void hmav_free_text(char* text) noexcept {
    delete[] text;
}

int hmav_api_version() noexcept {
    return HMAV_API_VERSION;
}
