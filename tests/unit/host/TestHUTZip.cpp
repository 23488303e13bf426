// SPDX-License-Identifier: Apache-2.0
// Writing archives: what is kept, what is refused, every failing step, writers side by side.
#include <signal.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <thread>
#include <vector>

#include "ArchiveWriter.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTZip.h"
#include "support/Doubles.h"
#include "support/ZipFixture.h"

namespace {

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

/// Hooks of one test; puts the usual ones back.
class Hooks {
  public:
    ~Hooks() { mav_host::writeHooks() = mav_host::WriteHooks(); }
    mav_host::WriteHooks* operator->() { return &mav_host::writeHooks(); }
};

TEST(HUTZip, AddReplacesInPlaceAndAppends) {
    const TempDir dir;
    const std::string path = dir.path("a.zip");
    HUTZip::add(path, {{"one", "", "1"}, {"two", "", "2"}, {"three", "", "3"}});
    EXPECT_EQ(show(path), "one=1\ntwo=2\nthree=3\n");
    HUTZip::add(path, {{"four", "", "x"},
                       {"two", dir.write("file", "from a file"), ""},
                       {"four", "", "the last counts"}});
    EXPECT_EQ(show(path), "one=1\ntwo=from a file\nthree=3\nfour=the last counts\n");
    HUTZip::add(path, {});
    EXPECT_EQ(dir.list(), "a.zip\nfile\n");
}

TEST(HUTZip, TheOtherMembersAreCopiedAsTheyAre) {
    const TempDir dir;
    RawMember stored = storedMember("stored", std::string(4000, 's'));
    stored.attributes = 0100755U << 16U;
    stored.dosTime = 0x58215000;
    RawMember broken = deflatedMember("broken", std::string(4000, 'b'));
    ++broken.crc;
    const RawMember packed = deflatedMember("packed", "tight text, tight text, tight text");
    const std::string path = dir.write(
        "a.zip", rawZip({stored, packed, broken, storedMember("packed", "hidden")}, "a remark"));
    HUTZip::add(path, {{"new", "", "n"}});
    const std::string bytes = dir.read("a.zip");
    for (const RawMember* member :
         std::initializer_list<const RawMember*>{&stored, &packed, &broken}) {
        const std::size_t local = bytes.find(member->name + member->data);
        EXPECT_NE(local, std::string::npos) << member->name;
    }
    const std::size_t entry = bytes.find("PK\1\2");
    EXPECT_EQ(bytes.substr(entry + 12, 4), little(stored.dosTime, 4)) << "its time";
    EXPECT_EQ(bytes.substr(entry + 38, 4), little(stored.attributes, 4)) << "its mode";
    EXPECT_EQ(bytes.substr(bytes.size() - 8), "a remark");
    const HSTVector<mav_host::ZipMember> members = ZipArchive(path).members();
    ASSERT_EQ(members.size(), 4U) << "of equal names the first is kept";
    EXPECT_THROW(ZipArchive(path).read("broken", LIMIT), HEXDataException) << "not made good";
}

TEST(HUTZip, NamesAndSourcesThatCannotBeAreRefusedBeforeAnythingIsWritten) {
    const TempDir dir;
    const std::string path = dir.path("a.zip");
    const std::pair<std::string, const char*> names[] = {
        {"", ""},
        {"/abs", "/abs"},
        {"..", ".."},
        {"../up", "../up"},
        {"a/../../up", "a/../../up"},
        {"a/..", "a/.."},
        {"a/", "a/"},
        {"a//b", "a//b"},
        {"./a", "./a"},
        {"a\\..\\b", "a\\..\\b"},
        {std::string("a\0b", 3), "a\\0b"},
    };
    for (const auto& [name, shown] : names) {
        const std::string text =
            std::string("The member name '") + shown + "' for the archive '" + path +
            "' is empty, absolute, climbs out or holds an empty or '.' part, a "
            "backslash or null byte; use a relative path with '/'";
        EXPECT_THROW_MSG(HUTZip::add(path, {{name, "", ""}}), HEXUserException, text);
        EXPECT_THROW_MSG(HUTZip::create(path, {{"good", "", ""}, {name, "", ""}}), HEXUserException,
                         text);
    }
    EXPECT_THROW_MSG(HUTZip::create(path, {}), HEXUserException,
                     "The archive '" + path + "' would have no members");
    EXPECT_THROW_MSG(HUTZip::create(path, {{"a", "", ""}, {"a", "", ""}}), HEXUserException,
                     "The member name 'a' for the archive '" + path + "' is given twice");
    EXPECT_THROW_MSG(HUTZip::add(path, {{"a", dir.path("none"), ""}}), HEXUserException,
                     "The file '" + dir.path("none") + "' for the archive '" + path +
                         "' does not exist or is not a file");
    EXPECT_THROW(HUTZip::add(path, {{"a\xff\xfe", "", ""}}), HEXUserException);
    EXPECT_THROW(HUTZip::add("", {{"a", "", ""}}), HEXUserException);
    EXPECT_THROW(HUTZip::addDigest(path), HEXFileNotFoundException);
    EXPECT_EQ(dir.list(), "");
    HUTZip::create(path, {{"..a/b..", "", "dots are no climbing"}});
    EXPECT_EQ(show(path), "..a/b..=dots are no climbing\n");
}

TEST(HUTZip, WhatIsNoArchiveIsNotReplacedByAdding) {
    const TempDir dir;
    for (const char* content : {"", "text"}) {
        const std::string path = dir.write("file", content);
        EXPECT_THROW(HUTZip::add(path, {{"a", "", "x"}}), HEXUserException);
        EXPECT_EQ(dir.read("file"), content);
    }
    std::filesystem::create_directory(dir.path("dir"));
    EXPECT_THROW_MSG(HUTZip::create(dir.path("dir"), {{"a", "", "x"}}), HEXUserException,
                     "The archive '" + dir.path("dir") +
                         "' cannot be written (locking): it is not a file; it is as it was");
    EXPECT_EQ(dir.list(), "dir\nfile\n");
}

TEST(HUTZip, AFailingStepLeavesTheOldArchiveAndNothingBesideIt) {
    const struct {
        WriteStep step;
        const char* name;
    } steps[] = {
        {WriteStep::LOCK, "locking"},
        {WriteStep::MAKE, "making a file beside it"},
        {WriteStep::BUILD, "building"},
        {WriteStep::DIGEST, "attaching the digest"},
        {WriteStep::PERMISSIONS, "setting permissions"},
        {WriteStep::SYNC, "syncing"},
        {WriteStep::RENAME, "renaming"},
    };
    const TempDir dir;
    const std::string path = dir.path("a.zip");
    HUTZip::create(path, {{"old", "", "text"}});
    const std::string old = dir.read("a.zip");
    Hooks hooks;
    for (const auto& failing : steps) {
        unsigned reached = 0;
        hooks->before = [&](WriteStep step) {
            if (step != failing.step) return 0;
            ++reached;
            return ENOSPC;
        };
        const auto text = [&](const std::string& archive) {
            return "The archive '" + archive + "' cannot be written (" + failing.name +
                   "): No space left on device; it is as it was";
        };
        EXPECT_THROW_MSG(HUTZip::create(path, {{"x", "", "y"}}), HEXUserException, text(path));
        EXPECT_THROW_MSG(HUTZip::addDigest(path), HEXUserException, text(path));
        EXPECT_THROW_MSG(HUTZip::create(dir.path("new"), {{"x", "", "y"}}), HEXUserException,
                         text(dir.path("new")));
        EXPECT_EQ(reached, 3U);
        if (failing.step != WriteStep::DIGEST) {
            EXPECT_THROW_MSG(HUTZip::add(path, {{"x", "", "y"}}), HEXUserException, text(path));
        }
        EXPECT_EQ(dir.read("a.zip"), old) << failing.name;
        EXPECT_EQ(dir.list(), "a.zip\n") << failing.name;
    }
}

TEST(HUTZip, AFullDiskLeavesTheOldArchive) {
    const TempDir dir;
    const std::string path = dir.path("a.zip");
    HUTZip::create(path, {{"old", "", "text"}});
    const std::string old = dir.read("a.zip");
    std::string noise;
    for (unsigned i = 0, seed = 1; i < 200000; ++i) {
        seed = seed * 1664525U + 1013904223U;
        noise += static_cast<char>(seed >> 24U);
    }
    struct rlimit before;
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    struct rlimit small = before;
    small.rlim_cur = 100000;
    const auto handler = ::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_THROW(HUTZip::add(path, {{"noise", "", noise}}), HEXUserException);
    EXPECT_THROW(HUTZip::create(path, {{"noise", "", noise}}), HEXUserException);
    ::setrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, handler);
    EXPECT_EQ(dir.read("a.zip"), old);
    EXPECT_EQ(dir.list(), "a.zip\n");
}

