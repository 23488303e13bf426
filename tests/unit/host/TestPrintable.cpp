// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

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

}  // namespace
