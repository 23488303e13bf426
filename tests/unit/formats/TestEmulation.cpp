// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVDsaJsonReader.h"
#include "mav_platform/HMAVEmulationExtMetaJsonReader.h"
#include "mav_platform/HMAVEmulationJsonReader.h"
#include "mav_platform/HMAVEmulationXMLReader.h"
#include "mav_platform/HMAVEmulationXMLWriter.h"
#include "mav_platform/HPLPlatform.h"
#include "support/Archives.h"
#include "support/Pages.h"

namespace {

constexpr auto AUTO = HMAVDsaJsonReader::Mode::HW_METADATA_AUTO;

std::string example(const std::string& heading) {
    return documented("emulation.md", "\n## " + heading);
}

/// All that the emulations hold, in their order.
std::string shown(const HMAVEmulations& emulations) {
    std::string text = emulations.getPfmMetadataVersion() + " " +
                       std::to_string(emulations.getVersionMajor()) + "." +
                       std::to_string(emulations.getVersionMinor()) + "\n";
    for (const HMAVEmulation* emulation : emulations.getEmulations()) {
        text += emulation->getName() + ":";
        for (const HMAVEmulationFile* file : emulation->getFiles()) {
            text += " " + file->getType() + "|" + file->getName() + "|" + file->getInstPath();
        }
        text += "\n";
    }
    for (const HMAVEmuFeatureRom* rom : emulations.getFeatureRoms()) {
        text += rom->getVBNVName() + " " + std::to_string(rom->getFeatureBitMap());
        for (unsigned i = 0; i < HMAVEmuFeatureRom::CDMA_COUNT; ++i) {
            text.append(" ").append(std::to_string(rom->getCDMABaseAddress(i)));
        }
        text += "\n";
    }
    return text;
}

constexpr const char* NOTHING = " 0.0\n";
constexpr const char* VARIANTS =
    "default: EMU_HPFM|hw_emu/card_emu.hpfm|region_i TOP_BD|hw_emu/bd/top.bd|\n"
    "fast: DR_BD|hw_emu/bd/fast.bd|region_i/fast\n";

class Emulation : public testing::Test {
  protected:
    TempDir dir;
    CapturedMessages messages;
    CapturedConsole console;
    HMAVEmulations emulations;

