// SPDX-License-Identifier: MIT
#include "linux/NoticeSilencer.h"

#include "linux/base/DesktopNotices.h"
#include "linux/base/NotifyrcSwitch.h"

#include <QDBusMessage>

#include <unistd.h>
#include <utility>

namespace kivo {
namespace {

const Duration longestRun = seconds(10);
constexpr int longestAtEnd = 2000; // milliseconds

void waitFor(QProcess& process) {
    if (process.state() == QProcess::NotRunning || process.waitForFinished(longestAtEnd))
        return;
    process.kill();
    process.waitForFinished(longestAtEnd);
}

} // namespace

NoticeSilencer::NoticeSilencer(MainLoop& loop, QDBusConnection session, const Folders& folders, LogSink& log,
                               std::string program)
    : loop_(loop),
      session_(std::move(session)),
      logger_(log, "notices"),
      memory_(DesktopNotices::memoryPath(folders)),
      program_(std::move(program)) {}

NoticeSilencer::~NoticeSilencer() {
    limit_.cancel();
    if (process_) {
        process_->disconnect(this);
        waitFor(*process_);
        process_.reset();
    }
    if (!hasMemory())
        return;
    if (const auto last = start(false)) {
        waitFor(*last);
        take(*last);
    }
}

void NoticeSilencer::silence(bool isSilent) {
    wanted_ = isSilent;
    if (!process_)
        next();
}

void NoticeSilencer::next() {
    if (!wanted_ || done_ == wanted_)
        return;
    done_ = wanted_;
    if (!*wanted_ && !hasMemory())
        return;
    process_ = start(*wanted_);
    if (!process_)
        return;
    connect(process_.get(), &QProcess::finished, this, [this] { ended(); });
    connect(process_.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            ended();
    });
    limit_ = loop_.after(longestRun, [this] { process_->kill(); });
    if (process_->state() == QProcess::NotRunning)
        ended();
}

std::unique_ptr<QProcess> NoticeSilencer::start(bool isSilent) {
    if (program_.empty()) {
        logger_.error("The desktop's own notice stays as it is: kivo-notices is not installed");
        return nullptr;
    }
    auto process = std::make_unique<QProcess>();
    process->setStandardInputFile(QProcess::nullDevice());
    process->start(QString::fromStdString(program_),
                   {isSilent ? QStringLiteral("silence") : QStringLiteral("restore")});
    return process;
}

void NoticeSilencer::ended() {
    limit_.cancel();
    take(*process_);
    // This may be one of its own callbacks.
    process_.release()->deleteLater();
    next();
}

void NoticeSilencer::take(QProcess& process) {
    if (process.error() == QProcess::FailedToStart || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        const auto words = process.readAllStandardError().trimmed().toStdString();
        logger_.error("Changing the desktop's own notice failed: " +
                      (words.empty() ? process.errorString().toStdString() : words));
    }
    if (!process.readAllStandardOutput().contains(NotifyrcSwitch::ownName.data()))
        return;
    // Programs that read that file keep it until they are told.
    auto signal = QDBusMessage::createSignal(QStringLiteral("/Config"), QStringLiteral("org.kde.knotification"),
                                             QStringLiteral("reparseConfiguration"));
    signal.setArguments({QString::fromUtf8(NotifyrcSwitch::ownName.data())});
    session_.send(signal);
}

bool NoticeSilencer::hasMemory() const {
    return access(memory_.c_str(), F_OK) == 0;
}

} // namespace kivo
