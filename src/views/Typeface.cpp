// SPDX-License-Identifier: MIT
#include "views/Typeface.h"

#include <QFontDatabase>
#include <QGuiApplication>

namespace kivo {

namespace {

// The desktop's family may change while Kivo runs; looking a family up is slow, so only a change is looked up.
QString roundedFamily(const QString& family) {
    static QString lastFamily;
    static QString lastRounded;
    if (family != lastFamily) {
        lastFamily = family;
        const QString rounded = family + QStringLiteral(" Rounded");
        lastRounded = QFontDatabase::hasFamily(rounded) ? rounded : family;
    }
    return lastRounded;
}

} // namespace

QFont typeface(int size, QFont::Weight weight, bool rounded) {
    QFont font = QGuiApplication::font();
    if (rounded)
        font.setFamily(roundedFamily(font.family()));
    font.setPixelSize(size);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

} // namespace kivo
