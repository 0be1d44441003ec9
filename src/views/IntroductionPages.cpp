// SPDX-License-Identifier: MIT
#include "views/IntroductionPages.h"

#include "core/AlertDisplay.h"
#include "overlay/Animations.h"
#include "support/Text.h"
#include "views/Blocks.h"
#include "views/Convert.h"
#include "views/IslandPreview.h"
#include "views/LabelPainter.h"
#include "views/PermissionControl.h"
#include "views/Pickers.h"
#include "views/Surface.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include <algorithm>

namespace kivo {

namespace {

using Style = TextBlock::Style;

constexpr int iconSide = 30;
constexpr int rowInset = 16 + iconSide + 12;

QVBoxLayout* column(QWidget* page, int spacing) {
    auto* lines = new QVBoxLayout(page);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(spacing);
    return lines;
}

// A symbol on a field of its colour.
class TintedIcon final : public QWidget {
public:
    TintedIcon(Kit& kit, std::string symbol, Color tint) : kit_(kit), symbol_(std::move(symbol)), tint_(tint) {
        setFixedSize(iconSide, iconSide);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Surface surface = surfaceFor(palette());
        painter.fillPath(roundedPath(rect(), 8), toQColor(tint_, surface.isDark ? 0.2 : 0.16));
        kit_.symbols.paint(painter, symbol_, QRectF(rect()).adjusted(6, 6, -6, -6),
                           surface.isDark ? toQColor(tint_) : toQColor(tint_).darker(115));
    }

private:
    Kit& kit_;
    std::string symbol_;
    Color tint_;
};

// A row of a card with an icon before it.
QWidget* iconRow(QWidget* icon, QWidget* texts, QWidget* control) {
    auto* row = new QWidget;
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(16, 7, 16 - focusRoom, 7);
    line->setSpacing(12);
    line->addWidget(icon, 0, Qt::AlignVCenter);
    line->addWidget(texts, 1);
    if (control)
        line->addWidget(control, 0, Qt::AlignVCenter);
    return row;
}

QWidget* header(const OnboardingContent& content, TextBlock** message = nullptr) {
    auto* head = new QWidget;
    auto* lines = column(head, 8);
    lines->setContentsMargins(0, 12, 0, 0);
    lines->addWidget(new TextBlock(Style::hero, content.title));
    auto* text = new TextBlock(Style::lead, content.message);
    lines->addWidget(text);
    if (message)
        *message = text;
    return head;
}

class WelcomePage final : public IntroductionPage {
public:
    WelcomePage(Kit& kit, const OnboardingContent& content) {
        auto* lines = column(this, 0);
        lines->addStretch(2);
        lines->addWidget(new IslandPreview(kit), 0, Qt::AlignHCenter);
        lines->addSpacing(36);
        lines->addWidget(header(content));
        lines->addStretch(3);
    }
    void show(const OnboardingContent& /*content*/) override {}
};

class AlertsPage final : public IntroductionPage {
public:
    AlertsPage(Kit& kit, Onboarding& onboarding, const OnboardingContent& content) {
        auto* lines = column(this, 20);
        lines->addWidget(header(content));
        auto* card = new Card(rowInset);
        for (const auto& each : content.switches) {
            auto* control = new Switch(kit, each.title);
            connect(control, &Switch::toggled, this, [this, &onboarding, name = each.name](bool isOn) {
                onboarding.setSwitch(name, isOn);
                // Without a rule to switch it stays off.
                show(onboarding.content());
            });
            switches_.push_back(control);
            card->addRow(iconRow(new TintedIcon(kit, each.symbol, each.tint),
                                 textColumn({new TextBlock(Style::row, each.title)}), control));
        }
        if (content.lowBattery)
            card->addRow(lowBatteryRow(kit, onboarding, *content.lowBattery));
        lines->addWidget(card);
        if (content.trial) {
            auto* trial =
                new FormButton(kit, FormButton::Kind::link, content.trial->title, content.trial->symbol);
            connect(trial, &FormButton::clicked, this, [&onboarding] { onboarding.test(); });
            lines->addWidget(trial, 0, Qt::AlignHCenter);
        }
        lines->addStretch(1);
        show(content);
    }

