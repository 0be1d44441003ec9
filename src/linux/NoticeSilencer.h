// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Folders.h"
#include "linux/base/HelperProgram.h"
#include "support/Log.h"
#include "support/MainLoop.h"
#include "support/Subscription.h"

#include <QDBusConnection>
#include <QObject>
#include <QProcess>

#include <memory>
#include <optional>
#include <string>

namespace kivo {

// Keeps the desktop's own low-battery notice silent while that is wanted, by the desktop's switch for it. The
// work is done by the helper kivo-notices, one at a time, the latest wish last. Where nothing was changed and
// nothing is wanted, nothing runs.
class NoticeSilencer final : public QObject {
public:
    // `program` is the helper's path; nothing can be done when it is empty.
    NoticeSilencer(MainLoop& loop, QDBusConnection session, const Folders& folders, LogSink& log,
                   std::string program = helperProgram("kivo-notices"));
    // Without Kivo nobody else would warn: what was there comes back. Waits for it, seconds at most; what does
    // not come back now does when Kivo starts again.
    ~NoticeSilencer() override;

    void silence(bool isSilent);

private:
    void next();
    std::unique_ptr<QProcess> start(bool isSilent);
    void ended();
    void take(QProcess& process);
    // Whether something was changed that is not back yet.
    bool hasMemory() const;

    MainLoop& loop_;
    QDBusConnection session_;
    Logger logger_;
    std::string memory_;
    std::string program_;
    std::optional<bool> wanted_;
    std::optional<bool> done_; // also when it failed: the next wish tries again
    std::unique_ptr<QProcess> process_;
    Subscription limit_;
};

} // namespace kivo
