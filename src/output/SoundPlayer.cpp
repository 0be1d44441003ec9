// SPDX-License-Identifier: MIT
#include "output/SoundPlayer.h"

#include "core/AlertDisplay.h"
#include "platform/Sounds.h"

namespace kivo {

void SoundPlayer::play(AlertSound sound) {
    const auto name = systemName(sound);
    if (!name)
        return;
    if (NamedSound* const named = sounds_.named(*name)) {
        named->stop();
        named->play();
    }
}

} // namespace kivo
