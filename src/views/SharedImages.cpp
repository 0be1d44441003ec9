// SPDX-License-Identifier: MIT
#include "views/SharedImages.h"

#include <sys/mman.h>
#include <unistd.h>

namespace kivo {

QImage SharedImages::next(wl_shm* memory, QSize size) {
    if (size != size_ && !allocate(memory, size))
        return {};
    next_ = slots_[0].isTaken ? 1 : 0;
    if (slots_[next_].isTaken)
        return {};
    return {memory_ + next_ * bytes_ / slots_.size(), size.width(), size.height(), 4 * size.width(),
            QImage::Format_ARGB32_Premultiplied};
}

wl_buffer* SharedImages::take() {
    slots_[next_].isTaken = true;
    return slots_[next_].buffer;
}

bool SharedImages::allocate(wl_shm* memory, QSize size) {
    static const wl_buffer_listener listener{
        [](void* data, wl_buffer*) { static_cast<Slot*>(data)->isTaken = false; }};
    release();
    const int bytes = 4 * size.width() * size.height();
    bytes_ = slots_.size() * static_cast<std::size_t>(bytes);
    const int file = memfd_create("kivo", MFD_CLOEXEC);
    void* mapped = MAP_FAILED;
    if (file >= 0 && ftruncate(file, static_cast<off_t>(bytes_)) == 0)
        mapped = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (mapped != MAP_FAILED) {
        memory_ = static_cast<uchar*>(mapped);
        size_ = size;
        wl_shm_pool* pool = wl_shm_create_pool(memory, file, static_cast<std::int32_t>(bytes_));
        for (std::size_t i = 0; i < slots_.size(); ++i) {
            slots_[i].buffer =
                wl_shm_pool_create_buffer(pool, static_cast<std::int32_t>(i) * bytes, size.width(),
                                          size.height(), 4 * size.width(), WL_SHM_FORMAT_ARGB8888);
            wl_buffer_add_listener(slots_[i].buffer, &listener, &slots_[i]);
        }
        wl_shm_pool_destroy(pool);
    }
    if (file >= 0)
        close(file);
    return memory_ != nullptr;
}

void SharedImages::release() {
    for (Slot& slot : slots_) {
        if (slot.buffer)
            wl_buffer_destroy(slot.buffer);
        slot = {};
    }
    if (memory_)
        munmap(memory_, bytes_);
    memory_ = nullptr;
    size_ = {};
}

} // namespace kivo
