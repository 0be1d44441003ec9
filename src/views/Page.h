// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QScrollArea>

#include <string>

namespace kivo {

// Lets the keyboard go through everything below `root` in the order in which it stands there.
void orderFocus(QWidget* root);

// What scrolls in a window: a column that keeps to the middle and gives way to narrow windows.
class Page final : public QScrollArea {
public:
    // `spoken`: what is on it.
    Page(QWidget* content, const std::string& spoken, int wanted = 560);

    // The part is in view once the page has grown with it.
    void reveal(QWidget* part);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int wanted_;
    QPointer<QWidget> revealed_;
};

// Something has unfolded: its page shows as much of it as it can, from its top.
void revealGrown(QWidget* part);

} // namespace kivo
