// SPDX-License-Identifier: Apache-2.0
// Writing archives: what is kept, what is refused, every failing step, writers side by side.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <functional>
#include <random>
#include <vector>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFolder.h"
#include "mav_host/HUTZip.h"
#include "support/Doubles.h"
#include "support/SmallDisk.h"
#include "support/ZipFixture.h"
#include "zip/ArchiveWriter.h"

namespace {

namespace fs = std::filesystem;
using mav_host::DigestState;
using mav_host::WriteStep;
using mav_host::ZipArchive;
constexpr std::uint64_t LIMIT = 1U << 20U;

/// Members and contents, a line each.
std::string show(const std::string& path) {
    const ZipArchive archive(path);
    std::string text;
    for (const mav_host::ZipMember& member : archive.members()) {
        text += member.name + "=" + archive.read(member.name, LIMIT) + "\n";
    }
    return text;
}

template <class Error = HEXUserException>
std::string refusal(const std::function<void()>& work) {
    try {
        work();
    } catch (const Error& error) {
        return error.what();
    }
    return "done";
}

mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777U;
}

/// A place for an archive; the usual hooks come back behind each test.
struct WithArchive : testing::Test {
    ~WithArchive() override { mav_host::writeHooks() = mav_host::WriteHooks(); }

    void create(const std::string& name, const std::string& content) const {
        HUTZip::create(path, {{name, "", content}});
    }
    void add(const std::string& name, const std::string& content) const {
        HUTZip::add(path, {{name, "", content}});
    }
    bool extractFile(const std::string& member, const std::string& target) const {
        return HUTZip::extractFile(path, member, dir.path(target));
    }
    bool extractDir(const std::string& member, const std::string& target) const {
        return HUTZip::extractDir(path, member, dir.path(target));
    }
    std::string notWritten(const std::string& why, const std::string& name = "a.zip") const {
        return "The archive '" + dir.path(name) + "' cannot be written (" + why +
               "; it is as it was";
    }
    std::string notExtracted(const std::string& member, const std::string& why) const {
        return "The member '" + member + "' of the archive '" + path + "' is not extracted: " + why;
    }
    std::string digest() const {
        const std::string bytes = dir.read("a.zip");
        return bytes.substr(bytes.find("mav-digest"));
    }

    const TempDir dir;
    const std::string path = dir.path("a.zip");
    mav_host::WriteHooks& hooks = mav_host::writeHooks();
};
using HUTZipWriting = WithArchive;
using Digest = WithArchive;
using Extract = WithArchive;

TEST_F(HUTZipWriting, AddReplacesInPlaceAndAppends) {
    HUTZip::add(path, {{"one", "", "1"}, {"two", "", "2"}, {"..a/b..", "", "no climbing"}});
    const std::string file = dir.write("file", "from a file");
    HUTZip::add(path, {{"four", "", "x"}, {"two", file, ""}, {"four", "", "the last counts"}});
    HUTZip::add(path, {});
    EXPECT_EQ(show(path), "one=1\ntwo=from a file\n..a/b..=no climbing\nfour=the last counts\n");
    EXPECT_EQ(dir.list(), "a.zip\nfile\n");
}

TEST_F(HUTZipWriting, TheOtherMembersAreCopiedAsTheyAre) {
    RawMember stored = storedMember("stored", std::string(4000, 's'));
    stored.attributes = 0100755U << 16U;
    stored.dosTime = 0x58215000;
    RawMember broken = deflatedMember("broken", std::string(4000, 'b'));
    ++broken.crc;
    const RawMember packed = deflatedMember("packed", "tight text, tight text, tight text");
    dir.write("a.zip",
              rawZip({stored, packed, broken, storedMember("packed", "hidden")}, "a remark"));
    add("new", "n");
    const std::string bytes = dir.read("a.zip");
    for (const RawMember& member : {stored, packed, broken}) {
        EXPECT_NE(bytes.find(member.name + member.data), std::string::npos) << member.name;
    }
    const std::size_t entry = bytes.find("PK\1\2");
    EXPECT_EQ(bytes.substr(entry + 12, 4), little(stored.dosTime, 4)) << "its time";
    EXPECT_EQ(bytes.substr(entry + 38, 4), little(stored.attributes, 4)) << "its mode";
    EXPECT_EQ(bytes.substr(bytes.size() - 8), "a remark");
    EXPECT_EQ(ZipArchive(path).members().size(), 4U) << "of equal names the first is kept";
    EXPECT_THROW(ZipArchive(path).read("broken", LIMIT), HEXDataException) << "not made good";
}

