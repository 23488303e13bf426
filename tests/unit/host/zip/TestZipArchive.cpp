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

TEST(ZipArchive, MembersAreFoundByExactNameAndReadWholeOrAsStreams) {
    const TempDir dir;
    std::string large;
    for (int i = 0; i < 100000; ++i) large += std::to_string(i * 7919) + ",";
    const std::string path = dir.write(
        "a.zip", rawZip({storedMember("plain", "stored text"), deflatedMember("sub/large", large),
                         storedMember("twice", "first"), deflatedMember("twice", "second"),
                         storedMember("empty", ""), deflatedMember("void", "")}));
    zip_istream byName(path, "sub/large", 3);
    EXPECT_EQ(readAll(byName), large);
    const ZipArchive archive(path);
    const ZipArchive copy = archive;  // shares the opened file
    std::filesystem::remove(path);
    EXPECT_FALSE(zip_istream(path, "plain")) << "the archive is gone";
    EXPECT_EQ(copy.path(), path);
    const std::pair<const char*, std::string> contents[] = {{"plain", "stored text"},
                                                            {"sub/large", large},
                                                            {"twice", "first"},
                                                            {"empty", ""},
                                                            {"void", ""}};
    for (const auto& [name, content] : contents) {
        EXPECT_EQ(copy.read(name, content.size()), content);
        zip_istream first(archive, name);
        zip_istream second(archive, name);  // two at a time over one opened file
        EXPECT_TRUE(first && second);
        EXPECT_EQ(first.get(), content.empty() ? std::istream::traits_type::eof() : content[0]);
        EXPECT_EQ(first.eof(), content.empty());
        EXPECT_EQ(readAll(second), content);
        EXPECT_EQ(readAll(first), content.substr(content.empty() ? 0 : 1));
    }
    for (const std::string& absent :
         {std::string(), std::string("Plain"), std::string("sub/"), std::string("plain\0x", 7)}) {
        EXPECT_FALSE(archive.contains(absent)) << absent;
        EXPECT_FALSE(zip_istream(archive, absent)) << absent;
    }
    std::string names;
    for (const mav_host::ZipMember& member : archive.members()) names += member.name + " ";
    EXPECT_EQ(names, "plain sub/large twice twice empty void ");
    EXPECT_EQ(archive.members()[1].size, large.size());
}

