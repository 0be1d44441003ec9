// SPDX-License-Identifier: MIT
#include "linux/base/EnergyMeter.h"

#include <charconv>
#include <cmath>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <unistd.h>

namespace kivo {
namespace {

int openFile(const std::string& path) {
    return open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

// The file's first line; sysfs gives a fresh value at each read from the front.
std::optional<std::string> line(int descriptor) {
    char buffer[64];
    const auto length = descriptor < 0 ? -1 : pread(descriptor, buffer, sizeof buffer, 0);
    if (length <= 0)
        return std::nullopt;
    const std::string_view text(buffer, static_cast<std::size_t>(length));
    return std::string(text.substr(0, text.find('\n')));
}

std::optional<std::int64_t> number(int descriptor) {
    const auto text = line(descriptor);
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
        const int range = openFile(folder + "/max_energy_range_uj");
        package.range = static_cast<std::uint64_t>(number(range).value_or(0));
        if (range >= 0)
            close(range);
        if (package.energy >= 0)
            packages_.push_back(package);
    }
    for (const auto& folder : folders(sys + "/class/power_supply")) {
        const Battery battery{openFile(folder + "/status"), openFile(folder + "/power_now"),
                              openFile(folder + "/current_now"), openFile(folder + "/voltage_now")};
        batteries_.push_back(battery);
    }
}

EnergyMeter::~EnergyMeter() {
    for (const auto& package : packages_)
        close(package.energy);
    for (const auto& battery : batteries_) {
        for (const int descriptor : {battery.status, battery.power, battery.current, battery.voltage}) {
            if (descriptor >= 0)
                close(descriptor);
        }
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
