// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// Plays several sounds over each other into one channel. Each name sounds at most once: started again, it
// begins anew.
class SoundMixer {
public:
    void start(std::string_view name, std::vector<float> samples);
    // Fades out within milliseconds, so that it does not click.
    void stop(std::string_view name);
    bool isSilent() const { return voices_.empty(); }
    // The next `count` samples, silence where nothing plays; never beyond -1 and 1.
    void render(float* output, std::size_t count);

private:
    struct Voice {
        std::string name;
        std::vector<float> samples;
        std::size_t position = 0;
        float gain = 1;
        bool isEnding = false;
    };
    std::vector<Voice> voices_;
};

} // namespace kivo
