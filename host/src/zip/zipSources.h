// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zip/zipInternal.h"

namespace mav_host {

/// The bytes of the source's file, which is opened when they are read and closed behind them. The
/// source and `failure` must outlive it; `failure` says why the file could not be read. Null when
/// memory lacks.
zip_source_t* readingSource(const HUTZip::Source& source, std::string& failure);

/// Takes what libzip writes into the open, empty file, which must outlive it. Null as above.
zip_source_t* writingSource(int file);

}  // namespace mav_host
