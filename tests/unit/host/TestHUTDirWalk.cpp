// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <map>

#include "mav_host/HEXError.h"
#include "mav_host/HUTDirWalk.h"
#include "mav_host/HUTFile.h"
#include "support/Doubles.h"

namespace {

namespace fs = std::filesystem;

/// The visited paths below the directory, a line each; directories end with "/".
std::string visited(const TempDir& dir, const HUTDirWalk::Options& options = {}) {
    std::string lines;
    HUTDirWalk::walk(dir.path(), options, [&](const HUTDirWalk::Entry& entry) {
        lines += entry.path.substr(dir.path().size() + 1) + (entry.isDir ? "/\n" : "\n");
        return true;
    });
    return lines;
}

TEST(HUTDirWalk, OrderIsThatOfTheNamesAndDepthCountsFromTheWalkedDirectory) {
    const TempDir dir;
    for (const char* name : {"b/z/c/d", "b/a", "c", "a.d/x", "a", "B", "\xc3\xa4 :b"}) {
        dir.write(name, "");
    }
    const std::string end = "c\n\xc3\xa4 :b\n";
    EXPECT_EQ(visited(dir), "B\na\na.d/\na.d/x\nb/\nb/a\nb/z/\nb/z/c/\nb/z/c/d\n" + end);
    EXPECT_EQ(visited(dir, {.maxDepth = 0}), "B\na\na.d/\nb/\n" + end);
    EXPECT_EQ(visited(dir, {.maxDepth = 2}), "B\na\na.d/\na.d/x\nb/\nb/a\nb/z/\nb/z/c/\n" + end);
    EXPECT_EQ(visited(dir, {.maxDepth = 3}), visited(dir));
}

TEST(HUTDirWalk, LinksAreFollowedOnRequestAndLoopsEnd) {
    const TempDir dir;
    dir.write("real/file", "");
    fs::create_symlink("real", dir.path("link"));
    fs::create_symlink("..", dir.path("real/up"));
    fs::create_symlink("self", dir.path("self"));
    fs::create_symlink("nowhere", dir.path("dangling"));
    EXPECT_EQ(visited(dir), "dangling\nlink\nreal/\nreal/file\nreal/up\nself\n");
    const std::string followed = "link/\nlink/file\nlink/up/\nreal/\nreal/file\nreal/up/\n";
    EXPECT_EQ(visited(dir, {.followLinks = true}), followed);
    dir.write("far/file", "");
    std::string before = "far";
    for (int i = 10; i < 52; ++i) {
        const std::string link = "chain" + std::to_string(i);
        fs::create_symlink(before, dir.path(link));
        before = link;
    }
    EXPECT_THROW_MSG(visited(dir, {.followLinks = true}), HEXUserException,
                     "The directory '" + dir.path("chain50") +
                         "' cannot be read: Too many levels of symbolic links");
}

TEST(HUTDirWalk, LinksCountAsGivenWithinABudget) {
    const TempDir dir;
    dir.write("a/b/file", "");
    std::string all = "a/\na/b/\na/b/file\n";
    for (int i = 10; i < 40; ++i) {
        const std::string link = std::string("l").append(std::to_string(i));
        fs::create_directory_symlink("a/b", dir.path(link));
        all += link + "/\n" + link + "/file\n";
    }
    EXPECT_EQ(visited(dir, {.followLinks = true, .mostEntries = 63}), all);
    {
        const HUTDirMemory memory;
        EXPECT_EQ(visited(dir, {.followLinks = true}), all);
        fs::remove(dir.path("a/b/file"));
        EXPECT_EQ(visited(dir, {.followLinks = true}), all);
    }
    EXPECT_THROW_MSG(visited(dir, {.mostEntries = 31}), HEXUserException,
                     "The directory '" + dir.path("a") +
                         "' cannot be read: it takes the walk of '" + dir.path() +
                         "' beyond 31 entries; walk its parts by themselves");
}

TEST(HUTDirWalk, WhatCannotBeReadIsNamedAndWhatVanishesIsNot) {
    const TempDir dir;
    dir.write("a/x", "");
    dir.write("b/y", "");
    std::string seen;
    const auto removeB = [&](const HUTDirWalk::Entry& entry) {
        seen += entry.path.substr(dir.path().size()) + "\n";
        fs::remove_all(dir.path("b"));
        return true;
    };
    EXPECT_TRUE(HUTDirWalk::walk(dir.path(), {}, removeB));
    EXPECT_EQ(seen, "/a\n/a/x\n/b\n");
    EXPECT_FALSE(HUTDirWalk::walk(dir.path(), {}, [](const HUTDirWalk::Entry&) { return false; }));

    EXPECT_THROW_MSG(
        HUTDirWalk::walk(dir.path("none"), {}, removeB), HEXUserException,
        "The directory '" + dir.path("none") + "' cannot be read: No such file or directory");
}

TEST(HUTDirWalk, ADirectoryRemovedBehindItsOpeningIsEmpty) {
    const TempDir dir;
    fs::create_directory(dir.path("gone"));
    const int held = ::open(dir.path("gone").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    ASSERT_GE(held, 0);
    fs::remove(dir.path("gone"));
    // This path still opens it.
    const auto refuse = [](const HUTDirWalk::Entry&) { return false; };
    EXPECT_TRUE(HUTDirWalk::walk("/proc/self/fd/" + std::to_string(held), {}, refuse));
    ::close(held);
}

TEST(HUTDirMemory, SecondWalkAndQuestionsAreAnsweredFromTheFirstWalk) {
    const TempDir dir;
    const std::string gone = dir.write("a/gone.pka", "");
    const std::string late = dir.path("a/late.pka");
    {
        const HUTDirMemory memory;
        EXPECT_EQ(visited(dir), "a/\na/gone.pka\n");
        fs::remove(gone);
        dir.write("a/late.pka", "");
        EXPECT_EQ(visited(dir, {.followLinks = true, .maxDepth = 3}), "a/\na/gone.pka\n");
        EXPECT_TRUE(HUTFile::exists(gone) && HUTFile::isFile(gone) && !HUTFile::isDir(gone));
        EXPECT_TRUE(HUTFile::exists(late)) << "what was not seen is asked of the system";
        EXPECT_TRUE(HUTFile::isDir(dir.path("a")));
        {
            const HUTDirMemory inner;
            EXPECT_FALSE(HUTFile::exists(gone)) << "the innermost one counts";
            EXPECT_EQ(visited(dir), "a/\na/late.pka\n");
        }
        EXPECT_TRUE(HUTFile::exists(gone));
    }
    EXPECT_FALSE(HUTFile::exists(gone));
    EXPECT_EQ(visited(dir), "a/\na/late.pka\n");
}

TEST(HUTDirMemory, ChangesNoAnswerWhileTheFilesStay) {
    const TempDir dir;
    dir.write("real/sub/a.pka", "");
    dir.write("real/sub/deep/b.qpfm", "");
    fs::create_directory_symlink("real", dir.path("link"));
    fs::create_directory_symlink("sub", dir.path("real/subLink"));
    fs::create_symlink("sub/a.pka", dir.path("real/c.pka"));
    fs::create_symlink("nowhere", dir.path("real/dangling.pka"));
    const auto answers = [](const std::string& path) {
        return HUTFile::getCanonicalName(path) + " " + std::to_string(HUTFile::exists(path)) +
               std::to_string(HUTFile::isFile(path)) + std::to_string(HUTFile::isDir(path));
    };
    std::map<std::string, std::string> plain;
    for (const std::string top : {"real", "link", "real/", "./real", "link/.", "real/sub/.."}) {
        for (const char* name : {"", "/sub", "/subLink/a.pka", "/sub/a.pka", "/sub/./a.pka",
                                 "/c.pka", "/sub//deep/b.qpfm", "/dangling.pka", "/none",
                                 "/sub/none/x", "/c.pka/x", "/sub/../c.pka", "/sub/deep/.."}) {
            plain[dir.path(top + name)] = answers(dir.path(top + name));
        }
    }
    const HUTDirMemory memory;
    ASSERT_EQ(HUTFile::getCanonicalName(dir.path()), dir.path());
    visited(dir, {.followLinks = true, .maxDepth = 3});
    visited(dir);
    for (const auto& [path, answer] : plain) EXPECT_EQ(answers(path), answer) << path;
}

}  // namespace