    /// Reads the text as a file of its own; what was reported, without the directory.
    template <class Reader>
    std::string reports(const std::string& text, bool (Reader::*parse)()) {
        messages.all.clear();
        const std::string path = dir.write("f", text);
        const bool read = (Reader(path, &emulations).*parse)();
        EXPECT_EQ(read, messages.text().find("@74") == std::string::npos) << text;
        return withoutDir(messages.text());
    }
    std::string jsonReports(const std::string& text) {
        return reports(text, &HMAVEmulationJsonReader::parseJson);
    }
    std::string extReports(const std::string& text) {
        return reports(text, &HMAVEmulationExtMetaJsonReader::parseJson);
    }
    std::string xmlReports(const std::string& text) {
        return reports(text, &HMAVEmulationXMLReader::parseXml);
    }
    std::string withoutDir(std::string text) const {
        const std::string part = dir.path() + "/";
        for (std::size_t at = 0; (at = text.find(part)) != std::string::npos;) {
            text.erase(at, part.size());
        }
        return text;
    }
};

TEST_F(Emulation, ReadsTheExamplesOfItsPage) {
    EXPECT_EQ(jsonReports(example("JSON form")), "");
    EXPECT_EQ(extReports(example("Extension metadata")), "");
    EXPECT_EQ(shown(emulations),
              std::string("2.0 0.0\n") + VARIANTS +
                  "tarvek_b1_card_3_1 271 268435456 268500992 18446744073709551615 0\n");
    HMAVEmulations fromXml;
    const std::string path = dir.write("x.xml", example("XML form"));
    EXPECT_TRUE(HMAVEmulationXMLReader(path, &fromXml).parseXml());
    EXPECT_EQ(shown(fromXml), std::string(" 1.0\n") + VARIANTS);
    EXPECT_TRUE(fromXml.hasFileOfType("TOP_BD"));
    EXPECT_FALSE(fromXml.hasFileOfType("top_bd"));
    // A second document adds to the first.
    EXPECT_TRUE(HMAVEmulationXMLReader(path, &fromXml).parseXml());
    EXPECT_EQ(shown(fromXml), std::string(" 1.0\n") + VARIANTS + VARIANTS);
    EXPECT_THROW_MSG(HMAVEmuFeatureRom().getCDMABaseAddress(4), HEXAlgException,
                     "The CDMA base address 4 does not exist; the index is 0 to 3");
}

TEST_F(Emulation, JsonFaultsAreReportedAndFillNothing) {
    EXPECT_EQ(jsonReports("{\"emulations\": ["), "@74-63@%s%s|f|line 1: expected value\n");
    EXPECT_EQ(jsonReports("{}"), "@74-63@%s%s|f|'emulations': the required key is missing\n");
    EXPECT_EQ(jsonReports(R"({"pfm_metadata_version": [1], "emulations": []})"),
              "@74-63@%s%s|f|'pfm_metadata_version': holds a list where a text is expected\n");
    const std::string before = R"({"emulations": [{"files": [{"type": "a", "name": "b"}]}, )";
    for (const auto& [item, report] : std::vector<std::pair<std::string, std::string>>{
             {R"({"name": "x"})", ".files': the required key is missing"},
             {R"({"files": [{"type": "a"}]})", ".files[0].name': the required key is missing"},
             {R"({"files": {"name": "a"}})",
              ".files': holds an object where a list is expected"}}) {
        EXPECT_EQ(jsonReports(before + item + "]}"),
                  "@74-63@%s%s|f|'emulations[1]" + report + "\n");
    }
    EXPECT_FALSE(HMAVEmulationJsonReader(dir.path("none"), &emulations).parseJson());
    EXPECT_TRUE(messages.has("@74-63@%s%s|" + dir.path("none") + "|The file"));
    EXPECT_EQ(shown(emulations), NOTHING);

    for (const char* empty :
         {R"({"emulations": null})", R"({"emulations": [], "emulations": [{"files": []}]})"})
        EXPECT_EQ(jsonReports(empty) + shown(emulations), NOTHING) << "the first of equal keys";
    EXPECT_EQ(jsonReports("{\"emulations\": [{\"name\": \"\xe9\", \"files\": \"\"}]}"), "");
    EXPECT_EQ(shown(emulations), std::string(NOTHING) + "\xc3\xa9:\n") << "ISO-8859-1";

    EXPECT_TRUE(HMAVEmulationJsonReader::isJsonValid(R"({"a": 1, "emulations": []})"));
    for (const char* text : {"{}", "[]", "", "{\"emulations\": [}", "{\"a\": {\"emulations\": 1}}"})
        EXPECT_FALSE(HMAVEmulationJsonReader::isJsonValid(text)) << text;
}

TEST_F(Emulation, ExtensionMetadataTakesDecimalAndHexadecimalNumbers) {
    const auto rom = [](const std::string& members) {
        return R"({"featureRoms": [{"vbnvName": "ok"}, {)" + members + "}]}";
    };
    const std::string place = "@74-63@%s%s|f|'featureRoms[1].";
    EXPECT_EQ(extReports(rom(R"("featureBitMap": "4294967296")")),
              place + "featureBitMap': does not fit into 32 bits\n");
    for (const char* wrong : {"-1", "1x", "0x", " 1", "18446744073709551616"}) {
        EXPECT_EQ(
            extReports(rom(std::string(R"("cdmaBaseAddress3": ")").append(wrong).append("\""))),
            place + "cdmaBaseAddress3': '" + wrong +
                "' is no decimal number and no hexadecimal one with 0x\n");
    }
    EXPECT_EQ(shown(emulations), NOTHING) << "the item before the fault neither";
    EXPECT_EQ(extReports("{}"), "");
    EXPECT_EQ(extReports(rom(R"("featureBitMap": 4294967295, "cdmaBaseAddress1": "0xfF")")), "");
    EXPECT_EQ(shown(emulations), std::string(NOTHING) + "ok 0 0 0 0 0\n 4294967295 0 255 0 0\n");
}

TEST_F(Emulation, XmlIsReadWithAnyRootAnyPrefixAndVersionsInBothPlaces) {
    EXPECT_EQ(xmlReports("<e:any xmlns:x='u' x:VersionMajor=' +7 '><Emulations><n:Emulation/>"
                         "</Emulations></e:any>"),
              "@74-24@%s%d|f|1\n")
        << "Files is required";
    EXPECT_EQ(xmlReports("<e:any x:VersionMajor=' +7 ' more='1'><n:VersionMinor>4294967295"
                         "</n:VersionMinor><o:Emulations><Emulation Name='a'><p:Files>"
                         "<File x:Type='T' Name='&lt;n&gt;'/></p:Files></Emulation><Later/>"
                         "</o:Emulations></e:any>"),
              "");
    EXPECT_EQ(shown(emulations), " 7.4294967295\na: T|<n>|\n");
}

