// SPDX-License-Identifier: Apache-2.0
#include "mav_host/ComMsgMgr.h"

#include <iostream>

#include "MessageCatalogue.h"

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

void appendVisible(std::string& line, std::string_view text) {
    constexpr char HEX[] = "0123456789ABCDEF";
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code >= 0x20 && code != 0x7F) {
            line += c;
        } else {
            line += {'\\', 'x', HEX[code >> 4U], HEX[code & 15U]};
        }
    }
}

void appendSentence(std::string& line, std::string_view sentence,
                    const HSTVector<std::string>& args) {
    for (std::size_t i = 0; i < sentence.size(); ++i) {
        if (sentence[i] != '%' || i + 1 == sentence.size()) {
            line += sentence[i];
            continue;
        }
        const auto index = static_cast<std::size_t>(sentence[++i] - '1');
        if (index < args.size()) appendVisible(line, args[index]);
    }
}

}  // namespace

ComMsgSink::~ComMsgSink() = default;

void ComMsgMgr::sendMsg(int level, const std::string& group, std::uint32_t mask,
                        const std::string& id, const HSTVector<std::string>& args) {
    try {
        const ComMsg message{level, group, mask, id, args};
        if (theSink != nullptr) {
            theSink->send(message);
        } else {
            std::cerr << format(message) + "\n" << std::flush;
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
    const std::string_view key = catalogueKey(message.id);
    std::string line(label(message.mask));
    line.append(": [").append(message.group).append(" ").append(key).append("] ");
    const std::string_view known = sentence(key);
    if (!known.empty()) {
        appendSentence(line, known, message.args);
        return line;
    }
    for (std::size_t i = 0; i < message.args.size(); ++i) {
        if (i != 0) line += ", ";
        appendVisible(line, message.args[i]);
    }
    return line;
}

std::string_view ComMsgMgr::sentence(std::string_view catalogueKey) {
    for (const mav_host::CatalogueEntry& entry : mav_host::MESSAGE_CATALOGUE) {
        if (entry.key == catalogueKey) return entry.sentence;
    }
    return {};
}
