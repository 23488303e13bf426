// SPDX-License-Identifier: Apache-2.0
// Console, key provider, board data, hardware database, exceptions, and putting all of it back.
#include <sys/stat.h>

#include <algorithm>

#include "mav_host/HBOBoardCDataManager.h"
#include "mav_host/HEXError.h"
#include "mav_host/HHSMHwManager.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTZip.h"
#include "mav_host/Host.h"
#include "mav_host/Printable.h"
#include "support/Doubles.h"

namespace {

class FixedKey final : public mav_host::KeyProvider {
  public:
    std::optional<std::string> key() const override { return text; }

    std::string text = "a fixed long key";
};

class OtherBoards final : public HBOBoardCDataManager {};

class NoHardware final : public HHSMHwManager {
  public:
    std::shared_ptr<HHSMHwDb> open(const std::string&, const std::string&) override {
        return nullptr;
    }
};

class FixedProvider final : public HUTEnvProvider {
  public:
    const char* getEnv(const std::string& name) const override {
        return name == "GIVEN" ? "value" : nullptr;
    }
    void getAppRootList(HSTVector<std::string>& out) const override {
        if (!root.empty()) out.push_back(root);
    }
    std::string getTmpDir() const override { return "/fixed/tmp"; }
    unsigned getMajor() const override { return 0; }
    unsigned getMinor() const override { return 7; }

