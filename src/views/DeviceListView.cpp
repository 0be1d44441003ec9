// SPDX-License-Identifier: MIT
#include "views/DeviceListView.h"

#include "views/Convert.h"
#include "views/Typeface.h"

#include <QResizeEvent>

#include <algorithm>
#include <utility>

namespace kivo {

namespace {

constexpr int placeholderHeight = 64;
constexpr int loadingRows = 3;
constexpr int rowHeight = 48;
constexpr int leastRows = 2;

} // namespace

DeviceListView::DeviceListView(ViewContext& context, QWidget* parent)
    : QWidget(parent), context_(context), content_(new QWidget), scroll_(context, this, content_) {}

void DeviceListView::setDevices(const MenuContent& content) {
    setAccessibleName(toQString(content.devicesTitle));
    const auto& placeholder = content.loading ? content.loading : content.noDevices;
    const QString text = toQString(placeholder.value_or(""));
    if (text != placeholder_ || isLoading_ != content.loading.has_value()) {
        placeholder_ = text;
        isLoading_ = content.loading.has_value();
        update();
    }
    setAccessibleDescription(placeholder_);
    const bool isRearranged = setRows(content.devices);
    if (isRearranged || isFirst_)
        layOut(!isFirst_);
    isFirst_ = false;
}

bool DeviceListView::setRows(const std::vector<DeviceRow>& rows) {
    std::vector<std::string> before;
    for (const auto& view : rows_)
        before.push_back(view->row().id);
    dropRows(rows);
    std::vector<std::unique_ptr<DeviceRowView>> ordered;
    bool isRearranged = before.size() != rows.size();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const DeviceRow& row = rows[i];
        const auto shown = std::find_if(rows_.begin(), rows_.end(),
                                        [&](const auto& view) { return view && view->row().id == row.id; });
        if (shown != rows_.end()) {
            isRearranged |= (*shown)->setRow(row, false) || (i < before.size() && before[i] != row.id);
            ordered.push_back(std::move(*shown));
            continue;
        }
        auto view = std::make_unique<DeviceRowView>(context_, content_);
        view->setRow(row, true);
        view->onForget = [this](const std::string& id) {
            if (onForget)
                onForget(id);
        };
        // It appears where it belongs.
        view->moveTo(-rowHeight, false);
        view->appear(!isFirst_);
        ordered.push_back(std::move(view));
        isRearranged = true;
    }
    rows_ = std::move(ordered);
    return isRearranged;
}

// The focus goes on to a neighbour.
void DeviceListView::dropRows(const std::vector<DeviceRow>& rows) {
    const auto stays = [&](const auto& view) {
        return std::any_of(rows.begin(), rows.end(),
                           [&](const DeviceRow& row) { return row.id == view->row().id; });
    };
    const auto focused =
        std::find_if(rows_.begin(), rows_.end(), [](const auto& view) { return view->hasFocus(); });
    if (focused != rows_.end() && !stays(*focused)) {
        auto heir = std::find_if(focused + 1, rows_.end(), stays);
        if (heir == rows_.end())
            heir = std::find_if(rows_.begin(), focused, stays);
        if (heir != rows_.end() && heir != focused)
            (*heir)->setFocus(Qt::TabFocusReason);
    }
    std::erase_if(rows_, [&](const auto& view) { return !stays(view); });
}

void DeviceListView::layOut(bool isAnimated) {
    int top = 0;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        DeviceRowView& row = *rows_[i];
        const int height = row.heightFor(width());
        row.resize(width(), height);
        row.setDivided(i > 0);
        row.moveTo(top, isAnimated && row.y() >= 0);
        top += height;
    }
    scroll_.layOut(top);
    context_.wake();
}

int DeviceListView::heightFor(int width) const {
    if (isLoading_)
        return loadingRows * rowHeight;
    if (rows_.empty())
        return placeholderHeight;
    int height = 0;
    for (const auto& row : rows_)
        height += row->heightFor(width);
    return height;
}

int DeviceListView::leastHeight(int width) const {
    return std::min(heightFor(width), leastRows * rowHeight);
}

bool DeviceListView::advance(Duration now) {
    bool moves = false;
    for (auto& row : rows_)
        moves |= row->advance(now);
    if (!moves)
        orderRows();
    return moves;
}

// A row that moves lies over the others; at rest they lie, and are read, in their order.
void DeviceListView::orderRows() {
    std::size_t next = 0;
    for (const QObject* child : content_->children())
        next += next < rows_.size() && child == rows_[next].get();
    if (next == rows_.size())
        return;
    for (auto& row : rows_)
        row->raise();
}

std::vector<QWidget*> DeviceListView::focusable() const {
    std::vector<QWidget*> found;
    for (const auto& row : rows_)
        found.push_back(row.get());
    return found;
}

void DeviceListView::resizeEvent(QResizeEvent* event) {
    scroll_.setGeometry(rect());
    // Another height moves no row.
    if (event->oldSize().width() != width())
        layOut(false);
}

void DeviceListView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintCard(painter, rect(), 14, context_.surface);
    if (isLoading_)
        paintLoading(painter);
    else if (rows_.empty())
        paintText(painter, QRectF(rect()).adjusted(16, 0, -16, 0), Qt::AlignCenter, placeholder_,
                  typeface(13, QFont::Normal), context_.surface.tertiary);
}

// The shapes of rows to come.
void DeviceListView::paintLoading(QPainter& painter) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(context_.surface.track);
    constexpr double nameWidths[loadingRows] = {112, 84, 128};
    for (int i = 0; i < loadingRows; ++i) {
        const double middle = i * rowHeight + rowHeight / 2.0;
        painter.setOpacity(1 - i * 0.28);
        painter.drawRoundedRect(QRectF(15, middle - 10, 20, 20), 6, 6);
        painter.drawRoundedRect(QRectF(48, middle - 5, nameWidths[i], 10), 5, 5);
        painter.drawRoundedRect(QRectF(width() - 118, middle - 2.5, 48, 5), 2.5, 2.5);
        painter.drawRoundedRect(QRectF(width() - 42, middle - 5, 26, 10), 5, 5);
    }
}

} // namespace kivo
