// SPDX-License-Identifier: MIT
#include "linux/QtMessages.h"

#include <QString>

#include <cstring>
#include <mutex>
#include <string>

namespace kivo {
namespace {

// Qt's handler is a bare function, and may still run on another thread when ours is taken back.
struct Route {
    std::mutex mutex;
    LogSink* log = nullptr;
    QtMessageHandler previous = nullptr;
};

Route& route() {
    static Route only;
    return only;
}

LogLevel level(QtMsgType type) {
    switch (type) {
    case QtDebugMsg:
        return LogLevel::debug;
    case QtInfoMsg:
        return LogLevel::info;
    case QtWarningMsg:
        return LogLevel::default_;
    case QtCriticalMsg:
    case QtFatalMsg:
        break;
    }
    return LogLevel::error;
}

void handle(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    std::string text = message.toStdString();
    if (context.category && std::strcmp(context.category, "default") != 0)
        text = std::string(context.category) + ": " + text;
    const std::lock_guard lock(route().mutex);
    if (route().log)
        route().log->log(level(type), "qt", text);
}

} // namespace

QtMessages::QtMessages(LogSink& log) {
    const std::lock_guard lock(route().mutex);
    route().log = &log;
    route().previous = qInstallMessageHandler(handle);
}

QtMessages::~QtMessages() {
    const std::lock_guard lock(route().mutex);
    qInstallMessageHandler(route().previous);
    route().log = nullptr;
}

} // namespace kivo
