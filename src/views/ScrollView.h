// SPDX-License-Identifier: MIT
#pragma once

#include "views/ViewContext.h"

#include <QWidget>

namespace kivo {

// Shows a part of a higher widget. The wheel moves it as far as it goes and then whatever is around; a slim
// thumb shows where one is while there is more than fits, and can be dragged.
class ScrollView final : public QWidget {
public:
    // `content` becomes a child; its width follows this one's.
    ScrollView(ViewContext& context, QWidget* parent, QWidget* content);

    // After either height has changed.
    void layOut(int contentHeight);
    void scrollTo(int offset);
    // So far that the whole of it is seen, with some room around.
    void reveal(const QWidget& part);
    int offset() const { return offset_; }
    int greatestOffset() const;

protected:
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Thumb;

    QRect thumbBox() const;
    void place();

    QWidget* content_;
    QWidget* thumb_ = nullptr;
    int offset_ = 0;
    int contentHeight_ = 0;
    int dragStart_ = 0;
    int dragOffset_ = 0;
};

} // namespace kivo
