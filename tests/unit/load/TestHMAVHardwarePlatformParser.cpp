// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "mav_platform/HMAVHardwarePlatformParser.h"
#include "mav_platform/HMAVPlatform.h"
#include "support/Platforms.h"

namespace {

namespace fs = std::filesystem;
using Parser = HMAVHardwarePlatformParser;

/// Lists and containers of a test, with what the scans reported.
struct Scan {
    Scan() = default;
    ~Scan() {
        for (const auto& [path, container] : seen) delete container;
    }
    Scan(const Scan&) = delete;
    Scan& operator=(const Scan&) = delete;

    void load(const HSTVector<std::string>& dirs, bool filter = false) {
        Parser::loadBareHardwarePlatforms(dirs, platforms, seen, filter);
    }
    /// The names of the hardware platforms, in order.
    std::string names() const {
        std::string text;
        for (const HMAVHardwarePlatform* platform : platforms) text += platform->getName() + " ";
        return text;
    }

    CapturedMessages messages;
    Parser::Platforms platforms;
    Parser::Containers seen;
};

TEST(HMAVHardwarePlatformParser, BareArchivesAreFoundAtAnyDepthInOrder) {
    const TempDir dir;
    bareArchive(dir, "b.pka", metadata("", "b"));
    bareArchive(dir, "a/1/2/3/4/5/deep :\xc3\xa4.dsa", metadata("", "deep"));
    bareArchive(dir, "up.PKA");
    bareArchive(dir, "c.pka.bak");
    bareArchive(dir, "d.zip");
    packArchive(dir, ".pka", {{"pka.json", metadata("", "dot")}});
    fs::create_directory_symlink("a", dir.path("link"));
    fs::create_symlink("b.pka", dir.path("z.pka"));
    Scan scan;
    scan.load({dir.path("none"), dir.path("b.pka"), dir.path()});
    EXPECT_EQ(scan.names(), "dot deep b b ") << "links to archives count, those to directories not";
    EXPECT_EQ(scan.messages.text(), "") << "directories that are none are passed over";

    ASSERT_EQ(scan.seen.size(), 4U);
    HMAVPlatform* const container = scan.seen.at(dir.path("b.pka"));
    EXPECT_TRUE(container->isPartial());
    EXPECT_FALSE(container->isQpfm());
    EXPECT_EQ(container->getHardwarePlatform(), scan.platforms[2]);
    EXPECT_EQ(container->getPlatformFile(), dir.path("b.pka"));
    EXPECT_EQ(scan.platforms[3]->getPlatformFile(), dir.path("z.pka"));
}

TEST(HMAVHardwarePlatformParser, ADescriptionOfTheSameStemBesideTheArchiveTakesIt) {
    const TempDir dir;
    bareArchive(dir, "a/card.pka");
    dir.write("a/card.qpfm", "whatever it holds");
    bareArchive(dir, "b/card.pka", metadata("", "alone"));
    dir.write("b/card.QPFM", "");
    dir.write("card.qpfm", "");
    Scan scan;
    scan.load({dir.path()});
    EXPECT_EQ(scan.names(), "alone ");
}

TEST(HMAVHardwarePlatformParser, AnArchiveThatCannotBeReadIsAPlatformAllTheSame) {
    const TempDir dir;
    packArchive(dir, "json.pka", {{"pka.json", "{\"vendor\": "}});
    packArchive(dir, "none.pka", {{"design.bit", "x"}});
    dir.write("text.pka", "text");
    fs::create_symlink("nowhere", dir.path("vanished.pka"));
    Scan scan;
    scan.load({dir.path()});
    std::string reports;
    for (const ComMsg& message : scan.messages.all)
        reports += message.id + message.args.at(0).substr(dir.path().size()) + "\n";
    EXPECT_EQ(reports,
              "@74-64@%s%s%s/json.pka\n@74-63@%s%s/none.pka\n@74-63@%s%s/text.pka\n"
              "@74-66@%s/vanished.pka\n");
    ASSERT_EQ(scan.platforms.size(), 4U);
    EXPECT_EQ(scan.platforms[2]->getPlatformFile(), dir.path("text.pka"));
    EXPECT_EQ(scan.seen.size(), 4U);
}

TEST(HMAVHardwarePlatformParser, OfEqualVbnvTheFirstDirectoryWinsOnlyWithTheFilter) {
    const TempDir dir;
    bareArchive(dir, "one/x.pka");
    bareArchive(dir, "two/x.pka");
    bareArchive(dir, "two/other.pka", metadata("", "other"));
    const HSTVector<std::string> dirs{dir.path("two"), dir.path("one"), dir.path("two")};
    Scan filtered;
    filtered.load(dirs, true);
    EXPECT_EQ(filtered.names(), "other card ");
    EXPECT_EQ(filtered.platforms[1]->getPlatformFile(), dir.path("two/x.pka"));
    EXPECT_EQ(filtered.messages.text(), "@74-17@%s%s%s|tarvek:b1:card:3.1|" +
                                            dir.path("one/x.pka") + "|" + dir.path("two/x.pka") +
                                            "\n@74-23@%s|" + dir.path("two/other.pka") +
                                            "\n@74-23@%s|" + dir.path("two/x.pka") + "\n");
    EXPECT_EQ(filtered.messages.all[0].level, 3);
    EXPECT_EQ(filtered.seen.size(), 3U) << "what the filter drops stays recorded";

    Scan all;
    all.load(dirs);
    EXPECT_EQ(all.names(), "other card card other card ");
    EXPECT_EQ(all.messages.text(), "");
}

TEST(HMAVHardwarePlatformParser, ANewPlatformTakesThePlaceOfTheOneOfItsFileAtTheEnd) {
    const TempDir dir;
    bareArchive(dir, "a/a.pka", metadata("", "a"));
    bareArchive(dir, "b/b.pka", metadata("", "b"));
    Scan scan;
    scan.load({dir.path()});
    const Parser::Platforms before = scan.platforms;
    std::error_code error;
    fs::remove(dir.path("a/a.pka"), error);
    dir.write("a/a.pka", "no archive any more");
    scan.load({dir.path("a")});
    EXPECT_EQ(scan.names(), "b a ") << "a recorded archive is not read again";
    EXPECT_EQ(scan.platforms, (Parser::Platforms{before[1], before[0]}));
    EXPECT_EQ(scan.messages.text(), "");

    Scan fresh;
    fresh.platforms = scan.platforms;
    fresh.load({dir.path("b")});
    EXPECT_EQ(fresh.names(), "a b ");
    EXPECT_NE(fresh.platforms[1], before[1]) << "equal unique names, another object";
}

TEST(HMAVHardwarePlatformParser, OneArchiveGoesIntoTheGivenContainer) {
    const TempDir dir;
    const CapturedMessages messages;
    HMAVPlatform platform;
    HMAVHardwarePlatform* const hardware =
        Parser::addPlatform(bareArchive(dir, "a.dsa"), &platform);
    ASSERT_NE(hardware, nullptr);
    EXPECT_EQ(hardware->getVBNV(), "tarvek:b1:card:3.1");
    EXPECT_EQ(platform.getHardwarePlatform(), nullptr) << "attached by the caller";
    platform.setHardwarePlatform(hardware);
    EXPECT_EQ(Parser::addPlatform(dir.path("a.dsa"), nullptr), nullptr);
    EXPECT_NE(Parser::addPlatform("", &platform), nullptr);
    EXPECT_EQ(messages.text(), "@74-66@%s|\n");
}

}  // namespace
