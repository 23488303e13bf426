// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstring>
#include <deque>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "mav_host/ComMsgMgr.h"
#include "mav_platform/mav_platform_c.h"

/// Shared by the sources of the C interface: how a call runs and how it fails.
namespace capi {

/// Ends a call with this code, sentence and advice.
struct Failure {
    int code;
    std::string text;
    std::string hint;
    bool becauseOfReport = false;  ///< the report that tells the cause completes the sentence
};

/// "What is wrong; what to do" as a failure, with common advice where the second is missing.
Failure splitFailure(int code, const std::string& text);

/// A report that owns its texts.
class KeptReport {
  public:
    KeptReport(int severity, std::string id, std::string text, HSTVector<std::string> arguments);
    KeptReport(const KeptReport&) = delete;
    KeptReport& operator=(const KeptReport&) = delete;
    const hmav_report& view() const { return view_; }

  private:
    std::string id_, text_;
    HSTVector<std::string> arguments_;
    std::vector<const char*> pointers_;
    hmav_report view_;
};
using Reports = std::deque<KeptReport>;

/// Who is told the reports of a call.
struct Listener {
    hmav_report_callback onReport = nullptr;
    void* user = nullptr;
};
Listener listenerOf(const hmav_session* session);

/// Runs `work(data)` with its reports going to the listener. What it throws becomes the code and
/// the error: a Failure as it says, HEXError and its like `usual`. Without an exception the code is
/// HMAV_DONE.
int guarded(const Listener& listener, hmav_error** error, int usual, void (*work)(void*),
            void* data) noexcept;

template <class Work>
int call(const Listener& listener, hmav_error** error, int usual, Work&& work) noexcept {
    using Plain = std::remove_reference_t<Work>;
    return guarded(
        listener, error, usual, [](void* data) { (*static_cast<Plain*>(data))(); }, &work);
}

/// Throws HMAV_WRONG_ARGUMENT for a null pointer, naming the argument.
void refuseNull(const void* pointer, const char* argument);
/// The same for where a result goes, which is made null or 0.
template <class Result>
void clearResult(Result* result, const char* argument) {
    refuseNull(result, argument);
    *result = Result();
}
/// Throws HMAV_WRONG_ARGUMENT for a number that is not in 0..last.
void refuseBeyond(int number, int last, const char* argument);
/// Throws HMAV_NOT_FOUND when nothing is at the path.
void refuseMissing(const char* path);

/// A text of its own for the caller.
char* newText(std::string_view text);

/// Copies the caller's struct over the defaults, as far as its size says.
void readOptions(const void* given, void* options, std::size_t size);
template <class Options>
Options optionsOf(const Options* given) {
    Options options = {};
    readOptions(given, &options, sizeof(Options));
    return options;
}

}  // namespace capi
