// SPDX-License-Identifier: MIT
#include "views/IntroductionWindow.h"

#include "overlay/Animations.h"
#include "views/Blocks.h"
#include "views/Convert.h"
#include "views/IntroductionPages.h"
#include "views/Page.h"
#include "views/Spoken.h"
#include "views/Surface.h"

#include <QGridLayout>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace kivo {

namespace {

constexpr QSize wantedSize{620, 560};
constexpr int columnWidth = 480;
constexpr int footerSide = 24;
constexpr int footerGap = 12;
constexpr int shortestButton = 110;
constexpr double turnDistance = 56; // points that a page comes from the side

} // namespace

// A dot for each step, the current one longer.
class ProgressDots final : public QWidget, public Spoken {
public:
    ProgressDots(Kit& kit, int count) : count_(count), place_(kit, *this) {
        setFixedSize((count - 1) * gap + side + longer + 2 * footerGap, 8);
    }
    QAccessible::Role role() const override { return QAccessible::StaticText; }
    void show(int current, const std::string& spoken) {
        place_.go(current, animations::settle);
        setAccessibleName(toQString(spoken));
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const Surface surface = surfaceFor(palette());
        painter.setPen(Qt::NoPen);
        double left = footerGap;
        for (int i = 0; i < count_; ++i) {
            const double share = std::max(1 - std::abs(place_.value() - i), 0.0);
            QColor ink = share > 0.5 ? surface.accent : surface.ink;
            if (share <= 0.5)
                ink.setAlphaF(0.18F);
            painter.setBrush(ink);
            painter.drawRoundedRect(QRectF(left, 0.5, side + longer * share, side), side / 2.0, side / 2.0);
            left += gap + longer * share;
        }
    }

private:
    static constexpr int gap = 14; // from one to the next
    static constexpr int side = 7;
    static constexpr int longer = 12;

    int count_;
    Moving place_;
};

// Lies over the pages while one goes and the next comes.
class PageTurn final : public QWidget {
public:
    // `direction`: 1 on, -1 back.
    PageTurn(Kit& kit, QWidget* over, QPixmap before, int direction)
        : QWidget(over->parentWidget()),
          kit_(kit),
          before_(std::move(before)),
          direction_(direction),
          progress_(kit, *this) {
        setGeometry(over->geometry());
        after_ = over->grab();
    }
    void run() {
        QWidget::show();
        raise();
        progress_.go(1, animations::settle);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.fillRect(rect(), surfaceFor(palette()).window);
        const double share = std::clamp(progress_.value(), 0.0, 1.0);
        painter.setOpacity(1 - std::min(share * 2, 1.0));
        painter.drawPixmap(QPointF(-direction_ * turnDistance * share, 0), before_);
        painter.setOpacity(share);
        painter.drawPixmap(QPointF(direction_ * turnDistance * (1 - share), 0), after_);
        if (progress_.hasArrived())
            kit_.loop.post([guard = QPointer<PageTurn>(this)] {
                if (guard)
                    guard->deleteLater();
            });
    }

private:
    Kit& kit_;
    QPixmap before_;
    QPixmap after_;
    int direction_;
    Moving progress_;
};

IntroductionWindow::IntroductionWindow(MainLoop& loop, Workspace& workspace,
                                       std::unique_ptr<IntroductionModel> model)
    : AppWindow(loop, workspace, "Kivo", wantedSize), model_(std::move(model)) {
    const OnboardingContent content = model_->onboarding().content();
    auto* whole = new QWidget;
    auto* lines = new QVBoxLayout(whole);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    lines->addWidget(makeFooter(content));
    setCentralWidget(whole);
    showPage();
    primary_->setFocus();
    stepChange_ = model_->onboarding().step().onChange([this] { turnPage(); });
    model_->setOnChange([this] { refresh(); });
}

IntroductionWindow::~IntroductionWindow() {
    model_->setOnChange(nullptr);
    delete takeCentralWidget();
}

QWidget* IntroductionWindow::makeFooter(const OnboardingContent& content) {
    auto* footer = new QWidget;
    auto* line = new QGridLayout(footer);
    line->setContentsMargins(footerSide, 12, footerSide, 20);
    line->setHorizontalSpacing(0); // also where the first button is away, so that the dots stay in the middle
    line->setColumnStretch(0, 1);
    line->setColumnStretch(2, 1);
    back_ = new FormButton(kit(), FormButton::Kind::plain, content.back);
    connect(back_, &FormButton::clicked, this, [this] { model_->onboarding().back(); });
    dots_ = new ProgressDots(kit(), static_cast<int>(onboardingSteps.entries.size()));
    primary_ = new FormButton(kit(), FormButton::Kind::primary, content.primary);
    connect(primary_, &FormButton::clicked, this, [this] { model_->onboarding().next(); });
    line->addWidget(back_, 0, 0, Qt::AlignLeft | Qt::AlignVCenter);
    line->addWidget(dots_, 0, 1, Qt::AlignCenter);
    line->addWidget(primary_, 0, 2, Qt::AlignRight | Qt::AlignVCenter);
    line->setRowMinimumHeight(0, primary_->sizeHint().height());
    return footer;
}

void IntroductionWindow::showPage() {
    const OnboardingContent content = model_->onboarding().content();
    step_ = content.step;
    shown_ = introductionPage(kit(), model_->onboarding(), content).release();
    delete page_;
    page_ = new Page(shown_, content.title, columnWidth);
    static_cast<QVBoxLayout*>(centralWidget()->layout())->insertWidget(0, page_, 1);
    // Before the footer, also for the keyboard and for readers.
    page_->lower();
    orderFocus(centralWidget());
    refresh();
}

void IntroductionWindow::turnPage() {
    const int direction = model_->onboarding().step().get() > step_ ? 1 : -1;
    delete turn_;
    QPixmap before = page_->grab();
    showPage();
    centralWidget()->layout()->activate();
    auto* turn = new PageTurn(kit(), page_, std::move(before), direction);
    turn_ = turn;
    turn->run();
    primary_->setFocus();
}

void IntroductionWindow::refresh() {
    const OnboardingContent content = model_->onboarding().content();
    shown_->show(content);
    back_->setVisible(content.hasBack);
    primary_->setText(toQString(content.primary));
    primary_->updateGeometry();
    fitFooter();
    dots_->show(static_cast<int>(content.step), content.progress);
}

// The words of the button that goes on are shortened only where there is no room for them at all.
void IntroductionWindow::fitFooter() {
    const int back = back_->isVisibleTo(this) ? back_->sizeHint().width() : 0;
    const int rest = width() - 2 * footerSide - back - dots_->width();
    primary_->setMinimumWidth(std::min(primary_->sizeHint().width(), std::max(rest, shortestButton)));
}

void IntroductionWindow::resizeEvent(QResizeEvent* event) {
    AppWindow::resizeEvent(event);
    fitFooter();
}

void IntroductionWindow::activated() {
    model_->refresh();
}

void IntroductionWindow::dismissed() {
    model_->onboarding().finish();
}

} // namespace kivo
