// SPDX-License-Identifier: MIT
#include "views/MenuWindow.h"

#include "views/Convert.h"
#include "views/DisplaySelection.h"
#include "views/Kit.h"
#include "views/Typeface.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainterPath>
#include <QPalette>

#include <algorithm>

namespace kivo {

namespace {

constexpr int windowWidth = 340;
constexpr int margin = 12;
constexpr int radius = 16;
constexpr int headingHeight = 28;
constexpr int footerGap = 12;
constexpr int tileGap = 8;
constexpr int leastTileWidth = 70;
constexpr double shareOfScreen = 0.7;

} // namespace

// "Devices", and how many there are.
class MenuWindow::Heading final : public QWidget, public Spoken {
public:
    Heading(ViewContext& context, QWidget* parent) : QWidget(parent), context_(context) {}

    void setTexts(const std::string& title, const std::optional<std::string>& trailing) {
        const QString newTitle = toQString(title);
        const QString newTrailing = toQString(trailing.value_or(""));
        if (newTitle == title_ && newTrailing == trailing_)
            return;
        title_ = newTitle;
        trailing_ = newTrailing;
        setAccessibleName(trailing ? title_ + QLatin1Char(' ') + trailing_ : title_);
        update();
    }
    QAccessible::Role role() const override { return QAccessible::Heading; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QRectF box = QRectF(rect()).adjusted(4, 0, -4, 0);
        paintText(painter, box, Qt::AlignLeft | Qt::AlignVCenter, title_, typeface(12, QFont::DemiBold),
                  context_.surface.secondary);
        paintText(painter, box, Qt::AlignRight | Qt::AlignVCenter, trailing_, typeface(12, QFont::Medium),
                  context_.surface.tertiary);
    }

private:
    ViewContext& context_;
    QString title_, trailing_;
};

MenuWindow::MenuWindow(MainLoop& loop, SymbolPainter& symbols, bool reducesMotion)
    : context_{loop, symbols, surfaceFor(QGuiApplication::palette()), reducesMotion, [this] { wake(); }},
      body_(new QWidget),
      scroll_(context_, this, body_),
      hero_(context_, body_),
      heading_(std::make_unique<Heading>(context_, body_)),
      devices_(context_, body_),
      footer_(context_, this),
      isBlended_(isCompositing()) {
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint);
    setWindowTitle(QStringLiteral("Kivo"));
    setAccessibleName(QStringLiteral("Kivo"));
    setAttribute(Qt::WA_TranslucentBackground, isBlended_);
    // The keyboard is ready without a ring around anything yet.
    setFocusPolicy(Qt::StrongFocus);
    colorTips(context_.surface);
    wire();
}

MenuWindow::~MenuWindow() = default;

void MenuWindow::wire() {
    hero_.onNote = [this] {
        if (onNote)
            onNote();
    };
    devices_.onForget = [this](const std::string& id) {
        if (onForget)
            onForget(id);
    };
    footer_.onAction = [this](FooterControl::Action action) {
        if (onAction)
            onAction(action);
    };
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* focused) { revealFocus(focused); });
}

void MenuWindow::setContent(const MenuContent& content) {
    hero_.setCard(content.hero, content.empty);
    setTiles(content.tiles);
    setAttention(content.attention);
    heading_->setTexts(content.devicesTitle, content.devicesCount);
    devices_.setDevices(content);
    footer_.setControls(content.footer);
    layOut();
    orderFocus();
}

// Whoever has the menu read out hears its parts in the order in which they stand.
void MenuWindow::orderParts() {
    heading_->raise();
    devices_.raise();
}

void MenuWindow::setTiles(const std::vector<HealthTile>& tiles) {
    tiles_.resize(std::min(tiles_.size(), tiles.size()));
    while (tiles_.size() < tiles.size()) {
        tiles_.push_back(std::make_unique<TileView>(context_, body_));
        tiles_.back()->show();
        if (attention_)
            attention_->raise();
        orderParts();
    }
    for (std::size_t i = 0; i < tiles.size(); ++i)
        tiles_[i]->setTile(tiles[i]);
}

void MenuWindow::setAttention(const std::optional<std::string>& text) {
    if (!text) {
        attention_.reset();
        return;
    }
    if (!attention_) {
        attention_ = std::make_unique<AttentionView>(context_, body_);
        attention_->show();
        orderParts();
    }
    attention_->setText(*text);
}

void MenuWindow::setRoom(QSize room) {
    room_ = room;
    layOut();
}

// In one line where they and their texts fit, else in two; returns where they end.
int MenuWindow::layOutTiles(int top, int inner) {
    const auto count = static_cast<int>(tiles_.size());
    const int inOneLine = (inner + tileGap) / count - tileGap;
    const bool fits =
        inOneLine >= leastTileWidth &&
        std::all_of(tiles_.begin(), tiles_.end(), [&](const auto& tile) { return tile->fits(inOneLine); });
    const int columns = fits ? count : 2;
    const int narrowest = (inner + tileGap) / columns - tileGap;
    int height = 0;
    for (const auto& tile : tiles_)
        height = std::max(height, tile->heightFor(narrowest));
    for (int i = 0; i < count; ++i) {
        const int column = i % columns;
        if (i > 0 && column == 0)
            top += height + tileGap;
        // Whole points, and the last one ends at the edge.
        const int left = column * (inner + tileGap) / columns;
        const int right = (column + 1) * (inner + tileGap) / columns - tileGap;
        tiles_[static_cast<std::size_t>(i)]->setGeometry(margin + left, top, right - left, height);
    }
    return top + height;
}

