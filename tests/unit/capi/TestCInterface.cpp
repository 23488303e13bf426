// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>

#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/PlatformParseException.h"
#include "mav_platform/mav_platform_c.h"
#include "support/Archives.h"
#include "support/Row.h"
#include "support/ZipFixture.h"

namespace {

/// Takes a text of the C interface over.
std::string take(char* text) {
    const std::string copy = text != nullptr ? text : "(null)";
    hmav_free_json_string(text);
    return copy;
}

TEST(CInterface, GivesTheWholeAndTheShortDocument) {
    const TempDir dir;
    const std::string path = packArchive(dir, "a.pka", {{"pka.json", metadata()}});
    const std::string whole = take(hmav_get_platform_json(path.c_str()));
    EXPECT_EQ(whole.substr(0, 2), "{\n");
    EXPECT_EQ(whole.substr(whole.size() - 2), "}\n");
    EXPECT_NE(whole.find("\"hardwarePlatform\""), std::string::npos);
    std::string shown;
    for (const char c : path) shown.append(c == '/' ? "\\/" : std::string(1, c));
    std::string expected = "{\n    \"uniqueName\": \"";
    expected.append(shown).append("\",\n    \"file\": \"").append(shown).append("\"\n}\n");
    EXPECT_EQ(take(hmav_get_short_platform_json(path.c_str())), expected);
    hmav_free_json_string(nullptr);
}

TEST(CInterface, NullForNoPlatformAndExceptionsPass) {
    const CapturedMessages messages;
    const CapturedConsole console;
    const TempDir dir;
    EXPECT_EQ(hmav_get_platform_json("/nowhere/a.pka"), nullptr);
    EXPECT_EQ(hmav_get_short_platform_json(""), nullptr);
    EXPECT_THROW_MSG(hmav_get_platform_json(nullptr), std::logic_error,
                     "basic_string::_M_construct null not valid");
    EXPECT_THROW(hmav_get_platform_json("/nowhere/a.qpfm"), HEXFileNotFoundException);
    EXPECT_THROW(hmav_get_platform_json(dir.write("a.qpfm", "<x/>").c_str()),
                 mav_platform::PlatformParseException);
}

TEST(CInterface, TheTryingFormsExplainAndNeverThrow) {
    const CapturedMessages messages;
    const CapturedConsole console;
    const TempDir dir;
    char* json = nullptr;
    char* error = nullptr;
    EXPECT_EQ(hmav_try_get_platform_json(nullptr, &json, &error), 1);
    EXPECT_NE(take(error).find("null"), std::string::npos);
    EXPECT_EQ(hmav_try_get_platform_json("/nowhere/a.pka", &json, &error), 1);
    EXPECT_EQ(json, nullptr);
    EXPECT_NE(take(error).find("/nowhere/a.pka"), std::string::npos);
    EXPECT_EQ(messages.all.size(), 1U) << "reports still reach the sink";
    EXPECT_EQ(hmav_try_get_short_platform_json(dir.write("a.qpfm", "<x/>").c_str(), &json, &error),
              1);
    // The console's lines come before the report that points at them, and still reach the console.
    const std::string lines = "Error parsing platform file: " + dir.path("a.qpfm") +
                              "\nLine number:1. element 'x': the root element must be "
                              "'mav:platform'\n";
    const std::string explained = take(error);
    EXPECT_EQ(explained.rfind(lines + "ERROR: [platform 74-9] ", 0), 0U) << explained;
    EXPECT_NE(explained.find("\nfailed to parse the QPFM file"), std::string::npos);
    EXPECT_EQ(console.text(), lines);
    EXPECT_EQ(hmav_try_get_platform_json("/nowhere/a.pka", nullptr, nullptr), 1);

    const std::string path = packArchive(dir, "a.pka", {{"pka.json", metadata()}});
    EXPECT_EQ(hmav_try_get_platform_json(path.c_str(), &json, &error), 0);
    EXPECT_EQ(error, nullptr);
    EXPECT_EQ(take(json), take(hmav_get_platform_json(path.c_str())));
    EXPECT_EQ(hmav_try_get_short_platform_json(path.c_str(), nullptr, nullptr), 0);
}

/// The code of a call with its error, which ends here: "code|text|hint".
std::string told(int code, hmav_error* error) {
    EXPECT_EQ(code, hmav_error_code(error));
    const std::string text = std::string(hmav_code_text(code)) + "|" + hmav_error_text(error) +
                             "|" + hmav_error_hint(error);
    hmav_error_free(error);
    return text;
}

/// A platform of the C interface; null when it does not open.
using Platform = std::unique_ptr<hmav_platform, void (*)(hmav_platform*)>;

Platform opened(const std::string& path) {
    hmav_platform* made = nullptr;
    EXPECT_EQ(hmav_platform_open(nullptr, path.c_str(), nullptr, &made, nullptr), HMAV_DONE);
    return {made, hmav_platform_free};
}

TEST(CInterface, OpensInSilenceOrTellsWhyNot) {
    const CapturedMessages messages;
    const CapturedConsole console;
    const TempDir dir;
    const std::string broken = dir.write("a.qpfm", "<x/>");
    const std::string empty = packArchive(dir, "b.pka", {{"other", ""}});
    struct Case {
        const char* path;
        std::string told;
    };
    const Case cases[] = {
        {nullptr, "wrong argument|The argument 'path' is null|Give one."},
        {"/nowhere/a\n.pka", "not found|Nothing is at '/nowhere/a\\x0A.pka'|Check the path."},
        {broken.c_str(),
         "not loadable|The platform '" + broken +
             "' does not load: Line number:1. element 'x': the root element must be "
             "'mav:platform'|Correct what the reports name; hmav_validate finds all of it."},
    };
    for (const Case& one : cases) {
        hmav_platform* platform = nullptr;
        hmav_error* error = nullptr;
        const int code = hmav_platform_open(nullptr, one.path, nullptr, &platform, &error);
        EXPECT_EQ(platform, nullptr);
        EXPECT_EQ(told(code, error), one.told);
    }
    EXPECT_EQ(hmav_platform_open(nullptr, empty.c_str(), nullptr, nullptr, nullptr),
              HMAV_WRONG_ARGUMENT);
    EXPECT_TRUE(messages.all.empty());
    EXPECT_EQ(console.text(), "");
}

TEST(CInterface, ReportsGoToTheSessionAndIntoTheError) {
    const TempDir dir;
    const std::string path = dir.write("a.qpfm", "<x/>");
    std::string heard;
    hmav_session_options options = {};
    options.size = sizeof options;
    options.user = &heard;
    options.on_report = [](const hmav_report* report, void* user) {
        *static_cast<std::string*>(user) += std::to_string(report->severity) + report->id + " " +
                                            std::to_string(report->argument_count) + "\n";
    };
    hmav_session* session = nullptr;
    ASSERT_EQ(hmav_session_new(&options, &session, nullptr), HMAV_DONE);
    hmav_platform* platform = nullptr;
    hmav_error* error = nullptr;
    EXPECT_EQ(hmav_platform_open(session, path.c_str(), nullptr, &platform, &error),
              HMAV_NOT_LOADABLE);
    hmav_session_free(session);
    EXPECT_EQ(heard, "0 0\n0 0\n374-9 1\n");
    ASSERT_EQ(hmav_error_report_count(error), 3U);
    const hmav_report* const last = hmav_error_report(error, 2);
    EXPECT_EQ(last->size, sizeof(hmav_report));
    EXPECT_EQ(std::string(last->text),
              "The platform description '" + path +
                  "' is not valid; mend the line that was printed with the reason.");
    EXPECT_EQ(std::string(last->arguments[0]), path);
    EXPECT_EQ(hmav_error_report(error, 3), nullptr);
    hmav_error_free(error);
}

TEST(CInterface, OptionsGrowAtTheirEnd) {
    const TempDir dir;
    const std::string path = packArchive(dir, "a.pka", {{"pka.json", metadata()}});
    const std::string loaded = "done||";
    struct Newer {
        hmav_open_options known;
        std::size_t unknown;
    };
    struct Case {
        Newer options;
        std::string told;
    };
    const Case cases[] = {
        {{{sizeof(Newer), 0}, 0}, loaded},
        {{{sizeof(std::size_t), 99}, 0}, loaded},
        {{{sizeof(Newer), 0}, 1},
         "wrong argument|An option is set that this library does not know|Compare "
         "HMAV_API_VERSION with hmav_api_version()."},
        {{{0, 0}, 0},
         "wrong argument|The size of an option struct is not set|Set its first field to the size "
         "of the struct."},
        {{{sizeof(hmav_open_options), 3}, 0},
         "wrong argument|3 is no value of 'metadata_mode'|Give one from 0 to 2."},
    };
    for (const Case& one : cases) {
        hmav_platform* platform = nullptr;
        hmav_error* error = nullptr;
        const int code =
            hmav_platform_open(nullptr, path.c_str(), &one.options.known, &platform, &error);
        EXPECT_EQ(told(code, error), one.told);
        EXPECT_EQ(platform != nullptr, one.told == loaded);
        hmav_platform_free(platform);
    }
}

TEST(CInterface, AsksAPlatform) {
    const TempDir dir;
    const std::string path = packArchive(dir, "a.pka", {{"pka.json", metadata()}});
    const Platform platform = opened(path);
    hmav_platform* const asked = platform.get();
    char* text = nullptr;
    EXPECT_EQ(hmav_platform_document(asked, &text, nullptr), HMAV_DONE);
    EXPECT_EQ(take(text), take(hmav_get_platform_json(path.c_str())));
    EXPECT_EQ(hmav_platform_short(asked, &text, nullptr), HMAV_DONE);
    EXPECT_EQ(take(text), take(hmav_get_short_platform_json(path.c_str())));

    hmav_error* error = nullptr;
    const std::string where =
        "' in '" + path + "'|hmav_platform_keys lists the paths of the platform.";
    int code = hmav_platform_get(asked, "none", HMAV_FORM_TEXT, &text, nullptr, &error);
    EXPECT_EQ(told(code, error), "not found|Nothing is at 'none" + where);
    const char* const names[] = {"none"};
    code = hmav_platform_dict(asked, "hardwarePlatform", names, 1, &text, &error);
    EXPECT_EQ(told(code, error), "not found|Nothing is at 'hardwarePlatform" + where);
    EXPECT_EQ(hmav_platform_transform(asked, "{", &text, nullptr), HMAV_WRONG_ARGUMENT);
    EXPECT_EQ(hmav_key_documentation(nullptr, "Nothing.at", &text, nullptr), HMAV_NOT_FOUND);
    EXPECT_EQ(hmav_platform_keys(nullptr, &text, nullptr), HMAV_WRONG_ARGUMENT);
    EXPECT_EQ(text, nullptr);
    EXPECT_STREQ(hmav_code_text(99), "unknown code");
    EXPECT_EQ(hmav_api_version(), HMAV_API_VERSION);
}

TEST(CInterface, ASupportVerdictKeepsTheHostsProduct) {
    const TempDir dir;
    const Platform platform = opened(packArchive(dir, "a.pka", {{"pka.json", metadata()}}));
    HUTEnv::setProductName("kept");
    hmav_support_options options = {sizeof options, HMAV_SUPPORT_PRE_SYNTHESIS, "2026.1", "mirra"};
    int supported = 1;
    char* reason = nullptr;
    EXPECT_EQ(hmav_platform_support(platform.get(), &options, &supported, &reason, nullptr),
              HMAV_DONE);
    EXPECT_EQ(supported, 0);
    EXPECT_EQ(take(reason), "Platform 'a.pka' is not a PRE_SYNTH platform");
    EXPECT_EQ(HUTEnv::getProductName(), "kept");
    HUTEnv::setProductName("");
}

using Archive = std::unique_ptr<hmav_archive, void (*)(hmav_archive*)>;

Archive openedArchive(const std::string& path) {
    hmav_archive* made = nullptr;
    EXPECT_EQ(hmav_archive_open(nullptr, path.c_str(), &made, nullptr), HMAV_DONE);
    return {made, hmav_archive_free};
}

/// The members with types and sizes, and what reading them in pieces of three bytes gives.
std::string contents(const Archive& archive) {
    std::string text;
    for (std::size_t i = 0; i < hmav_archive_count(archive.get()); ++i) {
        const hmav_member* member = nullptr;
        EXPECT_EQ(hmav_archive_member(archive.get(), i, &member, nullptr), HMAV_DONE);
        hmav_reader* reader = nullptr;
        EXPECT_EQ(hmav_reader_open(archive.get(), member->name, &reader, nullptr), HMAV_DONE);
        char piece[3];
        std::size_t got = 0;
        std::string read;
        while (hmav_reader_read(reader, piece, sizeof piece, &got, nullptr) == HMAV_DONE && got > 0)
            read.append(piece, got);
        hmav_reader_free(reader);
        EXPECT_EQ(read.size(), member->bytes);
        if (read.size() < 9)
            text.append(member->name).append("|").append(member->types).append("|" + read + "\n");
    }
    return text;
}

TEST(CInterface, PacksAddsListsReadsExtractsAndVerifies) {
    const TempDir dir;
    dir.write("in/a.txt", "content");
    const std::string path = dir.path("a.pka");
    hmav_error* error = nullptr;
    int code = hmav_pack(nullptr, dir.path("in").c_str(), path.c_str(), nullptr, &error);
    EXPECT_NE(told(code, error).find("cannot write|the folder '"), std::string::npos);
    hmav_pack_options pack = {sizeof pack, 1, nullptr, nullptr};
    ASSERT_EQ(hmav_pack(nullptr, dir.path("in").c_str(), path.c_str(), &pack, nullptr), HMAV_DONE);
    const Archive archive = openedArchive(path);
    EXPECT_EQ(contents(archive), "a.txt||content\n");
    const std::string file = dir.write("b.txt", "more");
    ASSERT_EQ(hmav_archive_add(archive.get(), "KIND", file.c_str(), nullptr, nullptr), HMAV_DONE);
    EXPECT_EQ(contents(archive), "a.txt||content\nb.txt|KIND|more\n");
    char* text = nullptr;
    const std::string out = dir.path("out");
    ASSERT_EQ(hmav_archive_extract(archive.get(), "KIND", out.c_str(), nullptr, &text, nullptr),
              HMAV_DONE);
    EXPECT_EQ(take(text), out + "/b.txt");
    int digest = -1;
    ASSERT_EQ(hmav_archive_verify(archive.get(), nullptr, &digest, &text, nullptr), HMAV_DONE);
    EXPECT_EQ(take(text), "");
    EXPECT_EQ(digest, HMAV_DIGEST_VALID);
}

TEST(CInterface, RefusesWorkOnArchivesInWords) {
    const TempDir dir;
    const std::string path = packArchive(dir, "a.pka", {{"pka.json", metadata()}, {"d/x", "x"}});
    const Archive archive = openedArchive(path);
    const std::string file = dir.write("b.txt", "more");
    const auto add = [&](const char* type, const char* from, const char* member) {
        hmav_add_options options = {sizeof options, member, 0, nullptr, nullptr};
        hmav_error* error = nullptr;
        const int code = hmav_archive_add(archive.get(), type, from, &options, &error);
        return told(code, error);
    };
    const std::string wrong = "wrong argument|";
    EXPECT_EQ(add("NONE", file.c_str(), nullptr),
              wrong + "unknown file type 'NONE'|Give one of its list.");
    EXPECT_EQ(add("HPFM", file.c_str(), "d"),
              wrong + "'d' is a folder in the archive|Name another one.");
    EXPECT_EQ(add("HPFM", file.c_str(), "pka.json/y"),
              wrong +
                  "the member 'pka.json' is a file, so 'pka.json/y' cannot lie in it|Name "
                  "another one.");
    EXPECT_EQ(add("HPFM", "/nowhere/x", nullptr),
              "not found|File '/nowhere/x' does not exist|Check the path.");
    char* made = nullptr;
    const std::string out = dir.path("out");
    EXPECT_EQ(hmav_archive_extract(archive.get(), "none", out.c_str(), nullptr, &made, nullptr),
              HMAV_NOT_FOUND);
    hmav_reader* reader = nullptr;
    EXPECT_EQ(hmav_reader_open(archive.get(), "none", &reader, nullptr), HMAV_NOT_FOUND);
    hmav_archive* none = nullptr;
    EXPECT_EQ(hmav_archive_open(nullptr, "/nowhere", &none, nullptr), HMAV_NOT_FOUND);
    EXPECT_EQ(hmav_archive_open(nullptr, file.c_str(), &none, nullptr), HMAV_NOT_LOADABLE);
    EXPECT_EQ(hmav_unprotect(nullptr, file.c_str(), out.c_str(), nullptr), HMAV_NOT_LOADABLE);
    EXPECT_EQ(hmav_protect(nullptr, "/nowhere/x", out.c_str(), nullptr), HMAV_NOT_FOUND);
}

TEST(CInterface, ProtectsWithTheHostsKeyAndGivesBackWithItAlone) {
    const TempDir dir;
    const std::string clear = dir.write("clear", "secret");
    const std::string closed = dir.path("closed");
    const std::string back = dir.path("back");
    const auto work = [](auto function, const std::string& source, const std::string& target) {
        hmav_error* error = nullptr;
        const int code = function(nullptr, source.c_str(), target.c_str(), &error);
        const std::string text = told(code, error);
        return text.substr(0, text.find('|'));
    };
    {
        const HostKey key("first");
        EXPECT_EQ(work(hmav_protect, clear, closed), "done");
        EXPECT_EQ(HUTFileUtils::readWhole(closed, 4096).find("secret"), std::string::npos);
        EXPECT_EQ(work(hmav_unprotect, closed, back), "done");
        EXPECT_EQ(HUTFileUtils::readWhole(back, 4096), "secret");
        EXPECT_EQ(work(hmav_protect, closed, back), "refused");
    }
    for (const auto& other : {std::optional<std::string>("second"), std::optional<std::string>()}) {
        const HostKey key(other);
        EXPECT_EQ(work(hmav_unprotect, closed, dir.path("none")), "refused");
        if (other) continue;
        EXPECT_EQ(work(hmav_protect, clear, dir.path("none")), "refused");
    }
    EXPECT_EQ(HUTFileUtils::readWhole(back, 4096), "secret");
    EXPECT_FALSE(HUTFile::exists(dir.path("none")));
}

TEST(CInterface, ACallerStopsLongWork) {
    const TempDir dir;
    dir.write("in/a.txt", "content");
    const std::string path = dir.path("a.pka");
    const auto stop = [](const char*, double, void* user) { return ++*static_cast<int*>(user); };
    int asked = 0;
    hmav_pack_options pack = {sizeof pack, 1, stop, &asked};
    EXPECT_EQ(hmav_pack(nullptr, dir.path("in").c_str(), path.c_str(), &pack, nullptr),
              HMAV_STOPPED);
    EXPECT_EQ(asked, 1);
    EXPECT_FALSE(HUTFile::exists(path));

    const Archive archive = openedArchive(packArchive(dir, "b.pka", {{"x", "x"}}));
    hmav_progress_options progress = {sizeof progress, stop, &asked};
    int digest = 0;
    EXPECT_EQ(hmav_archive_verify(archive.get(), &progress, &digest, nullptr, nullptr),
              HMAV_STOPPED);
    EXPECT_EQ(hmav_validate(nullptr, dir.path("b.pka").c_str(), nullptr, nullptr, &progress,
                            nullptr, nullptr),
              HMAV_STOPPED);
    EXPECT_EQ(asked, 3);
}

TEST(CInterface, ValidationHandsOutFindingsUntilItIsStopped) {
    const TempDir dir;
    const std::string path = packArchive(dir, "a.pka", {{"x", "x"}, {"y", "y"}});
    struct Heard {
        std::string text;
        int most;
    };
    const auto listen = [](const hmav_finding* finding, void* user) {
        Heard& heard = *static_cast<Heard*>(user);
        heard.text += std::to_string(finding->severity) + " " + finding->rule + "\n";
        return --heard.most == 0 ? 1 : 0;
    };
    Heard all{"", -1};
    std::size_t errors = 0;
    EXPECT_EQ(hmav_validate(nullptr, path.c_str(), listen, &all, nullptr, &errors, nullptr),
              HMAV_DONE);
    EXPECT_EQ(errors, 1U) << all.text;
    EXPECT_NE(all.text.find("3 metadata\n"), std::string::npos) << all.text;
    Heard one{"", 1};
    EXPECT_EQ(hmav_validate(nullptr, path.c_str(), listen, &one, nullptr, nullptr, nullptr),
              HMAV_STOPPED);
    EXPECT_EQ(one.text, all.text.substr(0, all.text.find('\n') + 1));
}

TEST(CInterface, ComparesTwoPlatforms) {
    const TempDir dir;
    const Platform first = opened(packArchive(dir, "a.pka", {{"pka.json", metadata()}}));
    const Platform second =
        opened(packArchive(dir, "b.pka", {{"pka.json", metadata("", "other")}}));
    char* text = nullptr;
    ASSERT_EQ(hmav_difference(first.get(), first.get(), &text, nullptr), HMAV_DONE);
    EXPECT_EQ(
        take(text),
        "{\n    \"schema\": \"mav.diff\\/1\",\n    \"differ\": false,\n    \"changes\": []\n}\n");
    ASSERT_EQ(hmav_difference(first.get(), second.get(), &text, nullptr), HMAV_DONE);
    EXPECT_NE(take(text).find("\"to\": \"other\""), std::string::npos);
}

TEST(CInterface, FindsPlatformsAndTellsWhatItRefuses) {
    const TempDir dir;
    dir.write("in/c.qpfm", "<x/>");
    packArchive(dir, "in/a.pka", {{"pka.json", metadata()}});
    packArchive(dir, "in/b.pka", {{"pka.json", metadata("", "other")}});
    const std::string in = dir.path("in");
    const auto found = [&](const hmav_find_options& options) {
        const char* const dirs[] = {in.c_str()};
        char* json = nullptr;
        EXPECT_EQ(hmav_find(nullptr, dirs, 1, &options, &json, nullptr), HMAV_DONE);
        const std::string text = take(json);
        const auto has = [&](const char* part) { return text.find(part) != std::string::npos; };
        return row(has("\"card\""), has("\"other\""), has("c.qpfm"));
    };
    hmav_find_options options = {};
    options.size = sizeof options;
    EXPECT_EQ(found(options), "true|true|true");
    options.vendor = "none";
    EXPECT_EQ(found(options), "false|false|true");
    const char* const nowhere[] = {"/nowhere"};
    char* json = nullptr;
    EXPECT_EQ(hmav_find(nullptr, nowhere, 1, nullptr, &json, nullptr), HMAV_NOT_FOUND);
}

}  // namespace
