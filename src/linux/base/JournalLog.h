// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Descriptor.h"
#include "linux/base/Folders.h"
#include "support/Log.h"

#include <string>

namespace kivo {

// Log lines for the journal, with fields of their own (KIVO_CATEGORY beside the usual ones), when standard
// error is the journal; otherwise readable lines on standard error ("kivo coordinator error: …"). Lines of
// level debug are dropped unless KIVO_LOG is "debug". A line that cannot be delivered is lost.
class JournalLog final : public LogSink {
public:
    struct Places {
        int standardError = 2;
        std::string journalSocket = "/run/systemd/journal/socket";
    };
    explicit JournalLog(const EnvironmentLookup& environment = environmentVariable)
        : JournalLog(environment, Places()) {}
    JournalLog(const EnvironmentLookup& environment, const Places& places);

    void log(LogLevel level, std::string_view category, std::string_view message) override;

private:
    bool sendToJournal(LogLevel level, std::string_view category, std::string_view message) const;

    int standardError_;
    Descriptor journal_; // its socket, when standard error is the journal
    bool showsDebug_;
};

} // namespace kivo
