// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "formats/metadata/HMAVDsaJsonReader.h"
#include "mav_host/xml/Tree.h"
#include "mav_platform/HMAVHpfmReader.h"
#include "mav_platform/HMAVHpfmUtl.h"
#include "mav_platform/HPLPlatform.h"
#include "support/Archives.h"

namespace {

/// The example of the format's page.
std::string example() {
    std::ifstream file(MAV_SOURCE_DIR "/docs/formats/hpfm.md");
    const std::string page(std::istreambuf_iterator<char>(file), {});
    const std::size_t start = page.find("```xml\n") + 7;
    return page.substr(start, page.find("```", start) - start);
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

TEST_F(Hpfm, ReadsTheExampleOfItsPage) {
    HMAVHpfmReader reader(example(), &platform);
    ASSERT_TRUE(reader.parseStream()) << reader.getErrorMsg();
    EXPECT_EQ(names(platform), "hbm_memory_subsystem irq0 ");
    EXPECT_TRUE(reader.isHBMPresent());
    EXPECT_EQ(platform.getFpgaPart(), "xqh90-bga2612-2L-e");
    EXPECT_EQ(platform.getFpgaDevice(), "xq-h90");
    EXPECT_EQ(platform.getDefaultClockName(), "fast");
    HSTVector<HMAVSystemClock*> clocks;
    platform.getSystemClocks(clocks);
    ASSERT_EQ(clocks.size(), 3U);
    EXPECT_EQ(clocks[1]->getDisplayName(), "PL 1");
    EXPECT_EQ(clocks[2]->getDisplayName(), "");
    EXPECT_EQ(clocks[1]->getOrigName(), "fast");
    HSTVector<HMAVHardwareBusInterface*> buses;
    platform.getBusInterfaces(buses);
    EXPECT_EQ(buses[0]->getDataWidth(), 256);
    EXPECT_EQ(buses[0]->getNumIdBits(), 6U);
    EXPECT_EQ(buses[0]->getAddressSegments()[0]->getMaxMasters(), 15U);
    EXPECT_EQ(buses[1]->getIsrId(), "12");
    HSTVector<HMAVHardwareIPParam*> parameters;
    platform.getHardwareIPParams(parameters);
    ASSERT_EQ(parameters.size(), 1U);
    EXPECT_EQ(parameters[0]->getValid(), "true");
    HSTVector<HMAVHardwareNocConnectivity*> noc;
    platform.getNocConnectivity(noc);
    ASSERT_EQ(noc.size(), 1U);
    EXPECT_EQ(noc[0]->getBusInterfaces(), (HSTVector<std::string>{"S00_AXI", "S01_AXI"}));
    EXPECT_EQ(messages.text(), "@74-261@\n");
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

TEST_F(Hpfm, BusInterfacesAndNocRecordsAreReadApart) {
    HMAVHpfmReader reader(example(), &platform);
    EXPECT_TRUE(reader.parseNocConnectivity());
    EXPECT_EQ(names(platform), "");
    EXPECT_TRUE(reader.parseBusInterfaces());
    HSTVector<HMAVSystemClock*> clocks;
    platform.getSystemClocks(clocks);
    EXPECT_TRUE(clocks.empty());
    EXPECT_EQ(names(platform), "hbm_memory_subsystem irq0 ");
}

TEST_F(Hpfm, ClocksWithoutAClockChangeNothing) {
    platform.setDefaultClockId(7);
    HMAVHpfmReader reader(repository("<qd:component><qd:platformInfo><qd:systemClocks "
                                     "qd:defaultClock='3'/></qd:platformInfo></qd:component>"),
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
    EXPECT_TRUE(messages.has("@74-12@%s|" + path));
    EXPECT_TRUE(messages.has("@74-31@%s|line 2: "));
    EXPECT_EQ(messages.all.size(), 2U) << "a text that does not bind is reported once";
    EXPECT_EQ(names(platform), "");
}

TEST_F(Hpfm, EveryTruncationIsRefusedOrRead) {
    const std::string whole = example();
    for (std::size_t size = 1; size < whole.size() - 1; ++size) {
        HPLPlatform partial;
        HMAVHpfmReader reader(whole.substr(0, size), &partial);
        EXPECT_FALSE(reader.parseStream()) << size;
        EXPECT_EQ(names(partial), "");
    }
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
        EXPECT_TRUE(reader.parseDSA(path, HMAVDsaJsonReader::Mode::HW_METADATA_AUTO));
        EXPECT_EQ(fresh.getDefaultClockName(), "c") << "clocks come from the metadata alone";
        const std::string answer = names(fresh);
        std::filesystem::remove(path);
        return answer;
    };
    EXPECT_EQ(load({{"a/x.hpfm", example()}}), "hbm_memory_subsystem irq0 own ");
    EXPECT_EQ(load({}), "own ");
    EXPECT_EQ(messages.text(), "") << "a listed member that is absent is no error";
    EXPECT_EQ(load({{"a/x.hpfm", "<qd:repository>"}}), "own ");
    EXPECT_EQ(messages.all.size(), 1U);
    EXPECT_TRUE(messages.has(": line 1: ") && messages.has("@74-31@%s|/"))
        << "the archive is named: " << messages.text();
    EXPECT_EQ(console.text().find("Empty hpfm"), std::string::npos);
    EXPECT_EQ(load({{"a/x.hpfm", ""}}), "own ");
    EXPECT_NE(console.text().find("CRITICAL WARNING: Empty hpfm string passed in"),
              std::string::npos);
}

TEST_F(Hpfm, AMixedHbmIsExplained) {
    HMAVHpfmReader reader(repository(hbm({"preferred", "true", "false"})), &platform);
    EXPECT_TRUE(reader.parseStream());
    std::ostringstream out;
    platform.issueNormalizeMemoryBanksMessage(out);
    EXPECT_EQ(out.str().rfind("\nThe HBM instance 'hbm_0' has only a subset", 0), 0U);
}

TEST_F(Hpfm, RewritesOnlyBanksThatArePreferredInPart) {
    const auto rewritten = [&](const std::vector<std::string>& banks) {
        const std::string path = dir.write("r.hpfm", repository(hbm(banks)));
        HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(path);
        const std::string text = dir.read("r.hpfm");
        return text == repository(hbm(banks))                     ? std::string("as it was")
               : mav_host::xml::Tree::parse(text).write() == text ? text
                                                                  : "unstable";
    };
    const std::string text = rewritten({"preferred", "true", "-", "false"});
    EXPECT_EQ(text, mav_host::xml::Tree::parse(
                        repository(hbm({"preferred", "preferred", "preferred", "false"})))
                        .write());
    EXPECT_EQ(messages.text(), "@74-261@\n@74-10@%s|" + dir.path("r.hpfm") + "\n");
    messages.all.clear();
    EXPECT_EQ(rewritten({"preferred", "preferred", "false"}), "as it was");
    EXPECT_EQ(rewritten({"true", "-", "false"}), "as it was");
    EXPECT_EQ(rewritten({}), "as it was");
    EXPECT_EQ(messages.text(), "");
}

TEST_F(Hpfm, RewritingKeepsWhatItDoesNotChange) {
    const std::string path =
        dir.write("k.hpfm",
                  "<!--c1--><qd:repository xmlns:qd='urn:x' xmlns:o='o' o:a='1'><o:x>t</o:x>"
                  "<qd:busInterface qd:name='ddr'><qd:addressSegment qd:auto='true'/>"
                  "<qd:addressSegment qd:auto='preferred'/></qd:busInterface><qd:component>" +
                      hbm({"preferred", "true"}) + "<!--c2--></qd:component></qd:repository>");
    HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(path);
    EXPECT_EQ(dir.read("k.hpfm"), R"(<?xml version="1.0" encoding="UTF-8"?>
<!--c1-->
<qd:repository
	xmlns:qd="urn:x"
	xmlns:o="o"
	o:a="1">
	<o:x>t</o:x>
	<qd:busInterface
		qd:name="ddr">
		<qd:addressSegment
			qd:auto="true"/>
		<qd:addressSegment
			qd:auto="preferred"/>
	</qd:busInterface>
	<qd:component>
		<qd:busInterface
			qd:name="hbm_memory_subsystem"
			qd:instanceRef="hbm_0">
			<qd:addressSegment
				qd:name="B0"
				qd:auto="preferred"/>
			<qd:addressSegment
				qd:name="B1"
				qd:auto="preferred"/>
		</qd:busInterface>
		<!--c2-->
	</qd:component>
</qd:repository>
)");
}

TEST_F(Hpfm, RewritingReportsWhatStopsIt) {
    HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(dir.path("none"));
    EXPECT_EQ(console.text(), "File: " + dir.path("none") + " doesn't exist.\n");
    EXPECT_EQ(messages.text(), "@74-12@%s|" + dir.path("none") + "\n");
    messages.all.clear();
    HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(dir.path());
    EXPECT_TRUE(messages.has("@74-260@%s%s%s|" + dir.path() + "|"));
    messages.all.clear();
    const std::string path = dir.write("b.hpfm", "<qd:repository>\n<a></b>");
    HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(path);
    EXPECT_TRUE(messages.has("@74-15@%s%s%s%s|" + path + "|")) << messages.text();
    EXPECT_TRUE(messages.has("|line 2|"));
    EXPECT_EQ(dir.read("b.hpfm"), "<qd:repository>\n<a></b>");
}

}  // namespace