TEST_F(HUTZipWriting, WhatCannotBeIsRefusedBeforeAnythingIsWritten) {
    const std::string null("a\0b", 3);
    for (const std::string& name :
         {std::string(), std::string(".."), std::string("a/.."), std::string("a\\..\\b"), null}) {
        const std::string text = "The member name '" + (name == null ? "a\\0b" : name) +
                                 "' for the archive '" + path +
                                 "' is empty, absolute, climbs out or holds an empty or '.' part, "
                                 "a backslash or null byte; use a relative path with '/'";
        EXPECT_EQ(refusal([&] { add(name, ""); }), text);
        EXPECT_EQ(refusal([&] { HUTZip::create(path, {{"good", "", ""}, {name, "", ""}}); }), text);
    }
    EXPECT_EQ(refusal([&] { HUTZip::create(path, {}); }),
              "The archive '" + path + "' would have no members");
    EXPECT_EQ(refusal([&] {
                  HUTZip::create(path, {{"a", "", ""}, {"a", "", ""}});
              }),
              "The member name 'a' for the archive '" + path + "' is given twice");
    EXPECT_EQ(refusal([&] {
                  HUTZip::add(path, {{"a", dir.path("none"), ""}});
              }),
              "The file '" + dir.path("none") + "' for the archive '" + path +
                  "' does not exist or is not a file");
    const std::string start = "The member name '";
    const std::string end = "' for the archive '" + path + "' ";
    add(std::string(65535, 'a'), "the longest");
    EXPECT_EQ(ZipArchive(path).members()[0].name.size(), 65535U);
    fs::remove(path);
    for (const auto& [name, text] :
         {std::pair(std::string(65536, 'a'),
                    std::string(200, 'a') + "..." + end +
                        "is longer than 65535 bytes, the most that an archive can hold; give a "
                        "shorter one"),
          std::pair(std::string("a\xff"), "a\xff" + end + "is not UTF-8; give it in UTF-8"),
          std::pair(std::string("a\1"), "a\1" + end + "holds a control character; leave it out")}) {
        EXPECT_EQ(refusal([&, member = name] { add(member, ""); }), start + text);
        EXPECT_TRUE(zip_ostream(path, name).fail()) << text;
    }
    add("a\t\r\n\x7f", "the zip library takes these");
    fs::remove(path);
    EXPECT_THROW(HUTZip::add("", {{"a", "", ""}}), HEXUserException);
    EXPECT_THROW(HUTZip::addDigest(path), HEXFileNotFoundException);
    EXPECT_EQ(dir.list(), "");
    for (const char* content : {"", "text"}) {
        dir.write("a.zip", content);
        EXPECT_THROW(add("a", "x"), HEXUserException);
        EXPECT_EQ(dir.read("a.zip"), content);
    }
    fs::remove(path);
    fs::create_directory(path);
    EXPECT_EQ(refusal([&] { create("a", "x"); }), notWritten("locking): it is not a file"));
    EXPECT_EQ(dir.list(), "a.zip\n");
}

TEST_F(HUTZipWriting, AnArchiveWithTwoDirectoriesIsReadAndNotWritten) {
    const RawMember member = storedMember("a", "outer");
    const std::string local = rawLocal(member);
    const std::string entry = rawEntry(member, 0);
    const std::string inner = rawZip({storedMember("b", "inner")});
    const std::string text = notWritten(
        "reading it): its directory can be read in two ways, of which one would be lost; extract "
        "its members and pack them again");
    for (const std::string& bytes :
         {rawZip({member}, inner), rawZip({member}, rawEnd(0, 0, 0)),
          rawZip({member}, rawEnd(1, entry.size(), local.size()) + "behind"),
          local + entry +
              rawWideEnd(local.size() + entry.size(), 1, entry.size(), local.size(),
                         rawEnd(2, entry.size(), local.size()))}) {
        dir.write("a.zip", bytes);
        EXPECT_EQ(show(path), "a=outer\n");
        EXPECT_EQ(refusal([&] { add("c", "x"); }), text);
        EXPECT_EQ(refusal([&] { HUTZip::addDigest(path); }), text);
        EXPECT_EQ(dir.read("a.zip"), bytes);
    }
    dir.write("a.zip", rawZip({member, storedMember("in", inner)}));
    add("c", "x");
    EXPECT_EQ(show(path), "a=outer\nin=" + inner + "\nc=x\n") << "an archive as member is none";
}

