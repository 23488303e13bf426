// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <set>
#include <string_view>

#include "mav_host/Messages.h"
#include "support/Doubles.h"

namespace {

#define MAV_MESSAGE_ROW(NAME, LEVEL, MASK, ID, SENTENCE) mav_host::messages::NAME,
constexpr mav_host::MessageRow CATALOGUE[] = {MAV_MESSAGES(MAV_MESSAGE_ROW)};

TEST(Messages, HaveTheirOwnNumbersAndCarryTheirRow) {
    std::set<std::string_view> keys;
    for (const mav_host::MessageRow& row : CATALOGUE) {
        EXPECT_TRUE(keys.insert(row.key()).second) << row.key();
    }
    const CapturedMessages messages;
    mav_host::report(mav_host::messages::SAME_VBNV, "a", "b", "c");
    ASSERT_EQ(messages.all.size(), 1U);
    EXPECT_EQ(messages.all[0].level, 3);
    EXPECT_EQ(messages.all[0].group, "platform");
    EXPECT_EQ(messages.all[0].mask, ComMsgMgr::WARNING);
    EXPECT_EQ(messages.text(), "@74-17@%s%s%s|a|b|c\n");
}

}  // namespace
