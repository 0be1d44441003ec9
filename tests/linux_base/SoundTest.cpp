// SPDX-License-Identifier: MIT
#include "linux/base/SoundMixer.h"
#include "linux/base/SoundSketch.h"
#include "linux/base/SoundSynth.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numeric>

namespace kivo {
namespace {

using Samples = std::vector<float>;

double peak(const Samples& samples) {
    double result = 0;
    for (const float sample : samples)
        result = std::max(result, std::abs(static_cast<double>(sample)));
    return result;
}

// The largest mean of a tenth of a second, without the deep tones that small loudspeakers lose.
double loudest(const Samples& samples) {
    const std::size_t window = SoundSketch::rate / 10;
    std::vector<double> squares(samples.size() + window);
    double low = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        low += 0.013 * (samples[i] - low);
        squares[i] = (samples[i] - low) * (samples[i] - low);
    }
    double sum = 0;
    double result = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        sum += squares[i] - (i >= window ? squares[i - window] : 0);
        result = std::max(result, sum);
    }
    return 10 * std::log10(result / window);
}

// How much sounds in each of twenty bands, a third of an octave wide, in each of six spans of time.
std::vector<double> character(const Samples& samples) {
    constexpr std::size_t bands = 20;
    constexpr std::size_t spans = 6;
    const std::size_t span = SoundSketch::rate / 10;
    std::vector<double> result(bands * spans);
    for (std::size_t band = 0; band < bands; ++band) {
        const double frequency = 90 * std::pow(2, static_cast<double>(band) / 3);
        const double step = 2 * std::sin(SoundSketch::turn / 2 * frequency / SoundSketch::rate);
        double low = 0;
        double middle = 0;
        for (std::size_t i = 0; i < std::min(samples.size(), spans * span); ++i) {
            low += step * middle;
            middle += step * (samples[i] - low - 0.23 * middle);
            result[i / span * bands + band] += middle * middle;
        }
    }
    for (double& value : result)
        value = std::sqrt(value);
    const double length = std::sqrt(std::inner_product(result.begin(), result.end(), result.begin(), 0.0));
    for (double& value : result)
        value /= length;
    return result;
}

TEST(SoundSynth, EverySoundIsShortCleanAndAsLoudAsTheOthers) {
    EXPECT_EQ(soundNames().size(), 14U);
    for (const auto name : soundNames()) {
        SCOPED_TRACE(std::string(name));
        const auto samples = *synthesizeSound(name);
        const double seconds = static_cast<double>(samples.size()) / SoundSketch::rate;
        EXPECT_GE(seconds, 0.15);
        EXPECT_LE(seconds, 1.5);
        EXPECT_LE(peak(samples), 0.9);
        EXPECT_NEAR(loudest(samples), -16.5, 3);
        const double mean =
            std::accumulate(samples.begin(), samples.end(), 0.0) / static_cast<double>(samples.size());
        EXPECT_NEAR(mean, 0, 0.005) << "a shift of the membrane";

        // A click is a step at the very start or end.
        EXPECT_NEAR(samples.front(), 0, 1e-4);
        EXPECT_NEAR(samples.back(), 0, 1e-4);
        EXPECT_LE(peak(Samples(samples.begin(), samples.begin() + 10)), 0.15);
        EXPECT_LE(peak(Samples(samples.end() - 100, samples.end())), 0.03);
        EXPECT_EQ(samples, *synthesizeSound(name)) << "not the same every time";
    }
}

TEST(SoundSynth, NoTwoSoundsCanBeMistakenForEachOther) {
    std::vector<std::vector<double>> characters;
    for (const auto name : soundNames())
        characters.push_back(character(*synthesizeSound(name)));
    for (std::size_t a = 0; a < characters.size(); ++a)
        for (std::size_t b = 0; b < a; ++b)
            EXPECT_LT(
                std::inner_product(characters[a].begin(), characters[a].end(), characters[b].begin(), 0.0),
                0.85)
                << soundNames()[a] << " and " << soundNames()[b];
}

TEST(SoundSynth, KnowsOnlyItsNames) {
    for (const auto* name : {"", "tink", "Boom", "Pop "})
        EXPECT_FALSE(synthesizeSound(name)) << name;
}

Samples render(SoundMixer& mixer, std::size_t count) {
    Samples result(count, 7.0F);
    mixer.render(result.data(), count);
    return result;
}

TEST(SoundMixer, TheSameSoundBeginsAnewAndDifferentOnesOverlap) {
    SoundMixer mixer;
    EXPECT_EQ(render(mixer, 3), Samples(3, 0.0F));
    mixer.start("A", Samples(1000, 0.25F));
    EXPECT_EQ(render(mixer, 900), Samples(900, 0.25F));

    mixer.stop("A");
    mixer.start("A", Samples(1000, 0.25F));
    const auto again = render(mixer, 1000);
    EXPECT_EQ(again[0], 0.5F) << "the old one is not cut off with a click";
    EXPECT_EQ(Samples(again.begin() + 240, again.end()), Samples(760, 0.25F));
    EXPECT_TRUE(mixer.isSilent());

    mixer.start("A", Samples(10, 0.25F));
    mixer.start("B", Samples(5, 0.5F));
    EXPECT_EQ(render(mixer, 12), (Samples{.75, .75, .75, .75, .75, .25, .25, .25, .25, .25, 0, 0}));
}

TEST(SoundMixer, ManyLoudSoundsNeverGoBeyondTheLimit) {
    SoundMixer mixer;
    for (const auto* name : {"A", "B", "C", "D"})
        mixer.start(name, Samples{0.9F, -0.9F, 0.2F});
    const auto samples = render(mixer, 3);
    EXPECT_LE(peak(samples), 1);
    EXPECT_GT(samples[0], 0.99F);
    EXPECT_LT(samples[1], -0.99F);
    EXPECT_FLOAT_EQ(samples[2], 0.8F);
}

TEST(SoundMixer, AStoppedSoundFadesWithinMilliseconds) {
    SoundMixer mixer;
    mixer.start("A", Samples(1000, 0.5F));
    mixer.start("B", Samples(300, 0.25F));
    render(mixer, 10);
    mixer.stop("A");
    const auto samples = render(mixer, 300);
    EXPECT_EQ(samples[0], 0.75F);
    for (std::size_t i = 1; i < 240; ++i)
        ASSERT_LT(samples[i], samples[i - 1]);
    EXPECT_EQ(samples[250], 0.25F);
    EXPECT_TRUE(mixer.isSilent());
}

} // namespace
} // namespace kivo
