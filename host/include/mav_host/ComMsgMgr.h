// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"

/// One report on its way to the message sink.
struct MAV_API ComMsg {
    int level = 1;                ///< 1, 2 or 3
    std::string group;            ///< "platform"
    std::uint32_t mask = 0;       ///< severity, one of ComMsgMgr's masks
    std::string id;               ///< such as "@74-14@%s%s"
    HSTVector<std::string> args;  ///< one per placeholder of the id, in order
};

/// Receives every report. A tool installs its own with `ComMsgMgr::setSink`.
class MAV_API ComMsgSink {
  public:
    virtual ~ComMsgSink();
    /// Called once per report, on the thread that raised it. Must not throw.
    virtual void send(const ComMsg& message) = 0;
};

/// The host's message manager: every report of the library goes through `sendMsg`.
class MAV_API ComMsgMgr {
  public:
    static constexpr std::uint32_t STATUS = 0x4000000;
    static constexpr std::uint32_t WARNING = 0x8000000;
    static constexpr std::uint32_t CRITICAL_WARNING = 0x10000000;
    static constexpr std::uint32_t ERROR = 0x20000000;

    /// Hands the report to this thread's innermost ReportScope, else to the process's sink. Never
    /// throws; who throws on receipt is ignored. The library's own reports go through
    /// mav_host::report, which knows their ids.
    static void sendMsg(int level, const std::string& group, std::uint32_t mask,
                        const std::string& id, const HSTVector<std::string>& args = {});

    /// Replaces the process's sink; null restores the default one, which writes `format` and a line
    /// end to standard error. The sink stays owned by the caller and must outlive its installation.
    /// Answers the sink that was in force before (null: the default one).
    static ComMsgSink* setSink(ComMsgSink* sink);

    /// The report as one line, such as "ERROR: [platform 74-14] sentence". Control characters in
    /// arguments are shown as \xNN, so that a report stays one line.
    static std::string format(const ComMsg& message);
    /// Its parts: the number such as "74-14" (part of `message.id`), the severity ("error",
    /// "critical warning", "warning", "info") and the sentence.
    static std::string_view number(const ComMsg& message);
    static std::string_view severity(const ComMsg& message);
    static std::string text(const ComMsg& message);

    /// The catalogue's sentence for "74-14" with %1, %2, … for the arguments; empty for an id that
    /// the catalogue does not hold.
    static std::string_view sentence(std::string_view catalogueKey);
};
