// SPDX-License-Identifier: MIT
#pragma once

#include "support/PropertyValue.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <string_view>

namespace kivo {

// Sends a method call and returns at once. `done` gets the reply or the error later on the main thread, also
// when there is no bus at all; it is not called once `context` is gone. Without `done` the answer is ignored.
// No answer within the timeout (milliseconds, -1 for Qt's 25 s) is an error.
void callBus(const QDBusConnection& bus, const QDBusMessage& call, QObject* context,
             std::function<void(const QDBusMessage& reply)> done, int timeout = -1);

// Asks the bus itself, for example "NameHasOwner".
QDBusMessage busCall(const QString& method, const QVariantList& arguments);

// The interface of every object's properties.
inline const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

// Where a signal comes from. The sender is best a unique name: with a well-known one Qt asks the bus for its
// owner and waits for the answer.
struct SignalSource {
    QString sender;
    QString path;
    QString interface;
    QString signal;
    QStringList arguments{}; // the first arguments that a signal must have; empty for any
};

// That an object's interface has other properties.
SignalSource propertiesOf(const QString& sender, const QString& path, const QString& interface);

// Calls the slot (`SLOT(…)`) for each signal of the source, or no longer does. Nothing is asked of a bus
// without a sender.
void followSignal(QDBusConnection& bus, const SignalSource& source, QObject* receiver, const char* slot,
                  bool isFollowed);

// UTF-8 as the bus's binding takes it.
QString busText(std::string_view utf8);

// What a value of type `v`, however deeply wrapped, holds.
QVariant unwrapped(QVariant value);

// A dictionary of type `a{sv}` without Qt. Values that are no boolean, number, text or path become null.
Dictionary dictionaryFrom(const QVariantMap& map);

} // namespace kivo
