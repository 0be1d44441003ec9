// SPDX-License-Identifier: MIT
#include "linux/base/EnergyMeter.h"

#include <charconv>
#include <cmath>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace kivo {
namespace {

Descriptor openFile(const std::string& path) {
    return Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
}

// The file's first line; sysfs gives a fresh value at each read from the front.
std::optional<std::string> line(const Descriptor& file) {
    char buffer[64];
    const auto length = file ? pread(file.get(), buffer, sizeof buffer, 0) : -1;
    if (length <= 0)
        return std::nullopt;
    const std::string_view text(buffer, static_cast<std::size_t>(length));
    return std::string(text.substr(0, text.find('\n')));
}

std::optional<std::int64_t> number(const Descriptor& file) {
    const auto text = line(file);
    std::int64_t value = 0;
    if (!text || std::from_chars(text->data(), text->data() + text->size(), value).ec != std::errc())
        return std::nullopt;
    return value;
}

std::vector<std::string> folders(const std::string& parent) {
    std::vector<std::string> result;
    std::error_code error;
    for (auto entry = std::filesystem::directory_iterator(parent, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
        result.push_back(entry->path());
    return result;
}

} // namespace

EnergyMeter::EnergyMeter(const std::string& sys) {
    for (const auto& folder : folders(sys + "/class/powercap")) {
        // "intel-rapl:0" is a package (AMD's too), "intel-rapl:0:1" a part of one.
        const std::string name = folder.substr(folder.rfind('/') + 1);
        if (!name.starts_with("intel-rapl:") || name.find(':', 11) != name.npos)
            continue;
        Package package{.energy = openFile(folder + "/energy_uj"), .range = 0, .last = {}};
        const auto range = number(openFile(folder + "/max_energy_range_uj"));
        package.range = static_cast<std::uint64_t>(range.value_or(0));
        if (package.energy)
            packages_.push_back(std::move(package));
    }
    for (const auto& folder : folders(sys + "/class/power_supply")) {
        batteries_.push_back({openFile(folder + "/status"), openFile(folder + "/power_now"),
                              openFile(folder + "/current_now"), openFile(folder + "/voltage_now")});
    }
}

std::optional<double> EnergyMeter::joulesSince(double seconds) {
    if (!packages_.empty())
        return packageJoules();
    const auto watts = dischargeWatts();
    return watts ? std::optional(*watts * seconds) : std::nullopt;
}

std::optional<double> EnergyMeter::packageJoules() {
    double joules = 0;
    bool isComplete = true;
    for (auto& package : packages_) {
        const auto reading = number(package.energy);
        const auto last = package.last;
        package.last = reading ? std::optional(static_cast<std::uint64_t>(*reading)) : std::nullopt;
        if (!last || !package.last || (*package.last < *last && package.range == 0)) {
            isComplete = false;
            continue;
        }
        // The counter starts again at its end.
        const std::uint64_t turn = *package.last < *last ? package.range : 0;
        joules += static_cast<double>(*package.last + turn - *last) / 1e6;
    }
    return isComplete ? std::optional(joules) : std::nullopt;
}

std::optional<double> EnergyMeter::dischargeWatts() const {
    std::optional<double> watts;
    for (const auto& battery : batteries_) {
        if (line(battery.status) != "Discharging")
            continue;
        double power = 0;
        if (const auto microwatts = number(battery.power)) {
            power = static_cast<double>(*microwatts) / 1e6;
        } else {
            const auto current = number(battery.current);
            const auto voltage = number(battery.voltage);
            if (!current || !voltage)
                return std::nullopt;
            power = static_cast<double>(*current) * static_cast<double>(*voltage) / 1e12;
        }
        // Drivers do not agree on the sign.
        watts = watts.value_or(0) + std::abs(power);
    }
    return watts && *watts > 0 ? watts : std::nullopt;
}

} // namespace kivo
