// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>

#include "formats/metadata/HMAVDsaJsonReader.h"
#include "mav_host/HEXError.h"
#include "mav_platform/HMAVEmulationExtMetaJsonReader.h"
#include "mav_platform/HMAVEmulationJsonReader.h"
#include "mav_platform/HMAVEmulationXMLReader.h"
#include "mav_platform/HMAVEmulationXMLWriter.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HPLPlatform.h"
#include "mav_platform/PlatformLoader.h"
#include "support/Archives.h"

namespace {

constexpr auto AUTO = HMAVDsaJsonReader::Mode::HW_METADATA_AUTO;

/// The example of the format's page that stands behind this heading.
std::string example(const std::string& heading) {
    std::ifstream file(MAV_SOURCE_DIR "/docs/formats/emulation.md");
    const std::string page(std::istreambuf_iterator<char>(file), {});
    const std::size_t start = page.find('\n', page.find("\n```", page.find("\n## " + heading)) + 1);
    return page.substr(start + 1, page.find("```", start) - start - 1);
}

std::string sample(const std::string& name) {
    std::ifstream file(MAV_SOURCE_DIR "/samples/" + name);
    EXPECT_TRUE(file.is_open()) << name;
    return {std::istreambuf_iterator<char>(file), {}};
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
    EXPECT_EQ(HMAVEmulations::getEmuDirName() + HMAVEmulations::getEmulationXmlFilename() +
                  HMAVEmulations::getEmulationJsonFilename(),
              "hw_emuhw_emu.xmlhw_emu.json");
    EXPECT_THROW_MSG(HMAVEmuFeatureRom().getCDMABaseAddress(4), HEXAlgException,
                     "The CDMA base address 4 does not exist; the index is 0 to 3");
}

TEST_F(Emulation, JsonFaultsAreReportedAndFillNothing) {
    EXPECT_EQ(jsonReports("{\"emulations\": ["), "@74-63@%s%s|f|line 1: expected value\n");
    EXPECT_EQ(jsonReports("{}"), "@74-63@%s%s|f|'emulations': the required key is missing\n");
    EXPECT_EQ(jsonReports("[1]"), "@74-63@%s%s|f|holds a list where an object is expected\n");
    EXPECT_EQ(jsonReports(R"({"pfm_metadata_version": [1], "emulations": []})"),
              "@74-63@%s%s|f|'pfm_metadata_version': holds a list where a text is expected\n");
    const std::string before = R"({"emulations": [{"files": [{"type": "a", "name": "b"}]}, )";
    for (const auto& [item, report] : std::vector<std::pair<std::string, std::string>>{
             {R"({"name": "x"})", ".files': the required key is missing"},
             {R"("x")", "': holds the text 'x' where an object is expected"},
             {R"({"files": [{"type": "a"}]})", ".files[0].name': the required key is missing"},
             {R"({"files": [{"name": "a"}]})", ".files[0].type': the required key is missing"},
             {R"({"files": {"name": "a"}})",
              ".files': holds an object where a list is expected"}}) {
        EXPECT_EQ(jsonReports(before + item + "]}"),
                  "@74-63@%s%s|f|'emulations[1]" + report + "\n");
    }
    const std::string deep(600, '[');
    EXPECT_NE(jsonReports(std::string(R"({"emulations": )").append(deep)).find("@74-63@"),
              std::string::npos);
    EXPECT_FALSE(HMAVEmulationJsonReader(dir.path("none"), &emulations).parseJson());
    EXPECT_TRUE(messages.has("@74-63@%s%s|" + dir.path("none") + "|The file"));
    EXPECT_EQ(shown(emulations), NOTHING);

    EXPECT_EQ(jsonReports(R"({"emulations": null})") + shown(emulations), NOTHING);
    EXPECT_EQ(jsonReports("{\"emulations\": [{\"name\": \"\xe9\", \"files\": \"\"}]}"), "");
    EXPECT_EQ(shown(emulations), std::string(NOTHING) + "\xc3\xa9:\n") << "ISO-8859-1";

    EXPECT_TRUE(HMAVEmulationJsonReader::isJsonValid(R"({"a": 1, "emulations": []})"));
    for (const char* text : {"{}", "[]", "", "{\"emulations\": [}", "{\"a\": {\"emulations\": 1}}"})
        EXPECT_FALSE(HMAVEmulationJsonReader::isJsonValid(text)) << text;
}

TEST_F(Emulation, OfEqualKeysTheFirstCounts) {
    const std::string path = dir.write("f", R"({"emulations": [], "emulations": [{"files": []}]})");
    EXPECT_TRUE(HMAVEmulationJsonReader(path, &emulations).parseJson());
    EXPECT_EQ(shown(emulations), NOTHING);
    EXPECT_TRUE(messages.has("the key 'emulations' stands more than once; the first one counts"));
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
        return std::string("<E").append(attributes) + ">\n<Emulations>\n" + content +
               "</Emulations></E>";
    };
    const std::string good = "<Emulation><Files><File Type='t' Name='n'/></Files></Emulation>\n";
    std::string deep = document("", good);
    for (int i = 0; i < 256; ++i) deep += "<a>";
    for (const auto& [text, line] : std::vector<std::pair<std::string, int>>{
             {"", 1},
             {"no xml", 1},
             {"<!DOCTYPE E [<!ENTITY a 'b'>]>\n" + document("", good), 1},
             {document(" VersionMajor='4294967296'", good), 1},
             {document(" VersionMinor='-0'", good), 1},
             {document(" VersionMajor='1' x:VersionMajor='1'", good), 1},
             {document("", good + "<Emulation/>"), 4},
             {document("", good + "<Emulation><Files>\n<File Type='t'/>"), 5},
             {document("", good + "<Emulation><Files>\n<File Name='n'/>"), 5},
             {document("", good + "<Emulation><Files/>\n<Files/>"), 5},
             {"<E>\n<VersionMajor>1</VersionMajor>\n</E>", 1},
             {document("", good) + "<E/>", 4},
             {deep, 4}}) {
        EXPECT_EQ(xmlReports(text), "@74-24@%s%d|f|" + std::to_string(line) + "\n") << text;
    }
    EXPECT_EQ(shown(emulations), NOTHING);
    EXPECT_FALSE(HMAVEmulationXMLReader(dir.path("none"), &emulations).parseXml());
    EXPECT_TRUE(messages.has("@74-24@%s%d|" + dir.path("none") + "|0\n"));
    EXPECT_NE(withoutDir(console.text())
                  .find("Error parsing emulation metadata file: f Line number:1. attribute "
                        "'VersionMajor' of element 'E': '4294967296' is not an integer from 0 to "
                        "4294967295\n"),
              std::string::npos)
        << console.text();
}

