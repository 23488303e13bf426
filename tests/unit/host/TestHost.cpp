// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>

// Console, key provider, board data, hardware database, exceptions, and putting all of it back.
#include <sys/wait.h>

#include <iostream>

#include "mav_host/HBOBoardCDataManager.h"
#include "mav_host/HEXError.h"
#include "mav_host/HHSMHwManager.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTZip.h"
#include "mav_host/Host.h"
#include "support/Doubles.h"

namespace {

class FixedKey final : public mav_host::KeyProvider {
  public:
    std::optional<std::string> key() const override { return "fixed"; }
};

class OtherBoards final : public HBOBoardCDataManager {};

class NoHardware final : public HHSMHwManager {
  public:
    std::shared_ptr<HHSMHwDb> open(const std::string&, const std::string&) override {
        return nullptr;
    }
};

class OtherEnv final : public HUTEnvProvider {
  public:
    const char* getEnv(const std::string&) const override { return nullptr; }
    void getAppRootList(HSTVector<std::string>&) const override {}
    std::string getTmpDir() const override { return ""; }
    unsigned getMajor() const override { return 1; }
    unsigned getMinor() const override { return 1; }
};

bool isDefaultBoards() {
    const std::unique_ptr<HBOBoardCDataManager> made(HBOBoardCDataManager::create());
    return dynamic_cast<OtherBoards*>(made.get()) == nullptr;
}

TEST(Host, ConsoleGoesWhereTheToolSendsIt) {
    CapturedConsole outer;
    {
        CapturedConsole inner;
        mav_host::console() << "inner";
        EXPECT_EQ(inner.text(), "inner");
    }
    mav_host::console() << "outer";
    EXPECT_EQ(outer.text(), "outer");
}

TEST(Host, KeyIsTheWholeFileReadAfresh) {
    const TempDir dir;
    EXPECT_EQ((EnvVar("MAV_KEY_FILE", std::nullopt), mav_host::key()), std::nullopt);
    const EnvVar variable("MAV_KEY_FILE", dir.write("key", std::string("a\0\n", 3)));
    EXPECT_EQ(mav_host::key(), std::string("a\0\n", 3));
    dir.write("key", std::string(65536, 'k'));
    EXPECT_EQ(mav_host::key(), std::string(65536, 'k'));
    for (const std::string& wrong : {std::string(), std::string(65537, 'k')}) {
        dir.write("key", wrong);
        EXPECT_THROW_MSG(mav_host::key(), HEXUserException,
                         "The key file '" + dir.path("key") +
                             "' is empty or larger than 64 KiB; give a file that holds a key");
    }
}

TEST(Host, AKeyFileThatCannotBeReadIsNamed) {
    const TempDir dir;
    ASSERT_EQ(::mkfifo(dir.path("pipe").c_str(), 0600), 0);
    for (const std::string& path : {dir.path(), dir.path("none"), dir.path("pipe")}) {
        const EnvVar variable("MAV_KEY_FILE", path);
        EXPECT_THROW_MSG(mav_host::key(), HEXUserException,
                         "The key file '" + path +
                             "' that MAV_KEY_FILE names cannot be read; correct the variable or "
                             "the file's permissions");
    }
}

TEST(Host, BoardDataTellsWhetherThePathsChanged) {
    HBOBoardCDataManager boards;
    bool changed = true;
    boards.setBoardPartRepoPaths({}, changed);
    EXPECT_FALSE(changed);
    boards.setBoardPartRepoPaths({"/b", "/a"}, changed);
    EXPECT_TRUE(changed);
    boards.setBoardPartRepoPaths({"/b", "/a"}, changed);
    EXPECT_FALSE(changed);
    boards.setBoardPartRepoPaths({"/a", "/b"}, changed);
    EXPECT_TRUE(changed);
    HSTVector<std::string> paths{"replaced"};
    boards.getBoardPartRepoPaths(paths);
    EXPECT_EQ(paths, (HSTVector<std::string>{"/a", "/b"}));
}

TEST(Host, HardwareOpensWithADefinitionAlone) {
    const TempDir dir;
    const auto open = [&](const std::string& name) {
        const auto database = HHSMHwManager::get().open(dir.path(name), "rm0");
        return database ? database->getName() : "none";
    };
    HUTZip::create(dir.path("a.b.pka"), {{"hwdef.xml", "", "<a/>"}});
    HUTZip::create(dir.path("s.dsa"), {{"other", "", ""}, {"sysdef.xml", "", ""}});
    HUTZip::create(dir.path("n.pka"), {{"sub/hwdef.xml", "", ""}});
    dir.write("text.pka", "no archive");
    EXPECT_EQ(open("a.b.pka"), "a.b_rm0");
    EXPECT_EQ(open("s.dsa"), "s_rm0");
    EXPECT_EQ(open("n.pka"), "none");
    EXPECT_EQ(open("text.pka"), "none");
    EXPECT_EQ(open("missing.pka"), "none");
}

TEST(Host, ResetPutsEveryDefaultBack) {
    std::ostringstream lines;
    FixedKey key;
    OtherEnv env;
    NoHardware hardware;
    CapturedMessages messages;
    mav_host::setConsole(&lines);
    EXPECT_EQ(mav_host::setKeyProvider(&key), nullptr);
    HUTEnv::setProvider(&env);
    HUTEnv::setProductName("name");
    EXPECT_EQ(HHSMHwManager::set(&hardware), nullptr);
    HBOBoardCDataManager::setFactory([]() -> HBOBoardCDataManager* { return new OtherBoards; });
    EXPECT_EQ(mav_host::key(), "fixed");
    EXPECT_EQ(&HHSMHwManager::get(), &hardware);
    EXPECT_FALSE(isDefaultBoards());

    mav_host::resetHost();

    EXPECT_EQ(&mav_host::console(), &std::cout);
    EXPECT_EQ(mav_host::setKeyProvider(nullptr), nullptr);
    EXPECT_EQ(ComMsgMgr::setSink(nullptr), nullptr);
    EXPECT_EQ(HUTEnv::setProvider(nullptr), nullptr);
    EXPECT_EQ(HUTEnv::getProductName(), "");
    EXPECT_EQ(HHSMHwManager::set(nullptr), nullptr);
    EXPECT_TRUE(isDefaultBoards());
}

TEST(HEXError, FamilyKeepsTextAndPath) {
    EXPECT_THROW_MSG(throw HEXAlgException("A::b() - c"), HEXError, "A::b() - c");
    EXPECT_THROW_MSG(throw HEXDataException("d"), HEXError, "d");
    EXPECT_THROW_MSG(throw HEXUserException("u"), HEXError, "u");
    try {
        throw HEXFileNotFoundException("");
    } catch (const HEXError& error) {
        EXPECT_STREQ(error.what(), "File '' does not exist");
        EXPECT_EQ(dynamic_cast<const HEXFileNotFoundException&>(error).getPath(), "");
    }
}

}  // namespace
