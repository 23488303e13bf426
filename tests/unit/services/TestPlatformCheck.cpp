// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_platform/PlatformCheck.h"
#include "support/Archives.h"
#include "support/ZipFixture.h"

namespace {

TEST(PlatformCheck, MembersNeedNoNameToBeUnlisted) {
    const TempDir dir;
    const std::string path =
        dir.write("card.pka", rawZip({storedMember("pka.json", metadata()),
                                      storedMember("folder/", ""), storedMember("", "x")}));
    std::string unlisted;
    for (const auto& finding : mav_platform::PlatformCheck::run(path)) {
        if (finding.rule == "unlisted-member") unlisted += finding.text + "\n";
    }
    EXPECT_EQ(unlisted, "the member '' is not listed anywhere\n");
}

}  // namespace
