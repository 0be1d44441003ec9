// SPDX-License-Identifier: MIT
#include "linux/LinuxProcessRunner.h"

#include "linux/base/SystemProfiler.h"

#include <QProcess>

#include <memory>

namespace kivo {

void LinuxProcessRunner::run(std::string path, std::vector<std::string> arguments,
                             std::function<void(std::optional<std::string>)> done) {
    if (path == systemProfiler && arguments == std::vector<std::string>{powerReportArgument}) {
        const auto batteries = registry_.matchingServices(smartBatteryClass);
        const bool isThere = batteries && !batteries->empty();
        loop_.post([done = std::move(done), report = powerReport(isThere ? batteries->front() : std::nullopt)] {
            done(report);
        });
        return;
    }
    auto* process = new QProcess(&context_);
    process->setStandardErrorFile(QProcess::nullDevice());
    process->setStandardInputFile(QProcess::nullDevice());
    auto answer = [process, done = std::move(done), isDone = std::make_shared<bool>(false)](bool hasRun) {
        if (std::exchange(*isDone, true))
            return;
        process->deleteLater();
        done(hasRun ? std::optional(process->readAllStandardOutput().toStdString()) : std::nullopt);
    };
    QObject::connect(process, &QProcess::finished, process, [answer] { answer(true); });
    // A failed launch may be told within start().
    QObject::connect(
        process, &QProcess::errorOccurred, process,
        [answer](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                answer(false);
        },
        Qt::QueuedConnection);
    QStringList list;
    for (const auto& argument : arguments)
        list << QString::fromStdString(argument);
    process->start(QString::fromStdString(path), list);
}

} // namespace kivo
