// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_host/HI18N.h"

namespace {

TEST(HI18N, AsciiIsSeenAtEveryPlace) {
    EXPECT_TRUE(HI18N_isAscii(""));
    EXPECT_TRUE(HI18N_isAscii(std::string("\0\x7f text of more than eight bytes", 32)));
    for (std::size_t at = 0; at < 20; ++at) {
        std::string text(20, 'a');
        text[at] = '\x80';
        EXPECT_FALSE(HI18N_isAscii(text)) << at;
        EXPECT_FALSE(HI18N_isUTF8(text)) << at;
    }
}

TEST(HI18N, WellFormedUtf8StaysAsItIsAndAnythingElseIsLatin1) {
    for (const std::string text :
         {"\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xee\x80\x80", "\xef\xbf\xbf",
          "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf", "twelve ascii \xe2\x82\xac and ascii again"}) {
        EXPECT_TRUE(HI18N_isUTF8(text)) << text;
        EXPECT_EQ(HI18N_convertToUTF8(text), text);
    }
    for (const std::string text :
         {"\x80", "\xc0\x80", "\xc1\xbf", "\xc3", "\xe0\x9f\xbf", "\xed\xa0\x80", "\xe2\x82",
          "\xf0\x8f\xbf\xbf", "\xf4\x90\x80\x80", "\xf5\x80\x80\x80", "\xff", "\xc3(",
          "\xc3\xa4 and then \xe4"}) {
        EXPECT_FALSE(HI18N_isUTF8(text)) << text;
        EXPECT_TRUE(HI18N_isUTF8(HI18N_convertToUTF8(text))) << text;
    }
    EXPECT_EQ(HI18N_convertToUTF8("M\xfcnchen \x80\xff"), "M\xc3\xbcnchen \xc2\x80\xc3\xbf");
    // One wrong byte makes the whole text ISO-8859-1, also what was well-formed by itself.
    EXPECT_EQ(HI18N_convertToUTF8("\xc3\xa4\xe4"), "\xc3\x83\xc2\xa4\xc3\xa4");
}

}  // namespace
