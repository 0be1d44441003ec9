// SPDX-License-Identifier: MIT
#include "linux/base/SoundSketch.h"

#include <algorithm>
#include <cmath>

namespace kivo {
namespace {

constexpr double highestPeak = 0.85;
// Root of the mean square of the loudest tenth of a second, weighted as ears weigh it.
constexpr double loudness = 0.17;

std::size_t sampleCount(double time) {
    return static_cast<std::size_t>(std::max(0.0, std::round(time * SoundSketch::rate)));
}

// A filter of the second order.
struct Filter {
    double b0, b1, b2, a1, a2;
    double z1 = 0, z2 = 0;

    double operator()(double input) {
        const double output = b0 * input + z1;
        z1 = b1 * input - a1 * output + z2;
        z2 = b2 * input - a2 * output;
        return output;
    }
};

// The two filters by which ITU-R BS.1770 weighs programmes at 48 kHz.
double heardLevel(const std::vector<double>& samples) {
    Filter head{1.53512485958697, -2.69169618940638, 1.19839281085285, -1.69065929318241, 0.73248077421585};
    Filter lows{1, -2, 1, -1.99004745483398, 0.99007225036621};
    const std::size_t window = SoundSketch::rate / 10;
    std::vector<double> squares;
    squares.reserve(samples.size());
    double sum = 0;
    double loudest = 0;
    for (const double sample : samples) {
        const double weighted = lows(head(sample));
        squares.push_back(weighted * weighted);
        sum += squares.back();
        if (squares.size() > window)
            sum -= squares[squares.size() - 1 - window];
        loudest = std::max(loudest, sum);
    }
    return std::sqrt(loudest / static_cast<double>(window));
}

} // namespace

SoundSketch::SoundSketch(double length) : samples_(sampleCount(length)) {}

void SoundSketch::tone(const Tone& tone) {
    const std::size_t first = sampleCount(tone.start);
    const std::size_t count = std::min(sampleCount(tone.length), samples_.size() - first);
    const double release = 0.008;
    double phase = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double time = static_cast<double>(i) / rate;
        double frequency = tone.frequency;
        if (tone.glideFrom > 0)
            frequency += (tone.glideFrom - tone.frequency) * std::exp(-time / tone.glide);
        const double wave = tone.vibrato > 0 || tone.swell > 0 ? std::sin(turn * tone.vibratoRate * time) : 0;
        phase += turn * frequency * (1 + tone.vibrato * wave) / rate;

        // Every multiple's sine from the two before it.
        const double twice = 2 * std::cos(phase);
        double sine = std::sin(phase);
        double before = 0;
        const double dull = std::exp(-time * tone.dulling);
        double weight = 1;
        double sum = 0;
        double multiple = frequency;
        for (const double harmonic : tone.harmonics) {
            if (multiple < rate * 0.4)
                sum += harmonic * weight * sine;
            const double next = twice * sine - before;
            before = sine;
            sine = next;
            weight *= dull;
            multiple += frequency;
        }
        const double end = std::min(1.0, (tone.length - time) / release);
        samples_[first + i] += sum * tone.amplitude * (1 - std::exp(-time / tone.attack)) *
                               std::exp(-time / tone.decay) * (1 + tone.swell * wave) * std::max(0.0, end);
    }
}

void SoundSketch::noise(const Noise& noise) {
    const std::size_t first = sampleCount(noise.start);
    const std::size_t count = std::min(sampleCount(noise.length), samples_.size() - first);
    const double release = 0.015;
    double low = 0;
    double band = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double time = static_cast<double>(i) / rate;
        seed_ ^= seed_ << 13;
        seed_ ^= seed_ >> 17;
        seed_ ^= seed_ << 5;
        const double white = static_cast<double>(seed_) / 2147483648.0 - 1;

        const double frequency = noise.from + (noise.to - noise.from) * time / noise.length;
        const double step = 2 * std::sin(turn / 2 * std::min(frequency / rate, 0.16));
        low += step * band;
        band += step * (white - low - noise.width * band);
        // A narrow band holds less of the noise.
        const double level = std::sqrt(noise.width) * noise.amplitude;
        const double end = std::min(1.0, (noise.length - time) / release);
        samples_[first + i] += band * level * (1 - std::exp(-time / noise.attack)) *
                               std::exp(-time / noise.decay) * std::max(0.0, end);
    }
}

void SoundSketch::echo(double delay, double gain, int times) {
    const std::vector<double> dry = samples_;
    double level = 1;
    for (int repeat = 1; repeat <= times; ++repeat) {
        level *= gain;
        double smooth = 0;
        const double keep = 1 - std::pow(0.5, repeat);
        const std::size_t offset = sampleCount(delay * repeat);
        for (std::size_t i = offset; i < samples_.size(); ++i) {
            smooth = keep * smooth + (1 - keep) * dry[i - offset];
            samples_[i] += level * smooth;
        }
    }
}

void SoundSketch::fadeEnds() {
    const std::size_t rise = std::min(sampleCount(0.001), samples_.size());
    const std::size_t fall = std::min(sampleCount(0.02), samples_.size());
    for (std::size_t i = 0; i < rise; ++i)
        samples_[i] *= static_cast<double>(i) / static_cast<double>(rise);
    for (std::size_t i = 0; i < fall; ++i)
        samples_[samples_.size() - 1 - i] *= static_cast<double>(i) / static_cast<double>(fall);
}

std::vector<float> SoundSketch::finish() {
    // Below 30 Hz there is only movement of the membrane.
    const double keep = 1 - turn * 30 / rate;
    double before = 0;
    double output = 0;
    for (double& sample : samples_) {
        output = keep * (output + sample - before);
        before = sample;
        sample = output;
    }
    fadeEnds();

    // Peaks are bent, not cut; each bend costs loudness, which the next round makes good.
    for (int round = 0; round < 4; ++round) {
        const double level = heardLevel(samples_);
        const double gain = level > 0 ? loudness / level : 0;
        double peak = 0;
        for (double& sample : samples_)
            peak = std::max(peak, std::abs(sample *= gain));
        if (peak <= highestPeak)
            break;
        for (double& sample : samples_)
            sample = highestPeak * std::tanh(sample / highestPeak);
    }
    return {samples_.begin(), samples_.end()};
}

} // namespace kivo