TEST_F(HUTZipWriting, AFailingStepLeavesTheOldArchiveAndNothingBesideIt) {
    const std::pair<WriteStep, std::string> steps[] = {
        {WriteStep::LOCK, "locking"},
        {WriteStep::MAKE, "making a file beside it"},
        {WriteStep::BUILD, "building"},
        {WriteStep::DIGEST, "attaching the digest"},
        {WriteStep::PERMISSIONS, "setting permissions"},
        {WriteStep::SYNC, "syncing"},
        {WriteStep::RENAME, "renaming"},
    };
    create("old", "text");
    const std::string old = dir.read("a.zip");
    for (const auto& [failing, name] : steps) {
        hooks.before = [at = failing](WriteStep step) { return step == at ? ENOSPC : 0; };
        const std::string why = name + "): No space left on device";
        const std::string text = notWritten(why);
        EXPECT_EQ(refusal([&] { create("x", "y"); }), text);
        EXPECT_EQ(refusal([&] { HUTZip::addDigest(path); }), text);
        EXPECT_EQ(refusal([&] {
                      HUTZip::create(dir.path("new"), {{"x", "", "y"}});
                  }),
                  notWritten(why, "new"));
        const bool isDigest = failing == WriteStep::DIGEST;  // add() attaches none
        EXPECT_EQ(isDigest ? text : refusal([&] { add("x", "y"); }), text);
        EXPECT_EQ(dir.read("a.zip"), old) << name;
        EXPECT_EQ(dir.list(), "a.zip\n") << name;
    }
}

TEST_F(HUTZipWriting, AFileThatIsPutInThePlaceOfTheNewOneIsNoArchiveOfOurs) {
    const auto swapAt = [&](WriteStep at) {
        hooks.before = [&, at](WriteStep step) {
            if (step != at) return 0;
            for (const auto& file : fs::directory_iterator(dir.path())) {
                if (file.path().string().find(".new-") == std::string::npos) continue;
                fs::remove(file);
                fs::copy_file(dir.path("other"), file);
            }
            return 0;
        };
    };
    HUTZip::create(dir.path("other"), {{"forged", "", "text"}});
    for (const WriteStep at : {WriteStep::DIGEST, WriteStep::RENAME}) {
        swapAt(at);
        const std::string text = refusal([&] { create("a", "1"); });
        EXPECT_NE(text.find("cannot be written (renaming): the file 'a.zip.new-"),
                  std::string::npos)
            << text;
        EXPECT_EQ(dir.list(), "other\n");
    }
}

TEST_F(HUTZipWriting, AFullDiskLeavesTheOldArchive) {
    create("old", "text");
    const std::string old = dir.read("a.zip");
    std::string noise(200000, '\0');
    std::generate(noise.begin(), noise.end(),
                  [random = std::mt19937()]() mutable { return static_cast<char>(random()); });
    const std::string large = dir.path("large.zip");
    HUTZip::create(large, {{"d/noise", "", noise}});
    {
        const SmallDisk full(100000);
        EXPECT_EQ(refusal([&] { add("noise", noise); }),
                  notWritten("building): Write error: File too large"));
        EXPECT_THROW(create("noise", noise), HEXUserException);
        EXPECT_THROW(HUTZip::extractDir(large, "d", dir.path()), HEXUserException);
        zip_ostream stream(path, "noise");
        EXPECT_FALSE(stream << noise);
    }
    EXPECT_EQ(dir.read("a.zip"), old);
    EXPECT_EQ(dir.list(), "a.zip\nd\nlarge.zip\n");
    EXPECT_TRUE(fs::is_empty(dir.path("d")));
}