    void show(const OnboardingContent& content) override {
        for (std::size_t i = 0; i < switches_.size() && i < content.switches.size(); ++i)
            switches_[i]->show(content.switches[i].isOn);
        if (!content.lowBattery)
            return;
        const auto& row = *content.lowBattery;
        lowBattery_->setVisible(row.threshold.has_value());
        threshold_->show(
            static_cast<int>(row.minimum), static_cast<int>(row.maximum),
            static_cast<int>(std::clamp(row.threshold.value_or(row.minimum), row.minimum, row.maximum)));
        percent_->show(row.threshold ? localized("%lld%", {*row.threshold}) : std::string());
    }

private:
    QWidget* lowBatteryRow(Kit& kit, Onboarding& onboarding, const OnboardingContent::LowBattery& content) {
        auto* control = new QWidget;
        auto* line = new QHBoxLayout(control);
        line->setContentsMargins(0, 0, focusRoom, 0);
        line->setSpacing(8);
        threshold_ = new NumberSlider(content.title);
        threshold_->setFixedWidth(130);
        connect(threshold_, &QSlider::valueChanged, this,
                [&onboarding](int value) { onboarding.setThreshold(value); });
        percent_ = new TextBlock(Style::row);
        percent_->setWordWrap(false);
        percent_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        percent_->setMinimumWidth(36);
        line->addWidget(threshold_);
        line->addWidget(percent_);
        lowBattery_ = iconRow(new TintedIcon(kit, content.symbol, color(LevelTone::critical)),
                              textColumn({new TextBlock(Style::row, content.title)}), control);
        return lowBattery_;
    }

    std::vector<Switch*> switches_;
    QWidget* lowBattery_ = nullptr;
    NumberSlider* threshold_ = nullptr;
    TextBlock* percent_ = nullptr;
};

class DevicesPage final : public IntroductionPage {
public:
    DevicesPage(Kit& kit, const OnboardingContent& content) : kit_(kit) {
        auto* lines = column(this, 20);
        lines->addWidget(header(content, &message_));
        devices_ = new QVBoxLayout;
        lines->addLayout(devices_);
        if (content.box)
            lines->addWidget(box(*content.box));
        lines->addStretch(1);
        show(content);
    }

    void show(const OnboardingContent& content) override {
        message_->show(content.message);
        if (shown_ == content.devices)
            return;
        shown_ = content.devices;
        delete card_;
        card_ = nullptr;
        if (shown_.empty())
            return;
        card_ = new Card(rowInset);
        for (const auto& device : shown_)
            card_->addRow(iconRow(new TintedIcon(kit_, device.symbol, *color(AlertTint::blue)),
                                  textColumn({new TextBlock(Style::row, device.name)}), nullptr));
        devices_->addWidget(card_);
    }

private:
    static QWidget* numbered(int number, const std::string& text) {
        auto* row = new QWidget;
        auto* line = new QHBoxLayout(row);
        line->setContentsMargins(16, 6, 16, 6);
        line->setSpacing(12);
        auto* mark = new TextBlock(Style::row, std::to_string(number));
        mark->setFixedWidth(iconSide);
        mark->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
        mark->setForegroundRole(QPalette::Link);
        auto* step = new TextBlock(Style::field, text);
        line->addWidget(mark, 0, Qt::AlignTop);
        line->addWidget(step, 1);
        return row;
    }
    QWidget* box(const OnboardingContent::Box& content) {
        auto* card = new Card(rowInset);
        auto* whole = new QWidget;
        auto* lines = column(whole, 0);
        lines->setContentsMargins(0, 4, 0, 8);
        lines->addWidget(iconRow(new TintedIcon(kit_, content.symbol, *color(AlertTint::green)),
                                 textColumn({new TextBlock(Style::heading, content.title)}), nullptr));
        for (std::size_t i = 0; i < content.steps.size(); ++i)
            lines->addWidget(numbered(static_cast<int>(i) + 1, content.steps[i]));
        card->addRow(whole);
        return card;
    }

    Kit& kit_;
    TextBlock* message_ = nullptr;
    QVBoxLayout* devices_;
    Card* card_ = nullptr;
    std::vector<OnboardingContent::Device> shown_;
};

class PermissionsPage final : public IntroductionPage {
public:
    PermissionsPage(Kit& kit, Onboarding& onboarding, const OnboardingContent& content) {
        auto* lines = column(this, 20);
        lines->addWidget(header(content));
        auto* card = new Card(rowInset);
        for (const auto& each : content.permissions) {
            auto* control = new PermissionControl(kit, each.title, content.granted, FormButton::Kind::plain,
                                                  [&onboarding, name = each.name] { onboarding.grant(name); });
            controls_.push_back(control);
            card->addRow(iconRow(
                new TintedIcon(kit, each.symbol, each.tint),
                textColumn({new TextBlock(Style::row, each.title), new TextBlock(Style::caption, each.detail)}),
                control));
        }
        lines->addWidget(card);
        lines->addStretch(1);
        show(content);
    }

