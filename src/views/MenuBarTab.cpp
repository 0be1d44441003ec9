// SPDX-License-Identifier: MIT
#include "views/MenuBarTab.h"

#include "ui/SettingsModel.h"
#include "views/Convert.h"
#include "views/LabelPainter.h"
#include "views/Surface.h"
#include "views/Typeface.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>

namespace kivo {

namespace {

constexpr int previewWidth = 92;
constexpr int textLeft = 44;

} // namespace

// One style: a mark, its title, and what the panel would show.
class StyleRow final : public QRadioButton {
public:
    StyleRow(Kit& kit, const MenuBarPaneContent::Style& style)
        : QRadioButton(toQString(style.title)), kit_(kit) {
        setAttribute(Qt::WA_Hover);
        QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
    }

    void show(const MenuBarPaneContent::Style& style, bool isChosen) {
        preview_ = style.preview;
        const QSignalBlocker silence(this);
        if (isChosen)
            setChecked(true);
        update();
    }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return std::max(titleBox(width).height() + 24, 52); }
    QSize sizeHint() const override { return {360, heightForWidth(360)}; }
    QSize minimumSizeHint() const override { return {220, 52}; }

protected:
    bool hitButton(const QPoint& point) const override { return rect().contains(point); }
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Surface surface = surfaceFor(palette());
        const QRectF body = QRectF(rect()).adjusted(4, 4, -4, -4);
        if (underMouse()) {
            QColor shade = surface.ink;
            shade.setAlphaF(0.04F);
            painter.fillPath(roundedPath(body, 9), shade);
        }
        if (showsFocus(*this))
            paintFocusRing(painter, body, 9, surface);
        paintMark(painter, surface);
        painter.setFont(typeface(13, QFont::Medium));
        painter.setPen(surface.ink);
        const QRect title = titleBox(width());
        painter.drawText(QRect(title.x(), (height() - title.height()) / 2, title.width() + 1, title.height()),
                         Qt::TextWordWrap, text());
        paintPreview(painter, surface);
    }

private:
    QRect titleBox(int width) const {
        const QRect room(textLeft, 0, std::max(width - textLeft - previewWidth - 28, 60), 10000);
        return QFontMetrics(typeface(13, QFont::Medium)).boundingRect(room, Qt::TextWordWrap, text());
    }
    void paintMark(QPainter& painter, const Surface& surface) {
        const QPointF middle(24, height() / 2.0);
        painter.setPen(isChecked() ? QPen(Qt::NoPen) : QPen(surface.tertiary, 1.5));
        painter.setBrush(isChecked() ? QBrush(surface.accent) : QBrush(Qt::NoBrush));
        painter.drawEllipse(middle, 8, 8);
        if (isChecked()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(Qt::white);
            painter.drawEllipse(middle, 3, 3);
        }
    }
    // On a piece of a panel.
    void paintPreview(QPainter& painter, const Surface& surface) {
        const QRectF panel(width() - 16 - previewWidth, height() / 2.0 - 15, previewWidth, 30);
        painter.fillPath(roundedPath(panel, 8), surface.isDark ? surface.window : QColor(36, 37, 41));
        paintMenuBarLabel(painter, preview_, panel.center(), QColor(245, 245, 247), kit_.symbols);
    }

    Kit& kit_;
    MenuBarLabel preview_;
};

MenuBarTab::MenuBarTab(Kit& kit, SettingsModel& model) : model_(model) {
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(10);
    const MenuBarPaneContent content = model.menuBar();
    auto* card = new Card(textLeft);
    card->setAccessibleName(toQString(content.title));
    for (const auto& style : content.styles) {
        auto* row = new StyleRow(kit, style);
        connect(row, &QRadioButton::toggled, this, [this, value = style.style](bool isChosen) {
            if (isChosen)
                model_.setMenuBarStyle(value);
        });
        card->addRow(row);
        styles_.push_back(row);
    }
    auto* symbol = new SymbolBlock(kit, "menubar.rectangle", SurfaceInk::secondary, 18);
    lines->addWidget(section(content.title, {}, symbol, card));
    note_ = new TextBlock(TextBlock::Style::caption, content.note);
    note_->setContentsMargins(4, 0, 4, 0);
    lines->addWidget(note_);
    lines->addStretch(1);
    refresh();
}

void MenuBarTab::refresh() {
    const MenuBarPaneContent content = model_.menuBar();
    for (std::size_t i = 0; i < styles_.size(); ++i)
        styles_[i]->show(content.styles[i], content.styles[i].style == content.selected);
    const auto chosen =
        std::find_if(styles_.begin(), styles_.end(), [](auto* row) { return row->isChecked(); });
    keepTabStop({styles_.begin(), styles_.end()}, chosen == styles_.end() ? styles_.front() : *chosen);
}

} // namespace kivo
