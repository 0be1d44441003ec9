// SPDX-License-Identifier: MIT
#pragma once

#include "ui/MenuContent.h"
#include "views/DeviceListView.h"
#include "views/FooterView.h"
#include "views/HeroCardView.h"
#include "views/ScrollView.h"
#include "views/TileView.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kivo {

// The menu: draws a MenuContent, moves what changes, and hands on what its user does. It is as high as its
// content up to a share of the screen; then the device list scrolls, and on a screen too low for that
// everything above the footer. Frames are drawn only while something moves.
class MenuWindow final : public QWidget, public Spoken {
public:
    // The loop and the symbols outlive it.
    MenuWindow(MainLoop& loop, SymbolPainter& symbols, bool reducesMotion);
    ~MenuWindow() override;

    void setContent(const MenuContent& content);
    // The room that the screen has.
    void setRoom(QSize room);
    // Whether something still moves.
    bool isMoving() const { return static_cast<bool>(nextFrame_); }

    QAccessible::Role role() const override { return QAccessible::Dialog; }

    // Callbacks out
    std::function<void(FooterControl::Action)> onAction;
    std::function<void()> onNote;
    std::function<void(const std::string& id)> onForget;
    std::function<void()> onClose;     // Escape, or the desktop's own way
    std::function<void()> onFocusLost; // another window is active
    std::function<void()> onResize;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    void wire();
    void orderParts();
    void setTiles(const std::vector<HealthTile>& tiles);
    void setAttention(const std::optional<std::string>& text);
    void layOut();
    int layOutTiles(int top, int inner);
    int layOutHead(int inner);
    void orderFocus();
    void focusEnd(bool isLast);
    void revealFocus(QWidget* focused);
    void wake();
    void drawFrame();

    class Heading;

    ViewContext context_;
    QWidget* body_; // all above the footer; owned by the scroll view
    ScrollView scroll_;
    HeroCardView hero_;
    std::vector<std::unique_ptr<TileView>> tiles_;
    std::unique_ptr<AttentionView> attention_;
    std::unique_ptr<Heading> heading_;
    DeviceListView devices_;
    FooterView footer_;
    std::vector<QWidget*> focusOrder_;
    QSize room_{1280, 800};
    bool isBlended_ = true;
    Subscription nextFrame_;
};

} // namespace kivo
