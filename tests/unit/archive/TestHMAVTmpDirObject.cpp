// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVTmpDirObject.h"
#include "support/Doubles.h"

TEST(HMAVTmpDirObject, MakesADirectoryOfItsOwnThatOutlivesIt) {
    std::string path;
    {
        HMAVTmpDirObject one("scratch");
        const HMAVTmpDirObject two("scratch");
        path = one.get();
        EXPECT_EQ(path.find(HUTFile::getCanonicalName(HUTEnv::getHDITmpDir()) + "/scratch"), 0U);
        EXPECT_NE(path, two.get());
        EXPECT_TRUE(one.exists() && two.exists());
        EXPECT_TRUE(one.create("scratch"));
        EXPECT_NE(one.get(), path);
    }
    EXPECT_TRUE(HUTFile::isDir(path));
    EXPECT_TRUE(HUTFileUtils::removeDirs(path));
}

TEST(HMAVTmpDirObject, EmptyUntilMadeAndGoneWhenDeleted) {
    HMAVTmpDirObject object;
    EXPECT_TRUE(object.empty());
    EXPECT_FALSE(object.exists());
    object.deleteTmpDir();
    EXPECT_THROW_MSG(object.create("../x"), HEXUserException,
                     "HMAVTmpDirObject::createTmpDir() - '../x' leads out of the temporary "
                     "directory; give a plain name");
    EXPECT_TRUE(object.empty());
    EXPECT_THROW(object.create("/abs"), HEXUserException);
    EXPECT_TRUE(object.create("sub/x"));
    ASSERT_TRUE(object.create("x"));
    HUTFileUtils::makeDirs(object.get() + "/sub/dir");
    object.deleteTmpDir();
    EXPECT_FALSE(object.exists());
    EXPECT_FALSE(object.empty());
}

namespace {

/// A host whose temporary directory is given.
class TmpDirHost final : public HUTEnvProvider {
  public:
    explicit TmpDirHost(std::string dir)
        : dir_(std::move(dir)), before_(HUTEnv::setProvider(this)) {}
    ~TmpDirHost() override { HUTEnv::setProvider(before_); }
    const char* getEnv(const std::string&) const override { return nullptr; }
    void getAppRootList(HSTVector<std::string>&) const override {}
    std::string getTmpDir() const override { return dir_; }
    unsigned getMajor() const override { return 0; }
    unsigned getMinor() const override { return 0; }

  private:
    std::string dir_;
    HUTEnvProvider* before_;
};

}  // namespace

TEST(HMAVTmpDirObject, ReportsADirectoryThatStaysAndOneThatCannotBeMade) {
    const TempDir dir;
    ::chmod(dir.path().c_str(), 0777);
    const TmpDirHost host(dir.path());
    const Unprivileged user;
    const CapturedMessages messages;
    HMAVTmpDirObject object("locked");
    HUTFileUtils::makeDirs(object.get() + "/sub/dir");
    ::chmod((object.get() + "/sub").c_str(), 0500);
    object.deleteTmpDir();
    EXPECT_EQ(messages.text(), "@1-1874@%s|" + object.get() + "\n");
    ::chmod((object.get() + "/sub").c_str(), 0700);
    object.deleteTmpDir();
    EXPECT_FALSE(object.exists());

    HUTFileUtils::makeDirs(dir.path("closed"));
    ::chmod(dir.path("closed").c_str(), 0500);
    const TmpDirHost closed(dir.path("closed"));
    EXPECT_FALSE(object.create("x"));
    EXPECT_TRUE(object.empty());
}
