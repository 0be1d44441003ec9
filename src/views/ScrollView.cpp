// SPDX-License-Identifier: MIT
#include "views/ScrollView.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QWheelEvent>

#include <algorithm>

namespace kivo {

namespace {

constexpr int thumbWidth = 10; // the part that is seen is 4 wide
constexpr int leastThumb = 28;
constexpr int lineHeight = 16;
constexpr int room = 8;

} // namespace

class ScrollView::Thumb final : public QWidget {
public:
    Thumb(ViewContext& context, QWidget* parent) : QWidget(parent), context_(context) {
        setAttribute(Qt::WA_Hover);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor ink = context_.surface.ink;
        ink.setAlphaF(underMouse() ? 0.5F : 0.28F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        painter.drawRoundedRect(QRectF(3, 0, 4, height()), 2, 2);
    }

private:
    ViewContext& context_;
};

ScrollView::ScrollView(ViewContext& context, QWidget* parent, QWidget* content)
    : QWidget(parent), content_(content) {
    content_->setParent(this);
    thumb_ = new Thumb(context, this); // over the content
    thumb_->installEventFilter(this);
    thumb_->hide();
}

int ScrollView::greatestOffset() const {
    return std::max(contentHeight_ - height(), 0);
}

void ScrollView::layOut(int contentHeight) {
    contentHeight_ = contentHeight;
    scrollTo(offset_);
}

void ScrollView::scrollTo(int offset) {
    offset_ = std::clamp(offset, 0, greatestOffset());
    place();
}

void ScrollView::place() {
    content_->setGeometry(0, -offset_, width(), contentHeight_);
    thumb_->setVisible(greatestOffset() > 0);
    thumb_->setGeometry(thumbBox());
}

QRect ScrollView::thumbBox() const {
    if (greatestOffset() == 0)
        return {};
    const int track = height() - 2 * room;
    const int length = std::min(std::max(track * height() / contentHeight_, leastThumb), track);
    const int top = room + (track - length) * offset_ / greatestOffset();
    return {width() - thumbWidth, top, thumbWidth, length};
}

void ScrollView::reveal(const QWidget& part) {
    const int top = part.mapTo(content_, QPoint(0, 0)).y();
    if (top - room < offset_)
        scrollTo(top - room);
    else if (top + part.height() + room > offset_ + height())
        scrollTo(top + part.height() + room - height());
}

void ScrollView::wheelEvent(QWheelEvent* event) {
    const int pixels =
        event->pixelDelta().isNull() ? event->angleDelta().y() * 3 * lineHeight / 120 : event->pixelDelta().y();
    const int before = offset_;
    scrollTo(offset_ - pixels);
    event->setAccepted(offset_ != before || greatestOffset() > 0);
}

void ScrollView::resizeEvent(QResizeEvent*) {
    scrollTo(offset_);
}

bool ScrollView::eventFilter(QObject* watched, QEvent* event) {
    if (watched != thumb_)
        return QWidget::eventFilter(watched, event);
    if (event->type() == QEvent::MouseButtonPress) {
        dragStart_ = static_cast<QMouseEvent*>(event)->globalPosition().toPoint().y();
        dragOffset_ = offset_;
        return true;
    }
    if (event->type() == QEvent::MouseMove) {
        const int moved = static_cast<QMouseEvent*>(event)->globalPosition().toPoint().y() - dragStart_;
        const int way = height() - 2 * room - thumb_->height();
        if (way > 0)
            scrollTo(dragOffset_ + moved * greatestOffset() / way);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace kivo
