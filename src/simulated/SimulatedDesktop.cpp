// SPDX-License-Identifier: MIT
#include "simulated/SimulatedDesktop.h"

#include <utility>

namespace kivo {
namespace {

class SimulatedSound final : public NamedSound {
public:
    SimulatedSound(EventLog& events, std::string name) : events_(events), name_(std::move(name)) {}
    void stop() override { events_.record("sound.stop", {{"name", name_}}); }
    void play() override { events_.record("sound.play", {{"name", name_}}); }

private:
    EventLog& events_;
    std::string name_;
};

} // namespace

std::optional<Screen> SimulatedScreens::mainScreen() {
    const auto& state = core_.state;
    if (!state.mainScreen || *state.mainScreen >= state.screens.size())
        return std::nullopt;
    return state.screens[*state.mainScreen];
}

void SimulatedPanel::orderOut() {
    isInFront_ = false;
    core_.events.record("island.hide");
}

void SimulatedNotifications::requestAuthorization(std::vector<std::string> options,
                                                  std::function<void(Authorization)> done) {
    core_.events.record("notification.authorize", {{"options", Array(options.begin(), options.end())}});
    core_.loop.post(
        [done = std::move(done), answer = core_.state.notifications.authorization] { done(answer); });
}

void SimulatedNotifications::authorizationStatus(std::function<void(NotificationStatus)> done) {
    core_.loop.post([done = std::move(done), status = core_.state.notifications.status] { done(status); });
}

void SimulatedNotifications::add(NotificationRequest request,
                                 std::function<void(std::optional<std::string>)> done) {
    core_.events.record("notification.post",
                        {{"identifier", request.identifier}, {"title", request.title}, {"body", request.body}});
    core_.loop.post([done = std::move(done), error = core_.state.notifications.addError] { done(error); });
}

NamedSound* SimulatedSounds::named(std::string_view name) {
    if (core_.state.sounds.find(name) == core_.state.sounds.end())
        return nullptr;
    auto& sound = sounds_[std::string(name)];
    if (!sound)
        sound = std::make_unique<SimulatedSound>(core_.events, std::string(name));
    return sound.get();
}

void SimulatedWindows::open(std::string_view name) {
    open_.emplace(name);
    core_.events.record("window.open", {{"name", name}});
}

void SimulatedWindows::close(std::string_view name) {
    if (const auto it = open_.find(name); it != open_.end())
        open_.erase(it);
    core_.events.record("window.close", {{"name", name}});
}

std::optional<std::string> SimulatedWorkspace::environment(std::string_view name) {
    const auto value = core_.state.environment.find(name);
    return value == core_.state.environment.end() ? std::nullopt : std::optional(value->second);
}

} // namespace kivo