TEST_F(HUTZipWriting, PermissionsAndLinksAreKept) {
    const mode_t mask = ::umask(027);
    add("a", "1");
    EXPECT_EQ(modeOf(path), 0640U) << "a new file's, as the mask has it";
    ::chmod(path.c_str(), 0664);
    fs::create_symlink("a.zip", dir.path("link"));
    dir.write("a.zip.new-0123456789abcdef", "left by a writer that died");
    hooks.before = [&](WriteStep step) {
        if (step != WriteStep::BUILD) return 0;
        EXPECT_EQ(modeOf(path + ".lock"), 0664U) << "open to whoever may write the archive";
        EXPECT_EQ(dir.list().find("0123456789abcdef"), std::string::npos);
        return 0;
    };
    HUTZip::add(dir.path("link"), {{"b", "", "2"}});
    HUTZip::addDigest(path);
    ::umask(mask);
    EXPECT_EQ(modeOf(path), 0664U);
    EXPECT_TRUE(fs::is_symlink(dir.path("link")));
    EXPECT_EQ(show(path), "a=1\nb=2\n");
    EXPECT_EQ(dir.list(), "a.zip\nlink\n");
}

TEST_F(HUTZipWriting, AWriterThatHoldsOnIsNamed) {
    create("a", "1");
    const std::string old = dir.read("a.zip");
    const std::string lock = dir.write("a.zip.lock", "");
    hooks.patience = std::chrono::milliseconds(30);
    {
        const mav_host::FileDescriptor other(::open(lock.c_str(), O_RDONLY | O_CLOEXEC));
        ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
        EXPECT_EQ(
            refusal([&] { add("b", "2"); }),
            notWritten("locking): another writer holds '" + lock + "'; try again when it is done"));
        EXPECT_EQ(dir.read("a.zip"), old);
        EXPECT_EQ(dir.list(), "a.zip\na.zip.lock\n") << "the lock is the other's";
    }
    add("b", "2");
    EXPECT_EQ(dir.list(), "a.zip\n") << "what a dead writer left is no obstacle";
    ASSERT_EQ(::mkfifo(lock.c_str(), 0600), 0);
    EXPECT_EQ(refusal([&] { add("c", "3"); }),
              notWritten("locking): '" + lock + "' is not a plain file; remove it"));
    EXPECT_EQ(dir.list(), "a.zip\na.zip.lock\n") << "which is somebody else's";
}

TEST_F(HUTZipWriting, NoProgramThatIsStartedMeanwhileGetsTheArchive) {
    create("a", "1");
    const auto inherited = [] {
        int count = 0;
        for (int file = 0; file < 256; ++file) {
            const int flags = ::fcntl(file, F_GETFD);
            if (flags >= 0 && (flags & FD_CLOEXEC) == 0) ++count;
        }
        return count;
    };
    const int before = inherited();
    hooks.before = [&](WriteStep) {
        EXPECT_EQ(inherited(), before);
        return 0;
    };
    zip_ostream stream(path, "c");
    EXPECT_EQ(inherited(), before);
    HUTZip::addWithDigest(path, {{"b", dir.write("file", "2"), ""}});
}

TEST_F(HUTZipWriting, FilesBelowAFolderAreReachedThroughNoLink) {
    dir.write("in/d/file", "text");
    const auto folder = std::make_shared<const HUTFolder>(dir.path("in"));
    const auto createFrom = [&](const std::string& file) {
        return refusal([&] { HUTZip::create(path, {{"m", file, "", folder}}); });
    };
    EXPECT_EQ(createFrom("d/file"), "done");
    EXPECT_EQ(show(path), "m=text\n");
    fs::create_symlink(dir.path("in/d/file"), dir.path("in/link"));
    fs::create_directory_symlink(dir.path("in/d"), dir.path("in/way"));
    ASSERT_EQ(::mkfifo(dir.path("in/pipe").c_str(), 0600), 0);
    const std::pair<std::string, std::string> rows[] = {
        {"link", "Too many levels of symbolic links"},
        {"way/file", "Not a directory"},
        {"pipe", "it is not a regular file"},
        {"none", "No such file or directory"},
    };
    for (const auto& [file, reason] : rows) {
        EXPECT_EQ(createFrom(file), notWritten("building): the file '" + dir.path("in/") + file +
                                               "' cannot be read: " + reason));
    }
    EXPECT_EQ(dir.list(), "a.zip\nin\n");
}

