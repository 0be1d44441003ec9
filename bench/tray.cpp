// SPDX-License-Identifier: MIT
// The floor of a program that lives in the tray: an icon with a menu, and nothing behind them.

#include <QApplication>
#include <QIcon>
#include <QMenu>
#include <QPainter>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    application.setQuitOnLastWindowClosed(false);
    QPixmap picture(22, 22);
    picture.fill(Qt::transparent);
    QPainter(&picture).fillRect(2, 6, 16, 10, Qt::black);
    QMenu menu;
    for (int i = 0; i < 12; ++i)
        menu.addAction(QStringLiteral("Device %1").arg(i));
    QSystemTrayIcon icon{QIcon(picture)};
    icon.setContextMenu(&menu);
    icon.setToolTip(QStringLiteral("82 %"));
    icon.show();
    return application.exec();
}
