// SPDX-License-Identifier: MIT
#include "linux/Bus.h"

#include "linux/PrivateBus.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

// A reply within the call would run a component's callback before its caller is ready for it.
TEST(Bus, AnswersLaterAndNotAtAllWithoutAContext) {
    PrivateBus bus;
    auto context = std::make_unique<QObject>();
    int answers = 0;
    const auto ask = [&] {
        callBus(bus.connection(), busCall("NameHasOwner", {"org.freedesktop.DBus"}), context.get(),
                [&](const QDBusMessage& reply) {
                    EXPECT_TRUE(reply.arguments().value(0).toBool());
                    ++answers;
                });
    };
    ask();
    EXPECT_EQ(answers, 0);
    EXPECT_TRUE(eventually([&] { return answers == 1; }));

    ask();
    context.reset();
    EXPECT_FALSE(eventually([&] { return answers == 2; }, 100));
}

TEST(Bus, WithoutABusTheErrorComesLater) {
    QObject context;
    std::optional<QDBusMessage::MessageType> type;
    callBus(QDBusConnection(QStringLiteral("no such bus")), busCall("ListNames", {}), &context,
            [&](const QDBusMessage& reply) { type = reply.type(); });
    EXPECT_FALSE(type);
    ASSERT_TRUE(eventually([&] { return type.has_value(); }));
    EXPECT_EQ(*type, QDBusMessage::ErrorMessage);
}

} // namespace
} // namespace kivo
