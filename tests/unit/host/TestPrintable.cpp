// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <iostream>

#include "mav_host/ComMsgMgr.h"
#include "mav_host/Host.h"
#include "mav_host/Printable.h"

namespace {

TEST(Printable, WhatHarmsATerminalIsSpelledOut) {
    const std::pair<const char*, const char*> TEXTS[] = {
        {"plain \xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80",
         "plain \xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80"},
        {"a\n\x1b[2J\x7f", "a\\x0A\\x1B[2J\\x7F"},
        {"\xc2\x80\xc2\x9f\xc2\xa0", "\\u0080\\u009F\xc2\xa0"},
        {"\xd8\x9c\xe2\x80\x8d\xe2\x80\x8e\xe2\x80\x8f", "\\u061C\xe2\x80\x8d\\u200E\\u200F"},
        {"\xe2\x80\xa7\xe2\x80\xa8\xe2\x80\xae\xe2\x80\xaf",
         "\xe2\x80\xa7\\u2028\\u202E\xe2\x80\xaf"},
        {"\xe2\x81\xa6\xe2\x81\xaf\xe2\x81\xb0", "\\u2066\\u206F\xe2\x81\xb0"},
        {"\x9b\xe2\x80 \xc3", "\\x9B\\xE2\\x80 \\xC3"},
    };
    for (const auto& [text, shown] : TEXTS) EXPECT_EQ(mav_host::printable(text), shown);
    EXPECT_EQ(mav_host::beginning("abc", 3), "abc");
    EXPECT_EQ(mav_host::beginning("ab\xc3\xa9z", 3), "ab");
    EXPECT_EQ(mav_host::beginning("ab\xc3\xa9z", 4), "ab\xc3\xa9");
}

TEST(Printable, ATerminalGetsNoControlCharactersOfTheLibrary) {
    const auto shown = [](int terminal) {
        const int before[] = {::dup(STDOUT_FILENO), ::dup(STDERR_FILENO)};
        std::cout.flush();
        for (const int fd : {STDOUT_FILENO, STDERR_FILENO}) ::dup2(terminal, fd);
        mav_host::console() << "a\x1b[2J";
        mav_host::console() << "\xe2\x80\xae \xc3\xa9\nb\n" << std::flush;
        ComMsgMgr::sendMsg(1, "\x1b", ComMsgMgr::ERROR, "id", {"\x07"});
        for (const int fd : {STDOUT_FILENO, STDERR_FILENO}) {
            ::dup2(before[fd - STDOUT_FILENO], fd);
            ::close(before[fd - STDOUT_FILENO]);
        }
    };
    int ends[2];
    ASSERT_EQ(::openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr), 0);
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const auto expect = [](int from, const std::string& expected) {
        // A terminal hands its text on in pieces.
        std::string text;
        pollfd ready{from, POLLIN, 0};
        while (text.size() < expected.size() && ::poll(&ready, 1, 10'000) > 0) {
            char piece[200];
            const ssize_t size = ::read(from, piece, sizeof(piece));
            if (size <= 0) break;
            text.append(piece, static_cast<std::size_t>(size));
        }
        EXPECT_EQ(text, expected);
    };
    shown(ends[1]);
    expect(ends[0], "a\\x1B[2J\\u202E \xc3\xa9\r\nb\r\nERROR: [\\x1B id] \\x07\r\n");
    shown(pipe[1]);
    expect(pipe[0], "a\x1b[2J\xe2\x80\xae \xc3\xa9\nb\nERROR: [\x1b id] \\x07\n");
    for (const int fd : {ends[0], ends[1], pipe[0], pipe[1]}) ::close(fd);
}

}  // namespace
