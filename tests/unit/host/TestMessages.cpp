// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <set>
#include <string_view>
#include <utility>

#include "mav_host/Messages.h"
#include "support/Doubles.h"

namespace {

#define MAV_MESSAGE_ROW(NAME, LEVEL, MASK, ID, SENTENCE) mav_host::messages::NAME,
constexpr mav_host::MessageRow CATALOGUE[] = {MAV_MESSAGES(MAV_MESSAGE_ROW)};

/// Those that are not errors of level 1.
const struct {
    int level;
    std::uint32_t mask;
    std::set<std::string_view> keys;
} SPECIAL[] = {
    {1, ComMsgMgr::STATUS, {"74-10", "74-78", "74-261"}},
    {1,
     ComMsgMgr::WARNING,
     {"1-1874", "74-1", "74-5", "74-23", "74-49", "74-50", "74-79", "74-268", "74-271"}},
    {1, ComMsgMgr::CRITICAL_WARNING, {"74-3", "74-4", "74-60"}},
    {2, ComMsgMgr::WARNING, {"74-301"}},
    {2, ComMsgMgr::CRITICAL_WARNING, {"74-14"}},
    {2, ComMsgMgr::ERROR, {"74-51", "74-67"}},
    {3, ComMsgMgr::WARNING, {"74-17"}},
    {3, ComMsgMgr::CRITICAL_WARNING, {"74-55"}},
};

TEST(Messages, HaveTheirOwnNumbersLevelsAndSeverities) {
    std::size_t missing = 21;
    std::set<std::string_view> keys;
    for (const mav_host::MessageRow& row : CATALOGUE) {
        EXPECT_TRUE(keys.insert(row.key()).second) << row.key();
        std::pair<int, std::uint32_t> expected{1, ComMsgMgr::ERROR};
        for (const auto& group : SPECIAL) {
            if (group.keys.count(row.key()) == 0) continue;
            expected = {group.level, group.mask};
            --missing;
        }
        EXPECT_EQ(std::pair(row.level, row.mask), expected) << row.id;
    }
    EXPECT_EQ(missing, 0U);
    const CapturedMessages messages;
    mav_host::report(mav_host::messages::SAME_VBNV, "a", "b", "c");
    ASSERT_EQ(messages.all.size(), 1U);
    EXPECT_EQ(messages.all[0].level, 3);
    EXPECT_EQ(messages.all[0].group, "platform");
    EXPECT_EQ(messages.all[0].mask, ComMsgMgr::WARNING);
    EXPECT_EQ(messages.text(), "@74-17@%s%s%s|a|b|c\n");
}

}  // namespace
