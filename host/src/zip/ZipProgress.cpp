// SPDX-License-Identifier: Apache-2.0
#include <utility>

#include "zip/zipInternal.h"

namespace mav_host {
namespace {

ZipProgress*& listener() {
    thread_local ZipProgress* installed = nullptr;
    return installed;
}

}  // namespace

ZipProgress::~ZipProgress() = default;

ProgressTeller::ProgressTeller(const std::string& what, std::uint64_t size)
    : listener_(size > HUTZip::PROGRESS_SIZE ? listener() : nullptr),
      what_(listener_ != nullptr ? what : ""),
      size_(static_cast<double>(size)) {}

bool isCancelled() {
    return listener() != nullptr && listener()->cancelled();
}

void ProgressTeller::tell(double done) {
    if (listener_ != nullptr) listener_->advance(what_, done);
}

}  // namespace mav_host

mav_host::ZipProgress* HUTZip::setProgress(mav_host::ZipProgress* listener) {
    return std::exchange(mav_host::listener(), listener);
}
