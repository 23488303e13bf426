// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <stdexcept>

#include "mav_host/ComMsgMgr.h"
#include "support/Doubles.h"

namespace {

std::string format(std::uint32_t mask, const std::string& id, const HSTVector<std::string>& args) {
    return ComMsgMgr::format({1, "platform", mask, id, args});
}

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
    void send(const ComMsg&) override {
        ++calls;
        throw std::runtime_error("sink");
    }
    int calls = 0;
};

TEST(ComMsgMgr, LabelsFollowTheMask) {
    const std::string rest = ": [platform 74-10] The file 'a' has been written.";
    EXPECT_EQ(format(0x4000000, "@74-10@%s", {"a"}), "INFO" + rest);
    EXPECT_EQ(format(0x8000000, "@74-10@%s", {"a"}), "WARNING" + rest);
    EXPECT_EQ(format(0x10000000, "@74-10@%s", {"a"}), "CRITICAL WARNING" + rest);
    EXPECT_EQ(format(0x20000000, "@74-10@%s", {"a"}), "ERROR" + rest);
}

TEST(ComMsgMgr, PutsArgumentsIntoTheSentence) {
    EXPECT_EQ(format(ComMsgMgr::ERROR, "@74-14@%s%s", {"a.pka", "b.qpfm"}),
              "ERROR: [platform 74-14] The hardware platform file 'a.pka' that the platform "
              "'b.qpfm' names does not exist; correct the reference or put the file there.");
    // An argument is text and never a pattern.
    EXPECT_EQ(format(ComMsgMgr::STATUS, "@74-10@%s", {"%1%s"}),
              "INFO: [platform 74-10] The file '%1%s' has been written.");
    EXPECT_EQ(format(ComMsgMgr::STATUS, "@74-10@%s", {}),
              "INFO: [platform 74-10] The file '' has been written.");
}

TEST(ComMsgMgr, StaysOneLineWhateverTheArgumentHolds) {
    const std::string hostile("a\nERROR: b\x1b[2J\x7f\0c", 16);
    EXPECT_EQ(format(ComMsgMgr::STATUS, "@74-10@%s", {hostile}),
              "INFO: [platform 74-10] The file 'a\\x0AERROR: b\\x1B[2J\\x7F\\x00' has been "
              "written.");
    EXPECT_EQ(format(ComMsgMgr::STATUS, "@74-10@%s", {"\xc3\xa4"}),
              "INFO: [platform 74-10] The file '\xc3\xa4' has been written.");
}

TEST(ComMsgMgr, ShowsUnknownIdsWithTheirArguments) {
    EXPECT_EQ(format(ComMsgMgr::WARNING, "@99-1@%s%s", {"a", "b\n"}),
              "WARNING: [platform 99-1] a, b\\x0A");
    EXPECT_EQ(format(ComMsgMgr::WARNING, "loose", {"a"}), "WARNING: [platform loose] a");
    EXPECT_EQ(format(ComMsgMgr::WARNING, "", {}), "WARNING: [platform ] ");
    EXPECT_EQ(ComMsgMgr::sentence("99-1"), "");
}

TEST(ComMsgMgr, HandsTheWholeReportToTheSink) {
    CapturedMessages messages;
    ComMsgMgr::sendMsg(3, "platform", ComMsgMgr::CRITICAL_WARNING, "@74-17@%s%s%s",
                       {"a", "b", "c"});
    ASSERT_EQ(messages.all.size(), 1U);
    const ComMsg& message = messages.all.front();
    EXPECT_EQ(message.level, 3);
    EXPECT_EQ(message.group, "platform");
    EXPECT_EQ(message.mask, ComMsgMgr::CRITICAL_WARNING);
    EXPECT_EQ(messages.text(), "@74-17@%s%s%s|a|b|c\n");
}

TEST(ComMsgMgr, SinksNestAndTheDefaultWritesToStandardError) {
    CapturedErrors errors;
    CapturedMessages outer;
    {
        CapturedMessages inner;
        ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::STATUS, "@74-10@%s", {"inner"});
        EXPECT_EQ(inner.all.size(), 1U);
    }
    EXPECT_TRUE(outer.all.empty());
    EXPECT_EQ(ComMsgMgr::setSink(nullptr), &outer);
    ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::STATUS, "@74-10@%s", {"a"});
    EXPECT_EQ(errors.text(), "INFO: [platform 74-10] The file 'a' has been written.\n");
    EXPECT_EQ(ComMsgMgr::setSink(&outer), nullptr);
}

TEST(ComMsgMgr, ASinkThatThrowsDoesNotEndTheWork) {
    ThrowingSink sink;
    ComMsgSink* const before = ComMsgMgr::setSink(&sink);
    EXPECT_NO_THROW(ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::ERROR, "@74-9@%s", {"a"}));
    ComMsgMgr::setSink(before);
    EXPECT_EQ(sink.calls, 1);
}

}  // namespace
