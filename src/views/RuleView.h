// SPDX-License-Identifier: MIT
#pragma once

#include "ui/AlertsPane.h"
#include "ui/SettingsTexts.h"
#include "views/FormControls.h"
#include "views/Pickers.h"

#include <functional>

class QVBoxLayout;

namespace kivo {

class TextBlock;

// What the user does with a rule goes here.
struct RuleActions {
    std::function<void(std::size_t index)> toggleExpanded;
    std::function<void(std::size_t index)> test;
    std::function<void(std::size_t index)> remove;
    std::function<void(std::size_t index, const RuleEdit&)> edit;
};

// The controls of an expanded rule.
class RuleEditorView final : public QWidget {
public:
    RuleEditorView(Kit& kit, const RuleEditorTexts& texts, const AlertsPaneContent::Editor& editor,
                   std::function<void(const RuleEdit&)> edit, std::function<void()> test,
                   std::function<void()> remove);

    void show(const AlertsPaneContent::Editor& editor);

private:
    void addFields(Kit& kit, const RuleEditorTexts& texts, const AlertsPaneContent::Editor& editor);
    void addSwitches(Kit& kit, const RuleEditorTexts& texts);

    std::function<void(const RuleEdit&)> edit_;
    QVBoxLayout* lines_;
    NumberSlider* threshold_ = nullptr;
    TextBlock* percent_ = nullptr;
    Segments* position_ = nullptr;
    ColorDots* tint_ = nullptr;
    DropDown* sound_ = nullptr;
    Switch* glows_ = nullptr;
    Switch* notifies_ = nullptr;
};

// A rule's row, and its editor while it is expanded.
class RuleView final : public QWidget {
public:
    RuleView(Kit& kit, const RuleEditorTexts& texts, const RuleActions& actions);

    void show(const AlertsPaneContent::Rule& rule);

private:
    Kit& kit_;
    const RuleEditorTexts& texts_;
    RuleActions actions_;
    std::size_t index_ = 0;
    QVBoxLayout* lines_;
    Disclosure* head_;
    Switch* enabled_;
    RuleEditorView* editor_ = nullptr;
};

} // namespace kivo
