// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "repository/IgnoreRules.h"

namespace {

using mav_platform::IgnoreRules;

struct Row {
    const char* patterns;
    const char* path;  ///< a folder when it ends in "/"
    bool ignored;
};

TEST(IgnoreRules, FollowTheRulesOfGit) {
    constexpr Row ROWS[] = {
        {"*.pka", "a/b.pka", true},
        {"*.pka", "a.pka/x.qpfm", true},
        {"*.pka", "a.pkax", false},
        {"old", "a/old/b", true},
        {"old/", "a/old", false},
        {"old/", "a/old/", true},
        {"/old", "a/old", false},
        {"/old", "old", true},
        {"a/*.pka", "a/b.pka", true},
        {"a/*.pka", "a/c/b.pka", false},
        {"a/*.pka", "x/a/b.pka", false},
        {"**/a/*.pka", "x/y/a/b.pka", true},
        {"**/a", "a", true},
        {"a/**", "a/", false},
        {"a/**", "a/b/c", true},
        {"a/**/d", "a/d", true},
        {"a/**/d", "a/b/c/d", true},
        {"a/**/d", "a/b/c", false},
        {"?.pka", "ab.pka", false},
        {"[a-c].pka", "b.pka", true},
        {"[!a-c].pka", "b.pka", false},
        {"*", ".hidden", true},
        {"# a\n\n  \n", "# a", false},
        {"\\#a", "#a", true},
        {"\\!a", "!a", true},
        {"a  ", "a", true},
        {"a\\ ", "a ", true},
        {"a\r\n", "a", true},
        {"*.pka\n!b.pka", "b.pka", false},
        {"!b.pka\n*.pka", "b.pka", true},
        {"a/\n!a/b", "a/b", true},
        {"/", "a", false},
    };
    for (const Row& row : ROWS) {
        IgnoreRules rules;
        rules.add(row.patterns, "here", true);
        std::string_view path = row.path;
        const bool isDir = path.ends_with('/');
        if (isDir) path.remove_suffix(1);
        EXPECT_EQ(rules.ignoring(path, isDir) != nullptr, row.ignored)
            << row.patterns << " and " << row.path;
    }
}

}  // namespace
