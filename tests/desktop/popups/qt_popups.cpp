// SPDX-License-Identifier: MIT
// Shows Qt dialogs: NAME…; prints "closed NAME" when one's button is pressed.
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <cstdio>

namespace {

struct PopUp {
    const char* name;
    const char* heading;
    const char* text;
    const char* button;
};

constexpr PopUp popUps[] = {
    {"english", "Power", "Your computer will sleep soon", "Close"},
    {"spanish", "Energía", "El equipo SE SUSPENDERÁ", "Cerrar"},
    {"ordinary", "Mail", "Three new messages", "Close"},
};

void show(const PopUp& popUp) {
    // Closing hides it and keeps it, as many programs do with theirs.
    auto* dialog = new QDialog;
    dialog->setWindowTitle(QString::fromUtf8(popUp.heading));
    auto* layout = new QVBoxLayout(dialog);
    layout->addWidget(new QLabel(QString::fromUtf8(popUp.text)));
    layout->addWidget(new QPushButton(QStringLiteral("Later")));
    auto* button = new QPushButton(QString::fromUtf8(popUp.button));
    layout->addWidget(button);
    QObject::connect(button, &QPushButton::clicked, dialog, [dialog, name = popUp.name] {
        std::printf("closed %s\n", name);
        std::fflush(stdout);
        dialog->hide();
    });
    dialog->show();
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    for (int i = 1; i < argc; ++i)
        for (const auto& popUp : popUps)
            if (QLatin1String(argv[i]) == QLatin1String(popUp.name))
                show(popUp);
    std::puts("shown");
    std::fflush(stdout);
    return QApplication::exec();
}
