// SPDX-License-Identifier: Apache-2.0
// The protected container: round trips, and every change detected with its text.
#include "mav_host/HEXError.h"
#include "mav_host/xp.h"
#include "support/Doubles.h"
#include "support/ZipFixture.h"

namespace {

namespace xp = isl::iostreams::xp;

constexpr std::size_t PREFIX = 8 + 1 + 16 + 8;
constexpr std::size_t PIECE = 65536 + 17;

std::string refusal(const std::string& path) {
    const std::string start = "The protected file '" + path + "' ";
    try {
        xp::read(path);
    } catch (const HEXDataException& error) {
        const std::string text = error.what();
        EXPECT_EQ(text.substr(0, start.size()), start);
        return text.substr(start.size());
    }
    return "";
}

TEST(Xp, WhatGoesInComesOut) {
    const TempDir dir;
    const HostKey key("some key");
    for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 131072U, 200000U}) {
        std::string content(size, 'c');
        for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<char>(i * 31 / 7);
        const std::string path = dir.path("file");
        xp::write(path, content);
        EXPECT_TRUE(xp::is_xp_format(path));
        EXPECT_EQ(xp::read(path), content) << size;
        std::ostringstream text;
        text << xp::open(path)->rdbuf();
        EXPECT_EQ(text.str(), content);
        EXPECT_EQ(dir.read("file").find("cccc"), std::string::npos);
    }
    EXPECT_EQ(dir.list(), "file\n");
}

TEST(Xp, TheFormatIsToldWithoutAKey) {
    const TempDir dir;
    {
        const HostKey key("k");
        xp::write(dir.path("file"), "text");
    }
    const HostKey none(std::nullopt);
    EXPECT_TRUE(xp::is_xp_format(dir.path("file")));
    for (const std::string& other : {dir.path(), dir.path("none"), dir.write("short", "MAVXP"),
                                     dir.write("text", "{\"a\": 1}")}) {
        EXPECT_FALSE(xp::is_xp_format(other)) << other;
    }
    EXPECT_EQ(refusal(dir.path("file")), "needs a key, and the host has none; set MAV_KEY_FILE");
    EXPECT_THROW_MSG(xp::write(dir.path("new"), "text"), HEXUserException,
                     "The protected file '" + dir.path("new") +
                         "' cannot be written: the host has no key; set MAV_KEY_FILE");
    EXPECT_FALSE(std::filesystem::exists(dir.path("new")));
}

TEST(Xp, EachFaultHasItsText) {
    const TempDir dir;
    const HostKey key("k");
    xp::write(dir.path("file"), std::string(3 * 65536, 'c'));
    const std::string good = dir.read("file");
    const std::string cut = "is cut off; copy it afresh";
    const std::string changed = "was changed after it was made; get it afresh";
    constexpr std::size_t START = PREFIX + 24;
    ASSERT_EQ(good.size(), START + 3 * PIECE);
    const std::string header = good.substr(0, START);
    const std::string swapped = header + good.substr(START + PIECE, PIECE) +
                                good.substr(START, PIECE) + good.substr(START + 2 * PIECE);
    std::string newer = good;
    newer[8] = 2;
    std::string flipped = good;
    flipped.back() = static_cast<char>(flipped.back() ^ 1);
    const std::pair<std::string, std::string> cases[] = {
        {"", "is not in the protected format"},
        {"{}", "is not in the protected format"},
        {good.substr(0, START + PIECE), cut},  // at the border of a piece
        {good + "x", "has bytes behind its end; copy it afresh"},
        {newer,
         "is of version 2 of the protected format, and this release reads version 1; use a newer "
         "release"},
        {flipped, changed},
        {swapped, changed},
        {header + std::string(good.size() - header.size(), '\0'), changed},
    };
    for (const auto& [content, text] : cases) {
        EXPECT_EQ(refusal(dir.write("bad", content)), text);
    }
    const HostKey other("another");
    EXPECT_EQ(refusal(dir.path("file")),
              "was made with another key; give the host the key that it was made with");
    EXPECT_EQ(refusal(dir.path()), "cannot be read; check path and permissions");
}

TEST(Xp, NoTruncationAndNoChangedByteIsAccepted) {
    const TempDir dir;
    const HostKey key("k");
    xp::write(dir.path("file"), "short text");
    const std::string good = dir.read("file");
    for (std::size_t at = 0; at < good.size(); ++at) {
        const std::string cut = refusal(dir.write("bad", good.substr(0, at)));
        EXPECT_EQ(cut, at < 8 ? "is not in the protected format" : "is cut off; copy it afresh");
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ 0x80);
        EXPECT_NE(refusal(dir.write("bad", bad)), "") << at;
    }
}

}  // namespace
