// SPDX-License-Identifier: MIT
#include "linux/LinuxWorkspace.h"

#include "linux/Bus.h"
#include "linux/base/Folders.h"
#include "linux/base/LocalZone.h"
#include "linux/base/SettingsPages.h"

#include <QDBusVariant>
#include <QProcess>
#include <QStandardPaths>
#include <QVariantMap>

#include <unistd.h>

namespace kivo {
namespace {

const QString hostname = QStringLiteral("org.freedesktop.hostname1");
const QString hostnamePath = QStringLiteral("/org/freedesktop/hostname1");
const QString prettyHostname = QStringLiteral("PrettyHostname");

bool isInstalled(const std::string& program) {
    return !QStandardPaths::findExecutable(QString::fromStdString(program)).isEmpty();
}

} // namespace

LinuxWorkspace::LinuxWorkspace(const QDBusConnection& session, const QDBusConnection& system, LogSink& log)
    : system_(system), logger_(log, "workspace"), motion_(session) {
    system_.connect(hostname, hostnamePath, propertiesInterface, QStringLiteral("PropertiesChanged"), this,
                    SLOT(hostnameChanged(QString, QVariantMap, QStringList)));
    askName();
}

void LinuxWorkspace::askName() {
    auto call =
        QDBusMessage::createMethodCall(hostname, hostnamePath, propertiesInterface, QStringLiteral("Get"));
    call.setArguments({hostname, prettyHostname});
    callBus(system_, call, this, [this](const QDBusMessage& reply) {
        if (reply.type() != QDBusMessage::ErrorMessage)
            prettyName_ = unwrapped(reply.arguments().value(0)).toString();
    });
}

void LinuxWorkspace::hostnameChanged(const QString&, const QVariantMap& changed,
                                     const QStringList& invalidated) {
    if (changed.contains(prettyHostname))
        prettyName_ = unwrapped(changed.value(prettyHostname)).toString();
    else if (invalidated.contains(prettyHostname))
        askName();
}

void LinuxWorkspace::open(std::string_view url) {
    std::vector<std::string> command{"xdg-open", std::string(url)};
    if (const auto page = settingsPage(url)) {
        command = settingsCommand(*page, environment("XDG_CURRENT_DESKTOP").value_or(""), isInstalled);
        if (command.empty()) {
            logger_.error("Opening settings failed: no program for this desktop's settings is installed");
            return;
        }
    }
    QStringList arguments;
    for (std::size_t i = 1; i < command.size(); ++i)
        arguments.append(QString::fromStdString(command[i]));
    QProcess process;
    process.setProgram(QString::fromStdString(command[0]));
    process.setArguments(arguments);
    // What a desktop's programs print is not ours to show.
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (!process.startDetached())
        logger_.error("Opening \"" + std::string(url) + "\" failed: " + command[0] + " does not start");
}

std::optional<std::string> LinuxWorkspace::computerName() {
    if (!prettyName_.isEmpty())
        return prettyName_.toStdString();
    char name[256] = {};
    if (gethostname(name, sizeof name - 1) != 0 || name[0] == '\0')
        return std::nullopt;
    const std::string full = name;
    return full.substr(0, full.find('.'));
}

std::optional<std::string> LinuxWorkspace::environment(std::string_view name) {
    return environmentVariable(name);
}

bool LinuxWorkspace::reduceMotion() {
    return motion_.isReduced();
}

std::string LinuxWorkspace::timeZone() {
    return localZone();
}

} // namespace kivo
