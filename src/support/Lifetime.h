// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

namespace kivo {

// For work that nobody can cancel: a callback guarded by a component's Lifetime does nothing once the component
// is gone. Keep it as the component's last member, so that it ends first.
class Lifetime {
public:
    template <typename Callback>
    auto guard(Callback callback) const {
        return
            [alive = std::weak_ptr<const char>(alive_), callback = std::move(callback)](auto&&... arguments) {
                if (!alive.expired())
                    callback(std::forward<decltype(arguments)>(arguments)...);
            };
    }

private:
    std::shared_ptr<const char> alive_ = std::make_shared<const char>();
};

} // namespace kivo