TEST_F(Emulation, EveryTruncationIsRefusedAndFillsNothing) {
    const std::string json = sample("veltrin_h90/archive/hw_emu/hw_emu.json");
    const std::string xml = sample("tessomar_r2/partition1/hw_emu/hw_emu.xml");
    const std::string ext = sample("veltrin_h90/archive/hw_emu/ext_metadata.json");
    const auto lastOf = [](const std::string& text, char c) { return text.rfind(c); };
    for (std::size_t size = 0; size < lastOf(json, '}'); ++size)
        EXPECT_NE(jsonReports(json.substr(0, size)), "") << size;
    for (std::size_t size = 0; size < lastOf(xml, '>'); ++size)
        EXPECT_NE(xmlReports(xml.substr(0, size)), "") << size;
    for (std::size_t size = 0; size < lastOf(ext, '}'); ++size)
        EXPECT_NE(extReports(ext.substr(0, size)), "") << size;
    EXPECT_EQ(shown(emulations), NOTHING);
    EXPECT_EQ(jsonReports(json) + xmlReports(xml) + extReports(ext), "");
}

TEST_F(Emulation, WritesTheExampleOfItsPageAndReadsItBack) {
    EXPECT_EQ(jsonReports(example("JSON form")), "");
    emulations.setVersionMajor(1);
    const std::string path = dir.path("out.xml");
    EXPECT_TRUE(HMAVEmulationXMLWriter(path, &emulations).writeXml());
    EXPECT_EQ(messages.text(), "@74-10@%s|" + path + "\n");
    EXPECT_EQ(dir.read("out.xml"), example("XML form"));
}

TEST_F(Emulation, WritingEscapesAndSurvivesARoundTrip) {
    HMAVEmulation* odd = emulations.createEmulation();
    odd->setName("<&>\"'\t\r\n ");
    odd->createFile("", "")->setInstPath("\xe9");
    emulations.createEmulation();
    emulations.setVersionMinor(4294967295U);
    ASSERT_TRUE(HMAVEmulationXMLWriter(dir.path("a.xml"), &emulations).writeXml());
    HMAVEmulations read;
    ASSERT_TRUE(HMAVEmulationXMLReader(dir.path("a.xml"), &read).parseXml());
    EXPECT_EQ(shown(read), " 0.4294967295\n<&>\"'\t\r\n : ||\xc3\xa9\n:\n");
    ASSERT_TRUE(HMAVEmulationXMLWriter(dir.path("b.xml"), &read).writeXml());
    EXPECT_EQ(dir.read("a.xml"), dir.read("b.xml"));
}

