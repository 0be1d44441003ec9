// SPDX-License-Identifier: MIT
#include "linux/base/DiskWriter.h"

#include "linux/base/WholeFile.h"

#include <algorithm>
#include <utility>

namespace kivo {

DiskWriter::~DiskWriter() {
    flush();
    if (thread_.joinable())
        thread_.join();
}

void DiskWriter::write(std::string path, std::string text, Done done, KeepsOld keepsOld) {
    add(std::move(path), std::move(text), nullptr, std::move(done), std::move(keepsOld));
}

void DiskWriter::write(std::string path, std::function<TextPieces()> text, Done done) {
    add(std::move(path), {}, std::move(text), std::move(done), nullptr);
}

void DiskWriter::add(std::string path, std::string text, std::function<TextPieces()> pieces, Done done,
                     KeepsOld keepsOld) {
    const std::lock_guard lock(mutex_);
    auto job = std::find_if(jobs_.begin(), jobs_.end(), [&](const Job& it) { return it.path == path; });
    if (job == jobs_.end()) {
        jobs_.push_back({std::move(path), {}, nullptr, nullptr, {}});
        job = std::prev(jobs_.end());
    }
    job->text = std::move(text);
    job->pieces = std::move(pieces);
    if (keepsOld)
        job->keepsOld = std::move(keepsOld);
    if (done)
        job->done.push_back(std::move(done));
    startThread();
}

void DiskWriter::afterWrites(std::function<void()> task) {
    const std::lock_guard lock(mutex_);
    jobs_.push_back({{}, {}, nullptr, nullptr, {[task = std::move(task)](const auto&) { task(); }}});
    startThread();
}

// Called with the lock held.
void DiskWriter::startThread() {
    if (isRunning_)
        return;
    // The thread before this one has found nothing left and is at its end.
    if (thread_.joinable())
        thread_.join();
    thread_ = std::thread([this] { run(); });
    isRunning_ = true;
}

std::optional<std::string> DiskWriter::writeAndWait(std::string path, std::string text) {
    struct Outcome {
        bool isKnown = false;
        std::optional<std::string> error;
    };
    Outcome outcome;
    write(std::move(path), std::move(text), [&](const std::optional<std::string>& error) {
        const std::lock_guard lock(mutex_);
        outcome = {true, error};
        finished_.notify_all();
    });
    std::unique_lock lock(mutex_);
    finished_.wait(lock, [&] { return outcome.isKnown; });
    return outcome.error;
}

void DiskWriter::flush() {
    std::unique_lock lock(mutex_);
    finished_.wait(lock, [this] { return !isRunning_; });
}

void DiskWriter::run() {
    std::unique_lock lock(mutex_);
    while (!jobs_.empty()) {
        const Job job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        perform(job);
        lock.lock();
    }
    isRunning_ = false;
    finished_.notify_all();
}

void DiskWriter::perform(const Job& job) {
    std::optional<std::string> error;
    if (!job.path.empty())
        error = replace(job);
    for (const auto& done : job.done)
        done(error);
}

std::optional<std::string> DiskWriter::replace(const Job& job) {
    if (cleaned_.insert(job.path).second)
        removeLeftovers(job.path);
    std::optional<std::string> error;
    if (job.keepsOld && *job.keepsOld) {
        error = moveFileAside(job.path);
        *job.keepsOld = error.has_value();
    }
    if (!error && job.pieces) {
        const auto pieces = job.pieces();
        std::vector<std::string_view> parts;
        parts.reserve(pieces.size());
        for (const auto& piece : pieces)
            parts.push_back(*piece);
        error = replaceWholeFile(job.path, parts);
    } else if (!error) {
        error = replaceWholeFile(job.path, job.text);
    }
    return error;
}

} // namespace kivo
