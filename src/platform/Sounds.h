// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kivo {

// A sound of the system. There is one object for each name: playing it twice does not overlap.
class NamedSound {
public:
    virtual ~NamedSound() = default;
    virtual void stop() = 0;
    // Starts from the beginning and returns at once.
    virtual void play() = 0;
};

class Sounds {
public:
    virtual ~Sounds() = default;
    // By capitalised name ("Tink"). A null pointer when there is no such sound. Owned by this object.
    virtual NamedSound* named(std::string_view name) = 0;
};

} // namespace kivo