TEST_F(Emulation, AFailedWriteLeavesTheOldFile) {
    const std::string path = dir.write("old.xml", "old");
    emulations.createEmulation()->setName("a\x01");
    EXPECT_FALSE(HMAVEmulationXMLWriter(path, &emulations).writeXml());
    EXPECT_TRUE(messages.has("@74-15@%s%s%s%s|" + path +
                             "|XML syntax error: not well-formed (invalid token)|line 8|"))
        << messages.text();
    EXPECT_EQ(dir.read("old.xml") + dir.list(), "oldold.xml\n");

    messages.all.clear();
    const HMAVEmulations empty;
    const std::string missing = dir.path("none/x.xml");
    EXPECT_FALSE(HMAVEmulationXMLWriter(missing, &empty).writeXml());
    EXPECT_TRUE(messages.has("@74-15@%s%s%s%s|" + missing + "|The file '" + missing +
                             "' cannot be written"));
    EXPECT_TRUE(messages.has("|writing|the file is as it was\n"));
}

TEST_F(Emulation, MembersAreFoundWithoutOneCharacterAndItsSlashes) {
    const std::string json = example("JSON form");
    const std::string path = packArchive(dir, "a.pka",
                                         {{"hw_emu/e.json", json},
                                          {"x.xml", example("XML form")},
                                          {"x.json", example("Extension metadata")},
                                          {"n.xml", "<E>\n<"},
                                          {"n.json", "{\n\"a\""},
                                          {"key.json", "{\"emulations\": {\"a\": 1}}"}});
    const mav_host::ZipArchive archive(path);
    HMAVEmulationJsonReader reader(nullptr);
    for (const char* name : {"hw_emu/e.json", ".//hw_emu/e.json", "b/hw_emu/e.json"}) {
        HMAVEmulations read;
        EXPECT_TRUE(reader.parseFromDsa(path, name, &read)) << name;
        EXPECT_EQ(shown(read), std::string("2.0 0.0\n") + VARIANTS);
        EXPECT_TRUE(reader.parseFromDsa(archive, name, &read)) << name;
    }
    HMAVEmulationXMLReader xml("", nullptr);
    HMAVEmulationExtMetaJsonReader ext(&emulations);
    EXPECT_TRUE(xml.parseFromDsa(path, "./x.xml", &emulations));
    EXPECT_TRUE(ext.parseFromDsa(path, "./x.json", &emulations));
    EXPECT_EQ(emulations.getEmulations().size() + emulations.getFeatureRoms().size(), 3U);
    EXPECT_EQ(messages.text(), "");

    EXPECT_FALSE(reader.parseFromDsa(path, "./../x.xml", &emulations));
    EXPECT_FALSE(xml.parseFromDsa(archive, "./", &emulations));
    EXPECT_FALSE(ext.parseFromDsa(dir.path("none.pka"), "./m", &emulations));
    EXPECT_FALSE(xml.parseFromDsa(path, "./n.xml", &emulations));
    EXPECT_FALSE(reader.parseFromDsa(path, "./n.json", &emulations));
    EXPECT_FALSE(reader.parseFromDsa(path, "key.json", &emulations));
    EXPECT_EQ(withoutDir(messages.text()),
              "@74-34@%s%s|a.pka|../x.xml\n@74-34@%s%s|a.pka|\n@74-34@%s%s|none.pka|m\n"
              "@74-24@%s%d|a.pka/n.xml|2\n@74-64@%s%s%s|a.pka|n.json|line 2: expected ':'\n"
              "@74-63@%s%s|a.pka|key.json: 'emulations': holds an object where a list is "
              "expected\n");
    EXPECT_NE(console.text().find("Error reading emulation metadata: The member '../x.xml' of"),
              std::string::npos);
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
    std::string loaded(const std::vector<std::pair<std::string, std::string>>& members,
                       bool merged = false) {
        messages.all.clear();
        const std::string path = packArchive(dir, "a.pka", members);
        HPLPlatform platform;
        HMAVDsaJsonReader reader(&platform);
        EXPECT_TRUE(merged ? reader.parseHwEmuPKA(path, AUTO) : reader.parseDSA(path, AUTO));
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
    EXPECT_EQ(loaded({{"pka.json", both}, {"j", variant("emu_hpfm")}}), "json 0");
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

TEST_F(EmulationOfArchive, AMergedPlatformFindsItsMembersInItsFolder) {
    const std::string list = listing({{"EMU_JSON", "./j"}, {"HPFM", "h"}});
    const std::string hpfm = "<qd:repository><qd:busInterface qd:name='NAME'/></qd:repository>";
    EXPECT_EQ(loaded({{"pka.json", metadata()},
                      {"j", variant("TOP_BD")},
                      {"hw_emu/pka.json", list},
                      {"hw_emu/j", variant("EMU_HPFM")}},
                     true),
              "emulation json 0");
    const std::string path = packArchive(
        dir, "m.pka", {{"pka.json", list}, {"hw_emu/pka.json", list}, {"hw_emu/h", hpfm}});
    HPLPlatform platform;
    EXPECT_TRUE(HMAVDsaJsonReader(&platform).parseHwEmuPKA(path, AUTO));
    EXPECT_NE(platform.getBusInterfaceByName("NAME"), nullptr);
    EXPECT_EQ(platform.getHwEmuJsonFileNameIfExist(), "hw_emu/pka.json");
    EXPECT_EQ(platform.getAltHwEmuJsonFileNameIfExist(), "");
    HPLPlatform plain;
    EXPECT_TRUE(HMAVDsaJsonReader(&plain).parseDSA(path, AUTO));
    EXPECT_EQ(plain.getBusInterfaceByName("NAME"), nullptr);
}

class EmulationOfSamples : public Emulation {
  protected:
    /// Packs a folder of the samples and loads it, by a name that is not the canonical one.
    std::shared_ptr<HMAVPlatform> load(const std::string& folder) {
        namespace fs = std::filesystem;
        const fs::path root = std::string(MAV_SOURCE_DIR "/samples/") + folder;
        HSTVector<HUTZip::Source> sources;
        for (const auto& entry : fs::recursive_directory_iterator(root)) {
            if (!entry.is_regular_file()) continue;
            sources.push_back({fs::relative(entry.path(), root), entry.path(), ""});
        }
        HUTZip::create(dir.path("s.pka"), sources);
        return mav_platform::PlatformLoader(dir.path("./s.pka"), AUTO).load();
    }
    /// The types in its emulation metadata, in order; each listed member is in the archive.
    std::string types(const HMAVPlatform& platform) const {
        const mav_host::ZipArchive archive(dir.path("s.pka"));
        const auto& hardware = dynamic_cast<const HPLPlatform&>(*platform.getHardwarePlatform());
        if (hardware.getEmulations() == nullptr) return "none";
        std::string text;
        for (const HMAVEmulation* emulation : hardware.getEmulations()->getEmulations()) {
            text += emulation->getName() + ":";
            for (const HMAVEmulationFile* file : emulation->getFiles()) {
                text += " " + file->getType();
                EXPECT_TRUE(archive.contains(file->getName())) << file->getName();
            }
        }
        return text;
    }
};

TEST_F(EmulationOfSamples, BothFormsSetTheirFlags) {
    const auto card = load("veltrin_h90/archive");
    ASSERT_NE(card, nullptr);
    EXPECT_EQ(types(*card), "default: EMU_HPFM TOP_BD DR_BD");
    EXPECT_TRUE(card->supportsTwoHwEmuBd());
    const auto* emulation = dynamic_cast<const HPLPlatform*>(card->getHardwareEmulationPlatform());
    ASSERT_NE(emulation, nullptr);
    EXPECT_EQ(emulation->getEmulations(), nullptr) << "its metadata lists none";
    EXPECT_NE(emulation->getBusInterfaceByName("S_AXI_EMU_MGMT"), nullptr)
        << "from the hpfm member in its folder";
    const auto json = load("tessomar_r2/partition0/hw_emu");
    ASSERT_NE(json, nullptr);
    EXPECT_EQ(types(*json), "default: EMU_HPFM DR_BD");
    EXPECT_FALSE(json->supportsTwoHwEmuBd());
    const auto xml = load("tessomar_r2/partition1/hw_emu");
    ASSERT_NE(xml, nullptr);
    EXPECT_EQ(types(*xml), "default: EMU_HPFM DR_BD");
    EXPECT_TRUE(xml->getHardwarePlatform()->supportsHWEmulation());
    EXPECT_EQ(messages.text(), "");
}

}  // namespace