TEST(HUTZip, PermissionsAndLinksAreKept) {
    const TempDir dir;
    const std::string path = dir.path("a.zip");
    const auto mode = [&] {
        struct stat status {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0);
        return status.st_mode & 07777U;
    };
    const mode_t mask = ::umask(027);
    HUTZip::add(path, {{"a", "", "1"}});
    ::umask(mask);
    EXPECT_EQ(mode(), 0640U) << "a new file's, as the mask has it";
    ::chmod(path.c_str(), 0604);
    std::filesystem::create_symlink("a.zip", dir.path("link"));
    HUTZip::add(dir.path("link"), {{"b", "", "2"}});
    HUTZip::addDigest(path);
    EXPECT_EQ(mode(), 0604U);
    EXPECT_TRUE(std::filesystem::is_symlink(dir.path("link")));
    EXPECT_EQ(show(path), "a=1\nb=2\n");
    EXPECT_EQ(dir.list(), "a.zip\nlink\n");
}

TEST(HUTZip, WritersTakeTurns) {
    const TempDir dir;
    const std::string path = dir.path("a.zip");  // not there yet
    constexpr int WRITERS = 4;
    constexpr int EACH = 5;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < WRITERS; ++writer) {
        writers.emplace_back([&path, writer] {
            for (int i = 0; i < EACH; ++i) {
                HUTZip::add(path, {{std::to_string(writer) + "/" + std::to_string(i), "", "x"}});
            }
        });
    }
    for (std::thread& writer : writers) writer.join();
    EXPECT_EQ(ZipArchive(path).members().size(), std::size_t{WRITERS * EACH});
    EXPECT_EQ(dir.list(), "a.zip\n");
}