// Puts everything above the device list in its place; returns where the list begins.
int MenuWindow::layOutHead(int inner) {
    int top = margin;
    hero_.setGeometry(margin, top, inner, hero_.heightFor(inner));
    top += hero_.height();
    if (!tiles_.empty())
        top = layOutTiles(top + margin, inner);
    if (attention_) {
        top += tiles_.empty() ? margin : 8;
        attention_->setGeometry(margin, top, inner, attention_->heightFor(inner));
        top += attention_->height();
    }
    top += 4;
    heading_->setGeometry(margin, top, inner, headingHeight);
    return top + headingHeight;
}

void MenuWindow::layOut() {
    const QSize before = size();
    resize(std::min(windowWidth, room_.width()), height());
    const int footerBlock = footerGap + FooterView::footerHeight + margin;
    const int inner = width() - 2 * margin;
    const int full = devices_.heightFor(inner);
    const int above = layOutHead(inner);
    const int limit = static_cast<int>(room_.height() * shareOfScreen);
    int list = std::clamp(limit - above - footerBlock, devices_.leastHeight(inner), full);
    // Too low for even a few rows: then there is one thing that scrolls, not two in one another.
    if (above + list + footerBlock > room_.height())
        list = full;
    devices_.setGeometry(margin, above, inner, list);
    const int bodyHeight = above + list;
    const int shown = std::min(bodyHeight, room_.height() - footerBlock);
    scroll_.setGeometry(0, 0, width(), shown);
    scroll_.layOut(bodyHeight);
    footer_.setGeometry(margin, shown + footerGap, width() - 2 * margin, FooterView::footerHeight);
    resize(width(), shown + footerBlock);
    if (!isBlended_)
        setMask(QRegion(roundedPath(rect(), radius).toFillPolygon().toPolygon()));
    if (size() != before && onResize)
        onResize();
}

void MenuWindow::orderFocus() {
    std::vector<QWidget*> order = hero_.focusable();
    for (const auto& part : {devices_.focusable(), footer_.focusable()})
        order.insert(order.end(), part.begin(), part.end());
    if (order == focusOrder_)
        return;
    QWidget* before = this;
    for (QWidget* widget : order) {
        setTabOrder(before, widget);
        before = widget;
    }
    focusOrder_ = std::move(order);
}

void MenuWindow::revealFocus(QWidget* focused) {
    if (!focused || !body_->isAncestorOf(focused))
        return;
    if (devices_.isAncestorOf(focused))
        devices_.reveal(*focused);
    scroll_.reveal(*focused);
}

void MenuWindow::focusEnd(bool isLast) {
    if (!focusOrder_.empty())
        (isLast ? focusOrder_.back() : focusOrder_.front())->setFocus(Qt::TabFocusReason);
}

void MenuWindow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        if (onClose)
            onClose();
        break;
    case Qt::Key_Down:
    case Qt::Key_Right:
        focusNextPrevChild(true);
        break;
    case Qt::Key_Up:
    case Qt::Key_Left:
        focusNextPrevChild(false);
        break;
    case Qt::Key_Home:
    case Qt::Key_End:
        focusEnd(event->key() == Qt::Key_End);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void MenuWindow::closeEvent(QCloseEvent* event) {
    // A window that refused would keep the whole application from ending.
    event->accept();
    if (onClose)
        onClose();
}

void MenuWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) {
        context_.surface = surfaceFor(QGuiApplication::palette());
        colorTips(context_.surface);
        update();
        const auto parts = findChildren<QWidget*>();
        for (QWidget* part : parts)
            part->update();
    }
    QWidget::changeEvent(event);
}

bool MenuWindow::event(QEvent* event) {
    const bool isHandled = QWidget::event(event);
    // A menu or a tip of its own is no other window.
    if (event->type() == QEvent::WindowDeactivate && isVisible() && !QApplication::activePopupWidget() &&
        onFocusLost)
        onFocusLost();
    return isHandled;
}

void MenuWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath body = roundedPath(rect(), radius);
    if (isBlended_)
        painter.fillPath(body, context_.surface.window);
    else
        painter.fillRect(rect(), context_.surface.window);
    painter.setPen(QPen(context_.surface.hairline, 1));
    painter.drawPath(roundedPath(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5));
}

void MenuWindow::wake() {
    if (!nextFrame_)
        nextFrame_ = context_.loop.after(windowFrame, [this] { drawFrame(); });
}

void MenuWindow::drawFrame() {
    nextFrame_.cancel();
    const Duration now = context_.loop.now();
    bool moves = hero_.advance(now);
    moves |= devices_.advance(now);
    if (hero_.dropGone(now)) {
        layOut();
        orderFocus();
    }
    if (moves)
        wake();
}

} // namespace kivo
