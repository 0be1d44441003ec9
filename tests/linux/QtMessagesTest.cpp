// SPDX-License-Identifier: MIT
#include "linux/QtMessages.h"

#include "linux_base/RecordedLog.h"

#include <QLoggingCategory>
#include <gtest/gtest.h>

namespace kivo {
namespace {

using Lines = std::vector<std::string>;

Lines outside;

TEST(QtMessages, AreLinesOfTheLogUntilTheHandlerGoes) {
    const auto original = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
        outside.push_back(text.toStdString());
    });
    RecordedLog log;
    {
        const QtMessages messages(log);
        const QLoggingCategory theme("kivo.test.theme");
        qWarning("no such theme");
        qCritical("no display");
        qInfo("hello");
        qCWarning(theme, "old");
    }
    qWarning("afterwards");
    qInstallMessageHandler(original);
    EXPECT_EQ(log.lines(), (Lines{"default qt: no such theme", "error qt: no display", "info qt: hello",
                                  "default qt: kivo.test.theme: old"}));
    EXPECT_EQ(outside, Lines{"afterwards"});
}

} // namespace
} // namespace kivo
