// SPDX-License-Identifier: MIT
#include "linux/LinuxAccessibility.h"

#include "linux/AtSpiSource.h"
#include "linux/Bus.h"
#include "linux/NameOwner.h"
#include "linux/base/AccessibleTree.h"
#include "linux/base/NotificationProcesses.h"
#include "linux/base/ProcessOwners.h"

#include <QDBusVariant>

#include <memory>
#include <utility>

namespace kivo {
namespace {

const QString service = QStringLiteral("org.a11y.Bus");
const QString path = QStringLiteral("/org/a11y/bus");
const QString status = QStringLiteral("org.a11y.Status");
const QString isEnabledProperty = QStringLiteral("IsEnabled");

// Milliseconds.
constexpr int longestAnswer = 3000;
constexpr int longestTree = 800;
constexpr int longestTexts = 700;

constexpr std::string_view notificationProcesses = "com.apple.notificationcenterui";

// What one reading sees of the accessibility bus. Lives on the reading's thread.
class BusProcesses final : public AccessibleProcesses {
public:
    explicit BusProcesses(std::string address) : address_(std::move(address)) {}

    std::optional<std::int32_t> processWithIdentifier(std::string_view identifier) override {
        if (identifier != notificationProcesses || address_.empty())
            return std::nullopt;
        connection_ = std::make_shared<AtSpiConnection>(address_, Deadline::in(longestTree));
        for (auto& application : connection_->applications()) {
            const auto known = notificationProcess(programOfProcess(application.pid));
            if (!known)
                continue;
            found_ = std::move(application);
            form_ = known->form;
            return found_.pid;
        }
        return std::nullopt;
    }

    std::shared_ptr<AccessibilityElement> applicationElement(std::int32_t pid) override {
        if (found_.pid != pid)
            return nullptr;
        auto source = std::make_shared<AtSpiSource>(connection_, found_.name);
        auto element = readAccessibleTree(std::move(source), found_.root, form_);
        connection_->setDeadline(Deadline::in(longestTexts));
        return element;
    }

private:
    std::string address_;
    std::shared_ptr<AtSpiConnection> connection_;
    AtSpiConnection::Application found_;
    PopUpForm form_;
};

} // namespace

LinuxAccessibility::LinuxAccessibility(MainLoop& loop, const QDBusConnection& session,
                                       std::function<void(bool)> silence)
    : loop_(loop), session_(session), silence_(std::move(silence)) {
    session_.connect(service, path, propertiesInterface, QStringLiteral("PropertiesChanged"), this,
                     SLOT(statusChanged(QDBusMessage)));
    service_ = std::make_unique<NameOwner>(session_, service, [this](const QString& owner) {
        if (owner.isEmpty())
            isEnabled_.set(false);
        else
            askStatus({});
    });
}

LinuxAccessibility::~LinuxAccessibility() = default;

void LinuxAccessibility::call(const QDBusMessage& message, Done done) {
    callBus(session_, message, this, std::move(done), longestAnswer);
}

void LinuxAccessibility::askStatus(Done done) {
    auto question = QDBusMessage::createMethodCall(service, path, propertiesInterface, QStringLiteral("Get"));
    question.setAutoStartService(false);
    question.setArguments({status, isEnabledProperty});
    call(question, [this, done = std::move(done)](const QDBusMessage& reply) {
        isEnabled_.set(unwrapped(reply.arguments().value(0)).toBool() &&
                       reply.type() == QDBusMessage::ReplyMessage);
        if (done)
            done(reply);
    });
}

void LinuxAccessibility::statusChanged(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    if (arguments.value(0).toString() == status)
        askStatus({});
}

void LinuxAccessibility::isProcessTrustedWithPrompt(std::function<void(bool isTrusted)> answer) {
    if (isEnabled_.get() || !session_.isConnected())
        return answer(isEnabled_.get());
    auto order = QDBusMessage::createMethodCall(service, path, propertiesInterface, QStringLiteral("Set"));
    order.setArguments({status, isEnabledProperty, QVariant::fromValue(QDBusVariant(true))});
    // Some desktops take the order and stay as they are: what counts is what they say afterwards.
    call(order, [this, answer = std::move(answer)](const QDBusMessage&) {
        askStatus([this, answer](const QDBusMessage&) { answer(isEnabled_.get()); });
    });
}

void LinuxAccessibility::read(Reading reading) {
    const auto start = [this, reading = std::move(reading)](std::string address) {
        reader_.add([&loop = loop_, reading, address = std::move(address)] {
            BusProcesses processes(address);
            reading(processes, [&loop](std::function<void()> task) { loop.post(std::move(task)); });
        });
    };
    if (!session_.isConnected())
        return start({});
    // Asked each time: the bus may be another one than before.
    auto question = QDBusMessage::createMethodCall(service, path, service, QStringLiteral("GetAddress"));
    question.setAutoStartService(false);
    call(question, [start](const QDBusMessage& reply) {
        const bool isAddress = reply.type() == QDBusMessage::ReplyMessage;
        start(isAddress ? reply.arguments().value(0).toString().toStdString() : std::string());
    });
}

} // namespace kivo
