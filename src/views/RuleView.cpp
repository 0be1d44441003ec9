// SPDX-License-Identifier: MIT
#include "views/RuleView.h"

#include "core/AlertDisplay.h"
#include "support/Text.h"
#include "views/Blocks.h"
#include "views/Convert.h"
#include "views/Page.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace kivo {

namespace {

constexpr int editorLeft = 28; // where the titles of the rules begin
constexpr int buttonInset = 9; // from a button's edge to its text
constexpr int narrowestTitle = 112;
constexpr int widestTitle = 180;

template <typename Enum, std::size_t count>
Enum valueAt(const EnumTable<Enum, count>& table, int index) {
    return table.entries[static_cast<std::size_t>(index)].value;
}

template <typename Enum>
int indexOf(Enum value) {
    return static_cast<int>(value);
}

Segments* positionPicker(Kit& kit, const std::string& spoken) {
    return new Segments(kit, spoken,
                        {{title(OverlayPosition::top), "rectangle.topthird.inset.filled"},
                         {title(OverlayPosition::center), "rectangle.center.inset.filled"}});
}

ColorDots* tintPicker(const std::string& spoken) {
    std::vector<ColorDots::Option> options;
    for (const auto& tint : alertTints.entries)
        options.push_back({title(tint.value), color(tint.value)});
    return new ColorDots(spoken, options);
}

DropDown* soundPicker(const std::string& spoken) {
    std::vector<std::string> options;
    for (const auto& sound : alertSounds.entries)
        options.push_back(title(sound.value));
    return new DropDown(spoken, options);
}

QWidget* sideBySide(QWidget* wide, QWidget* narrow) {
    auto* both = new QWidget;
    auto* line = new QHBoxLayout(both);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(12);
    line->addWidget(wide, 1);
    line->addWidget(narrow);
    return both;
}

} // namespace

// RuleEditorView

RuleEditorView::RuleEditorView(Kit& kit, const RuleEditorTexts& texts, const AlertsPaneContent::Editor& editor,
                               std::function<void(const RuleEdit&)> edit, std::function<void()> test,
                               std::function<void()> remove)
    : edit_(std::move(edit)) {
    lines_ = new QVBoxLayout(this);
    lines_->setContentsMargins(editorLeft - buttonInset, 0, 16 - focusRoom, 10);
    lines_->setSpacing(2);
    addFields(kit, texts, editor);
    addSwitches(kit, texts);

    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, 0, 0, 0);
    if (editor.canDelete) {
        auto* removal = new FormButton(kit, FormButton::Kind::destructive, texts.remove);
        connect(removal, &FormButton::clicked, this, [remove = std::move(remove)] { remove(); });
        buttons->addWidget(removal);
    }
    buttons->addStretch(1);
    auto* trial = new FormButton(kit, FormButton::Kind::primary, texts.test, "play.fill");
    connect(trial, &FormButton::clicked, this, [test = std::move(test)] { test(); });
    buttons->addWidget(trial);
    lines_->addLayout(buttons);
    show(editor);
}

void RuleEditorView::addFields(Kit& kit, const RuleEditorTexts& texts,
                               const AlertsPaneContent::Editor& editor) {
    int titleWidth = narrowestTitle;
    for (const std::string& title : {texts.percentage, texts.position, texts.tint, texts.sound})
        titleWidth = std::max(titleWidth, TextBlock(TextBlock::Style::field, title).naturalWidth());
    titleWidth = std::min(titleWidth, widestTitle);
    const auto add = [&](const std::string& title, QWidget* field) {
        auto* label = new TextBlock(TextBlock::Style::field, title);
        label->setBuddy(field);
        auto* row = new Row(label, field, titleWidth);
        row->setContentsMargins(buttonInset - focusRoom, 0, 0, 0);
        lines_->addWidget(row);
    };
    if (editor.range) {
        threshold_ = new NumberSlider(texts.percentage);
        percent_ = new TextBlock(TextBlock::Style::row);
        percent_->setWordWrap(false);
        percent_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        percent_->setMinimumWidth(42);
        percent_->setContentsMargins(0, 0, focusRoom, 0);
        connect(threshold_, &QSlider::valueChanged, this,
                [this](int value) { edit_(RuleEdit{.threshold = value}); });
        add(texts.percentage, sideBySide(threshold_, percent_));
    }
    position_ = positionPicker(kit, texts.position);
    position_->setContentsMargins(focusRoom, 0, focusRoom, 0);
    position_->onChoose = [this](int index) { edit_(RuleEdit{.position = valueAt(overlayPositions, index)}); };
    add(texts.position, position_);
    tint_ = tintPicker(texts.tint);
    tint_->onChoose = [this](int index) { edit_(RuleEdit{.tint = valueAt(alertTints, index)}); };
    add(texts.tint, tint_);
    sound_ = soundPicker(texts.sound);
    connect(sound_, &QComboBox::activated, this,
            [this](int index) { edit_(RuleEdit{.sound = valueAt(alertSounds, index)}); });
    add(texts.sound, sound_);
}

