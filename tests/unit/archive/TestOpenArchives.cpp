// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>

#include "archive/OpenArchives.h"
#include "mav_host/HEXError.h"
#include "support/Archives.h"

namespace {

TEST(OpenArchives, AnArchiveIsOpenedOnceByWhateverNameItIsAskedFor) {
    const TempDir dir;
    const std::string path = packArchive(dir, "a.pka", {{"m", "content"}});
    mav_platform::OpenArchives archives;
    EXPECT_EQ(archives.open(dir.path("./a.pka")).read("m", 10), "content");
    std::filesystem::remove(path);
    EXPECT_EQ(archives.open(dir.path("./a.pka")).read("m", 10), "content");
    EXPECT_EQ(archives.open(path).read("m", 10), "content") << "by the canonical name";
    EXPECT_THROW(mav_platform::OpenArchives().open(path), HEXFileNotFoundException);
}

}  // namespace
