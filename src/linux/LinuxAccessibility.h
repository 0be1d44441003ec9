// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Workers.h"
#include "platform/Accessibility.h"
#include "support/MainLoop.h"
#include "support/Observable.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <functional>
#include <memory>

namespace kivo {

class NameOwner;

// Other programs' windows by AT-SPI. Trust is the session's accessibility bus being there and enabled, which is
// followed; asking for it enables it. Nothing is connected to that bus but while a reading runs: each one has a
// connection and a thread of its own, and ends within seconds whatever the other side does.
class LinuxAccessibility final : public QObject, public Accessibility {
    Q_OBJECT
public:
    // `silence` is told each wish about the desktop's own low-battery notice.
    LinuxAccessibility(MainLoop& loop, const QDBusConnection& session, std::function<void(bool)> silence);
    ~LinuxAccessibility() override;

    bool isProcessTrusted() override { return isEnabled_.get(); }
    void isProcessTrustedWithPrompt(std::function<void(bool isTrusted)> answer) override;
    Subscription onTrustChange(std::function<void()> listener) override {
        return isEnabled_.onChange(std::move(listener));
    }
    void read(Reading reading) override;
    void silenceLowBatteryNotice(bool isSilent) override { silence_(isSilent); }

private Q_SLOTS:
    void statusChanged(const QDBusMessage& message);

private:
    using Done = std::function<void(const QDBusMessage& reply)>;
    void call(const QDBusMessage& message, Done done);
    void askStatus(Done done);

    MainLoop& loop_;
    QDBusConnection session_;
    std::function<void(bool)> silence_;
    Observable<bool> isEnabled_{false};
    std::unique_ptr<NameOwner> service_;
    Workers reader_{1};
};

} // namespace kivo