void RuleEditorView::addSwitches(Kit& kit, const RuleEditorTexts& texts) {
    const auto add = [&](const std::string& title) {
        auto* control = new Switch(kit, title);
        auto* row = sideBySide(new TextBlock(TextBlock::Style::field, title), control);
        row->setContentsMargins(buttonInset, 0, 0, 0);
        row->setMinimumHeight(34);
        lines_->addWidget(row);
        return control;
    };
    glows_ = add(texts.glowsScreen);
    connect(glows_, &Switch::toggled, this, [this](bool isOn) { edit_(RuleEdit{.glowsScreen = isOn}); });
    notifies_ = add(texts.notifies);
    connect(notifies_, &Switch::toggled, this, [this](bool isOn) { edit_(RuleEdit{.notifies = isOn}); });
}

void RuleEditorView::show(const AlertsPaneContent::Editor& editor) {
    if (threshold_ && editor.range && editor.threshold) {
        threshold_->show(static_cast<int>(editor.range->minimum), static_cast<int>(editor.range->maximum),
                         static_cast<int>(*editor.threshold));
        percent_->show(localized("%lld%", {*editor.threshold}));
    }
    position_->show(indexOf(editor.position));
    tint_->show(indexOf(editor.tint));
    sound_->show(indexOf(editor.sound));
    glows_->show(editor.glowsScreen);
    notifies_->show(editor.notifies);
}

// RuleView

RuleView::RuleView(Kit& kit, const RuleEditorTexts& texts, const RuleActions& actions)
    : kit_(kit), texts_(texts), actions_(actions) {
    lines_ = new QVBoxLayout(this);
    lines_->setContentsMargins(0, 0, 0, 0);
    lines_->setSpacing(0);
    auto* line = new QHBoxLayout;
    line->setContentsMargins(4, 0, 16 - focusRoom, 0);
    line->setSpacing(2);
    head_ = new Disclosure(kit);
    enabled_ = new Switch(kit, {});
    line->addWidget(head_, 1);
    line->addWidget(enabled_);
    lines_->addLayout(line);
    connect(head_, &Disclosure::clicked, this, [this] { actions_.toggleExpanded(index_); });
    connect(enabled_, &Switch::toggled, this,
            [this](bool isOn) { actions_.edit(index_, RuleEdit{.isEnabled = isOn}); });
}

void RuleView::show(const AlertsPaneContent::Rule& rule) {
    index_ = rule.index;
    head_->setTexts(rule.title, rule.summary);
    head_->setMark(rule.tint);
    head_->showUnfolded(rule.editor.has_value());
    enabled_->setAccessibleName(toQString(rule.title));
    enabled_->show(rule.isEnabled);
    if (rule.editor && editor_) {
        editor_->show(*rule.editor);
    } else if (rule.editor) {
        editor_ = new RuleEditorView(
            kit_, texts_, *rule.editor, [this](const RuleEdit& edit) { actions_.edit(index_, edit); },
            [this] { actions_.test(index_); }, [this] { actions_.remove(index_); });
        lines_->addWidget(editor_);
        revealGrown(this);
    } else if (editor_) {
        // What was pressed in it goes; Qt would hand the keyboard to whatever comes next.
        if (editor_->isAncestorOf(window()->focusWidget()))
            head_->setFocus(Qt::OtherFocusReason);
        editor_->hide();
        editor_->deleteLater();
        editor_ = nullptr;
    }
}

} // namespace kivo
