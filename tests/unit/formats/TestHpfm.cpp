// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_host/xml/Tree.h"
#include "mav_platform/HMAVDsaJsonReader.h"
#include "mav_platform/HMAVHpfmReader.h"
#include "mav_platform/HMAVHpfmUtl.h"
#include "mav_platform/HPLPlatform.h"
#include "support/Archives.h"
#include "support/Json.h"
#include "support/Pages.h"
#include "support/ZipFixture.h"

namespace {

constexpr auto AUTO = HMAVDsaJsonReader::Mode::HW_METADATA_AUTO;

std::string example() {
    return documented("hpfm.md");
}

std::string repository(const std::string& content) {
    return "<qd:repository>" + content + "</qd:repository>";
}

/// The banks of one HBM with these values of "qd:auto"; "-" leaves the attribute out.
std::string hbm(const std::vector<std::string>& banks) {
    std::string text = "<qd:busInterface qd:name='hbm_memory_subsystem' qd:instanceRef='hbm_0'>";
    for (std::size_t i = 0; i < banks.size(); ++i) {
        text += "<qd:addressSegment qd:name='B" + std::to_string(i) + "'" +
                (banks[i] == "-" ? "" : " qd:auto='" + banks[i] + "'") + "/>";
    }
    return text + "</qd:busInterface>";
}

std::string names(const HPLPlatform& platform) {
    HSTVector<HMAVHardwareBusInterface*> buses;
    platform.getBusInterfaces(buses);
    std::string text;
    for (const HMAVHardwareBusInterface* bus : buses) text += bus->getName() + " ";
    return text;
}

class Hpfm : public testing::Test {
  protected:
    TempDir dir;
    CapturedMessages messages;
    CapturedConsole console;
    HPLPlatform platform;
};

/// An element with these attributes, the value of each its own name or what stands behind "=".
std::string element(const std::string& name, const std::string& attributes,
                    const std::string& content = "") {
    std::istringstream words(attributes);
    std::string text = "<qd:" + name;
    for (std::string word; words >> word;) {
        const std::size_t sign = std::min(word.find('='), word.size());
        text += " qd:" + word.substr(0, sign) + "='" +
                word.substr(sign == word.size() ? 0 : sign + 1) + "'";
    }
    return text + ">" + content + "</qd:" + name + ">";
}

/// Bus interfaces come to their places in the documents of the samples; nothing else does.
TEST_F(Hpfm, WhatAnArchiveDoesNotTakeComesToItsPlace) {
    const std::string component =
        element("platformInfo", "",
                element("deviceInfo", "name architecture device package speedGrade") +
                    element("systemClocks", "defaultClock=1",
                            element("clock",
                                    "name id=1 frequency period status componentRef instanceRef") +
                                element("clock", "name=free"))) +
        element("parameter", "name value isValid componentRef instanceRef");
    HMAVHpfmReader reader(repository("<qd:component>" + component + "</qd:component>"), &platform);
    ASSERT_TRUE(reader.parseStream()) << reader.getErrorMsg();
    const std::string json = compactJson(platform);
    EXPECT_EQ(
        json.substr(json.find("\"systemClocks\"")),
        R"("systemClocks":[{"name":"name","origName":"name","id":"1","frequency":"frequency",)"
        R"("instRef":"instanceRef","compRef":"componentRef","period":"period",)"
        R"("status":"status","default":"true"},)"
        R"({"name":"free","origName":"free","id":"0","default":"false"}],)"
        R"("ipParameters":[{"name":"name","value":"value","instRef":"instanceRef",)"
        R"("compRef":"componentRef","valid":"isValid"}]})");
    EXPECT_NE(json.find(R"("devices":[{"name":"device","fpgaPart":"name","part":{"name":"name",)"
                        R"("architecture":"architecture","device":"device","package":"package",)"
                        R"("speedGrade":"speedGrade"})"),
              std::string::npos);
    HSTVector<HMAVSystemClock*> clocks;
    platform.getSystemClocks(clocks);
    EXPECT_EQ(clocks.at(0)->getDisplayName() + clocks.at(1)->getDisplayName(), "PL 1");
    EXPECT_FALSE(reader.isHBMPresent());
}

TEST_F(Hpfm, BusInterfacesBesideComponentsCountInDocumentOrder) {
    HMAVHpfmReader reader(
        repository("<qd:busInterface qd:name='a'/><qd:component><qd:busInterface qd:name='b'/>"
                   "</qd:component><qd:busInterface qd:name='c'/><qd:component>"
                   "<qd:busInterface qd:name='d'/></qd:component><qd:busInterface qd:name='e'/>"),
        &platform);
    EXPECT_TRUE(reader.parseStream());
    EXPECT_EQ(names(platform), "a b c d e ");
}

TEST_F(Hpfm, ClocksWithoutAClockChangeNothing) {
    platform.setDefaultClockId(7);
    const std::string clocks = element("systemClocks", "defaultClock=3");
    HMAVHpfmReader reader(
        repository("<qd:component>" + element("platformInfo", "", clocks) + "</qd:component>"),
        &platform);
    EXPECT_TRUE(reader.parseStream());
    EXPECT_EQ(platform.getDefaultClockId(), "7");
}

TEST_F(Hpfm, FailuresAreReportedWithTheirLine) {
    HMAVHpfmReader empty("", &platform);
    EXPECT_EQ(console.text(), "CRITICAL WARNING: Empty hpfm string passed in\n");
    EXPECT_TRUE(empty.parseStream());

    HMAVHpfmReader missing("x", &platform);
    missing.setPlatformFile(dir.path("none.hpfm"));
    EXPECT_FALSE(missing.parseFile());
    EXPECT_EQ(missing.getErrorMsg(), "Specified hardware platform file doens't exists\n");

    const std::string bad = repository("\n<qd:busInterface qd:dataWidth='wide'/>");
    const std::string path = dir.write("bad.hpfm", bad);
    HMAVHpfmReader file(path, &platform);
    file.setPlatformFile(path);
    EXPECT_FALSE(file.parseFile());
    EXPECT_EQ(file.getErrorMsg().rfind("Error parsing hardware platform file: ", 0), 0U);
    EXPECT_NE(file.getErrorMsg().find("'wide'"), std::string::npos);
    EXPECT_NE(file.getErrorMsg().find(". Line number:2"), std::string::npos);

    HMAVHpfmReader stream(bad, &platform);
    EXPECT_FALSE(stream.parseBusInterfaces());
    EXPECT_FALSE(stream.parseNocConnectivity());
    EXPECT_EQ(
        stream.getErrorMsg().rfind("Error parsing hardware platform stream from DSA line 2: ", 0),
        0U);
    EXPECT_EQ(messages.text(), "@74-12@\n@74-31@\n") << "a text that does not bind, once";
    EXPECT_EQ(names(platform), "");
}

TEST_F(Hpfm, FileTextBusInterfacesAndNocRecordsAreReadEachForItself) {
    const auto bus = [](const std::string& name) {
        return repository(
            "<qd:component>" +
            element("platformInfo", "", element("systemClocks", "", element("clock", "name=c"))) +
            element("busInterface", "name=" + name) + element("nocConnectivity", "") +
            "</qd:component>");
    };
    HMAVHpfmReader reader(bus("text"), &platform);
    EXPECT_TRUE(reader.parseNocConnectivity());
    EXPECT_EQ(names(platform), "");
    EXPECT_TRUE(reader.parseBusInterfaces());
    EXPECT_EQ(jsonTree(platform).count("systemClocks"), 0U);
    reader.setPlatformFile(dir.write("f.hpfm", bus("file")));
    EXPECT_TRUE(reader.parseFile());
    EXPECT_TRUE(reader.parseStream());
    EXPECT_TRUE(reader.parseBusInterfaces());
    reader.setPlatformFile(dir.write("bad.hpfm", "<qd:repository>"));
    EXPECT_FALSE(reader.parseFile());
    EXPECT_FALSE(reader.parseBusInterfaces()) << "what was parsed last counts";
    EXPECT_TRUE(reader.parseStream());
    EXPECT_EQ(names(platform), "text file text text text ");
}

TEST_F(Hpfm, AnArchiveTakesItsBusInterfacesBeforeThoseOfTheMetadata) {
    const std::string json = metadata(R"(, "files": [{"name": "a/x.hpfm", "type": "HPFM"}],
                     "busInterfaces": [{"name": "own"}], "systemClocks": [{"name": "c"}])");
    const auto load = [&](const std::vector<std::pair<std::string, std::string>>& members) {
        messages.all.clear();
        HPLPlatform fresh;
        auto all = members;
        all.emplace_back("pka.json", json);
        const std::string path = packArchive(dir, "p.pka", all);
        HMAVDsaJsonReader reader(&fresh);
        EXPECT_TRUE(reader.parseDSA(path, AUTO));
        EXPECT_EQ(fresh.getDefaultClockName(), "c") << "clocks come from the metadata alone";
        const std::string answer = names(fresh);
        std::filesystem::remove(path);
        return answer;
    };
    EXPECT_EQ(load({{"a/x.hpfm", example()}}), "hbm_memory_subsystem irq0 own ");
    EXPECT_EQ(load({}), "own ");
    EXPECT_EQ(messages.text(), "") << "a listed member that is absent is no error";
    EXPECT_EQ(load({{"a/x.hpfm", "<qd:repository>"}}), "own ");
    EXPECT_EQ(messages.text(), "@74-31@\n");
    EXPECT_NE(console.text().find(", in " + dir.path("p.pka") + "\n"), std::string::npos);
    EXPECT_EQ(console.text().find("Empty hpfm"), std::string::npos);

    RawMember large = deflatedMember("a/x.hpfm", example());
    large.size = (256U << 20U) + 1;
    dir.write("large.pka", rawZip({deflatedMember("pka.json", json), large}));
    messages.all.clear();
    EXPECT_TRUE(HMAVDsaJsonReader(&platform).parseDSA(dir.path("large.pka"), AUTO));
    EXPECT_EQ(messages.text(), "@74-31@\n");
    EXPECT_NE(console.text().find("larger than the 268435456 bytes"), std::string::npos);
}

TEST_F(Hpfm, AMixedHbmIsExplained) {
    // Banks without a name are different ones, and so are those of equal names in two instances.
    const auto bus = [](const std::string& instance, const std::string& banks) {
        return "<qd:busInterface qd:name='hbm_memory_subsystem' qd:instanceRef='" + instance +
               "'>" + banks + "</qd:busInterface>";
    };
    const std::string preferred = "<qd:addressSegment qd:name='B' qd:auto='preferred'/>";
    for (const auto& [content, mixed] : std::vector<std::pair<std::string, std::string>>{
             {bus("x", "<qd:addressSegment qd:auto='preferred'/><qd:addressSegment/>"), "x"},
             {bus("x", preferred) + bus("y", "<qd:addressSegment qd:name='B'/>"), ""},
             // Equal instances, or none, do not put the banks of two interfaces together.
             {bus("", preferred) + bus("", "<qd:addressSegment qd:name='C'/>"), ""},
             {bus("y", preferred + "<qd:addressSegment/>") +
                  bus("y", preferred + "<qd:addressSegment/>"),
              "y"}}) {
        messages.all.clear();
        HPLPlatform fresh;
        HMAVHpfmReader reader(repository(content), &fresh);
        EXPECT_TRUE(reader.parseStream() && reader.isHBMPresent());
        std::ostringstream text;
        fresh.issueNormalizeMemoryBanksMessage(text);
        const std::string head = "\nThe HBM instance '" + mixed + "' has only a subset";
        EXPECT_EQ(text.str().substr(0, head.size()), mixed.empty() ? "" : head) << content;
        EXPECT_EQ(text.str().find(head, 1), std::string::npos) << content;
        EXPECT_EQ(messages.text(), mixed.empty() ? "" : "@74-261@\n") << content;
    }
}

TEST_F(Hpfm, RewritesOnlyBanksThatArePreferredInPart) {
    const auto component = [](const std::vector<std::string>& banks) {
        return "<qd:component>" + hbm(banks) + "</qd:component></qd:repository>";
    };
    const std::string root = "<qd:repository>" + hbm({"preferred", "true"});
    const auto rewritten = [&](const std::vector<std::string>& banks) {
        const std::string path = dir.write("r.hpfm", root + component(banks));
        HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(path);
        const std::string text = dir.read("r.hpfm");
        return text == root + component(banks)                    ? std::string("as it was")
               : mav_host::xml::Tree::parse(text).write() == text ? text
                                                                  : "unstable";
    };
    const std::string text = rewritten({"preferred", "true", "-", "false"});
    EXPECT_EQ(text, mav_host::xml::Tree::parse(
                        "<qd:repository xmlns:qd='urn:mav:hpfm:1'>" + hbm({"preferred", "true"}) +
                        component({"preferred", "preferred", "preferred", "false"}))
                        .write());
    EXPECT_EQ(messages.text(), "@74-261@\n@74-10@%s|" + dir.path("r.hpfm") + "\n");
    messages.all.clear();
    EXPECT_EQ(rewritten({"preferred", "preferred", "false"}), "as it was");
    EXPECT_EQ(rewritten({"true", "-", "false"}), "as it was");
    EXPECT_EQ(messages.text(), "");
}

TEST_F(Hpfm, RewritingKeepsWhatItDoesNotChange) {
    const std::string path =
        dir.write("k.hpfm",
                  "<!--c1--><qd:repository xmlns:qd='urn:x' xmlns:o='o' o:a='1'><o:x>t</o:x>"
                  "<qd:component><qd:busInterface qd:name='ddr'><qd:addressSegment qd:auto='true'/>"
                  "<qd:addressSegment qd:auto='preferred'/></qd:busInterface>" +
                      hbm({"preferred", "true"}) + "<!--c2--></qd:component></qd:repository>");
    std::string expected = dir.read("k.hpfm");
    expected.replace(expected.rfind("true"), 4, "preferred");
    HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(path);
    EXPECT_EQ(dir.read("k.hpfm"), mav_host::xml::Tree::parse(expected).write());
}

TEST_F(Hpfm, RewritingReportsWhatStopsIt) {
    HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(dir.path("none"));
    EXPECT_EQ(console.text(), "File: " + dir.path("none") + " doesn't exist.\n");
    EXPECT_EQ(messages.text(), "@74-12@\n");
    messages.all.clear();
    HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(dir.path());
    EXPECT_TRUE(messages.has("@74-260@%s%s%s|" + dir.path() + "|"));
    const std::string path = dir.write("b.hpfm", "<qd:repository>\n<a></b>");
    HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(path);
    EXPECT_TRUE(messages.has("@74-15@%s%s%s%s|" + path + "|")) << messages.text();
    EXPECT_TRUE(messages.has("|line 2|"));
    EXPECT_EQ(dir.read("b.hpfm"), "<qd:repository>\n<a></b>");
}

}  // namespace