    void show(const OnboardingContent& content) override {
        for (std::size_t i = 0; i < controls_.size() && i < content.permissions.size(); ++i) {
            const bool isGranted = content.permissions[i].isGranted;
            controls_[i]->show(isGranted ? std::nullopt : std::optional(content.turnOn));
        }
    }

private:
    std::vector<PermissionControl*> controls_;
};

// The sign that all is set, which springs up.
class Seal final : public QWidget {
public:
    explicit Seal(Kit& kit) : kit_(kit), size_(kit, *this, 0) { setFixedSize(88, 88); }

protected:
    void showEvent(QShowEvent* /*event*/) override { size_.go(1, animations::pop); }
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        const double side = 68 * std::max(size_.value(), 0.0);
        const QPointF middle = QRectF(rect()).center();
        painter.setOpacity(std::clamp(size_.value(), 0.0, 1.0));
        kit_.symbols.paint(painter, "checkmark.circle.fill",
                           {middle.x() - side / 2, middle.y() - side / 2, side, side},
                           toQColor(color(LevelTone::charging)));
    }

private:
    Kit& kit_;
    Moving size_;
};

// The chosen style as a panel would show it.
class LabelPreview final : public QWidget {
public:
    explicit LabelPreview(Kit& kit) : kit_(kit) { setFixedSize(132, 40); }
    void show(const MenuBarLabel& label) {
        label_ = label;
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Surface surface = surfaceFor(palette());
        painter.fillPath(roundedPath(rect(), 10), surface.isDark ? surface.card : QColor(36, 37, 41));
        painter.translate(QRectF(rect()).center());
        painter.scale(1.25, 1.25);
        paintMenuBarLabel(painter, label_, {}, QColor(245, 245, 247), kit_.symbols);
    }

private:
    Kit& kit_;
    MenuBarLabel label_;
};

class DonePage final : public IntroductionPage {
public:
    DonePage(Kit& kit, Onboarding& onboarding, const OnboardingContent& content) {
        auto* lines = column(this, 0);
        lines->addStretch(2);
        lines->addWidget(new Seal(kit), 0, Qt::AlignHCenter);
        lines->addSpacing(12);
        lines->addWidget(header(content));
        lines->addSpacing(20);
        std::vector<Segments::Option> options;
        for (const auto& style : content.styles)
            options.push_back({style.title, {}});
        picker_ = new Segments(kit, content.stylesTitle, options);
        picker_->onChoose = [&onboarding](int index) {
            onboarding.setStyle(menuBarStyles.entries[static_cast<std::size_t>(index)].value);
        };
        lines->addWidget(picker_, 0, Qt::AlignHCenter);
        lines->addSpacing(10);
        preview_ = new LabelPreview(kit);
        lines->addWidget(preview_, 0, Qt::AlignHCenter);
        lines->addSpacing(24);
        auto* tip = new TextBlock(Style::caption, content.tip.value_or(std::string()));
        tip->setAlignment(Qt::AlignHCenter);
        lines->addWidget(tip);
        lines->addStretch(3);
        show(content);
    }

    void show(const OnboardingContent& content) override {
        picker_->show(static_cast<int>(content.selectedStyle));
        preview_->show(content.preview);
    }

private:
    Segments* picker_;
    LabelPreview* preview_;
};

} // namespace

std::unique_ptr<IntroductionPage> introductionPage(Kit& kit, Onboarding& onboarding,
                                                   const OnboardingContent& content) {
    switch (content.step) {
    case OnboardingStep::welcome:
        return std::make_unique<WelcomePage>(kit, content);
    case OnboardingStep::alerts:
        return std::make_unique<AlertsPage>(kit, onboarding, content);
    case OnboardingStep::devices:
        return std::make_unique<DevicesPage>(kit, content);
    case OnboardingStep::permissions:
        return std::make_unique<PermissionsPage>(kit, onboarding, content);
    case OnboardingStep::done:
        break;
    }
    return std::make_unique<DonePage>(kit, onboarding, content);
}

} // namespace kivo
