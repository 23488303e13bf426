// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/resource.h>

/// No file can grow beyond the limit while this lives, as on a full disk; the system answers with a
/// signal as well.
class SmallDisk {
  public:
    explicit SmallDisk(rlim_t limit) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit small{limit, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() { ::setrlimit(RLIMIT_FSIZE, &before_); }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

  private:
    rlimit before_{};
};