TEST_F(Digest, TellsWhatBecameOfAnArchive) {
    // Computed apart: sha256 over each name's size, name, content's size, content.
    {
        const HostKey none(std::nullopt);
        HUTZip::create(path, {{"a", "", "alpha"}, {"b/c", "", ""}});
        EXPECT_EQ(HUTZip::verifyDigest(path), DigestState::VALID);
        EXPECT_EQ(digest(),
                  "mav-digest:1:sha256:"
                  "acd311d00ac22d180a7d7961d6c15d73ad3f49d184ba819574e9942e5120acf4");
    }
    const HostKey key("the key of the host");
    EXPECT_EQ(HUTZip::verifyDigest(path), DigestState::UNKEYED);
    HUTZip::addDigest(path);
    EXPECT_EQ(HUTZip::verifyDigest(path), DigestState::VALID);
    EXPECT_EQ(digest(),
              "mav-digest:1:hmac-sha256:"
              "73265071234d1b2bb4b70c08310da5f2dee06e1b2f55c4cd20193868484caca4");
    EXPECT_EQ((HostKey("other"), HUTZip::verifyDigest(path)), DigestState::MISMATCH);
    EXPECT_EQ((HostKey(std::nullopt), HUTZip::verifyDigest(path)), DigestState::NO_KEY);
    add("d", "delta");
    EXPECT_EQ(HUTZip::verifyDigest(path), DigestState::MISSING);
    EXPECT_THROW(HUTZip::verifyDigest(dir.path("none")), HEXFileNotFoundException);
}

TEST_F(Digest, SigningAnewChecksTheDigestThatIsThere) {
    const std::optional<std::string> none;
    const std::optional<std::string> key = "the key";
    const std::string changed = "its members do not match its digest";
    const std::string missing = "it carries no digest that vouches for its members";
    const struct {
        std::optional<std::string> before;
        std::string comment;  ///< "": the digest made before; else in its place
        const char* content;
        std::optional<std::string> now;
        std::string refusal;
    } cases[] = {
        {none, "", "text", none, ""},
        {key, "", "text", key, ""},
        {none, "remark", "text", none, ""},
        {none, "", "TEXT", none, changed},
        {key, "", "TEXT", key, changed},
        {key, "mav-digest:9:", "text", none, changed},
        {key, "remark", "TEXT", key, missing},
        {none, "", "text", key, "its digest was made without a key, so anyone could have made it"},
        {key, "", "text", none,
         "its digest was made with a key, and the host has none to check it with"},
    };
    for (const auto& test : cases) {
        {
            const HostKey before(test.before);
            create("m", "text");
            dir.write("a.zip", rawZip({storedMember("m", test.content)},
                                      test.comment.empty() ? digest() : test.comment));
        }
        const std::string old = dir.read("a.zip");
        const HostKey now(test.now);
        const auto sign = [&](mav_host::Resign resign) {
            return refusal<mav_host::DigestRefusal>([&] {
                HUTZip::addWithDigest(path, {{"new", "", "n"}}, resign);
            });
        };
        const bool refused = !test.refusal.empty();
        EXPECT_EQ(sign(mav_host::Resign::NO),
                  refused ? notWritten("checking its digest): " + test.refusal) : "done");
        EXPECT_EQ(dir.read("a.zip") == old, refused);
        EXPECT_EQ(refused ? sign(mav_host::Resign::YES) : "done", "done");
        EXPECT_EQ(HUTZip::verifyDigest(path), DigestState::VALID) << test.refusal;
    }
}

TEST_F(Digest, EveryChangeIsAMismatch) {
    const HostKey key("k");
    HUTZip::create(path, {{"ab", "", "one"}, {"c", "", "two"}});
    const std::string good = digest();
    const auto state = [&](const std::vector<RawMember>& members, const std::string& comment) {
        return HUTZip::verifyDigest(dir.write("bad", rawZip(members, comment)));
    };
    const RawMember one = storedMember("ab", "one");
    const RawMember two = storedMember("c", "two");
    EXPECT_EQ(state({one, deflatedMember("c", "two")}, good), DigestState::VALID)
        << "however it is packed";
    RawMember damaged = two;
    ++damaged.crc;
    const std::vector<RawMember> changes[] = {
        {two, one},
        {one},
        {one, two, storedMember("d", "")},
        {storedMember("a", "bone"), two},
        {storedMember("ab", "One"), two},
        {one, damaged},
    };
    for (const auto& members : changes) EXPECT_EQ(state(members, good), DigestState::MISMATCH);
    for (const std::string& other :
         {good + "0", good.substr(0, good.size() - 1), std::string("mav-digest:1:hmac-sha256:")}) {
        EXPECT_EQ(state({one, two}, other), DigestState::MISMATCH) << other;
    }
    EXPECT_EQ(state({one, two}, "a remark"), DigestState::MISSING);
    RawMember vast = two;
    vast.size = 0x40000001;
    const std::string text = "The members of the archive '" + dir.path("bad") +
                             "' are not gone through for its digest: they claim more than "
                             "1073741824 bytes, too many for the size of the archive";
    EXPECT_EQ(refusal([&] { state({vast}, good); }), text);
    hooks.before = [](WriteStep step) { return step == WriteStep::BUILD ? ENOSPC : 0; };
    EXPECT_EQ(refusal([&] { HUTZip::addDigest(dir.path("bad")); }), text) << "and nothing is built";
}