    std::string root = "/fixed";
};

bool isDefaultBoards() {
    const std::unique_ptr<HBOBoardCDataManager> made(HBOBoardCDataManager::create());
    return dynamic_cast<OtherBoards*>(made.get()) == nullptr;
}

TEST(Host, KeyIsTheWholeFileReadAfresh) {
    const TempDir dir;
    const std::string path = dir.path("key");
    EXPECT_EQ((EnvVar("MAV_KEY_FILE", std::nullopt), mav_host::key()), std::nullopt);
    const std::string bytes("sixteen bytes\0.\n", 16);
    const EnvVar variable("MAV_KEY_FILE", dir.write("key", bytes));
    CapturedMessages messages;
    for (const mode_t mode : {0600U, 0604U, 0604U}) {
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
        EXPECT_EQ(mav_host::key(), bytes);
        EXPECT_EQ(messages.text(), mode == 0600 ? "" : "@74-301@%s|" + path + "\n") << "once";
    }
    const std::string shared = dir.write("shared", bytes);
    ASSERT_EQ(::chmod(shared.c_str(), 0640), 0);
    EXPECT_EQ((EnvVar("MAV_KEY_FILE", shared), mav_host::key()), bytes);
    EXPECT_NE(messages.text().find("@74-301@%s|" + shared), std::string::npos);
    const std::string limits = " is shorter than 16 bytes";
    for (const std::size_t size : {15U, 65537U}) {
        dir.write("key", std::string(size, 'k'));
        EXPECT_THROW_MSG(mav_host::key(), HEXUserException,
                         "The key file '" + path + "'" + limits +
                             " or larger than 64 KiB; give a file that holds a key");
    }
    ASSERT_EQ(::mkfifo(dir.path("pipe").c_str(), 0600), 0);
    for (const std::string& bad : {dir.path(), dir.path("none"), dir.path("pipe")}) {
        const EnvVar other("MAV_KEY_FILE", bad);
        EXPECT_THROW_MSG(mav_host::key(), HEXUserException,
                         "The key file '" + bad +
                             "' that MAV_KEY_FILE names cannot be read; correct the variable or "
                             "the file's permissions");
    }
    FixedKey given;
    given.text.pop_back();
    mav_host::setKeyProvider(&given);
    EXPECT_THROW_MSG(mav_host::key(), HEXUserException,
                     "The key that the host gives" + limits + "; give a longer one");
    mav_host::setKeyProvider(nullptr);
}

TEST(Host, WhatIsWipedIsOverwritten) {
    std::string secret(100, 's');
    const char* const bytes = secret.data();
    mav_host::wipe(secret);
    EXPECT_EQ(secret, "");
    EXPECT_EQ(std::count(bytes, bytes + 100, '\0'), 100);
}

TEST(Host, BoardDataTellsWhetherThePathsChanged) {
    HBOBoardCDataManager boards;
    const std::pair<HSTVector<std::string>, bool> rows[] = {
        {{}, false}, {{"/b", "/a"}, true}, {{"/b", "/a"}, false}, {{"/a", "/b"}, true}};
    for (const auto& [given, isNew] : rows) {
        bool changed = !isNew;
        boards.setBoardPartRepoPaths(given, changed);
        EXPECT_EQ(changed, isNew);
        HSTVector<std::string> paths{"replaced"};
        boards.getBoardPartRepoPaths(paths);
        EXPECT_EQ(paths, given);
    }
}

TEST(Host, HardwareOpensWithADefinitionAlone) {
    const TempDir dir;
    HUTZip::create(dir.path("a.b.pka"), {{"hwdef.xml", "", "<a/>"}});
    HUTZip::create(dir.path("s.dsa"), {{"other", "", ""}, {"sysdef.xml", "", ""}});
    HUTZip::create(dir.path("n.pka"), {{"sub/hwdef.xml", "", ""}});
    dir.write("text.pka", "no archive");
    std::string names;
    for (const char* file : {"a.b.pka", "s.dsa", "n.pka", "text.pka", "missing.pka"}) {
        const auto database = HHSMHwManager::get().open(dir.path(file), "rm0");
        names += database ? database->getName() + " " : "none ";
    }
    EXPECT_EQ(names, "a.b_rm0 s_rm0 none none none ");
}

TEST(Host, ResetPutsEveryDefaultBack) {
    std::ostringstream lines;
    FixedKey key;
    FixedProvider env;
    NoHardware hardware;
    CapturedMessages messages;
    mav_host::setConsole(&lines);
    EXPECT_EQ(mav_host::setKeyProvider(&key), nullptr);
    EXPECT_EQ(HUTEnv::setProvider(&env), nullptr);
    HUTEnv::setProductName("named");
    EXPECT_EQ(HUTEnv::getProductName(), "named");
    EXPECT_STREQ(HUTEnv::getEnv("GIVEN"), "value");
    EXPECT_EQ(HUTEnv::getEnv("PATH"), nullptr);
    EXPECT_EQ(HUTEnv::getHDIAppRoot(), "/fixed");
    EXPECT_EQ(HUTEnv::getHDITmpDir(), "/fixed/tmp");
    EXPECT_EQ(HUTEnv::getMinor(), 7U);
    env.root.clear();
    EXPECT_EQ(HUTEnv::getHDIAppRoot(), "");
    EXPECT_EQ(HHSMHwManager::set(&hardware), nullptr);
    HBOBoardCDataManager::setFactory([]() -> HBOBoardCDataManager* { return new OtherBoards; });
    EXPECT_EQ(mav_host::key(), key.text);
    EXPECT_EQ(&HHSMHwManager::get(), &hardware);
    EXPECT_FALSE(isDefaultBoards());

    mav_host::resetHost();

    EXPECT_EQ(&mav_host::console(), &mav_host::shownOutput());
    EXPECT_EQ(mav_host::setKeyProvider(nullptr), nullptr);
    EXPECT_EQ(ComMsgMgr::setSink(nullptr), nullptr);
    EXPECT_EQ(HUTEnv::setProvider(nullptr), nullptr);
    EXPECT_EQ(HUTEnv::getProductName(), "");
    EXPECT_NE(HUTEnv::getEnv("PATH"), nullptr);
    EXPECT_EQ(HHSMHwManager::set(nullptr), nullptr);
    EXPECT_TRUE(isDefaultBoards());
}

}  // namespace
