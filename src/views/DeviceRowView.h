// SPDX-License-Identifier: MIT
#pragma once

#include "support/Motion.h"
#include "ui/MenuContent.h"
#include "views/Spoken.h"
#include "views/ViewContext.h"

#include <QStringList>
#include <QWidget>

#include <functional>
#include <string>
#include <vector>

namespace kivo {

// One device: symbol, name, what else is known of it in lines under the name, a level bar, the percentage. One
// that is remembered is weaker and can be forgotten by its context menu and by the Delete key.
class DeviceRowView final : public QWidget, public Spoken {
public:
    DeviceRowView(ViewContext& context, QWidget* parent);

    // Returns whether it is another row now.
    bool setRow(const DeviceRow& row, bool isFirst);
    const DeviceRow& row() const { return row_; }
    int heightFor(int width);
    void setDivided(bool isDivided);

    // Where it stands in its list; from where it is by the list's spring.
    void moveTo(int top, bool isAnimated);
    void appear(bool isAnimated);
    // Brings what moves to this instant; returns whether something still moves.
    bool advance(Duration now);

    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QString actionName() const override;
    void act() override;

    std::function<void(const std::string& id)> onForget;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool event(QEvent* event) override;

private:
    void paintTexts(QPainter& painter);
    void paintParts(QPainter& painter, const QRectF& box);
    int lineCount() const;
    void paintReading(QPainter& painter);
    void offerForgetting(QPoint position);

    ViewContext& context_;
    DeviceRow row_;
    // What is laid out for one width.
    int fittedWidth_ = 0;
    int height_ = 0;
    QStringList lines_;                  // the details as they stand under the name
    std::vector<std::size_t> partLines_; // how many parts stand on each line before them
    bool isDivided_ = false;
    bool hasKeyboardFocus_ = false;
    AnimatedValue level_;
    AnimatedValue top_{0, 0.01};
    AnimatedValue opacity_;
    Duration drawnAt_{0};
};

} // namespace kivo
