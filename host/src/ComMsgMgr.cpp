// SPDX-License-Identifier: Apache-2.0
#include "mav_host/ComMsgMgr.h"

#include <ostream>

#include "mav_host/Messages.h"
#include "mav_host/Printable.h"
#include "mav_host/ReportScope.h"

namespace {

ComMsgSink* theSink = nullptr;

std::string_view label(std::uint32_t mask) {
    switch (mask) {
        case ComMsgMgr::ERROR:
            return "ERROR";
        case ComMsgMgr::CRITICAL_WARNING:
            return "CRITICAL WARNING";
        case ComMsgMgr::WARNING:
            return "WARNING";
        default:
            return "INFO";
    }
}

/// "74-14" of "@74-14@%s%s"; the whole id when it has another form.
std::string_view catalogueKey(std::string_view id) {
    if (id.empty() || id.front() != '@') return id;
    const std::size_t end = id.find('@', 1);
    return end == std::string_view::npos ? id : id.substr(1, end - 1);
}

void appendSentence(std::string& line, std::string_view sentence,
                    const HSTVector<std::string>& args) {
    for (std::size_t i = 0; i < sentence.size(); ++i) {
        if (sentence[i] == '[') {
            // Left out when it tells of a line that is not known.
            const std::size_t end = sentence.find(']', i);
            std::string part;
            appendSentence(part, sentence.substr(i + 1, end - i - 1), args);
            if (!part.ends_with(" 0")) line += part;
            i = end;
            continue;
        }
        if (sentence[i] != '%' || i + 1 == sentence.size()) {
            line += sentence[i];
            continue;
        }
        const auto index = static_cast<std::size_t>(sentence[++i] - '1');
        if (index < args.size()) line += mav_host::printable(args[index]);
    }
}

}  // namespace

ComMsgSink::~ComMsgSink() = default;

void ComMsgMgr::sendMsg(int level, const std::string& group, std::uint32_t mask,
                        const std::string& id, const HSTVector<std::string>& args) {
    try {
        const ComMsg message{level, group, mask, id, args};
        if (mav_host::ReportScope* const scope = mav_host::ReportScope::innermost()) {
            scope->take(message);
        } else if (theSink != nullptr) {
            theSink->send(message);
        } else {
            mav_host::shownErrors() << format(message) + "\n" << std::flush;
        }
    } catch (...) {
        // A report that cannot be delivered must not end what is being reported on.
    }
}

ComMsgSink* ComMsgMgr::setSink(ComMsgSink* sink) {
    ComMsgSink* const before = theSink;
    theSink = sink;
    return before;
}

std::string ComMsgMgr::format(const ComMsg& message) {
    std::string line(label(message.mask));
    line.append(": [").append(message.group).append(" ").append(number(message)).append("] ");
    return line + text(message);
}

std::string_view ComMsgMgr::number(const ComMsg& message) {
    return catalogueKey(message.id);
}

std::string_view ComMsgMgr::severity(const ComMsg& message) {
    switch (message.mask) {
        case ERROR:
            return "error";
        case CRITICAL_WARNING:
            return "critical warning";
        case WARNING:
            return "warning";
        default:
            return "info";
    }
}

std::string ComMsgMgr::text(const ComMsg& message) {
    std::string line;
    const std::string_view known = sentence(number(message));
    if (!known.empty()) {
        appendSentence(line, known, message.args);
        return line;
    }
    for (std::size_t i = 0; i < message.args.size(); ++i) {
        if (i != 0) line += ", ";
        line += mav_host::printable(message.args[i]);
    }
    return line;
}

std::string_view ComMsgMgr::sentence(std::string_view catalogueKey) {
#define MAV_MESSAGE_ROW(NAME, LEVEL, MASK, ID, SENTENCE) mav_host::messages::NAME,
    static constexpr mav_host::MessageRow CATALOGUE[] = {MAV_MESSAGES(MAV_MESSAGE_ROW)};
#undef MAV_MESSAGE_ROW
    for (const mav_host::MessageRow& row : CATALOGUE) {
        if (row.key() == catalogueKey) return row.sentence;
    }
    return {};
}
