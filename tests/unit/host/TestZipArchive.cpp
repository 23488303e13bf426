// SPDX-License-Identifier: Apache-2.0
// Reading archives: good ones, every defect with its text, member streams.
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "mav_host/HEXError.h"
#include "mav_host/HUTZip.h"
#include "support/Doubles.h"
#include "support/ZipFixture.h"

namespace {

using mav_host::ZipArchive;
constexpr std::uint64_t LIMIT = 1U << 20U;

std::string readAll(std::istream& stream) {
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

/// What reading the member says: its content behind "= ", else the error's text behind the names.
std::string outcome(const std::string& path, const std::string& member, bool streamed,
                    std::uint64_t limit = LIMIT) {
    const std::string names = "The member '" + member + "' of the archive '" + path + "' ";
    try {
        const ZipArchive archive(path);
        std::string content;
        if (streamed) {
            archive.read(member, limit,
                         [&](const char* data, std::size_t size) { content.append(data, size); });
        } else {
            content = archive.read(member, limit);
        }
        return "= " + content;
    } catch (const HEXDataException& error) {
        const std::string text = error.what();
        EXPECT_EQ(text.substr(0, names.size()), names);
        return text.substr(names.size());
    }
}

TEST(ZipArchive, MembersAreFoundByExactNameAndReadWhole) {
    const TempDir dir;
    std::string large;
    for (int i = 0; i < 100000; ++i) large += std::to_string(i * 7919) + ",";
    const std::string path = dir.write(
        "a.zip", rawZip({storedMember("plain", "stored text"), deflatedMember("sub/large", large),
                         storedMember("twice", "first"), deflatedMember("twice", "second"),
                         storedMember("empty", ""), deflatedMember("void", "")}));
    const ZipArchive archive(path);
    const ZipArchive copy = archive;  // shares the opened file
    std::filesystem::remove(path);
    EXPECT_EQ(copy.path(), path);
    EXPECT_EQ(archive.read("plain", LIMIT), "stored text");
    EXPECT_EQ(copy.read("sub/large", LIMIT), large);
    EXPECT_EQ(archive.read("twice", LIMIT), "first");
    EXPECT_EQ(archive.read("empty", 0), "");
    EXPECT_EQ(archive.read("void", 0), "");
    for (const char* absent : {"", "Plain", "plain ", "sub", "sub/", "large"}) {
        EXPECT_FALSE(archive.contains(absent)) << absent;
    }
    EXPECT_FALSE(archive.contains(std::string("plain\0x", 7)));
    std::string names;
    for (const mav_host::ZipMember& member : archive.members()) names += member.name + " ";
    EXPECT_EQ(names, "plain sub/large twice twice empty void ");
    EXPECT_EQ(archive.members()[1].size, large.size());
}

TEST(ZipArchive, WhatCannotBeOpenedSaysWhy) {
    const TempDir dir;
    const std::string good = rawZip({storedMember("a", "content")});
    ASSERT_EQ(::mkfifo(dir.path("pipe").c_str(), 0600), 0);
    const struct {
        std::string path;
        const char* reason;
    } cases[] = {
        {dir.path(), "is not a file; give the path of an archive"},
        {dir.path("pipe"), "is not a file; give the path of an archive"},
        {dir.write("empty", ""), "is not a zip archive; check that it is the file you mean"},
        {dir.write("text", "PC"), "is not a zip archive; check that it is the file you mean"},
        {dir.write("cut", good.substr(0, good.size() - 30)),
         "is cut off or damaged: its directory cannot be read; copy it afresh"},
    };
    for (const auto& test : cases) {
        EXPECT_THROW_MSG(ZipArchive{test.path}, HEXUserException,
                         "The archive '" + test.path + "' " + test.reason);
        EXPECT_FALSE(HUTZip::containsFile(test.path, "a"));
        EXPECT_EQ(HUTZip::isZip(test.path), test.path == dir.path("cut"));
    }
    EXPECT_THROW_MSG(ZipArchive{dir.path("none")}, HEXFileNotFoundException,
                     "File '" + dir.path("none") + "' does not exist");
    EXPECT_THROW_MSG(ZipArchive{""}, HEXFileNotFoundException, "File '' does not exist");
}

/// A good member and one edit.
RawMember edited(RawMember member, void (*edit)(RawMember&)) {
    edit(member);
    return member;
}

TEST(ZipArchive, EachDefectOfAMemberHasItsText) {
    const std::string wrongSize =
        "holds another number of bytes than its header claims; the archive is damaged";
    const std::string damaged = "is damaged: its checksum or its packed data is wrong";
    const std::string content(5000, 'x');
    const RawMember packed = deflatedMember("m", content);
    const RawMember plain = storedMember("m", content);
    const struct {
        RawMember member;
        std::string text;
    } cases[] = {
        {packed, "= " + content},
        {edited(packed, [](RawMember& m) { m.size = 4999; }), wrongSize},
        {edited(packed, [](RawMember& m) { m.size = 5001; }), wrongSize},
        {edited(packed, [](RawMember& m) { m.size = 0; }), wrongSize},
        {edited(packed, [](RawMember& m) { m.size = 1U << 20U; }), wrongSize},
        {edited(packed, [](RawMember& m) { m.size = 0xfffffff0; }),
         "is larger than the 1048576 bytes that are read of it"},
        {edited(packed, [](RawMember& m) { ++m.crc; }), damaged},
        {edited(packed, [](RawMember& m) { m.data[0] = '\x07'; }), damaged},
        {edited(plain, [](RawMember& m) { ++m.crc; }), damaged},
        {edited(plain, [](RawMember& m) { m.data[7] = 'y'; }), damaged},
        {edited(packed, [](RawMember& m) { m.flags = 1; }),
         "is encrypted, which is not supported; pack it plain"},
        {edited(plain, [](RawMember& m) { m.method = 97; }),
         "is packed by method 97, which is not supported; pack it with deflate"},
    };
    const TempDir dir;
    for (const auto& test : cases) {
        const std::string path = dir.write("a.zip", rawZip({storedMember("o", "p"), test.member}));
        EXPECT_EQ(outcome(path, "m", false), test.text);
        EXPECT_EQ(outcome(path, "m", true), test.text);
        EXPECT_EQ(outcome(path, "o", false), "= p") << "the others stay readable";
        EXPECT_EQ(outcome(path, "absent", true), "does not exist");
    }
}

TEST(ZipArchive, DefectsOfPlaceAreRefusedInBothWaysOfReading) {
    const TempDir dir;
    for (const std::uint32_t claim : {5001U, 0x7fffffffU}) {
        RawMember longer = storedMember("m", std::string(5000, 'x'));
        longer.packed = claim;  // runs into the directory, or past the file's end
        const std::string path = dir.write("a.zip", rawZip({longer}));
        for (const bool streamed : {false, true}) {
            EXPECT_THROW(ZipArchive(path).read("m", LIMIT), HEXError);
            EXPECT_NE(outcome(path, "m", streamed).substr(0, 2), "= ");
        }
    }
    // Empty packed blocks without end: read piece by piece, never taken into memory.
    RawMember blocks = deflatedMember("m", "");
    std::string data;
    for (int i = 0; i < 4000; ++i) data += std::string("\0\0\0\xff\xff", 5);
    blocks.data = data + blocks.data;
    blocks.packed = static_cast<std::uint32_t>(blocks.data.size());
    EXPECT_EQ(outcome(dir.write("b.zip", rawZip({blocks})), "m", false), "= ");
}

TEST(ZipArchive, TheLimitHolds) {
    const TempDir dir;
    const std::string content(3000, 'z');
    for (const RawMember& member : {storedMember("m", content), deflatedMember("m", content)}) {
        const std::string path = dir.write("a.zip", rawZip({member}));
        for (const bool streamed : {false, true}) {
            EXPECT_EQ(outcome(path, "m", streamed, 3000), "= " + content);
            EXPECT_EQ(outcome(path, "m", streamed, 2999),
                      "is larger than the 2999 bytes that are read of it");
        }
    }
}

TEST(ZipArchive, DirectoriesThatLieTakeNoMemory) {
    const TempDir dir;
    const RawMember member = storedMember("m", "content");
    const std::string local = rawLocal(member);
    const std::string entry = rawEntry(member, 0);
    const std::string claims = local + entry + rawEnd(0xfffe, entry.size(), local.size());
    EXPECT_THROW(ZipArchive{dir.write("count", claims)}, HEXUserException);
    const std::string wide = std::string("PK\6\6", 4) + little(44, 8) + little(45, 2) +
                             little(45, 2) + little(0, 8) + little(1ULL << 40U, 8) +
                             little(1ULL << 40U, 8) + little(46ULL << 40U, 8) +
                             little(local.size(), 8);
    const std::string place = std::string("PK\6\7", 4) + little(0, 4) +
                              little(local.size() + entry.size(), 8) + little(1, 4);
    const std::string end = rawEnd(0xffff, 0xffffffff, 0xffffffff);
    EXPECT_THROW(ZipArchive{dir.write("wide", local + entry + wide + place + end)},
                 HEXUserException);
}

/// Bytes that this process has read so far; no value where the system does not tell.
std::optional<std::uint64_t> bytesRead() {
    std::ifstream io("/proc/self/io");
    std::string label;
    std::uint64_t count = 0;
    if (io >> label >> count && label == "rchar:") return count;
    return std::nullopt;
}

TEST(ZipArchive, OfALargeArchiveOnlyTheDirectoryAndTheMemberAreRead) {
    const TempDir dir;
    constexpr std::uint64_t HOLE = (std::uint64_t{4} << 30U) + 12345;
    const std::string path = dir.path("large.zip");
    RawMember bulk = storedMember("bulk", "");
    bulk.packed = bulk.size = 0xffffffff;
    const RawMember small = deflatedMember("small", std::string(10000, 's'));
    std::string wide = little(1, 2) + little(16, 2) + little(HOLE, 8) + little(HOLE, 8);
    const std::string first = "PK\3\4" + rawFields(bulk, wide.size()) + "bulk" + wide;
    const std::uint64_t secondAt = first.size() + HOLE;
    const std::uint64_t directoryAt = secondAt + rawLocal(small).size();
    std::string directory = rawEntry(bulk, 0, wide);
    directory += rawEntry(small, 0xffffffff, little(1, 2) + little(8, 2) + little(secondAt, 8));
    const std::string end64 = std::string("PK\6\6", 4) + little(44, 8) + little(45, 2) +
                              little(45, 2) + little(0, 8) + little(2, 8) + little(2, 8) +
                              little(directory.size(), 8) + little(directoryAt, 8);
    const std::string place = std::string("PK\6\7", 4) + little(0, 4) +
                              little(directoryAt + directory.size(), 8) + little(1, 4);
    std::ofstream file(path, std::ios::binary);
    file << first;
    file.seekp(static_cast<std::streamoff>(secondAt));
    file << rawLocal(small) << directory << end64 << place << rawEnd(2, 0xffffffff, 0xffffffff);
    file.close();
    ASSERT_TRUE(file) << "a sparse file of 4 GiB";

    const auto before = bytesRead();
    const ZipArchive archive(path);
    EXPECT_EQ(archive.read("small", LIMIT), std::string(10000, 's'));
    EXPECT_EQ(archive.members()[0].size, HOLE);
    EXPECT_THROW(archive.read("bulk", LIMIT), HEXDataException);
    const auto after = bytesRead();
    EXPECT_LT(after.value_or(0) - before.value_or(0), 1U << 20U);
}

TEST(ZipArchive, NoDamagedByteGivesWrongContent) {
    const TempDir dir;
    const std::string content = "some content, some content, some content";
    const std::string good = rawZip({deflatedMember("m", content), storedMember("n", content)});
    for (std::size_t at = 0; at < good.size(); ++at) {
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ 0x55);
        const std::string path = dir.write("bad.zip", bad);
        for (const char* member : {"m", "n"}) {
            for (const bool streamed : {false, true}) {
                try {
                    const std::string said = outcome(path, member, streamed);
                    EXPECT_TRUE(said == "= " + content || said.substr(0, 2) != "= ") << at;
                } catch (const HEXUserException&) {
                    // The whole archive is refused.
                }
            }
        }
    }
}

TEST(ZipStreams, AMemberIsReadLikeAFile) {
    const TempDir dir;
    const std::string content(200000, 'c');
    const std::string path =
        dir.write("a.zip", rawZip({deflatedMember("m", content), storedMember("e", "")}));
    zip_istream byName(path, "m", 3);
    EXPECT_EQ(readAll(byName), content);
    const ZipArchive archive(path);
    std::filesystem::remove(path);
    zip_istream first(archive, "m");
    zip_istream second(archive, "m");  // two at a time over one opened file
    EXPECT_EQ(first.get(), 'c');
    EXPECT_EQ(readAll(second), content);
    EXPECT_EQ(readAll(first), content.substr(1));
    zip_istream empty(archive, "e");
    EXPECT_TRUE(static_cast<bool>(empty));
    EXPECT_EQ(empty.get(), std::char_traits<char>::eof());
    EXPECT_TRUE(empty.eof());
    EXPECT_FALSE(zip_istream(archive, "none"));
    EXPECT_FALSE(zip_istream(path, "m")) << "the archive is gone";
}

TEST(ZipStreams, DamageEndsInTheBadState) {
    const TempDir dir;
    const std::string content(70000, 'c');
    const RawMember faults[] = {
        edited(deflatedMember("m", content), [](RawMember& m) { ++m.crc; }),
        edited(deflatedMember("m", content), [](RawMember& m) { ++m.size; }),
        edited(deflatedMember("m", content), [](RawMember& m) { --m.size; }),
    };
    for (const RawMember& fault : faults) {
        zip_istream stream(dir.write("a.zip", rawZip({fault})), "m");
        std::string text(content.size() + 10, '\0');
        stream.read(text.data(), static_cast<std::streamsize>(text.size()));
        EXPECT_TRUE(stream.bad());
    }
}

TEST(ZipStreams, WhatIsWrittenBecomesAMember) {
    const TempDir dir;
    const std::string path = dir.path("a.zip");
    {
        zip_ostream stream(path, "m");
        stream << "one " << 2;
    }
    EXPECT_EQ(ZipArchive(path).read("m", LIMIT), "one 2");
    zip_ostream again(path, "m");
    again << "three";
    again.close();
    again.close();
    EXPECT_TRUE(static_cast<bool>(again));
    EXPECT_EQ(ZipArchive(path).read("m", LIMIT), "three");
    EXPECT_EQ(dir.list(), "a.zip\n");

    EXPECT_FALSE(zip_ostream(path, "../m"));
    zip_ostream nowhere(dir.path("none/a.zip"), "m");
    nowhere.exceptions(std::ios_base::failbit);
    nowhere << "text";
    EXPECT_THROW(nowhere.close(), std::ios_base::failure);
    zip_ostream(dir.path("none/a.zip"), "m").exceptions(std::ios_base::failbit);
}

}  // namespace
