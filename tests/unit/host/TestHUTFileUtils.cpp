// SPDX-License-Identifier: Apache-2.0
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "support/Doubles.h"

namespace {

namespace fs = std::filesystem;

/// No file can grow beyond the limit while this lives, as on a full disk.
class SmallDisk {
  public:
    explicit SmallDisk(rlim_t limit) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit small{limit, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

  private:
    void (*handler_)(int);
    rlimit before_{};
};

mode_t modeOf(const std::string& path) {
    struct stat status {};
    ::stat(path.c_str(), &status);
    return status.st_mode & 07777U;
}

TEST(HUTFileUtils, MakesAndRemovesDirectories) {
    const TempDir dir;
    EXPECT_TRUE(HUTFileUtils::makeDirs(dir.path("a/b/c")));
    EXPECT_TRUE(HUTFileUtils::makeDirs(dir.path("a/b/c")));
    const std::string outside = dir.write("outside/kept", "x");
    fs::create_directory_symlink(dir.path("outside"), dir.path("a/b/link"));
    dir.write("a/b/file", "x");
    EXPECT_FALSE(HUTFileUtils::makeDirs(dir.path("a/b/file/below")));
    EXPECT_FALSE(HUTFileUtils::makeDirs(""));
    EXPECT_TRUE(HUTFileUtils::removeDirs(dir.path("a")));
    EXPECT_TRUE(HUTFileUtils::removeDirs(dir.path("a")));
    EXPECT_EQ(dir.list(), "outside\n");
    EXPECT_TRUE(HUTFile::isFile(outside));
}

TEST(HUTFileUtils, UniqueNamesAvoidWhateverIsThere) {
    const TempDir dir;
    EXPECT_EQ(HUTFileUtils::makeUniqueName(dir.path(), "x"), dir.path("x"));
    dir.write("x", "");
    fs::create_symlink("nowhere", dir.path("x_1"));
    EXPECT_EQ(HUTFileUtils::makeUniqueName(dir.path(), "x"), dir.path("x_2"));
}

TEST(HUTFileUtils, ListsNamesInOrderBehindWhatIsThere) {
    const TempDir dir;
    for (const char* const name : {"b", "a", "B", ".c"}) dir.write(name, "");
    HSTVector<std::string> names{"z"};
    HUTFileUtils::list(dir.path(), names);
    HUTFileUtils::list(dir.path("none"), names);
    EXPECT_EQ(names, (HSTVector<std::string>{"z", ".c", "B", "a", "b"}));
}

TEST(HUTFileUtils, WritesNewFilesWithTheProcessMask) {
    const TempDir dir;
    const std::string content("a\0b\n", 4);
    const mode_t before = ::umask(027);
    HUTFileUtils::writeWhole(dir.path("a"), content);
    ::umask(before);
    EXPECT_EQ(dir.read("a"), content);
    EXPECT_EQ(modeOf(dir.path("a")), 0640U);
    EXPECT_EQ(dir.list(), "a\n");
}

TEST(HUTFileUtils, ReplacesFilesAndKeepsTheirPermissions) {
    const TempDir dir;
    const std::string file = dir.write("a", "old and longer");
    fs::create_symlink("a", dir.path("link"));
    ASSERT_EQ(::chmod(file.c_str(), 0604), 0);
    HUTFileUtils::writeWhole(file, "new");
    EXPECT_EQ(dir.read("a"), "new");
    EXPECT_EQ(modeOf(file), 0604U);
    HUTFileUtils::writeWhole(dir.path("link"), "");
    EXPECT_TRUE(fs::is_symlink(dir.path("link")));
    EXPECT_EQ(dir.read("a"), "");
    EXPECT_EQ(dir.list(), "a\nlink\n");
}

TEST(HUTFileUtils, AFailedStepLeavesTheOldFileAndNothingElse) {
    const TempDir dir;
    const std::string file = dir.write("a", "old");
    {
        const SmallDisk full(1000);
        EXPECT_THROW_MSG(
            HUTFileUtils::writeWhole(file, std::string(5000, 'x')), HEXUserException,
            "The file '" + file + "' cannot be written (writing): File too large; it is as it was");
    }
    EXPECT_EQ(dir.read("a"), "old");
    EXPECT_EQ(dir.list(), "a\n");

    const std::string lost = dir.path("none/a");
    EXPECT_THROW_MSG(HUTFileUtils::writeWhole(lost, "x"), HEXUserException,
                     "The file '" + lost +
                         "' cannot be written (making a file beside it): No such file or "
                         "directory; it is as it was");
    EXPECT_THROW_MSG(HUTFileUtils::writeWhole(dir.path("a/b"), "x"), HEXUserException,
                     "The file '" + dir.path("a/b") +
                         "' cannot be written (making a file beside it): Not a directory; it is as "
                         "it was");
    EXPECT_EQ(dir.read("a"), "old");
}

TEST(HUTFileUtils, RefusesToReplaceWhatIsNoFile) {
    const TempDir dir;
    dir.write("sub/a", "old");
    ASSERT_EQ(::mkfifo(dir.path("pipe").c_str(), 0600), 0);
    for (const std::string& path : {dir.path("sub"), dir.path("pipe")}) {
        EXPECT_THROW_MSG(HUTFileUtils::writeWhole(path, "x"), HEXUserException,
                         "The file '" + path +
                             "' cannot be written (looking at it): it is a directory or a device; "
                             "it is as it was");
    }
    EXPECT_EQ(dir.list(), "pipe\nsub\n");
    EXPECT_TRUE(fs::is_fifo(dir.path("pipe")));
}

}  // namespace
