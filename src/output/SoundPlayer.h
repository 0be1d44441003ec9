// SPDX-License-Identifier: MIT
#pragma once

#include "core/AlertSettings.h"

namespace kivo {

class Sounds;

// Plays the system sound of an alert. The same sound restarts, different ones may overlap; a sound that the
// system does not know is silence.
class SoundPlayer {
public:
    explicit SoundPlayer(Sounds& sounds) : sounds_(sounds) {}

    // Returns at once.
    void play(AlertSound sound);

private:
    Sounds& sounds_;
};

} // namespace kivo
