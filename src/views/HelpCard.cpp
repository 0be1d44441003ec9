// SPDX-License-Identifier: MIT
#include "views/HelpCard.h"

#include "views/Page.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace kivo {

namespace {

constexpr int topicInset = 44;

// Lines with a bullet before each.
QWidget* steps(const std::vector<std::string>& texts) {
    auto* all = new QWidget;
    auto* lines = new QVBoxLayout(all);
    lines->setContentsMargins(topicInset, 4, 20, 12);
    lines->setSpacing(6);
    for (const std::string& text : texts) {
        auto* line = new QHBoxLayout;
        line->setSpacing(8);
        line->addWidget(new TextBlock(TextBlock::Style::caption, "•"), 0, Qt::AlignTop);
        auto* step = new TextBlock(TextBlock::Style::caption, text);
        step->setForegroundRole(QPalette::PlaceholderText);
        line->addWidget(step, 1);
        lines->addLayout(line);
    }
    return all;
}

// Its steps exist while it is unfolded.
class TopicView final : public QWidget {
public:
    TopicView(Kit& kit, const HelpContent::Topic& topic) : topic_(topic) {
        lines_ = new QVBoxLayout(this);
        lines_->setContentsMargins(4, 0, 4, 0);
        lines_->setSpacing(0);
        auto* head = new Disclosure(kit);
        head->setTexts(topic.title, {});
        head->setSymbol(topic.symbol);
        lines_->addWidget(head);
        connect(head, &Disclosure::toggled, this, [this, head](bool isUnfolded) {
            head->showUnfolded(isUnfolded);
            unfold(isUnfolded);
        });
    }

private:
    void unfold(bool isUnfolded) {
        if (isUnfolded) {
            steps_ = steps(topic_.steps);
            lines_->addWidget(steps_);
            revealGrown(this);
        } else if (steps_) {
            delete std::exchange(steps_, nullptr);
        }
    }

    HelpContent::Topic topic_;
    QVBoxLayout* lines_;
    QWidget* steps_ = nullptr;
};

} // namespace

QWidget* helpSection(Kit& kit, const HelpContent& content) {
    auto* card = new Card(topicInset);
    for (const auto& topic : content.topics)
        card->addRow(new TopicView(kit, topic));
    return section(content.title, {}, nullptr, card);
}

} // namespace kivo
