// SPDX-License-Identifier: MIT
#pragma once

#include <QSemaphore>
#include <QThreadPool>

namespace kivo {

// Paints, and waits for it, on a thread of Qt's pool. Elsewhere Qt hands every larger fill of a painting to
// that pool in pieces, and for pictures of an island's size the handing over takes more than the painting; a
// thread of the pool paints by itself.
template <typename Painting>
void paintAlone(const Painting& painting) {
    QSemaphore done;
    QThreadPool::globalInstance()->start([&] {
        painting();
        done.release();
    });
    done.acquire();
}

} // namespace kivo
