// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>

#include "mav_host/HUTEnv.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVPlatformMgr.h"
#include "support/Platforms.h"

namespace {

namespace fs = std::filesystem;
using Dirs = HSTVector<std::string>;
using Type = HMAVPlatformMgr::MAVProjectType;

/// A repository of the test with its directory; reports and console lines are collected.
struct Repository {
    /// Platform files below the directory, in list order, a line each.
    std::string files() const {
        return shown([&](auto& list) { mgr.getPlatforms(list); });
    }
    std::string bare() const {
        return shown([&](auto& list) { mgr.getDSAPlatforms(list); });
    }
    template <class Query>
    std::string shown(Query query) const {
        HSTVector<HMAVPlatform*> list;
        query(list);
        std::string text;
        for (const HMAVPlatform* platform : list) {
            text += platform->getPlatformFile().substr(dir.path().size() + 1) + "\n";
        }
        return text;
    }
    std::string errors() const {
        HSTVector<std::string> texts;
        mgr.getParsingErrorMsgs(texts);
        std::string joined;
        for (const std::string& text : texts) joined += text;
        return joined;
    }

    /// Files of the refusals with their reasons, a line each; directories end with "/".
    std::string refusals() const {
        std::string lines;
        for (const HMAVPlatformMgr::Refusal& one : mgr.getRefusals()) {
            lines += one.file.substr(dir.path().size() + 1) + (one.isDir ? "/|" : "|");
            lines += one.reason + "\n";
        }
        return lines;
    }