TEST(HUTZip, AWriterThatHoldsOnIsNamed) {
    const TempDir dir;
    const std::string path = dir.path("a.zip");
    HUTZip::create(path, {{"a", "", "1"}});
    const std::string old = dir.read("a.zip");
    const std::string lock = dir.write("a.zip.lock", "");
    Hooks hooks;
    hooks->patience = std::chrono::milliseconds(30);
    {
        const mav_host::FileDescriptor other(::open(lock.c_str(), O_RDONLY | O_CLOEXEC));
        ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
        EXPECT_THROW_MSG(HUTZip::add(path, {{"b", "", "2"}}), HEXUserException,
                         "The archive '" + path +
                             "' cannot be written (locking): another writer "
                             "holds '" +
                             lock + "'; try again when it is done; it is as it was");
        EXPECT_EQ(dir.read("a.zip"), old);
        EXPECT_EQ(dir.list(), "a.zip\na.zip.lock\n") << "the lock is the other's";
    }
    HUTZip::add(path, {{"b", "", "2"}});
    EXPECT_EQ(dir.list(), "a.zip\n") << "what a dead writer left is no obstacle";
}

TEST(HUTZip, EqualInputGivesEqualBytes) {
    const TempDir dir;
    const std::string file = dir.write("file", "content");
    HUTZip::create(dir.path("one"), {{"m", file, ""}, {"n", "", "x"}});
    ::chmod(file.c_str(), 0700);
    std::filesystem::last_write_time(
        file, std::filesystem::file_time_type::clock::now() - std::chrono::hours(10000));
    HUTZip::create(dir.path("two"), {{"m", file, ""}, {"n", "", "x"}});
    EXPECT_EQ(dir.read("one"), dir.read("two"));
}

