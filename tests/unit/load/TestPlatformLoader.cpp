// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/PlatformLoader.h"
#include "mav_platform/PlatformParseException.h"
#include "support/Platforms.h"

namespace {

using mav_platform::PlatformLoader;
using mav_platform::PlatformParseException;
constexpr auto AUTO = PlatformLoader::HW_METADATA_AUTO;

std::string description(const std::string& hardwarePlatforms) {
    return R"(<?xml version="1.0"?>
<mav:platform xmlns:mav="urn:mav:platform:1" mav:vendor="v" mav:library="l" mav:name="n"
    mav:version="1.0"><mav:hardwarePlatforms )" +
           hardwarePlatforms + "</mav:hardwarePlatforms></mav:platform>";
}

std::string reference(const char* element, const std::string& file) {
    return std::string("<mav:") + element + R"( mav:path="." mav:name=")" + file + "\"/>";
}

/// What the accessors answer, in their order.
std::string accessors(PlatformLoader& loader) {
    return loader.getName() + "|" + loader.getVendor() + "|" + loader.getDescription() + "|" +
           loader.getVersion() + "|" + loader.getFilePath() + "|" + loader.getBaseName() + "|" +
           loader.getHardwarePlatformFile() + "|" + loader.getHardwareEmuPlatformFile() + "|" +
           loader.getSoftwarePlatformFile();
}

/// Loads and answers the reports; "ok" when the load succeeded without any.
std::string reportsOf(const std::string& path) {
    const CapturedMessages messages;
    PlatformLoader loader(path, AUTO);
    const bool loaded = loader.load() != nullptr;
    EXPECT_EQ(loader.load() != nullptr, loaded) << "later calls answer the same";
    return loaded && messages.all.empty() ? "ok" : messages.text();
}

TEST(PlatformLoader, AnArchiveGivesAPartialPlatform) {
    const TempDir dir;
    const std::string path = packArchive(dir, "card.pka", {{"pka.json", metadata()}});
    PlatformLoader loader(dir.path() + "/./card.pka", AUTO);
    EXPECT_EQ(loader.getFilePath(), "") << "known only after loading";
    const auto platform = loader.load();
    ASSERT_NE(platform, nullptr);
    EXPECT_TRUE(platform->isPartial());
    EXPECT_FALSE(platform->isQpfm());
    EXPECT_EQ(loader.getFilePath(), path) << "canonical";
    EXPECT_EQ(platform->getHardwarePlatform()->getName(), "card");
    EXPECT_EQ(platform->getHardwareEmulationPlatform(), nullptr);
    EXPECT_EQ(platform->getSoftwarePlatform(), nullptr);

    std::filesystem::remove(path);
    EXPECT_EQ(loader.load(), platform) << "a second call reads nothing";
}

TEST(PlatformLoader, EachFailureOfAnArchiveIsReported) {
    const TempDir dir;
    std::filesystem::create_directory(dir.path("dir.pka"));
    dir.write("text.pka", "this is no archive");
    packArchive(dir, "good.pka", {{"pka.json", metadata()}});
    const std::string content = dir.read("good.pka");
    dir.write("cut.pka", content.substr(0, content.size() / 2));
    packArchive(dir, "nojson.pka", {{"pka.json", "hello"}});
    const std::pair<const char*, const char*> cases[] = {
        {"dir.pka", "is not a file"},
        {"text.pka", "is not a zip archive"},
        {"cut.pka", "is cut off or damaged"},
        {"nojson.pka", "|pka.json|line 1: expected value"},
    };
    for (const auto& [file, report] : cases) {
        const std::string reports = reportsOf(dir.path(file));
        for (const std::string& part :
             {std::string(report), dir.path(file),
              std::string("@74-60@%s|Failed to parse Hardware Platform metadata file")})
            EXPECT_NE(reports.find(part), std::string::npos) << reports;
    }
    EXPECT_EQ(reportsOf(dir.path("good.pka")), "ok");
    for (const std::string missing : {"", "/nowhere/a.pka"})
        EXPECT_EQ(reportsOf(missing),
                  "@74-60@%s|hardware platform file '" + missing + "' does not exist\n");
}

TEST(PlatformLoader, OnlyExactExtensionsAreArchives) {
    const TempDir dir;
    const std::string archive = packArchive(dir, "a.pka", {{"pka.json", metadata()}});
    const CapturedMessages messages;
    const CapturedConsole console;
    for (const char* name : {"a.PKA", "a", "a.xml"}) {
        std::filesystem::copy(archive, dir.path(name));
        EXPECT_THROW_MSG(PlatformLoader(dir.path(name), AUTO), PlatformParseException,
                         "failed to parse the QPFM file");
    }
    EXPECT_THROW(PlatformLoader("/nowhere/a.qpfm", AUTO), HEXFileNotFoundException);
    packArchive(dir, ".pka", {{"pka.json", metadata()}});
    EXPECT_NE(PlatformLoader(dir.path(".pka"), AUTO).load(), nullptr);
}