    TempDir dir;
    CapturedMessages messages;
    CapturedConsole console;
    HMAVPlatformMgr mgr;
};

TEST(HMAVPlatformMgr, DescriptionsAreFoundThreeLevelsDeepTheLastFoundFirst) {
    Repository r;
    for (const char* stem : {"top", "a/1", "a/b/2", "a/b/c/3 \xc3\xa4:x", "a/b/c/d/4"}) {
        described(r.dir, stem);
    }
    described(r.dir, "up", metadata(), ".QPFM");
    bareArchive(r.dir, "dir.pka");
    fs::create_directory(r.dir.path("dir.qpfm"));
    const TempDir outside;
    described(outside, "linked");
    fs::create_directory_symlink(outside.path(), r.dir.path("link"));
    EXPECT_TRUE(r.mgr.addPlatformsFromDirs({r.dir.path()}));
    EXPECT_EQ(r.files(),
              "top.qpfm\nlink/linked.qpfm\na/b/c/3 \xc3\xa4:x.qpfm\na/b/2.qpfm\na/1.qpfm\n");
    EXPECT_EQ(r.bare(), "dir.pka\nup.pka\n") << "no descriptions of theirs";
    EXPECT_EQ(r.messages.text(), "");
    HMAVPlatform* const top = r.mgr.getPlatform("top");
    EXPECT_TRUE(top->isQpfm());
    EXPECT_FALSE(top->isPartial());
    EXPECT_EQ(top->getHardwarePlatform()->getVBNV(), "tarvek:b1:card:3.1");
}

TEST(HMAVPlatformMgr, DirectoriesAreSearchedInOrderAndTwiceListedOnesOnce) {
    Repository r;
    described(r.dir, "one/same");
    described(r.dir, "two/same");
    bareArchive(r.dir, "one/bare.pka");
    bareArchive(r.dir, "two/bare.pka");
    fs::create_directory_symlink("one", r.dir.path("link"));
    const Dirs dirs{r.dir.path("two"), r.dir.path("link"), r.dir.path("two/../one/."),
                    r.dir.path("absent"), r.dir.path("one/bare.pka")};
    EXPECT_TRUE(r.mgr.addPlatformsFromDirs(dirs));
    EXPECT_EQ(r.files(), "one/same.qpfm\ntwo/same.qpfm\n");
    EXPECT_EQ(r.bare(), "two/bare.pka\none/bare.pka\n");
    const HMAVPlatform* const held = r.mgr.getPlatform("same");
    EXPECT_TRUE(r.mgr.addPlatformsFromDirs({r.dir.path("absent")})) << "something is held";
    EXPECT_TRUE(r.mgr.addPlatformsFromDirs(dirs));
    EXPECT_EQ(r.mgr.getPlatform("same"), held);
    EXPECT_EQ(r.files() + r.bare(), "one/same.qpfm\ntwo/same.qpfm\ntwo/bare.pka\none/bare.pka\n");
    EXPECT_EQ(r.messages.text(), "") << "what is no directory is passed over in silence";

    r.mgr.clearAllPlatforms();
    EXPECT_EQ(r.files() + r.bare(), "");
    EXPECT_FALSE(r.mgr.addPlatformsFromDirs({r.dir.path("absent")}));
}

TEST(HMAVPlatformMgr, ANameLoadsTheFirstDescriptionOfThatStemAlone) {
    Repository r;
    for (const char* stem : {"a/other", "b/CARD", "c/card"}) described(r.dir, stem);
    r.dir.write("a/Card.qpfm", "broken");
    bareArchive(r.dir, "bare.pka");
    EXPECT_TRUE(r.mgr.addPlatformsFromDirs("card", {r.dir.path()}));
    EXPECT_EQ(r.files(), "b/CARD.qpfm\n") << "a broken one does not end the search";
    EXPECT_EQ(r.bare(), "bare.pka\n") << "bare archives are searched in any case";
    EXPECT_TRUE(r.messages.has("@74-3@%s|" + r.dir.path("a/Card.qpfm")));

    r.mgr.addPlatformsFromDirs("card", {r.dir.path("b"), r.dir.path("c")});
    EXPECT_EQ(r.files(), "b/CARD.qpfm\n") << "one that is held ends the search too";
    r.mgr.addPlatformsFromDirs("card", {r.dir.path("c"), r.dir.path("b")});
    EXPECT_EQ(r.files(), "c/card.qpfm\nb/CARD.qpfm\n");
}

TEST(HMAVPlatformMgr, EachReasonToLeaveAPlatformOutIsReportedAndGathered) {
    Repository r;
    const auto in = [&](const std::string& name) { return r.dir.path(name); };
    const auto has = [&](const std::string& text) {
        EXPECT_NE(r.errors().find(text + " Unable to load platform.\n"), std::string::npos)
            << text << r.errors();
    };
    bareArchive(r.dir, "hw/ok.dsa");
    r.dir.write("hw/ok.qpfm", "<a></b>");
    r.dir.write("hw/zip.zip", "");
    r.dir.write("1.qpfm", descriptionOf("none.pka"));
    r.dir.write("2.qpfm", descriptionOf("hw/zip.zip"));
    r.dir.write("3.qpfm", descriptionOf("hw/ok.dsa", R"(<mav:softwarePlatforms>
        <mav:softwarePlatform mav:path="." mav:name="s.spfm"/></mav:softwarePlatforms>)"));
    EXPECT_FALSE(r.mgr.addPlatformsFromDirs({in("")}));
    EXPECT_EQ(r.messages.text(), "@74-14@%s%s|" + in("none.pka|") + in("1.qpfm\n@74-55@%s%s%s|") +
                                     in("hw/zip.zip|") + in("2.qpfm| '.dsa', '.pka'\n@74-9@%s|") +
                                     in("hw/ok.qpfm\n@74-3@%s|") + in("hw/ok.qpfm\n"))
        << "a missing software platform has its text alone";
    has("Found bad hardware platform file " + in("hw/zip.zip") + " for platform " + in("2.qpfm") +
        ". Supported extensions are '.dsa', '.pka'.");
    has("Software platform file " + in("./s.spfm") + " for platform " + in("3.qpfm") +
        " does not exist on disk.");

    r.mgr.clearParsingErrorMsgs();
    EXPECT_EQ(r.errors(), "");
    r.messages.all.clear();
    r.dir.write("s.spfm", "<?xml version=\"1.0\"?>\n<a/>");
    r.mgr.addPlatformsFromDirs("3", {in("")});
    EXPECT_TRUE(r.messages.has("@74-4@%s|" + in("3.qpfm"))) << r.messages.text();
    has("Encountered Errors while parsing software platform for: " + in("3.qpfm") + ".");
}

TEST(HMAVPlatformMgr, PartitionsAreAllTried) {
    Repository r;
    std::string partitions;
    for (const std::string archive : {"n1.pka", "n2.zip"}) {
        partitions +=
            "<mav:reconfigurablePartition mav:id='1'><mav:hardwarePlatform mav:path='.' "
            "mav:name='" +
            archive + "'/></mav:reconfigurablePartition>";
    }
    r.dir.write("bad.qpfm",
                "<mav:platform mav:vendor='v' mav:library='l' mav:name='n' mav:version='1.0'>"
                "<mav:hardwarePlatforms>" +
                    partitions + "</mav:hardwarePlatforms></mav:platform>");
    r.mgr.addPlatformsFromDirs({r.dir.path()});
    EXPECT_EQ(r.files(), "");
    EXPECT_EQ(r.messages.all.size(), 2U) << r.messages.text();
}

TEST(HMAVPlatformMgr, WhatVanishesOrCannotBeEnteredDoesNotHideTheRest) {
    /// Removes a file when the first report comes.
    struct Remover final : ComMsgSink {
        explicit Remover(std::string path) : file(std::move(path)) {}
        void send(const ComMsg& message) override {
            fs::remove(file);
            ids += message.id + " ";
        }
        std::string file;
        std::string ids;
    };
    Repository r;
    r.dir.write("all/a.qpfm", "broken");
    Remover remover(described(r.dir, "all/b"));
    described(r.dir, "all/c");
    ComMsgSink* const before = ComMsgMgr::setSink(&remover);
    r.mgr.addPlatformsFromDirs({r.dir.path("all")});
    ComMsgMgr::setSink(before);
    EXPECT_EQ(remover.ids, "@74-9@%s @74-3@%s @74-9@%s @74-3@%s ");
    EXPECT_EQ(r.files(), "all/c.qpfm\n");

    r.mgr.clearAllPlatforms();
    r.mgr.clearParsingErrorMsgs();
    EXPECT_EQ(r.errors() + r.refusals(), "");
    fs::create_directory(r.dir.path("all/b"));
    described(r.dir, "next/d");
    for (const char* stem : {"all/0.pka", "next/e.pka"}) bareArchive(r.dir, stem);
    fs::permissions(r.dir.path(), fs::perms::all);
    fs::permissions(r.dir.path("all/b"), fs::perms::none);
    r.dir.write("all/a.qpfm", descriptionOf("c.pka"));
    std::optional<Unprivileged> rights;
    rights.emplace();
    r.mgr.addPlatformsFromDirs({r.dir.path("all"), r.dir.path("next")});
    EXPECT_EQ(r.files(), "next/d.qpfm\nall/a.qpfm\n") << "the rest of that directory is not seen";
    EXPECT_TRUE(r.messages.has("@74-5@%s|" + r.dir.path("all")));
    const std::string refused =
        "all/|The directory '" + r.dir.path("all/b") + "' cannot be read: Permission denied\n";
    EXPECT_EQ(r.refusals(), refused);
    r.mgr.clearParsingErrorMsgs();
    HSTVector<HMAVHardwarePlatform*> bare;
    r.mgr.getHardwarePlatformsFromDirs({r.dir.path("all"), r.dir.path("next")}, bare, false);
    EXPECT_EQ(r.refusals(), refused) << "the search for bare archives too";
    EXPECT_EQ(bare.size(), 2U) << "what was found stays, and the next directory is searched";
    rights.reset();
    fs::permissions(r.dir.path("all/b"), fs::perms::owner_all);
    r.mgr.getHardwarePlatformsFromDirs({r.dir.path("all")}, bare, false);
    EXPECT_EQ(r.refusals(), "") << "searched to its end";
}

TEST(HMAVPlatformMgr, ArchivesWithoutMetadataAreRefusedAndTheirPlatformsBad) {
    Repository r;
    r.dir.write("a.pka", "");
    bareArchive(r.dir, "b.pka", R"({"vendor": "v"})");
    bareArchive(r.dir, "c.pka");
    fs::create_symlink("nowhere", r.dir.path("d.pka"));
    r.dir.write("x/one.qpfm", descriptionOf("../b.pka"));
    const std::string missing = "'boardId': the required key is missing";
    for (int search = 0; search < 2; ++search) r.mgr.addPlatformsFromDirs({r.dir.path()});
    EXPECT_EQ(r.files() + r.bare(), "x/one.qpfm\na.pka\nb.pka\nc.pka\nd.pka\n");
    const std::string expected =
        "x/one.qpfm|" + r.dir.path("b.pka") + ": pka.json: " + missing + "\na.pka|The archive '" +
        r.dir.path("a.pka") + "' is not a zip archive; check that it is the file you mean" +
        "\nb.pka|pka.json: " + missing + "\nd.pka|the file does not exist\n";
    EXPECT_EQ(r.refusals(), expected);
    EXPECT_EQ(r.mgr.getRefusals()[0].faulty, Dirs{r.dir.path("b.pka")});
    EXPECT_EQ(r.mgr.getPlatform("one")->getBadReason(),
              r.dir.path("b.pka") + ": pka.json: " + missing);
    r.mgr.setProjectType(Type::PLATFORM);
    EXPECT_TRUE(r.mgr.getPlatform("a")->isBad());
    EXPECT_FALSE(r.mgr.getPlatform("c")->isBad());
    bareArchive(r.dir, "b.pka");
    r.mgr.clearAllPlatforms();
    r.mgr.addPlatformsFromDirs({r.dir.path()});
    std::string left = r.refusals();
    EXPECT_EQ(left.find("b.pka"), std::string::npos)
        << "what loads is no refusal any more: " << left;
    EXPECT_EQ(std::count(left.begin(), left.end(), '\n'), 2) << left;
    r.dir.write("b.pka", "");
    r.mgr.clearAllPlatforms();
    r.mgr.addPlatformsFromDirs({r.dir.path()});
    EXPECT_EQ(r.mgr.getRefusals().size(), 4U);
}

TEST(HMAVPlatformMgr, LookUpsAskEachPlatformAllThreeQuestionsInTurn) {
    Repository r;
    const std::string c = described(r.dir, "c/card");
    const std::string b = described(r.dir, "b/other_i");
    described(r.dir, "a/CARD");
    bareArchive(r.dir, "d/Bare.pka");
    r.mgr.addPlatformsFromDirs({r.dir.path()});
    ASSERT_EQ(r.files(), "c/card.qpfm\nb/other_i.qpfm\na/CARD.qpfm\n");
    const OwnLetters letters;
    const auto found = [&](const std::string& name) {
        const HMAVPlatform* const platform = r.mgr.getPlatform(name);
        return platform ? platform->getPlatformFile() : "";
    };
    EXPECT_EQ(found("CARD"), c) << "the first in the list, whatever its case";
    EXPECT_EQ(found(r.dir.path("a/../b/./other_i.qpfm")), b);
    EXPECT_EQ(found(r.dir.path("B/OTHER_I.QPFM")), b) << "paths ignore case too, in any locale";
    EXPECT_EQ(found("OTHER_I"), b);
    EXPECT_EQ(found(r.dir.path("c/other_i.qpfm")), "");
    EXPECT_EQ(found("bare"), "");
    EXPECT_EQ(found(""), "");
    r.mgr.setProjectType(Type::PLATFORM);
    EXPECT_EQ(found("bare"), r.dir.path("d/Bare.pka"));
    EXPECT_EQ(found("card"), "");

    // A platform that matches by its path stands before one of that very unique name.
    r.mgr.setProjectType(Type::MAV);
    r.mgr.getPlatform("CARD")->setPlatformFile("./x/../some.file");
    r.mgr.getPlatform("other_i")->setPlatformFile(fs::current_path() / "some.file");
    EXPECT_EQ(found(fs::current_path() / "some.file"), "./x/../some.file");
}

TEST(HMAVPlatformMgr, TheProjectTypeChoosesTheList) {
    Repository r;
    described(r.dir, "a/one", metadata(R"(, "unifiedPlatform": "true")"));
    described(r.dir, "a/two");
    bareArchive(r.dir, "b/bare.pka");
    r.mgr.addPlatformsFromDirs({r.dir.path()});
    EXPECT_EQ(r.mgr.getProjectTypeAsStr(), "mav");
    EXPECT_EQ(r.mgr.getNumPlatforms(), 2U);
    EXPECT_EQ(r.shown([&](auto& list) { r.mgr.getMAVPlatforms(list); }), "a/one.qpfm\n");
    r.mgr.setProjectType(Type::PLATFORM);
    EXPECT_EQ(r.mgr.getProjectTypeAsStr(), "platform");
    const std::unique_ptr<HSTFwdIter<HMAVPlatform*>> iter(r.mgr.createPlatformIter());
    ASSERT_TRUE(iter->hasNext());
    EXPECT_EQ(iter->next()->getPlatformFile(), r.dir.path("b/bare.pka"));
    EXPECT_FALSE(iter->hasNext());
    r.mgr.setProjectType(static_cast<Type>(7));
    EXPECT_EQ(r.mgr.getProjectTypeAsStr(), "");
    EXPECT_EQ(r.mgr.getProjectTypeAsEnumVal(), static_cast<Type>(7));
    EXPECT_EQ(r.mgr.getNumPlatforms(), 2U);
}

TEST(HMAVPlatformMgr, RemovalLooksAtTheParentDirectoryAlone) {
    Repository r;
    described(r.dir, "d/one");
    described(r.dir, "d/below/two");
    bareArchive(r.dir, "d/three.pka");
    bareArchive(r.dir, "d/below/four.pka");
    r.mgr.addPlatformsFromDirs({r.dir.path()});
    r.mgr.removePlatformsFromDirs({r.dir.path()});
    EXPECT_EQ(r.mgr.getNumPlatforms(), 2U);
    r.mgr.removePlatformsFromDirs({r.dir.path("d/below/..")});
    EXPECT_EQ(r.files(), "d/below/two.qpfm\n");
    EXPECT_EQ(r.bare(), "d/below/four.pka\n");
    r.mgr.getPlatform("two")->setPlatformFile("");
    r.mgr.removePlatformsFromDirs({""});
    EXPECT_EQ(r.mgr.getNumPlatforms(), 1U) << "a platform without a file is never removed";
}

TEST(HMAVPlatformMgr, AnArchiveOfADescriptionIsReadOnceUnlessItsReadingIsTold) {
    const std::string hpfm = R"(, "files": [{"name": "a.hpfm", "type": "HPFM"}])";
    const std::pair<std::string, bool> rows[] = {{"<qd:repository/>", true}, {"<broken>", false}};
    for (const auto& [text, shared] : rows) {
        Repository r;
        std::filesystem::create_directory(r.dir.path("hw"));
        packArchive(r.dir, "hw/a.pka", {{"pka.json", metadata(hpfm)}, {"a.hpfm", text}});
        r.dir.write("d.qpfm", descriptionOf("hw/a.pka"));
        r.mgr.addPlatformsFromDirs({r.dir.path()});
        HSTVector<HMAVPlatform*> all;
        r.mgr.getAllPlatforms(all);
        ASSERT_EQ(all.size(), 2U);
        EXPECT_EQ(all[0]->getHardwarePlatform() == all[1]->getHardwarePlatform(), shared);
        EXPECT_EQ(r.messages.all.size(), shared ? 0U : 2U) << r.messages.text();
        r.mgr.removePlatformsFromDirs({r.dir.path()});
        ASSERT_EQ(r.bare(), "hw/a.pka\n");
        EXPECT_EQ(all[1]->getHardwarePlatform()->getName(), "card");
    }
}

TEST(HMAVPlatformMgr, HandoffsAreOwnedApartAndRemovedAtAnyDepth) {
    Repository r;
    bareArchive(r.dir, "d/a.pka", metadata("", "a"));
    bareArchive(r.dir, "d/x/y/b.pka", metadata("", "b"));
    bareArchive(r.dir, "d/.hidden/c.pka", metadata("", "c"));
    bareArchive(r.dir, "dd/d.pka", metadata("", "d"));
    HSTVector<HMAVHardwarePlatform*> out;
    const Dirs dirs{r.dir.path("d"), r.dir.path("d/../dd")};
    r.mgr.getHardwarePlatformsFromDirs(dirs, out, false);
    r.mgr.getHardwarePlatformsFromDirs(dirs, out, true);
    EXPECT_EQ(out.size(), 4U) << "asking again gives the same objects";
    EXPECT_EQ(r.mgr.getNumOrphanedHandoffs(), 4U);
    EXPECT_EQ(r.mgr.getNumPlatforms(), 0U);
    r.mgr.removeHardwareHandoffFromDirs({"", r.dir.path("d")}, out);
    ASSERT_EQ(out.size(), 2U) << "a path that begins with a dot stays";
    EXPECT_EQ(out[0]->getName() + out[1]->getName(), "cd");
    EXPECT_EQ(r.mgr.getNumOrphanedHandoffs(), 2U);
    r.mgr.clearAllPlatforms();
    EXPECT_EQ(r.mgr.getNumOrphanedHandoffs(), 0U);
}

TEST(HMAVPlatformMgr, TheFirstGlobalSearchesTheDefaultDirectories) {
    const TempDir dir;
    const CapturedMessages messages;
    described(dir, "r2/base_platforms/card");
    fs::create_directories(dir.path("r1/platforms"));
    const EnvVar roots("MAV_APP_ROOT", dir.path("r1") + ":" + dir.path("r2"));
    Dirs dirs{"kept"};
    HMAVPlatformMgr::getDefaultMavPlatformDirs(dirs);
    Dirs expected{"kept", dir.path("r1/platforms"), dir.path("r2/base_platforms")};
    if (fs::exists("/opt/tarvek/platforms")) expected.emplace_back("/opt/tarvek/platforms");
    EXPECT_EQ(dirs, expected);

    delete HMAVPlatformMgr::getGlobalNoInit();
    EXPECT_NE(HMAVPlatformMgr::getGlobal()->getPlatform("card"), nullptr);
    delete HMAVPlatformMgr::getGlobal();
    EXPECT_EQ(HMAVPlatformMgr::getGlobalNoInit()->getNumPlatforms(), 0U);
    EXPECT_EQ(HMAVPlatformMgr::getGlobal()->getNumPlatforms(), 0U) << "it was made already";
    delete HMAVPlatformMgr::getGlobal();
}

TEST(HMAVPlatformMgr, BoardPathsReachTheBoardDataOfTheHost) {
    HMAVPlatformMgr mgr;
    HBOBoardCDataManager::setFactory([]() -> HBOBoardCDataManager* { return nullptr; });
    HMAVPlatformMgr withoutBoards;
    HBOBoardCDataManager::setFactory(nullptr);
    withoutBoards.setBoardRepoPaths({"a"});
    EXPECT_NE(withoutBoards.getBoardDataMgr(), nullptr) << "the default host's";
    for (const Dirs& paths : {Dirs{"a", "b"}, Dirs{"b"}}) mgr.setBoardRepoPaths(paths);
    Dirs out{"gone"};
    mgr.getBoardRepoPaths(out);
    EXPECT_EQ(out, Dirs{"b"});
    mgr.getBoardDataMgr()->getBoardPartRepoPaths(out);
    EXPECT_EQ(out, Dirs{"b"});
}

}  // namespace
