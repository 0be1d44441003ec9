// SPDX-License-Identifier: MIT
#include "views/Page.h"

#include "views/Convert.h"
#include "views/FormControls.h"
#include "views/Surface.h"

#include <QApplication>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kivo {

namespace {

constexpr int revealRoom = 24; // around what is brought into view

// A bar as thin as it can be, over nothing.
class ThinScrollBar final : public QScrollBar {
public:
    ThinScrollBar() : QScrollBar(Qt::Vertical) { setAttribute(Qt::WA_Hover); }
    QSize sizeHint() const override { return {10, 40}; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        const double all = maximum() - minimum() + pageStep();
        if (maximum() <= minimum() || all <= 0)
            return;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor ink = surfaceFor(palette()).ink;
        ink.setAlphaF(underMouse() || isSliderDown() ? 0.4F : 0.22F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        const double room = height() - 4;
        const double length = std::max(room * pageStep() / all, 28.0);
        const double top = 2 + (room - length) * (value() - minimum()) / (maximum() - minimum());
        painter.drawRoundedRect(QRectF(2, top, 6, length), 3, 3);
    }
};

} // namespace

void orderFocus(QWidget* root) {
    QWidget* previous = nullptr;
    for (QWidget* widget : root->findChildren<QWidget*>()) {
        if (widget->focusPolicy() == Qt::NoFocus || widget->window() != root->window())
            continue;
        if (previous)
            QWidget::setTabOrder(previous, widget);
        previous = widget;
    }
}

Page::Page(QWidget* content, const std::string& spoken, int wanted) : wanted_(wanted) {
    setAccessibleName(toQString(spoken));
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new ThinScrollBar);
    verticalScrollBar()->setAccessibleName(toQString(spoken));
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    auto* holder = new QWidget;
    auto* line = new QVBoxLayout(holder);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(content);
    setWidget(holder);
    holder->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    // Also when it comes from the tabs above or the buttons below.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* focused) {
        if (focused && isAncestorOf(focused) && showsFocus(*focused))
            ensureWidgetVisible(focused, 0, revealRoom);
    });
}

void Page::resizeEvent(QResizeEvent* event) {
    const int side = std::max((width() - wanted_) / 2, 16);
    // The bar stands in the margin, so that it does not push the column aside.
    const int bar = width() - viewport()->width();
    widget()->layout()->setContentsMargins(side, 20, std::max(side - bar, 6), 24);
    QScrollArea::resizeEvent(event);
}

void Page::reveal(QWidget* part) {
    revealed_ = part;
}

bool Page::eventFilter(QObject* watched, QEvent* event) {
    const bool isHandled = QScrollArea::eventFilter(watched, event);
    // Everything below has its place by now.
    if (watched == widget() && event->type() == QEvent::Resize && revealed_) {
        const QWidget* part = std::exchange(revealed_, nullptr);
        const int top = part->mapTo(widget(), QPoint(0, 0)).y() - revealRoom;
        const int bottom = top + part->height() + 2 * revealRoom;
        QScrollBar& bar = *verticalScrollBar();
        if (bottom > bar.value() + viewport()->height())
            bar.setValue(std::min(bottom - viewport()->height(), top));
    }
    return isHandled;
}

void revealGrown(QWidget* part) {
    for (QWidget* above = part->parentWidget(); above; above = above->parentWidget()) {
        if (auto* page = dynamic_cast<Page*>(above))
            page->reveal(part);
    }
}

} // namespace kivo
