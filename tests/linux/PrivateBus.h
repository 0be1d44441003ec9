// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <vector>

namespace kivo {

// Runs the event loop until `condition` holds; false after five seconds (the test then fails).
inline bool eventually(const std::function<bool()>& condition, int milliseconds = 5000) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > milliseconds)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

// A message bus of the test's own, with the programs started on it; all end with it.
class PrivateBus {
public:
    PrivateBus() {
        const QString configuration = folder.filePath(QStringLiteral("bus.conf"));
        QFile file(configuration);
        if (!file.open(QIODevice::WriteOnly))
            qFatal("no temporary folder");
        file.write("<busconfig><type>session</type><keep_umask/><listen>unix:tmpdir=/tmp</listen>"
                   "<auth>EXTERNAL</auth><policy context=\"default\"><allow user=\"*\"/>"
                   "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
                   "<allow own=\"*\"/></policy><servicedir>" +
                   folder.path().toUtf8() + "</servicedir></busconfig>");
        file.close();
        daemon_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        daemon_.start(QStringLiteral("dbus-daemon"),
                      {QStringLiteral("--config-file=") + configuration, QStringLiteral("--nofork"),
                       QStringLiteral("--print-address")});
        if (!daemon_.waitForStarted() || !daemon_.waitForReadyRead())
            qFatal("dbus-daemon does not start");
        address = QString::fromUtf8(daemon_.readLine()).trimmed();
        static int count = 0;
        name_ = QStringLiteral("private-%1").arg(++count);
        connection_ = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(address, name_));
    }
    ~PrivateBus() {
        for (auto& program : programs_)
            end(*program);
        connection_.reset();
        QDBusConnection::disconnectFromBus(name_);
        end(daemon_);
    }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const QDBusConnection& connection() const { return *connection_; }
    // The bus goes and leaves its connections behind.
    void stop() { end(daemon_); }

    // Starts a program on this bus, as its session and its system bus; it is ended with the bus.
    QProcess& start(const QString& program, const QStringList& arguments, const QString& display = {}) {
        programs_.push_back(std::make_unique<QProcess>());
        QProcess& process = *programs_.back();
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
        environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), address);
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), folder.path());
        if (!display.isEmpty())
            environment.insert(QStringLiteral("DISPLAY"), display);
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        process.waitForStarted();
        return process;
    }
    static void end(QProcess& process) {
        if (process.state() == QProcess::NotRunning)
            return;
        process.kill();
        process.waitForFinished();
    }
    bool waitForName(const QString& service) {
        return eventually([&] { return connection_->interface()->isServiceRegistered(service).value(); });
    }

    QTemporaryDir folder{QStringLiteral("/tmp/kbXXXXXX")};
    QString address;

private:
    QProcess daemon_;
    QString name_;
    std::unique_ptr<QDBusConnection> connection_;
    std::vector<std::unique_ptr<QProcess>> programs_;
};

} // namespace kivo