TEST(Digest, TellsWhatBecameOfAnArchive) {
    const TempDir dir;
    const std::string path = dir.path("a.zip");
    {
        const HostKey none(std::nullopt);
        HUTZip::create(path, {{"a", "", "alpha"}, {"b/c", "", ""}});
        EXPECT_EQ(HUTZip::verifyDigest(path), DigestState::VALID);
        // Computed apart: sha256 over each name's size, name, content's size, content.
        EXPECT_EQ(dir.read("a.zip").substr(dir.read("a.zip").find("mav-digest")),
                  "mav-digest:1:sha256:"
                  "acd311d00ac22d180a7d7961d6c15d73ad3f49d184ba819574e9942e5120acf4");
    }
    const HostKey key("the key");
    EXPECT_EQ(HUTZip::verifyDigest(path), DigestState::UNKEYED);
    HUTZip::addDigest(path);
    EXPECT_EQ(HUTZip::verifyDigest(path), DigestState::VALID);
    EXPECT_EQ(dir.read("a.zip").substr(dir.read("a.zip").find("mav-digest")),
              "mav-digest:1:hmac-sha256:"
              "a3e2e5aaa104d52132817727b6f19171464d4538de26b7e6bfe224279f97957c");
    EXPECT_EQ((HostKey("other"), HUTZip::verifyDigest(path)), DigestState::MISMATCH);
    EXPECT_EQ((HostKey(std::nullopt), HUTZip::verifyDigest(path)), DigestState::NO_KEY);
    HUTZip::add(path, {{"d", "", "delta"}});
    EXPECT_EQ(HUTZip::verifyDigest(path), DigestState::MISSING);
    EXPECT_EQ(show(path), "a=alpha\nb/c=\nd=delta\n");
    EXPECT_THROW(HUTZip::verifyDigest(dir.path("none")), HEXFileNotFoundException);
}

TEST(Digest, EveryChangeIsAMismatch) {
    const TempDir dir;
    const HostKey key("k");
    HUTZip::create(dir.path("good"), {{"ab", "", "one"}, {"c", "", "two"}});
    const std::string good = dir.read("good");
    const std::string digest = good.substr(good.find("mav-digest"));
    const auto state = [&](const std::vector<RawMember>& members, const std::string& comment) {
        return HUTZip::verifyDigest(dir.write("bad", rawZip(members, comment)));
    };
    const RawMember one = storedMember("ab", "one");
    const RawMember two = storedMember("c", "two");
    EXPECT_EQ(state({one, deflatedMember("c", "two")}, digest), DigestState::VALID)
        << "however it is packed";
    RawMember damaged = two;
    ++damaged.crc;
    const std::vector<RawMember> changes[] = {
        {two, one},
        {one},
        {one, two, storedMember("d", "")},
        {storedMember("a", "bone"), two},
        {storedMember("ab", "One"), two},
        {storedMember("ab", "onec"), storedMember("", "two")},
        {one, damaged},
        {one, storedMember("C", "two")},
    };
    for (const auto& members : changes) EXPECT_EQ(state(members, digest), DigestState::MISMATCH);
    for (const std::string& other :
         {digest + "0", digest.substr(0, digest.size() - 1), std::string("mav-digest:2:x:00"),
          std::string("mav-digest:1:hmac-sha256:")}) {
        EXPECT_EQ(state({one, two}, other), DigestState::MISMATCH) << other;
    }
    EXPECT_EQ(state({one, two}, "a remark"), DigestState::MISSING);
    EXPECT_EQ(state({one, two}, ""), DigestState::MISSING);
}