TEST(ZipArchive, WhatCannotBeOpenedSaysWhy) {
    const TempDir dir;
    const std::string good = rawZip({storedMember("a", "content")});
    ASSERT_EQ(::mkfifo(dir.path("pipe").c_str(), 0600), 0);
    const std::string noZip = "is not a zip archive; check that it is the file you mean";
    const std::pair<std::string, std::string> cases[] = {
        {dir.path(), "is not a file; give the path of an archive"},
        {dir.path("pipe"), "is not a file; give the path of an archive"},
        {dir.write("empty", ""), noZip},
        {dir.write("text", "PC"), noZip},
        {dir.write("cut", good.substr(0, good.size() - 30)),
         "is cut off or damaged: its directory cannot be read; copy it afresh"},
    };
    for (const auto& [path, reason] : cases) {
        EXPECT_THROW_MSG(ZipArchive{path}, HEXUserException,
                         "The archive '" + path + "' " + reason);
        EXPECT_FALSE(HUTZip::containsFile(path, "a"));
        EXPECT_EQ(HUTZip::isZip(path), path == dir.path("cut"));
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
    const std::string content(70000, 'x');
    const RawMember packed = deflatedMember("m", content);
    const RawMember plain = storedMember("m", content);
    // Empty packed blocks without end: read piece by piece, never taken into memory.
    RawMember blocks = deflatedMember("m", "");
    for (int i = 0; i < 4000; ++i) blocks.data.insert(0, std::string("\0\0\0\xff\xff", 5));
    blocks.packed = static_cast<std::uint32_t>(blocks.data.size());
    const std::pair<RawMember, std::string> cases[] = {
        {packed, "= " + content},
        {blocks, "= "},
        {edited(packed, [](RawMember& m) { --m.size; }), wrongSize},
        {edited(packed, [](RawMember& m) { m.size = 0; }), wrongSize},
        {edited(packed, [](RawMember& m) { m.size = LIMIT; }), wrongSize},
        {edited(packed, [](RawMember& m) { m.size = 0xfffffff0; }),
         "is larger than the 1048576 bytes that are read of it"},
        {edited(packed, [](RawMember& m) { ++m.crc; }), damaged},
        {edited(packed, [](RawMember& m) { m.data[0] = '\x07'; }), damaged},
        {edited(plain, [](RawMember& m) { ++m.crc; }), damaged},
        {edited(packed, [](RawMember& m) { m.flags = 1; }),
         "is encrypted, which is not supported; pack it plain"},
        {edited(plain, [](RawMember& m) { m.method = 97; }),
         "is packed by method 97, which is not supported; pack it with deflate"},
    };
    const TempDir dir;
    for (const auto& [member, text] : cases) {
        const std::string path = dir.write("a.zip", rawZip({storedMember("o", "p"), member}));
        EXPECT_EQ(outcome(path, "m", false), text);
        EXPECT_EQ(outcome(path, "m", true), text);
        EXPECT_EQ(outcome(path, "o", false), "= p") << "the others stay readable";
        EXPECT_EQ(outcome(path, "absent", true), "does not exist");
        zip_istream stream(path, "m");
        std::string read(content.size() + 10, '\0');
        stream.read(read.data(), static_cast<std::streamsize>(read.size()));
        EXPECT_EQ(stream.bad(), text[0] != '=') << text.substr(0, 80);
    }
    for (const RawMember& member : {plain, packed}) {
        const std::string path = dir.write("a.zip", rawZip({member}));
        for (const bool streamed : {false, true}) {
            EXPECT_EQ(outcome(path, "m", streamed, 70000), "= " + content);
            EXPECT_EQ(outcome(path, "m", streamed, 69999),
                      "is larger than the 69999 bytes that are read of it");
        }
    }
}

/// Names of one sum under h * 33 + c.
std::vector<RawMember> collidingMembers(unsigned doublings) {
    std::vector<RawMember> members(std::size_t{1} << doublings);
    for (std::size_t i = 0; i < members.size(); ++i) {
        for (unsigned bit = 0; bit < doublings; ++bit) {
            members[i].name += (i >> bit) % 2 == 0 ? "aB" : "b!";
        }
    }
    return members;
}

TEST(ZipArchive, ForgedDirectoriesAreRefused) {
    const RawMember member = storedMember("m", std::string(5000, 'x'));
    const std::string local = rawLocal(member);
    const std::string entry = rawEntry(member, 0);
    const auto claiming = [&](std::uint32_t packed) {
        RawMember longer = member;
        longer.packed = packed;
        return rawZip({longer, storedMember("o", "")});
    };
    const auto ending = [&](const std::string& directory, std::uint64_t count) {
        return local + directory + rawEnd(count, directory.size(), local.size());
    };
    const auto wide = [&](std::uint64_t count, std::uint64_t size) {
        return local + entry +
               rawWideEnd(local.size() + entry.size(), count, size, local.size(),
                          rawEnd(0xffff, 0xffffffff, 0xffffffff));
    };
    const std::string damaged =
        "is cut off or damaged: its directory cannot be read; copy it afresh";
    const std::string shared =
        "is damaged or forged: its member 'm' shares bytes with another one or with the "
        "directory; get it afresh";
    const std::string names =
        "is not read: more than 256 of its member names are equal or made to fall together; pack "
        "it again with other names";
    const std::pair<std::string, std::string> cases[] = {
        {ending(entry, 0xfffe), damaged},
        {wide(1ULL << 40U, 46ULL << 40U), damaged},
        {wide(2, entry.size()), damaged},
        {claiming(5001), shared},
        {ending(entry + entry, 2), shared},
        {ending(rawEntry(member, 0x7fffffff), 1), shared},
        {rawZip(collidingMembers(9)), names},
        {rawZip(std::vector<RawMember>(257, member)), names},
        {rawZip(std::vector<RawMember>(8193, storedMember("\xff", ""))),
         "is not read: more than 8192 of its member names are not UTF-8; pack it again with other "
         "names"},
    };
    const TempDir dir;
    for (const auto& [bytes, text] : cases) {
        const std::string path = dir.write("a.zip", bytes);
        EXPECT_THROW_MSG(ZipArchive{path}, HEXUserException, "The archive '" + path + "' " + text);
    }
    EXPECT_NO_THROW(ZipArchive{dir.write("a.zip", rawZip(collidingMembers(8)))});
}

TEST(ZipArchive, DirectoriesThatAreTooLargeAreNotRead) {
    const TempDir dir;
    const std::string path = dir.path("a.zip");
    const struct {
        std::uint64_t count;
        std::uint64_t size;
        std::string text;
    } rows[] = {
        {1000001, 46 * 1000001, "has more than 1000000 members, too many to be read"},
        {1, (1U << 28U) + 1, "has a directory of more than 268435456 bytes, too large to be read"},
    };
    for (const auto& row : rows) {
        std::ofstream(path, std::ios::binary) << rawEntry(storedMember("m", ""), 0);
        std::filesystem::resize_file(path, row.size);
        std::ofstream(path, std::ios::binary | std::ios::app)
            << rawWideEnd(row.size, row.count, row.size, 0, rawEnd(0xffff, 0xffffffff, 0xffffffff));
        EXPECT_THROW_MSG(ZipArchive{path}, HEXUserException,
                         "The archive '" + path + "' " + row.text);
    }
}

TEST(ZipArchive, AMemberBehindFourGigabytesIsFound) {
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
    const std::string end = rawWideEnd(directoryAt + directory.size(), 2, directory.size(),
                                       directoryAt, rawEnd(2, 0xffffffff, 0xffffffff));
    std::ofstream file(path, std::ios::binary);
    file << first;
    file.seekp(static_cast<std::streamoff>(secondAt));
    file << rawLocal(small) << directory << end;
    file.close();
    ASSERT_TRUE(file) << "a sparse file of 4 GiB";

    const ZipArchive archive(path);
    EXPECT_EQ(archive.read("small", LIMIT), std::string(10000, 's'));
    EXPECT_EQ(archive.members()[0].size, HOLE);
    EXPECT_THROW(archive.read("bulk", LIMIT), HEXDataException);
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
    again.close();
    again.close();
    EXPECT_TRUE(static_cast<bool>(again));
    EXPECT_FALSE(zip_ostream(path, "../m"));
    zip_ostream nowhere(dir.path("none/a.zip"), "m");
    nowhere.exceptions(std::ios_base::failbit);
    nowhere << "text";
    EXPECT_THROW(nowhere.close(), std::ios_base::failure);
    zip_ostream(dir.path("none/a.zip"), "m").exceptions(std::ios_base::failbit);
}

}  // namespace