TEST(PlatformLoader, ADescriptionBringsItsArchives) {
    const TempDir dir;
    const std::string hw = packArchive(dir, "hw.pka", {{"pka.json", metadata("", "hw")}});
    const std::string emu = packArchive(dir, "emu.pka", {{"pka.json", metadata("", "emu")}});
    const std::string path =
        dir.write("p.qpfm", description(">" + reference("hardwarePlatform", "hw.pka") +
                                        reference("hwEmuPlatform", "emu.pka")));
    PlatformLoader loader(path, AUTO);
    const auto platform = loader.load();
    ASSERT_NE(platform, nullptr);
    EXPECT_TRUE(platform->isComplete());
    EXPECT_EQ(platform->getHardwarePlatform()->getName(), "hw");
    EXPECT_EQ(platform->getHardwareEmulationPlatform()->getName(), "emu");
    EXPECT_NE(platform->toJSONString().find("\"hwEmuPlatform\""), std::string::npos);
    EXPECT_EQ(accessors(loader), "n|v||1.0|" + path + "|p|" + hw + "|" + emu + "|");
    const CapturedMessages messages;
    PlatformLoader failed("/nowhere/a.pka", AUTO);
    EXPECT_EQ(failed.load(), nullptr);
    EXPECT_EQ(accessors(failed), "||||||||");
}

TEST(PlatformLoader, ReferencesThatFail) {
    const TempDir dir;
    packArchive(dir, "hw.pka", {{"pka.json", metadata()}});
    dir.write("hw.zip", "x");
    const CapturedConsole console;
    const std::string hardware = reference("hardwarePlatform", "hw.pka");
    const auto reports = [&](const std::string& platforms) {
        return reportsOf(dir.write("p.qpfm", description(platforms)));
    };
    EXPECT_EQ(reports(">" + reference("hardwarePlatform", "no.pka")),
              "@74-60@%s|hardware platform file '" + dir.path("no.pka") + "' does not exist\n");
    EXPECT_EQ(reports(">" + reference("hardwarePlatform", "hw.zip")),
              "@74-60@%s|incorrect file extension - only DSA and PKA files are supported\n");
    // An emulation archive does not fail the load. A missing one is reported by its reader, one
    // without metadata is passed over.
    packArchive(dir, "other.pka", {{"other", "x"}});
    const auto emulation = [&](const char* name) {
        const std::string text = reports(">" + hardware + reference("hwEmuPlatform", name));
        EXPECT_NE(PlatformLoader(dir.path("p.qpfm"), AUTO).load(), nullptr) << name;
        return text;
    };
    EXPECT_EQ(emulation("no.pka"), "@74-66@%s|" + dir.path("no.pka") + "\n");
    EXPECT_EQ(emulation("other.pka"), "ok");
    EXPECT_EQ(console.text(), "");
}

std::string partition(const std::string& id, const std::string& content) {
    return "<mav:reconfigurablePartition mav:id=\"" + id + "\">" + content +
           "</mav:reconfigurablePartition>";
}

TEST(PlatformLoader, KeepsOpenWhatOnePartitionNeeds) {
    const TempDir dir;
    std::string partitions = ">";
    for (int i = 0; i < 40; ++i) {
        const std::string id = std::to_string(i);
        packArchive(dir, id + ".pka", {{"pka.json", metadata()}});
        partitions += partition(id, reference("hardwarePlatform", id + ".pka"));
    }
    const std::string path = dir.write("p.qpfm", description(partitions));
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit few{32, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    const std::string reports = reportsOf(path);
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(reports, "ok");
}

TEST(PlatformLoader, PartitionsNeedEachOfTheirArchives) {
    const TempDir dir;
    packArchive(dir, "r1.pka", {{"pka.json", metadata("", "r1")}});
    packArchive(dir, "r2.pka", {{"pka.json", metadata("", "r2")}});
    packArchive(dir, "e2.pka", {{"pka.json", metadata("", "e2")}});
    const std::string first = partition("1", reference("hardwarePlatform", "r1.pka"));
    // Once named, a partition's emulation archive is mandatory.
    dir.write("bad.qpfm", description(">" + first +
                                      partition("2", reference("hardwarePlatform", "r2.pka") +
                                                         reference("hwEmuPlatform", "no.pka"))));
    EXPECT_EQ(reportsOf(dir.path("bad.qpfm")),
              "@74-66@%s|" + dir.path("no.pka") +
                  "\n@74-60@%s|Failed to parse Hardware Emulation Platform metadata file\n");
    // An emulation-only partition has no archive of its own to load.
    dir.write("only.qpfm", description(">" + partition("1", reference("hwEmuPlatform", "e2.pka"))));
    EXPECT_EQ(reportsOf(dir.path("only.qpfm")),
              "@74-66@%s|\n@74-60@%s|Failed to parse Hardware Platform metadata file\n");
}

TEST(PlatformLoader, SoftwarePlatforms) {
    const TempDir dir;
    const auto bare =
        PlatformLoader(dir.write("s.spfm",
                                 "<mav:platform><mav:systemConfigurations><mav:configuration "
                                 "mav:name='linux'/></mav:systemConfigurations></mav:platform>"),
                       AUTO)
            .load();
    ASSERT_NE(bare, nullptr);
    EXPECT_TRUE(bare->isPartial());
    EXPECT_EQ(bare->getSoftwarePlatform()->getSystemConfig()->getName(), "linux");

    packArchive(dir, "hw.pka", {{"pka.json", metadata()}});
    dir.write("bad.spfm", "<x/>");
    const auto write = [&](const std::string& name) {
        return dir.write("p.qpfm", descriptionOf("hw.pka", "<mav:softwarePlatforms>" +
                                                               reference("softwarePlatform", name) +
                                                               "</mav:softwarePlatforms>"));
    };
    const CapturedConsole console;
    EXPECT_EQ(reportsOf(write("no.spfm")), "@74-60@%s|the software platform file does not exist\n");
    EXPECT_EQ(console.text(), "");
    EXPECT_EQ(reportsOf(write("bad.spfm")),
              "@74-51@%s%d|" + dir.path("./bad.spfm") +
                  "|1\n@74-60@%s|software platform file does not exist\n");
}

}  // namespace