TEST_F(Extract, FilesAndDirectoriesGoBelowTheTarget) {
    dir.write("a.zip", rawZip({storedMember("d/one", "1"), deflatedMember("d/e/two", "2"),
                               storedMember("dd/three", "3"), storedMember("d/empty/", ""),
                               storedMember("d/one", "second"), storedMember("four", "4")}));
    EXPECT_TRUE(extractDir("d", "out"));
    EXPECT_EQ(dir.read("out/d/one") + dir.read("out/d/e/two"), "12");
    EXPECT_TRUE(fs::is_directory(dir.path("out/d/empty")));
    EXPECT_FALSE(fs::exists(dir.path("out/dd")));
    EXPECT_TRUE(extractFile("four", "out/new/place"));
    EXPECT_EQ(dir.read("out/new/place/four"), "4");
    dir.write("out/d/.extracting-0123456789abcdef", "left by one that died");
    EXPECT_TRUE(extractFile("d/one", "out"));
    EXPECT_FALSE(fs::exists(dir.path("out/d/.extracting-0123456789abcdef")));
    EXPECT_FALSE(extractFile("d", "none") || extractDir("four", "none") || extractDir("/", "none"));
    EXPECT_TRUE(extractDir("dd/", "out"));
    EXPECT_EQ(dir.read("out/dd/three"), "3");
    EXPECT_EQ(dir.list(), "a.zip\nout\n");
}

TEST_F(Extract, NothingLeavesTheTarget) {
    dir.write("a.zip", rawZip({storedMember("d/fine", "1"), storedMember("d/../../evil", "2"),
                               storedMember("e/link/file", "4")}));
    const std::string text = notExtracted("d/../../evil", "its name leads out of the directory");
    EXPECT_EQ(refusal([&] { extractDir("d", "out"); }), text);
    EXPECT_EQ(refusal([&] { extractFile("d/../../evil", "out"); }), text);
    EXPECT_EQ(dir.list(), "a.zip\n") << "refused before anything is written";

    dir.write("target/keep", "kept");
    fs::create_directories(dir.path("out/e"));
    fs::create_directory_symlink(dir.path("target"), dir.path("out/e/link"));
    EXPECT_THROW(extractDir("e", "out"), HEXUserException);
    EXPECT_FALSE(fs::exists(dir.path("target/file")));
}

TEST_F(Extract, BombsAndDamageLeaveNoFile) {
    RawMember bomb = deflatedMember("b/bomb", std::string(9999, 'b'));
    bomb.size = 0x40000001;
    RawMember damaged = storedMember("c", "text");
    ++damaged.crc;
    RawMember half = storedMember("h/one", "x");
    RawMember other = storedMember("h/two", "x");
    half.size = other.size = 0x30000000;
    dir.write("a.zip", rawZip({storedMember("b/fine", "1"), bomb, damaged, half, other}));
    const std::string reason =
        "more than 1073741824 bytes would be written, too many for the size of the archive";
    EXPECT_EQ(refusal([&] { extractDir("b", "out"); }), notExtracted("b/bomb", reason));
    EXPECT_EQ(refusal([&] { extractDir("h", "out"); }), notExtracted("h/two", reason));
    EXPECT_EQ(dir.list(), "a.zip\n");
    EXPECT_THROW(extractFile("c", "out"), HEXDataException);
    EXPECT_TRUE(fs::is_empty(dir.path("out")));
}

}  // namespace
