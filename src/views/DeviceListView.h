// SPDX-License-Identifier: MIT
#pragma once

#include "ui/MenuContent.h"
#include "views/DeviceRowView.h"
#include "views/ScrollView.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kivo {

// The devices as one card of rows, or what stands in their place. It scrolls when it is less high than its
// rows; rows that change places go there by the list's spring, new ones fade in.
class DeviceListView final : public QWidget, public Spoken {
public:
    DeviceListView(ViewContext& context, QWidget* parent);

    void setDevices(const MenuContent& content);
    // Of all rows.
    int heightFor(int width) const;
    // The least height at which scrolling it makes sense.
    int leastHeight(int width) const;
    bool advance(Duration now);
    std::vector<QWidget*> focusable() const;
    void reveal(const QWidget& row) { scroll_.reveal(row); }

    QAccessible::Role role() const override { return QAccessible::List; }

    std::function<void(const std::string& id)> onForget;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    bool setRows(const std::vector<DeviceRow>& rows);
    void dropRows(const std::vector<DeviceRow>& rows);
    void layOut(bool isAnimated);
    void orderRows();
    void paintLoading(QPainter& painter);

    ViewContext& context_;
    QWidget* content_; // owned by the scroll view
    ScrollView scroll_;
    std::vector<std::unique_ptr<DeviceRowView>> rows_; // in the order of the list
    QString placeholder_;
    bool isLoading_ = false;
    bool isFirst_ = true;
};

} // namespace kivo
