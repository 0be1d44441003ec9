// SPDX-License-Identifier: MIT
#include "linux/base/SoundSynth.h"

#include "linux/base/SoundSketch.h"

#include <algorithm>
#include <cmath>

namespace kivo {
namespace {

// The overtones of a bowed or blown thing: each weaker than the one before.
std::vector<double> overtones(int count, double slope) {
    std::vector<double> result;
    for (int number = 1; number <= count; ++number)
        result.push_back(std::pow(number, -slope));
    return result;
}

// Struck things ring in many tones that are no multiples of each other; the high ones die first.
struct Partial {
    double ratio;
    double amplitude;
    double decay;
};

void strike(SoundSketch& sketch, double start, double length, double frequency,
            std::initializer_list<Partial> partials) {
    for (const auto& partial : partials)
        sketch.tone({.start = start,
                     .length = length,
                     .frequency = frequency * partial.ratio,
                     .amplitude = partial.amplitude,
                     .attack = 0.0008,
                     .decay = partial.decay});
}

// A bubble: the pitch rises as it opens.
SoundSketch pop() {
    SoundSketch sketch(0.18);
    sketch.tone(
        {.length = 0.17, .frequency = 980, .attack = 0.001, .decay = 0.028, .glideFrom = 330, .glide = 0.03});
    sketch.noise({.length = 0.02, .from = 2200, .to = 2200, .width = 1, .amplitude = 0.25, .decay = 0.003});
    return sketch;
}

SoundSketch glass() {
    SoundSketch sketch(1.3);
    strike(sketch, 0, 1.3, 1046.5,
           {{1, 0.8, 0.42}, {1.003, 0.5, 0.5}, {2.32, 0.5, 0.24}, {4.25, 0.28, 0.12}, {6.63, 0.14, 0.06}});
    return sketch;
}

// A fanfare: three steps up into a held major chord.
SoundSketch hero() {
    SoundSketch sketch(1.45);
    const auto brass = overtones(10, 1.1);
    double start = 0;
    for (const double frequency : {392.0, 523.25, 659.26, 783.99}) {
        sketch.tone({.start = start,
                     .length = 1.45 - start,
                     .frequency = frequency,
                     .amplitude = 0.5,
                     .attack = 0.018,
                     .decay = 0.55,
                     .harmonics = brass,
                     .dulling = 0.9,
                     .vibrato = 0.003});
        start += 0.085;
    }
    return sketch;
}

// Twenty-five soft beats a second, in and out like breath.
SoundSketch purr() {
    SoundSketch sketch(0.96);
    for (int beat = 0; beat < 23; ++beat) {
        const double start = 0.04 * beat;
        const double breath = std::sin(SoundSketch::turn / 2 * (beat + 1) / 24);
        sketch.tone({.start = start,
                     .length = 0.038,
                     .frequency = 118 + 14 * breath,
                     .amplitude = 0.3 + breath,
                     .attack = 0.004,
                     .decay = 0.012,
                     .harmonics = {1, 0.8, 0.6, 0.35, 0.2}});
        sketch.noise({.start = start,
                      .length = 0.03,
                      .from = 420,
                      .to = 380,
                      .width = 0.8,
                      .amplitude = 0.5 * breath,
                      .decay = 0.01});
    }
    return sketch;
}

// Breath across the neck, and the air inside that answers.
SoundSketch bottle() {
    SoundSketch sketch(0.75);
    sketch.tone({.length = 0.72,
                 .frequency = 233,
                 .attack = 0.06,
                 .decay = 0.3,
                 .harmonics = {1, 0.06, 0.1},
                 .glideFrom = 222,
                 .glide = 0.06,
                 .vibrato = 0.004,
                 .vibratoRate = 6});
    sketch.noise({.length = 0.55,
                  .from = 240,
                  .to = 233,
                  .width = 0.15,
                  .amplitude = 0.8,
                  .attack = 0.03,
                  .decay = 0.22});
    sketch.noise({.length = 0.4,
                  .from = 1900,
                  .to = 1400,
                  .width = 0.9,
                  .amplitude = 0.16,
                  .attack = 0.02,
                  .decay = 0.12});
    return sketch;
}

// A plucked bass string with a short answer an octave up.
SoundSketch funk() {
    SoundSketch sketch(0.48);
    const auto string = overtones(18, 0.7);
    sketch.tone({.length = 0.2,
                 .frequency = 98,
                 .amplitude = 0.8,
                 .attack = 0.001,
                 .decay = 0.08,
                 .harmonics = string,
                 .dulling = 7,
                 .glideFrom = 103,
                 .glide = 0.02});
    sketch.tone({.start = 0.22,
                 .length = 0.25,
                 .frequency = 196,
                 .attack = 0.001,
                 .decay = 0.08,
                 .harmonics = string,
                 .dulling = 14,
                 .glideFrom = 174,
                 .glide = 0.02});
    sketch.noise({.length = 0.012, .from = 1500, .to = 900, .width = 1, .amplitude = 0.5, .decay = 0.004});
    return sketch;
}

SoundSketch tink() {
    SoundSketch sketch(0.26);
    strike(sketch, 0, 0.25, 2793.8, {{1, 0.8, 0.05}, {1.52, 0.5, 0.035}, {2.76, 0.3, 0.018}});
    return sketch;
}

// One clear tone into the deep, and what comes back.
SoundSketch ping() {
    SoundSketch sketch(1.4);
    sketch.tone({.length = 0.8, .frequency = 1480, .attack = 0.003, .decay = 0.16, .harmonics = {1, 0.04}});
    sketch.echo(0.29, 0.42, 3);
    return sketch;
}

// A dull horn under water, swaying, with bubbles after it.
SoundSketch submarine() {
    SoundSketch sketch(1.35);
    for (const double start : {0.0, 0.42})
        sketch.tone({.start = start,
                     .length = 0.5,
                     .frequency = 311,
                     .amplitude = start > 0 ? 0.7 : 1,
                     .attack = 0.03,
                     .decay = 0.22,
                     .harmonics = {1, 0.35, 0.2, 0.08},
                     .dulling = 4,
                     .vibrato = 0.012,
                     .vibratoRate = 9,
                     .swell = 0.35});
    double start = 0.78;
    for (const double frequency : {520.0, 640.0, 580.0, 760.0}) {
        sketch.tone({.start = start,
                     .length = 0.09,
                     .frequency = frequency * 1.5,
                     .amplitude = 0.3,
                     .decay = 0.02,
                     .glideFrom = frequency * 0.7,
                     .glide = 0.03});
        start += 0.085;
    }
    return sketch;
}

SoundSketch blow() {
    SoundSketch sketch(0.85);
    sketch.noise({.length = 0.85, .from = 650, .to = 1500, .width = 0.5, .attack = 0.13, .decay = 0.28});
    sketch.noise(
        {.length = 0.7, .from = 2600, .to = 3800, .width = 0.7, .amplitude = 0.3, .attack = 0.2, .decay = 0.2});
    return sketch;
}

// Two syllables, the second one higher: bursts of a throat's two resonances.
SoundSketch frog() {
    SoundSketch sketch(0.52);
    const auto syllable = [&](double start, double length, double pulses, double throat) {
        const int count = static_cast<int>(length * pulses);
        for (int pulse = 0; pulse < count; ++pulse) {
            const double at = start + pulse / pulses;
            const double strength = 0.35 + 0.65 * std::sin(SoundSketch::turn / 2 * (pulse + 1) / (count + 1));
            sketch.tone({.start = at,
                         .length = 0.03,
                         .frequency = throat,
                         .amplitude = strength,
                         .attack = 0.0006,
                         .decay = 0.006});
            sketch.tone({.start = at,
                         .length = 0.03,
                         .frequency = throat * 2.6,
                         .amplitude = 0.6 * strength,
                         .attack = 0.0006,
                         .decay = 0.004});
        }
    };
    syllable(0, 0.2, 62, 350);
    syllable(0.26, 0.23, 78, 460);
    return sketch;
}

// Long, short, long: the letter K.
SoundSketch morse() {
    SoundSketch sketch(0.62);
    const double unit = 0.065;
    double start = 0.005;
    for (const int units : {3, 1, 3}) {
        sketch.tone({.start = start,
                     .length = unit * units,
                     .frequency = 740,
                     .attack = 0.003,
                     .harmonics = {1, 0, 0.12, 0, 0.04}});
        start += unit * (units + 1);
    }
    return sketch;
}

// A stab of neighbours that do not get along.
SoundSketch sosumi() {
    SoundSketch sketch(0.8);
    for (const double frequency : {554.37, 587.33, 830.61, 1174.7})
        sketch.tone({.length = 0.78,
                     .frequency = frequency,
                     .amplitude = 0.5,
                     .attack = 0.001,
                     .decay = 0.16,
                     .harmonics = {1, 0.1, 0.45, 0.05, 0.2},
                     .dulling = 6});
    sketch.noise({.length = 0.01, .from = 3000, .to = 3000, .width = 1, .amplitude = 0.4, .decay = 0.003});
    return sketch;
}

// A low brass note that sinks.
SoundSketch basso() {
    SoundSketch sketch(0.7);
    sketch.tone({.length = 0.68,
                 .frequency = 73.4,
                 .attack = 0.02,
                 .decay = 0.3,
                 .harmonics = overtones(16, 0.85),
                 .dulling = 1.6,
                 .glideFrom = 80,
                 .glide = 0.25});
    return sketch;
}

struct Entry {
    std::string_view name;
    SoundSketch (*make)();
};

constexpr Entry entries[] = {
    {"Pop", pop},   {"Glass", glass}, {"Hero", hero},     {"Purr", purr},           {"Bottle", bottle},
    {"Funk", funk}, {"Tink", tink},   {"Ping", ping},     {"Submarine", submarine}, {"Blow", blow},
    {"Frog", frog}, {"Morse", morse}, {"Sosumi", sosumi}, {"Basso", basso},
};

} // namespace

const std::vector<std::string_view>& soundNames() {
    static const std::vector<std::string_view> names = [] {
        std::vector<std::string_view> result;
        for (const auto& entry : entries)
            result.push_back(entry.name);
        return result;
    }();
    return names;
}

std::optional<std::vector<float>> synthesizeSound(std::string_view name) {
    for (const auto& entry : entries)
        if (entry.name == name)
            return entry.make().finish();
    return std::nullopt;
}

} // namespace kivo
