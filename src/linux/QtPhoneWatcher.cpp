// SPDX-License-Identifier: MIT
#include "linux/QtPhoneWatcher.h"

#include <QObject>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace kivo {

QtPhoneWatcher::QtPhoneWatcher(MainLoop& loop, LogSink& log, LinuxMobileDevices& phones, std::string program)
    : loop_(loop), phones_(phones), program_(std::move(program)), watch_(loop, log, *this, phones) {
    phones_.onSubscribe = [this] {
        watchFolder();
        watch_.begin();
    };
}

QtPhoneWatcher::~QtPhoneWatcher() {
    phones_.onSubscribe = nullptr;
    phones_.endReadings();
    helperNotifier_.reset();
    folderNotifier_.reset();
}

bool QtPhoneWatcher::start() {
    helper_ = HelperProcess::start(program_, {"watch"});
    if (!helper_)
        return false;
    helperNotifier_ = std::make_unique<QSocketNotifier>(helper_->descriptor(), QSocketNotifier::Read);
    QObject::connect(helperNotifier_.get(), &QSocketNotifier::activated, helperNotifier_.get(),
                     [this] { handleHelper(); });
    return true;
}

void QtPhoneWatcher::stop() {
    if (!helper_)
        return;
    helperNotifier_->setEnabled(false);
    helperNotifier_.release()->deleteLater(); // it may be calling us
    loop_.background([helper = std::shared_ptr<HelperProcess>(std::move(helper_))]() mutable {
        helper.reset();
        return MainLoop::Continuation();
    });
}

void QtPhoneWatcher::handleHelper() {
    char buffer[1024];
    const auto count = recv(helper_->descriptor(), buffer, sizeof buffer, MSG_DONTWAIT);
    if (count > 0) {
        watch_.handleOutput({buffer, static_cast<std::size_t>(count)});
    } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
        stop();
        watch_.handleEnd();
    }
}

void QtPhoneWatcher::watchFolder() {
    if (address_.path.empty() || folder_)
        return;
    folder_ = Descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    const auto path = std::filesystem::path(address_.path).parent_path();
    if (!folder_ || inotify_add_watch(folder_.get(), path.c_str(), IN_CREATE | IN_MOVED_TO | IN_ONLYDIR) < 0)
        return;
    folderNotifier_ = std::make_unique<QSocketNotifier>(folder_.get(), QSocketNotifier::Read);
    QObject::connect(folderNotifier_.get(), &QSocketNotifier::activated, folderNotifier_.get(),
                     [this] { handleFolder(); });
}

void QtPhoneWatcher::handleFolder() {
    alignas(inotify_event) char buffer[4096];
    const auto count = read(folder_.get(), buffer, sizeof buffer);
    const auto name = std::filesystem::path(address_.path).filename();
    bool isOurs = false;
    for (ssize_t at = 0; at < count;) {
        const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
        isOurs = isOurs || (event->mask & IN_Q_OVERFLOW) != 0 || (event->len > 0 && name == event->name);
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
    }
    if (isOurs)
        watch_.handleSocket();
}

} // namespace kivo