TEST_F(Emulation, XmlFaultsAreReportedWithTheirLineAndFillNothing) {
    const auto document = [](const std::string& attributes, const std::string& content) {
        return "<E" + attributes + ">\n<Emulations>\n<Emulation><Files><File Type='t' Name='n'/>" +
               "</Files></Emulation>\n" + content + "</Emulations></E>";
    };
    for (const auto& [text, line] : std::vector<std::pair<std::string, int>>{
             {document(" VersionMajor='4294967296'", ""), 1},
             {document("", "<Emulation><Files>\n<File Type='t'/>"), 5}}) {
        EXPECT_EQ(xmlReports(text), "@74-24@%s%d|f|" + std::to_string(line) + "\n") << text;
    }
    EXPECT_EQ(shown(emulations), NOTHING);
    EXPECT_EQ(console.text(), "");
}

TEST_F(Emulation, WritesWhatItReadsBack) {
    EXPECT_EQ(jsonReports(example("JSON form")), "");
    emulations.setVersionMajor(1);
    const std::string path = dir.path("out.xml");
    EXPECT_TRUE(HMAVEmulationXMLWriter(path, &emulations).writeXml());
    EXPECT_EQ(messages.text(), "@74-10@%s|" + path + "\n");
    EXPECT_EQ(dir.read("out.xml"), example("XML form"));

    HMAVEmulations odd;
    HMAVEmulation* const one = odd.createEmulation();
    one->setName("<&>\"'\t\r\n ");
    one->createFile("", "")->setInstPath("\xe9");
    odd.createEmulation();
    odd.setVersionMinor(4294967295U);
    ASSERT_TRUE(HMAVEmulationXMLWriter(path, &odd).writeXml());
    HMAVEmulations read;
    ASSERT_TRUE(HMAVEmulationXMLReader(path, &read).parseXml());
    EXPECT_EQ(shown(read), " 0.4294967295\n<&>\"'\t\r\n : ||\xc3\xa9\n:\n");
}

TEST_F(Emulation, AFailedWriteLeavesTheOldFile) {
    const std::string path = dir.write("old.xml", "old");
    const std::string missing = dir.path("none/x.xml");
    EXPECT_FALSE(HMAVEmulationXMLWriter(missing, &emulations).writeXml());
    EXPECT_TRUE(messages.has("@74-15@%s%s%s%s|" + missing + "|The file '" + missing +
                             "' cannot be written"));
    EXPECT_TRUE(messages.has("|writing|the file is as it was\n"));
    emulations.createEmulation()->setName("a\x01");
    EXPECT_FALSE(HMAVEmulationXMLWriter(path, &emulations).writeXml());
    EXPECT_TRUE(messages.has("@74-15@%s%s%s%s|" + path +
                             "|XML syntax error: not well-formed (invalid token)|line 8|"));
    EXPECT_EQ(dir.read("old.xml") + dir.list(), "oldold.xml\n");
}

TEST_F(Emulation, MembersAreFoundWithoutOneCharacterAndItsSlashes) {
    const std::string path = packArchive(dir, "a.pka",
                                         {{"hw_emu/e.json", example("JSON form")},
                                          {"x.xml", example("XML form")},
                                          {"x.json", example("Extension metadata")},
                                          {"key.json", "{\"emulations\": {\"a\": 1}}"}});
    const mav_host::ZipArchive archive(path);
    HMAVEmulationJsonReader reader(nullptr);
    HMAVEmulationXMLReader xml("", nullptr);
    HMAVEmulationExtMetaJsonReader ext(&emulations);
    for (const char* name : {"hw_emu/e.json", ".//hw_emu/e.json", "b/hw_emu/e.json"}) {
        HMAVEmulations read;
        EXPECT_TRUE(reader.parseFromDsa(path, name, &read)) << name;
        EXPECT_EQ(shown(read), std::string("2.0 0.0\n") + VARIANTS);
        EXPECT_TRUE(reader.parseFromDsa(archive, name, &read)) << name;
    }
    EXPECT_TRUE(xml.parseFromDsa(path, "./x.xml", &emulations));
    EXPECT_TRUE(ext.parseFromDsa(path, "./x.json", &emulations));
    EXPECT_EQ(emulations.getEmulations().size() + emulations.getFeatureRoms().size(), 3U);
    EXPECT_EQ(messages.text(), "");

    EXPECT_FALSE(reader.parseFromDsa(path, "./../x.xml", &emulations));
    EXPECT_FALSE(xml.parseFromDsa(archive, "./", &emulations));
    EXPECT_FALSE(ext.parseFromDsa(dir.path("none.pka"), "./m", &emulations));
    EXPECT_FALSE(reader.parseFromDsa(path, "key.json", &emulations));
    EXPECT_EQ(withoutDir(messages.text()) + console.text(),
              "@74-34@%s%s|a.pka|../x.xml\n@74-34@%s%s|a.pka|\n@74-34@%s%s|none.pka|m\n"
              "@74-63@%s%s|a.pka|key.json: 'emulations': holds an object where a list is "
              "expected\n");
}

