// SPDX-License-Identifier: Apache-2.0
#include <filesystem>

#include "mav_host/HUTFile.h"
#include "support/Doubles.h"

namespace {

namespace fs = std::filesystem;

/// Changes the working directory for the time of a test.
class WorkingDir {
  public:
    explicit WorkingDir(const fs::path& dir) : before_(fs::current_path()) {
        fs::current_path(dir);
    }
    ~WorkingDir() { fs::current_path(before_); }
    WorkingDir(const WorkingDir&) = delete;
    WorkingDir& operator=(const WorkingDir&) = delete;

  private:
    fs::path before_;
};

TEST(HUTFile, TellsFilesFromDirectories) {
    const TempDir dir;
    const std::string file = dir.write("a.txt", "");
    const std::string dangling = dir.path("dangling");
    fs::create_symlink("nowhere", dangling);
    fs::create_symlink("loop", dir.path("loop"));
    EXPECT_TRUE(HUTFile::exists(file) && HUTFile::isFile(file) && !HUTFile::isDir(file));
    EXPECT_TRUE(HUTFile::exists(dir.path()) && !HUTFile::isFile(dir.path()));
    EXPECT_TRUE(HUTFile::isDir(dir.path()) && HUTPathUtils::exists(dir.path()));
    for (const std::string& none : {std::string(), dangling, dir.path("loop"), dir.path("none"),
                                    file + "/below", std::string(5000, 'x')}) {
        SCOPED_TRACE(none);
        EXPECT_FALSE(HUTFile::exists(none) || HUTPathUtils::exists(none));
        EXPECT_FALSE(HUTFile::isFile(none) || HUTFile::isDir(none));
    }
}

TEST(HUTFile, CanonicalNameFollowsDirectoriesAndKeepsTheFileName) {
    const TempDir dir;
    dir.write("real/sub/a.zip", "");
    fs::create_directory_symlink("real", dir.path("link"));
    fs::create_symlink("sub/a.zip", dir.path("real/b.pka"));
    fs::create_symlink("nowhere", dir.path("real/dangling.pka"));
    fs::create_symlink("loop", dir.path("loop"));
    const WorkingDir inside(dir.path());
    const std::pair<const char*, const char*> rows[] = {
        {"link/b.pka", "real/b.pka"},
        {"link/dangling.pka", "real/dangling.pka"},
        {"real/./sub/../b.pka", "real/b.pka"},
        {"link", "real"},
        {"link/sub/..", "real"},
        {"link/none/../other.pka", "real/other.pka"},
        {"link/none/", "real/none"},
        {"./x/../a.pka", "a.pka"},
        {"loop/../loop/a.pka", "loop/a.pka"},
    };
    for (const auto& [name, canonical] : rows) {
        EXPECT_EQ(HUTFile::getCanonicalName(name), dir.path(canonical));
        EXPECT_EQ(HUTFile::getCanonicalName(dir.path(name)), dir.path(canonical));
    }
    EXPECT_EQ(HUTFile::getCanonicalName("."), dir.path());
    for (const auto& [name, canonical] :
         {std::pair("", ""), std::pair("/", "/"), std::pair("/../a.pka", "/a.pka")}) {
        EXPECT_EQ(HUTFile::getCanonicalName(name), canonical);
    }
}

TEST(HUTFile, PartsOfNames) {
    struct Case {
        const char* path;
        const char* extension;
        const char* stem;
        const char* parent;
    };
    for (const Case& c :
         {Case{"d/a.pka", ".pka", "a", "d"}, Case{"a.tar.gz", ".gz", "a.tar", ""},
          Case{"/.pka", ".pka", "", "/"}, Case{"d.x/a", "", "a", "d.x"}, Case{"a.", ".", "a", ""},
          Case{".", "", ".", ""}, Case{"d/..", "", "..", "d"}, Case{"a.pka/", "", "", "a.pka"},
          Case{"...", ".", "..", ""}, Case{"", "", "", ""}}) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(HUTPathUtils::extension(c.path), c.extension);
        EXPECT_EQ(HUTPathUtils::stem(c.path), c.stem);
        EXPECT_EQ(HUTFile::getParent(c.path), c.parent);
        EXPECT_EQ(HUTFile::getExt(c.path), *c.extension == '\0' ? "" : c.extension + 1);
    }
    EXPECT_EQ(HUTFile::getDirSeparator(), "/");
}

TEST(HUTFile, RemovesFilesAndLinksButNoDirectories) {
    const TempDir dir;
    const std::string file = dir.write("a", "x");
    fs::create_symlink("a", dir.path("link"));
    fs::create_directory(dir.path("empty"));
    EXPECT_TRUE(HUTFile::rm(dir.path("link")));
    EXPECT_TRUE(HUTFile::isFile(file));
    EXPECT_TRUE(HUTFile::rm(file));
    EXPECT_TRUE(HUTFile::rm(file));
    EXPECT_FALSE(HUTFile::rm(dir.path("empty")));
    EXPECT_EQ(dir.list(), "empty\n");
    // What cannot be looked at is not known to be gone.
    EXPECT_FALSE(HUTFile::rm(dir.path(std::string(300, 'x'))));
}

TEST(HUTFile, IdentityTellsFilesAndTheirStatesApart) {
    const TempDir dir;
    const std::string file = dir.write("a", "1");
    const std::string before = HUTFile::getIdentity(file);
    EXPECT_FALSE(before.empty());
    EXPECT_EQ(before.find('/'), std::string::npos);
    EXPECT_EQ(HUTFile::getIdentity(dir.path() + "/./a"), before);
    EXPECT_NE(HUTFile::getIdentity(dir.write("b", "1")), before);
    dir.write("a", "22");
    EXPECT_NE(HUTFile::getIdentity(file), before);
    HUTFileUtils::writeWhole(file, "1");
    EXPECT_NE(HUTFile::getIdentity(file), before);
    EXPECT_EQ(HUTFile::getIdentity(dir.path("none")) + HUTFile::getIdentity(""), "");
}

TEST(HUTFile, PermissionsOfThisProcess) {
    const TempDir dir;
    const std::string file = dir.write("a", "1");
    fs::permissions(dir.path(), fs::perms(0755));
    EXPECT_TRUE(HUTFile::isReadable(file));
    EXPECT_FALSE(HUTFile::isReadable(dir.path("none")));
    fs::permissions(file, fs::perms(0));
    fs::permissions(dir.path(), fs::perms(0555));
    const Unprivileged user;
    EXPECT_FALSE(HUTFile::isReadable(file));
    EXPECT_FALSE(HUTFile::isWritable(dir.path()));
}

}  // namespace
