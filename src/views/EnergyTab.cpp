// SPDX-License-Identifier: MIT
#include "views/EnergyTab.h"

#include "ui/SettingsModel.h"
#include "views/Convert.h"
#include "views/Spoken.h"
#include "views/Surface.h"
#include "views/Typeface.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include <algorithm>

namespace kivo {

namespace {

constexpr double iconSide = 22;
constexpr double barHeight = 3;
constexpr int rowInset = 50;

// The note about an application that used most of the last hour.
class InsightField final : public QWidget {
public:
    InsightField(Kit& kit, TextBlock* text) {
        auto* line = new QHBoxLayout(this);
        line->setContentsMargins(10, 8, 10, 8);
        line->setSpacing(8);
        line->addWidget(new SymbolBlock(kit, "flame.fill", amber, 16), 0, Qt::AlignTop);
        line->addWidget(text, 1);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(roundedPath(rect(), 8), toQColor(amber, 0.12));
    }
};

QWidget* emptyState(Kit& kit, const EnergyPaneContent::Empty& empty) {
    auto* state = new QWidget;
    auto* lines = new QVBoxLayout(state);
    lines->setContentsMargins(16, 44, 16, 48);
    lines->setSpacing(4);
    auto* symbol = new SymbolBlock(kit, empty.symbol, SurfaceInk::secondary, 36);
    auto* title = new TextBlock(TextBlock::Style::heading, empty.title);
    auto* text = new TextBlock(TextBlock::Style::caption, empty.text);
    title->setAlignment(Qt::AlignHCenter);
    text->setAlignment(Qt::AlignHCenter);
    lines->addWidget(symbol, 0, Qt::AlignHCenter);
    lines->addSpacing(6);
    lines->addWidget(title);
    lines->addWidget(text);
    return state;
}

} // namespace

// One application: its icon, its name, what it used and a bar of its share.
class EnergyRowView final : public QWidget, public Spoken {
public:
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    explicit EnergyRowView(Kit& kit) : kit_(kit) {
        setFixedHeight(46);
        setFocusPolicy(Qt::NoFocus);
    }

    void show(const EnergyPaneContent::Row& row, QIcon icon) {
        row_ = row;
        icon_ = std::move(icon);
        setAccessibleName(toQString(row.name));
        setAccessibleDescription(toQString(row.value));
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        const Surface surface = surfaceFor(palette());
        const QRectF icon(16, (height() - iconSide) / 2, iconSide, iconSide);
        paintIcon(painter, icon, surface);
        const QFont valueFont = typeface(12, QFont::DemiBold);
        const double value = numberWidth(toQString(row_.value), valueFont);
        const QRectF room(rowInset, 7, width() - rowInset - 16, 20);
        paintText(painter, room.adjusted(0, 0, -value - 12, 0), Qt::AlignLeft | Qt::AlignVCenter,
                  toQString(row_.name), typeface(13, QFont::Medium), surface.ink);
        paintNumber(painter, room, Qt::AlignRight, toQString(row_.value), valueFont, surface.secondary);
        paintBar(painter, {room.left(), room.bottom() + 5, room.width(), barHeight}, row_.share, surface.accent,
                 surface);
    }

private:
    void paintIcon(QPainter& painter, const QRectF& box, const Surface& surface) {
        if (!icon_.isNull()) {
            icon_.paint(&painter, box.toRect());
            return;
        }
        painter.fillPath(roundedPath(box, 5), surface.track);
        kit_.symbols.paint(painter, "gearshape.2.fill", box.adjusted(3, 3, -3, -3), surface.secondary);
    }

    Kit& kit_;
    EnergyPaneContent::Row row_;
    QIcon icon_;
};

EnergyTab::EnergyTab(Kit& kit, SettingsModel& model, IconFor iconFor)
    : kit_(kit), model_(model), iconFor_(std::move(iconFor)) {
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(16);
    title_ = new TextBlock(TextBlock::Style::heading);
    subtitle_ = new TextBlock(TextBlock::Style::caption);
    auto* head = textColumn({title_, subtitle_});
    head->setContentsMargins(4, 0, 4, 0);
    lines->addWidget(head);
    lines->addWidget(makePickers(kit));
    insightText_ = new TextBlock(TextBlock::Style::caption);
    insightText_->setForegroundRole(QPalette::WindowText);
    insight_ = new InsightField(kit, insightText_);
    lines->addWidget(insight_);
    card_ = new Card(rowInset);
    lines->addWidget(card_);
    footnote_ = new TextBlock(TextBlock::Style::caption);
    footnote_->setContentsMargins(4, 0, 4, 0);
    lines->addWidget(footnote_);
    lines->addStretch(1);
    refresh();
}

QWidget* EnergyTab::makePickers(Kit& kit) {
    std::vector<Segments::Option> periods;
    for (const std::string& period : texts_.periods)
        periods.push_back({period, {}});
    period_ = new Segments(kit, texts_.period, periods);
    period_->onChoose = [this](int index) {
        model_.setEnergyWindow(EnergyMonitor::windows.entries[static_cast<std::size_t>(index)].value);
        refresh();
    };
    kind_ = new Segments(kit, texts_.kind, {{texts_.apps, {}}, {texts_.system, {}}});
    kind_->onChoose = [this](int index) {
        model_.setShowsApps(index == 0);
        refresh();
    };
    auto* pickers = new QWidget;
    auto* lines = new QVBoxLayout(pickers);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(4);
    for (Segments* picker : {period_, kind_}) {
        picker->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        lines->addWidget(picker);
    }
    return pickers;
}

void EnergyTab::refresh() {
    const EnergyPaneContent content = model_.energy();
    title_->show(content.title);
    subtitle_->show(content.subtitle);
    period_->show(static_cast<int>(model_.energyWindow()));
    kind_->show(model_.showsApps() ? 0 : 1);
    insight_->setVisible(content.insight.has_value());
    insightText_->show(content.insight.value_or(std::string()));
    footnote_->show(content.footnote);
    showRows(content.rows);
    if (content.empty && !empty_) {
        empty_ = emptyState(kit_, *content.empty);
        card_->addRow(empty_);
    } else if (!content.empty && empty_) {
        empty_->hide();
        empty_->deleteLater();
        empty_ = nullptr;
    }
}

void EnergyTab::showRows(const std::vector<EnergyPaneContent::Row>& rows) {
    while (rows_.size() < rows.size()) {
        rows_.push_back(new EnergyRowView(kit_));
        card_->addRow(rows_.back());
    }
    while (rows_.size() > rows.size()) {
        rows_.back()->hide();
        rows_.back()->deleteLater();
        rows_.pop_back();
    }
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows_[i]->show(rows[i], rows[i].icon && iconFor_ ? iconFor_(*rows[i].icon) : QIcon());
}

} // namespace kivo
