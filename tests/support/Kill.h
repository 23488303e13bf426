// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include "../../host/src/zip/ArchiveWriter.h"

/// Runs `work`, which changes the archive, once whole and once for each step of writing in a
/// process that is killed when it comes to that step. Each time the archive is the old or the new
/// one, byte for byte, and the next writer is not held up.
inline void expectOldOrNew(const std::string& archive, const std::function<void()>& work) {
    using mav_host::WriteStep;
    const auto bytes = [&] {
        std::ifstream file(archive, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    const auto restore = [&](const std::string& content) {
        std::ofstream(archive, std::ios::binary | std::ios::trunc) << content;
    };
    const std::string before = bytes();
    work();
    const std::string after = bytes();
    ASSERT_NE(before, after);
    for (const WriteStep at :
         {WriteStep::LOCK, WriteStep::MAKE, WriteStep::BUILD, WriteStep::DIGEST,
          WriteStep::PERMISSIONS, WriteStep::SYNC, WriteStep::RENAME}) {
        restore(before);
        const pid_t child = ::fork();
        if (child == 0) {
            mav_host::writeHooks().before = [at](WriteStep step) {
                if (step == at) ::kill(::getpid(), SIGKILL);
                return 0;
            };
            work();
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "step " << static_cast<int>(at) << " is not reached";
        EXPECT_EQ(bytes(), before) << "killed at step " << static_cast<int>(at);
        work();
        EXPECT_EQ(bytes(), after) << "after a kill at step " << static_cast<int>(at);
    }
    // Killed at a moment of the system's choosing, the rename done or not.
    for (const useconds_t delay : {100U, 500U, 1000U, 2000U, 4000U, 8000U}) {
        restore(before);
        const pid_t child = ::fork();
        if (child == 0) {
            work();
            ::_exit(0);
        }
        ::usleep(delay);
        ::kill(child, SIGKILL);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        const std::string found = bytes();
        EXPECT_TRUE(found == before || found == after) << "killed after " << delay << " us";
    }
}