/// Metadata whose files have these types and names.
std::string listing(const std::vector<std::pair<std::string, std::string>>& files) {
    std::string list;
    for (const auto& [type, name] : files) {
        if (!list.empty()) list.append(", ");
        list.append("{\"type\": \"").append(type).append("\", \"name\": \"");
        list.append(name).append("\"}");
    }
    return metadata(", \"files\": [" + list + "]");
}

std::string variant(const std::string& type) {
    return R"({"emulations": [{"name": "json", "files": [{"type": ")" + type +
           R"(", "name": "n"}]}]})";
}

constexpr const char* XML_BOARDS =
    "<E><Emulations><Emulation Name='xml'><Files><File Type='TOP_BD' Name='n'/></Files>"
    "</Emulation></Emulations></E>";

class EmulationOfArchive : public Emulation {
  protected:
    /// Loads an archive of these members; the first variant's name and the two flags.
    std::string loaded(const std::vector<std::pair<std::string, std::string>>& members) {
        messages.all.clear();
        const std::string path = packArchive(dir, "a.pka", members);
        HPLPlatform platform;
        EXPECT_TRUE(HMAVDsaJsonReader(&platform).parseDSA(path, AUTO));
        std::string text = platform.supportsHWEmulation() ? "emulation " : "";
        if (platform.supportsTwoHwEmuBd()) text += "boards ";
        const HMAVEmulations* read = platform.getEmulations();
        if (read == nullptr) return text + "none";
        for (const HMAVEmulation* one : read->getEmulations()) text += one->getName() + " ";
        return text + std::to_string(read->getFeatureRoms().size());
    }
};

TEST_F(EmulationOfArchive, JsonComesBeforeXmlAndSetsTheFlags) {
    const std::string both =
        listing({{"EMU_XML", "x"}, {"EMU_JSON", "./j"}, {"EXT_META_JSON", "m"}});
    const std::string ext = example("Extension metadata");
    EXPECT_EQ(loaded({{"pka.json", both}, {"x", XML_BOARDS}, {"j", variant("EMU_HPFM")}}),
              "emulation json 0");
    EXPECT_EQ(loaded({{"pka.json", both}, {"j", variant("TOP_BD")}, {"m", ext}}), "boards json 1");
    EXPECT_EQ(loaded({{"pka.json", both}, {"x", XML_BOARDS}}), "boards xml 0")
        << "whichever is there";
    EXPECT_EQ(loaded({{"pka.json", both}, {"m", ext}}), "1");
    const std::string several =
        listing({{"EMU_JSON", "gone"}, {"EMU_XML", "x"}, {"EMU_JSON", "j"}, {"EMU_JSON", "k"}});
    EXPECT_EQ(loaded({{"pka.json", several},
                      {"x", XML_BOARDS},
                      {"k", variant("TOP_BD")},
                      {"j", variant("EMU_HPFM")}}),
              "emulation json 0")
        << "the first JSON member that is there";
    EXPECT_EQ(loaded({{"pka.json", both}}), "none");
    EXPECT_EQ(loaded({{"pka.json", listing({})}, {"j", variant("TOP_BD")}}), "none")
        << "not listed";
    EXPECT_EQ(messages.text(), "") << "absent members are no error";
}

TEST_F(EmulationOfArchive, WhatDoesNotParseIsReportedAndTheArchiveLoads) {
    const std::string all = listing({{"EMU_XML", "x"}, {"EMU_JSON", "j"}, {"EXT_META_JSON", "m"}});
    EXPECT_EQ(loaded({{"pka.json", all}, {"x", XML_BOARDS}, {"j", "{"}, {"m", "1"}}), "none");
    EXPECT_EQ(withoutDir(messages.text()),
              "@74-64@%s%s%s|a.pka|j|line 1: expected key string\n"
              "@74-63@%s%s|a.pka|m: holds the text '1' where an object is expected\n");
    EXPECT_EQ(loaded({{"pka.json", all}, {"x", "<E>"}, {"m", "{\"featureRoms\": [{}]}"}}), "1");
    EXPECT_EQ(withoutDir(messages.text()), "@74-24@%s%d|a.pka/x|1\n");
}

}  // namespace
