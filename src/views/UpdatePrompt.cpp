// SPDX-License-Identifier: MIT
#include "views/UpdatePrompt.h"

#include <QScreen>

namespace kivo {

// A button of the window may be what closes it.
void UpdatePrompt::LaterDeleted::operator()(UpdateWindow* window) const {
    window->onPage = window->onSkip = window->onClose = nullptr;
    window->hide();
    window->deleteLater();
}

void UpdatePrompt::show(const UpdateFinding& finding) {
    window_.reset(new UpdateWindow(loop_, updateNotice(finding)));
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
    window_.reset();
}

} // namespace kivo
