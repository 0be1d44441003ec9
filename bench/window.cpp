// SPDX-License-Identifier: MIT
// The floor of an island: a raster window that was made before, shown and painted by a QtDBus slot.

#include <QDBusConnection>
#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>
#include <QVariantMap>

class Window : public QRasterWindow {
    Q_OBJECT
public:
    Window() {
        QSurfaceFormat format;
        format.setAlphaBufferSize(8);
        setFormat(format);
        setFlags(Qt::FramelessWindowHint | Qt::Tool | Qt::BypassWindowManagerHint |
                 Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus);
        setGeometry(700, 300, 460, 154);
        create();
    }

public Q_SLOTS:
    void changed(const QString&, const QVariantMap& values, const QStringList&) {
        setVisible(!values.value(QStringLiteral("Online")).toBool());
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(QRect(0, 0, width(), height()), Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(QRectF(44, 44, 372, 66), 33, 33);
        painter.setPen(QPen(QColor(76, 217, 100), 3.5, Qt::SolidLine, Qt::RoundCap));
        painter.drawArc(QRectF(68, 61, 32, 32), 90 * 16, -280 * 16);
        painter.setPen(Qt::white);
        QFont font;
        font.setPixelSize(17);
        font.setBold(true);
        painter.setFont(font);
        painter.drawText(114, 74, QStringLiteral("Unplugged"));
        font.setPixelSize(13);
        painter.setFont(font);
        painter.drawText(114, 94, QStringLiteral("79% · 3 h 20 min left"));
    }
};

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    application.setQuitOnLastWindowClosed(false);
    Window window;
    const QString owner = QString::fromUtf8(argv[1]);
    QDBusConnection::systemBus().connect(
        owner, QStringLiteral("/org/freedesktop/UPower/devices/line_power_FLOOR"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"), &window,
        SLOT(changed(QString, QVariantMap, QStringList)));
    return application.exec();
}

#include "window.moc"
