// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "capi/Call.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTZip.h"

namespace capi {

/// Tells the caller how far work on this thread's archives has come, as long as it lives.
class Progress final : public mav_host::ZipProgress {
  public:
    Progress(hmav_progress_callback callback, void* user)
        : callback_(callback), user_(user), before_(HUTZip::setProgress(this)) {}
    ~Progress() override { HUTZip::setProgress(before_); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void advance(const std::string& what, double done) override {
        if (callback_ != nullptr && callback_(what.c_str(), done, user_) != 0) stopped_ = true;
    }
    bool cancelled() override {
        if (!stopped_) advance("", -1);
        return stopped_;
    }
    /// Throws HMAV_STOPPED once the caller wanted it.
    void check() const {
        if (stopped_) throw Failure{HMAV_STOPPED, "The caller stopped the work", "Start it anew."};
    }
    /// Tells and checks.
    void step(const std::string& what, double done) {
        advance(what, done);
        check();
    }

  private:
    hmav_progress_callback callback_;
    void* user_;
    mav_host::ZipProgress* before_;
    bool stopped_ = false;
};

/// Runs `work(progress)`; what a stop makes it throw becomes HMAV_STOPPED, a refusal of what was
/// asked for HMAV_WRONG_ARGUMENT.
template <class Work>
void withProgress(hmav_progress_callback callback, void* user, Work&& work) {
    Progress progress(callback, user);
    try {
        work(progress);
    } catch (const HEXAlgException& error) {
        throw splitFailure(HMAV_WRONG_ARGUMENT, error.what());
    } catch (const HEXError&) {
        progress.check();
        throw;
    }
}

}  // namespace capi
