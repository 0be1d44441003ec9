// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QLoggingCategory>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests))
        return RUN_ALL_TESTS();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The platform without a display says at each call what it cannot do.
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
