// SPDX-License-Identifier: MIT
#include "linux/ApplicationIcons.h"

#include <QFile>

namespace kivo {
namespace {

QString iconName(const std::string& path) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    bool isEntry = false;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine(4096).trimmed();
        if (line.startsWith('['))
            isEntry = line == "[Desktop Entry]";
        else if (isEntry && line.startsWith("Icon") && line.mid(4).trimmed().startsWith('='))
            return QString::fromUtf8(line.mid(line.indexOf('=') + 1).trimmed());
    }
    return {};
}

} // namespace

QIcon applicationIcon(const std::string& desktopEntryPath) {
    const QString name = iconName(desktopEntryPath);
    if (name.isEmpty())
        return {};
    return name.startsWith(QLatin1Char('/')) ? QIcon(name) : QIcon::fromTheme(name);
}

} // namespace kivo
