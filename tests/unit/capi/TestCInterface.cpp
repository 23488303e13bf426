// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <stdexcept>

#include "mav_host/HEXError.h"
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

}  // namespace