TEST(Extract, FilesAndDirectoriesGoBelowTheTarget) {
    const TempDir dir;
    const std::string path =
        dir.write("a.zip", rawZip({storedMember("d/one", "1"), deflatedMember("d/e/two", "2"),
                                   storedMember("dd/three", "3"), storedMember("d/empty/", ""),
                                   storedMember("d/one", "second"), storedMember("four", "4")}));
    EXPECT_TRUE(HUTZip::extractDir(path, "d", dir.path("out")));
    EXPECT_EQ(dir.read("out/d/one"), "1");
    EXPECT_EQ(dir.read("out/d/e/two"), "2");
    EXPECT_TRUE(std::filesystem::is_directory(dir.path("out/d/empty")));
    EXPECT_FALSE(std::filesystem::exists(dir.path("out/dd")));
    EXPECT_TRUE(HUTZip::extractFile(path, "four", dir.path("out/new/place")));
    EXPECT_EQ(dir.read("out/new/place/four"), "4");
    dir.write("out/d/one", "changed since");
    EXPECT_TRUE(HUTZip::extractFile(path, "d/one", dir.path("out")));
    EXPECT_EQ(dir.read("out/d/one"), "1");
    EXPECT_FALSE(HUTZip::extractFile(path, "d", dir.path("none")));
    EXPECT_FALSE(HUTZip::extractDir(path, "four", dir.path("none")));
    EXPECT_FALSE(HUTZip::extractDir(path, "/", dir.path("none")));
    EXPECT_TRUE(HUTZip::extractDir(path, "d/empty", dir.path("out/alone")));
    EXPECT_TRUE(std::filesystem::is_directory(dir.path("out/alone/d/empty")));
    EXPECT_TRUE(HUTZip::extractDir(path, "dd/", dir.path("out")));
    EXPECT_EQ(dir.read("out/dd/three"), "3");
    EXPECT_EQ(dir.list(), "a.zip\nout\n");
}

TEST(Extract, NothingLeavesTheTarget) {
    const TempDir dir;
    const std::string path =
        dir.write("a.zip", rawZip({storedMember("d/fine", "1"), storedMember("d/../../evil", "2"),
                                   storedMember("/evil", "3"), storedMember("e/link/file", "4"),
                                   storedMember("leaf", "5")}));
    const std::string refusal = "The member 'd/../../evil' of the archive '" + path +
                                "' is not extracted: its name leads out of the directory";
    EXPECT_THROW_MSG(HUTZip::extractDir(path, "d", dir.path("out")), HEXUserException, refusal);
    EXPECT_THROW_MSG(HUTZip::extractFile(path, "d/../../evil", dir.path("out")), HEXUserException,
                     refusal);
    EXPECT_THROW(HUTZip::extractFile(path, "/evil", dir.path("out")), HEXUserException);
    EXPECT_EQ(dir.list(), "a.zip\n") << "refused before anything is written";

    dir.write("target/keep", "kept");
    std::filesystem::create_directories(dir.path("out/e"));
    std::filesystem::create_directory_symlink(dir.path("target"), dir.path("out/e/link"));
    EXPECT_THROW(HUTZip::extractDir(path, "e", dir.path("out")), HEXUserException);
    EXPECT_FALSE(std::filesystem::exists(dir.path("target/file")));
    std::filesystem::create_symlink(dir.path("target/keep"), dir.path("out/leaf"));
    EXPECT_TRUE(HUTZip::extractFile(path, "leaf", dir.path("out")));
    EXPECT_FALSE(std::filesystem::is_symlink(dir.path("out/leaf"))) << "replaced, not followed";
    EXPECT_EQ(dir.read("out/leaf"), "5");
    EXPECT_EQ(dir.read("target/keep"), "kept");
}

RawMember claiming(RawMember member, std::uint32_t size) {
    member.size = size;
    return member;
}

TEST(Extract, BombsAndDamageLeaveNoFile) {
    const TempDir dir;
    const RawMember bomb = claiming(deflatedMember("b/bomb", std::string(9999, 'b')), 0x40000001);
    RawMember damaged = storedMember("c", "text");
    ++damaged.crc;
    const RawMember half = claiming(storedMember("h/one", "x"), 0x30000000);
    const RawMember other = claiming(storedMember("h/two", "x"), 0x30000000);
    const std::string path =
        dir.write("a.zip", rawZip({storedMember("b/fine", "1"), bomb, damaged, half, other}));
    const std::string reason =
        "' is not extracted: more than 1073741824 bytes would be written, too many for the size of "
        "the archive";
    EXPECT_THROW_MSG(HUTZip::extractDir(path, "b", dir.path("out")), HEXUserException,
                     "The member 'b/bomb' of the archive '" + path + reason);
    EXPECT_THROW_MSG(HUTZip::extractDir(path, "h", dir.path("out")), HEXUserException,
                     "The member 'h/two' of the archive '" + path + reason);
    EXPECT_EQ(dir.list(), "a.zip\n");
    EXPECT_THROW(HUTZip::extractFile(path, "c", dir.path("out")), HEXDataException);
    EXPECT_TRUE(std::filesystem::is_empty(dir.path("out")));
}

}  // namespace
