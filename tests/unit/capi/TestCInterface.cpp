// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_platform/PlatformParseException.h"
#include "mav_platform/mav_platform_c.h"
#include "support/Archives.h"

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

}  // namespace
