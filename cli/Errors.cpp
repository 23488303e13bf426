// SPDX-License-Identifier: Apache-2.0
#include "Errors.h"

#include <cctype>
#include <ostream>

#include "mav_host/Host.h"

namespace cli {
namespace {

using mav_platform::JSONValue;

KeptReports* theKept = nullptr;

bool isWordAt(const std::string& text, std::size_t place) {
    return place < text.size() && std::isalnum(static_cast<unsigned char>(text[place])) != 0;
}

/// Where the first sentence ends, behind its full stop; quoted names end none.
std::size_t firstSentence(const std::string& text) {
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\'' && !quoted) {
            quoted = i == 0 || !isWordAt(text, i - 1);
        } else if (text[i] == '\'') {
            quoted = isWordAt(text, i + 1);
        }
        if (!quoted && text.compare(i, 2, ". ") == 0) return i + 1;
    }
    return text.size();
}

}  // namespace

KeptReports::KeptReports() {
    theKept = this;
}

KeptReports::~KeptReports() {
    close();
    theKept = nullptr;
}

void KeptReports::onReport(const ComMsg& message) {
    constexpr std::size_t MOST = 100;
    ComMsgMgr::sendMsg(message.level, message.group, message.mask, message.id, message.args);
    if (messages_.size() < MOST) messages_.push_back(message);
}

void KeptReports::onLines(const std::string& text) {
    mav_host::console() << text << std::flush;
}

JSONValue KeptReports::take() {
    JSONValue list = JSONValue::list();
    if (theKept == nullptr) return list;
    theKept->flush();
    for (const ComMsg& message : theKept->messages_) {
        list.add(JSONValue::object()
                     .add("id", std::string(ComMsgMgr::number(message)))
                     .add("severity", std::string(ComMsgMgr::severity(message)))
                     .add("text", ComMsgMgr::text(message)));
    }
    theKept->messages_.clear();
    return list;
}

void addError(JSONValue& object, const std::string& sentences) {
    const std::size_t end = firstSentence(sentences);
    object.add("message", sentences.substr(0, end))
        .add("hint",
             JSONValue::orNull(end < sentences.size() ? sentences.substr(end + 1) : std::string()))
        .add("reports", KeptReports::take());
}

std::string errorAnswer(int code, const std::string& sentences) {
    JSONValue answer = JSONValue::answer("error").add("code", code);
    addError(answer, sentences);
    return answer.text();
}

}  // namespace cli
