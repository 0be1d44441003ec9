// SPDX-License-Identifier: MIT
#pragma once

#include "views/WaylandClient.h"

#include <QImage>

#include <array>
#include <cstddef>

namespace kivo {

// Two pictures of one size in memory shared with the compositor, which reads one while the other is painted.
class SharedImages {
public:
    SharedImages() = default;
    ~SharedImages() { release(); }
    SharedImages(const SharedImages&) = delete;
    SharedImages& operator=(const SharedImages&) = delete;

    // A picture to paint on (premultiplied; it holds what it held), until `take`. Null when the compositor
    // still reads both, or there is no memory.
    QImage next(wl_shm* memory, QSize size);
    // The one painted last, to be attached: it is the compositor's until it gives it back.
    wl_buffer* take();
    void release();

private:
    struct Slot {
        wl_buffer* buffer = nullptr;
        bool isTaken = false;
    };
    bool allocate(wl_shm* memory, QSize size);

    QSize size_;
    uchar* memory_ = nullptr;
    std::size_t bytes_ = 0; // of both
    std::array<Slot, 2> slots_;
    std::size_t next_ = 0;
};

} // namespace kivo
