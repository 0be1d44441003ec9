// SPDX-License-Identifier: MIT
// The floor of a decision: a QtDBus slot on one device's PropertiesChanged that at once posts a notification.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QVariantMap>

class Slot : public QObject {
    Q_OBJECT
public Q_SLOTS:
    void changed(const QString&, const QVariantMap& values, const QStringList&) {
        auto call = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
            QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
        call << QStringLiteral("Floor") << 0u << QString() << QStringLiteral("Title")
             << values.value(QStringLiteral("Online")).toString() << QStringList() << QVariantMap() << -1;
        QDBusConnection::sessionBus().asyncCall(call);
    }
};

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    Slot slot;
    const QString owner = QString::fromUtf8(argv[1]);
    QDBusConnection::systemBus().connect(
        owner, QStringLiteral("/org/freedesktop/UPower/devices/line_power_FLOOR"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"), &slot,
        SLOT(changed(QString, QVariantMap, QStringList)));
    return application.exec();
}

#include "slot.moc"
