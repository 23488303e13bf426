// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <stdexcept>
#include <thread>

#include "mav_host/ComMsgMgr.h"
#include "mav_host/Messages.h"
#include "mav_host/ReportScope.h"
#include "support/Doubles.h"

namespace {

/// What the default sink writes while this lives.
class CapturedErrors {
  public:
    CapturedErrors() : before_(std::cerr.rdbuf(stream_.rdbuf())) {}
    ~CapturedErrors() { std::cerr.rdbuf(before_); }
    CapturedErrors(const CapturedErrors&) = delete;
    CapturedErrors& operator=(const CapturedErrors&) = delete;
    std::string text() const { return stream_.str(); }

  private:
    std::ostringstream stream_;
    std::streambuf* before_;
};

class ThrowingSink final : public ComMsgSink {
  public:
    void send(const ComMsg&) override { throw std::runtime_error(calls += "called"); }
    std::string calls;
};

TEST(ComMsgMgr, FormatsOneLineOfLabelIdAndSentence) {
    const std::string file = ": [platform 74-10] The file '";
    const std::string unread =
        "ERROR: [platform 74-51] The software platform file 'a.spfm' cannot be read";
    const std::string hostile("a\nERROR: b\x1b[2J\x7f\0c", 16);
    const struct {
        std::uint32_t mask;
        const char* id;
        HSTVector<std::string> args;
        std::string line;
    } rows[] = {
        {0x8000000, "@74-10@%s", {"a"}, "WARNING" + file + "a' has been written."},
        {0x10000000, "@74-10@%s", {"a"}, "CRITICAL WARNING" + file + "a' has been written."},
        {0x20000000, "@74-10@%s", {"a"}, "ERROR" + file + "a' has been written."},
        // An argument is text and never a pattern, and no text begins a second line.
        {ComMsgMgr::STATUS, "@74-10@%s", {"%1%s"}, "INFO" + file + "%1%s' has been written."},
        {ComMsgMgr::STATUS, "@74-10@%s", {}, "INFO" + file + "' has been written."},
        {ComMsgMgr::STATUS,
         "@74-10@%s",
         {hostile},
         "INFO" + file + "a\\x0AERROR: b\\x1B[2J\\x7F\\x00' has been written."},
        // A line that is not known is not told.
        {ComMsgMgr::ERROR, "@74-51@%s%d", {"a.spfm", "0"}, unread + "; mend the file."},
        {ComMsgMgr::ERROR, "@74-51@%s%d", {"a.spfm", "10"}, unread + " at line 10; mend the file."},
        {ComMsgMgr::WARNING, "@99-1@%s%s", {"a", "b\n"}, "WARNING: [platform 99-1] a, b\\x0A"},
        {ComMsgMgr::WARNING, "loose", {"a"}, "WARNING: [platform loose] a"},
        {ComMsgMgr::WARNING, "", {}, "WARNING: [platform ] "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ComMsgMgr::format({1, "platform", row.mask, row.id, row.args}), row.line);
    }
    EXPECT_EQ(ComMsgMgr::sentence("99-1"), "");
}

TEST(ComMsgMgr, TheDefaultWritesToStandardErrorAndNoSinkEndsTheWork) {
    CapturedErrors errors;
    CapturedMessages outer;
    EXPECT_EQ(ComMsgMgr::setSink(nullptr), &outer);
    ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::STATUS, "@74-10@%s", {"a"});
    EXPECT_EQ(errors.text(), "INFO: [platform 74-10] The file 'a' has been written.\n");
    ThrowingSink throwing;
    EXPECT_EQ(ComMsgMgr::setSink(&throwing), nullptr);
    EXPECT_NO_THROW(ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::ERROR, "@74-9@%s", {"a"}));
    EXPECT_EQ(throwing.calls, "called");
    ComMsgMgr::setSink(&outer);
}

/// Notes what it takes, a line each, and passes reports on when told to.
class NotingScope final : public mav_host::ReportScope {
  public:
    explicit NotingScope(bool passesOn = false) : passesOn_(passesOn) {}
    ~NotingScope() override { close(); }
    std::string text;

  private:
    void onReport(const ComMsg& message) override {
        text += "report " + message.args.at(0) + "\n";
        if (passesOn_) mav_host::report(mav_host::messages::FILE_WRITTEN, message.args[0] + "'");
    }
    void onLines(const std::string& lines) override { text += "lines " + lines; }
    bool passesOn_;
};

TEST(ReportScope, TheInnermostOfTheThreadTakesAllInOrderAndMayPassOn) {
    using mav_host::messages::FILE_WRITTEN;
    const CapturedMessages process;
    const CapturedConsole console;
    NotingScope outer;
    {
        NotingScope inner(true);
        mav_host::console() << "one\n";
        mav_host::report(FILE_WRITTEN, "a");
        mav_host::console() << "two\n";
        EXPECT_EQ(inner.text, "lines one\nreport a\n");
        std::thread([] { mav_host::report(FILE_WRITTEN, "elsewhere"); }).join();
    }
    ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::ERROR, "bare");  // the scope throws
    mav_host::report(FILE_WRITTEN, "b");
    EXPECT_EQ(outer.text, "report a'\nreport b\n");
    EXPECT_EQ(process.text(), "@74-10@%s|elsewhere\n");
    EXPECT_EQ(console.text(), "");
}

}  // namespace
