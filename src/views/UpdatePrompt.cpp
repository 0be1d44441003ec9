// SPDX-License-Identifier: MIT
#include "views/UpdatePrompt.h"

#include <QScreen>

#include <utility>

namespace kivo {

void UpdatePrompt::show(const UpdateFinding& finding) {
    close();
    window_ = std::make_unique<UpdateWindow>(loop_, updateNotice(finding));
    window_->onPage = [this, page = finding.page] {
        close();
        if (onOpenPage)
            onOpenPage(page);
    };
    if (!finding.releases.empty()) {
        window_->onSkip = [this, version = finding.releases.front().version] {
            close();
            if (onSkip)
                onSkip(version);
        };
    }
    window_->onClose = [this] { close(); };
    window_->setFixedSize(window_->sizeWithin(window_->screen()->availableSize()));
    window_->setAttribute(Qt::WA_ShowWithoutActivating, !finding.isAsked);
    window_->show();
    if (finding.isAsked)
        window_->activateWindow();
}

void UpdatePrompt::close() {
    if (!window_)
        return;
    // It may be one of its own buttons that asks: it goes once that has returned.
    window_->hide();
    leaving_.push_back(std::move(window_));
    loop_.post(lifetime_.guard([this] {
        leaving_.clear();
        if (onGone)
            onGone();
    }));
}

} // namespace kivo
