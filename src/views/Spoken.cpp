// SPDX-License-Identifier: MIT
#include "views/Spoken.h"

#include <QAccessibleWidget>
#include <QWidget>

namespace kivo {

namespace {

class SpokenInterface final : public QAccessibleWidget {
public:
    SpokenInterface(QWidget* widget, Spoken& spoken)
        : QAccessibleWidget(widget, spoken.role()), spoken_(spoken) {}

    // Asked each time: a widget may have a screen reader's ear before it is all that it will be.
    QAccessible::Role role() const override { return spoken_.role(); }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (const auto checked = spoken_.checkedState()) {
            state.checkable = true;
            state.checked = *checked;
        }
        if (const auto unfolded = spoken_.unfoldedState()) {
            state.expandable = true;
            state.expanded = *unfolded;
            state.collapsed = !*unfolded;
        }
        return state;
    }
    QStringList actionNames() const override {
        QStringList names;
        if (!spoken_.actionName().isEmpty())
            names << spoken_.actionName();
        return names + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& name) override {
        if (!name.isEmpty() && name == spoken_.actionName())
            spoken_.act();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    Spoken& spoken_;
};

QAccessibleInterface* make(const QString&, QObject* object) {
    auto* spoken = dynamic_cast<Spoken*>(object);
    auto* widget = qobject_cast<QWidget*>(object);
    return spoken && widget ? new SpokenInterface(widget, *spoken) : nullptr;
}

} // namespace

Spoken::Spoken() {
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(make);
        return true;
    }();
}

} // namespace kivo
