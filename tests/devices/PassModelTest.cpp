// SPDX-License-Identifier: MIT
#include "devices/Fakes.h"
#include "devices/IOSDeviceMonitor.h"

#include <gtest/gtest.h>

#include <random>

namespace kivo {
namespace {

using Reference = MobileDeviceReference;

// What the monitor should know, written down as plainly as possible: one list of instants at which something
// ends, no callbacks, everything recomputed from scratch.
class Model {
public:
    explicit Model(std::map<Reference, fakes::Phone>& phones) : phones_(phones) {}

    struct Reading {
        std::int64_t level;
        bool isWiFi;
        bool operator==(const Reading&) const = default;
    };
    struct Row {
        std::string id;
        std::int64_t level;
        double lastSeen; // below 0: live
        bool operator==(const Row&) const = default;
    };

    void connected(Reference device) {
        const auto& phone = phones_[device];
        const auto known = attached_.find(phone.identifier);
        if (known != attached_.end() && phones_[known->second].interface != 2 && phone.interface == 2)
            return;
        attached_[phone.identifier] = device;
        request();
    }
    void disconnected(Reference device) {
        const auto& identifier = phones_[device].identifier;
        const auto known = attached_.find(identifier);
        if (known == attached_.end() || known->second != device)
            return;
        attached_.erase(known);
        if (live_.contains(identifier)) {
            memory_[identifier] = {identifier, live_[identifier].level, now_};
            live_.erase(identifier);
        }
        recomputedAt_ = now_;
    }
    void forget(const std::string& identifier) {
        memory_.erase(identifier);
        recomputedAt_ = now_;
    }
    void advanceTo(double instant) {
        for (;;) {
            const double earliest = isReading_ ? std::min(readEndsAt_, nextPoll_) : nextPoll_;
            if (earliest > instant)
                break;
            now_ = std::max(now_, earliest);
            if (isReading_ && readEndsAt_ <= nextPoll_)
                endReading();
            else
                poll();
        }
        now_ = instant;
    }

    std::vector<Row> shown() const {
        std::vector<Row> rows;
        for (const auto& [identifier, reading] : live_)
            rows.push_back({identifier, reading.level, -1});
        for (const auto& [identifier, row] : memory_) {
            if (!live_.contains(identifier))
                rows.push_back({identifier, row.level, row.lastSeen < 0 ? recomputedAt_ : row.lastSeen});
        }
        return rows;
    }
    std::map<Reference, int> references() const {
        std::map<Reference, int> counts;
        for (const auto& [identifier, device] : attached_)
            ++counts[device];
        if (isReading_) {
            for (const auto device : snapshot_)
                ++counts[device];
        }
        return counts;
    }

private:
    void request() {
        if (isReading_)
            again_ = true;
        else
            begin(false);
    }
    void poll() {
        nextPoll_ = isReading_ ? now_ + 60 : 1e18;
        if (isReading_)
            again_ = true;
        else
            begin(true);
    }
    void begin(bool isPoll) {
        isReading_ = true;
        isPoll_ = isPoll;
        snapshot_.clear();
        result_.clear();
        for (const auto& [identifier, device] : attached_)
            snapshot_.push_back(device);
        next_ = 0;
        startReading();
    }
    void startReading() {
        for (; next_ < snapshot_.size(); ++next_) {
            const auto& phone = phones_[snapshot_[next_]];
            if (phone.connect == 0)
                current_ = phone.values.at("com.apple.mobile.battery")
                               .dictionary()
                               ->at("BatteryCurrentCapacity")
                               .integer();
            else
                current_.reset();
            readEndsAt_ = now_ + phone.readSeconds;
            if (phone.readSeconds > 0)
                return;
            keepReading();
        }
        endPass();
    }
    void keepReading() {
        if (current_)
            result_[phones_[snapshot_[next_]].identifier] = {*current_,
                                                             phones_[snapshot_[next_]].interface == 2};
    }
    void endReading() {
        keepReading();
        ++next_;
        startReading();
    }
    void endPass() {
        std::erase_if(result_, [this](const auto& row) { return !attached_.contains(row.first); });
        if (result_ != live_) {
            live_ = result_;
            for (const auto& [identifier, reading] : live_)
                memory_[identifier] = {identifier, reading.level, -1};
            recomputedAt_ = now_;
        }
        isReading_ = false;
        if (isPoll_)
            nextPoll_ = now_ + 60;
        if (std::exchange(again_, false))
            begin(false);
    }

    std::map<Reference, fakes::Phone>& phones_;
    std::map<std::string, Reference> attached_;
    std::map<std::string, Reading> live_;
    std::map<std::string, Row> memory_;
    std::vector<Reference> snapshot_;
    std::map<std::string, Reading> result_;
    std::optional<std::int64_t> current_;
    std::size_t next_ = 0;
    bool isReading_ = false;
    bool isPoll_ = false;
    bool again_ = false;
    double readEndsAt_ = 0;
    double nextPoll_ = 60;
    double now_ = 0;
    double recomputedAt_ = 0;
};

std::vector<Model::Row> rows(const std::vector<PowerDevice>& devices) {
    std::vector<Model::Row> result;
    for (const auto& device : devices)
        result.push_back(
            {device.id.substr(4), device.level, device.lastSeen ? device.lastSeen->secondsSince2001 : -1});
    return result;
}

std::string text(const std::vector<Model::Row>& list) {
    std::string result;
    for (const auto& row : list)
        result += " " + row.id + ":" + std::to_string(row.level) + "@" + std::to_string(row.lastSeen);
    return result;
}

bool isNear(const std::vector<Model::Row>& a, const std::vector<Model::Row>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& left, const auto& right) {
        return left.id == right.id && left.level == right.level &&
               std::abs(left.lastSeen - right.lastSeen) < 1e-6;
    });
}

// Any order of attaching, detaching, failing and slow readings gives what the plain account says, and each
// reference is held exactly as long as it is needed.
TEST(PassModelTest, agreesWithThePlainAccountUnderRandomOrders) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        std::mt19937 random(seed);
        const auto pick = [&random](int count) {
            return static_cast<int>(random() % static_cast<unsigned>(count));
        };
        VirtualLoop loop;
        fakes::Library library(&loop);
        fakes::Defaults defaults;
        fakes::Log log;
        for (Reference device = 1; device <= 8; ++device) {
            const std::string identifier(1, static_cast<char>('a' + (device - 1) / 2));
            library.phones[device] = fakes::healthyPhone(identifier, identifier, 50);
            library.phones[device].interface = device % 2 == 0 ? 2 : 1;
        }
        IOSDeviceMonitor monitor(loop, library, defaults, log);
        Model model(library.phones);
        monitor.start();
        loop.runPosted();

        double now = 0;
        for (int step = 0; step < 400; ++step) {
            const auto device = static_cast<Reference>(1 + pick(8));
            auto& phone = library.phones[device];
            switch (pick(7)) {
            case 0:
            case 1:
                model.connected(device);
                library.attach(device);
                break;
            case 2:
                model.disconnected(device);
                library.detach(device);
                break;
            case 3:
                phone.values["com.apple.mobile.battery"] = Dictionary{{"BatteryCurrentCapacity", pick(100)}};
                phone.connect = pick(5) == 0 ? 1 : 0;
                break;
            case 4:
                phone.readSeconds = pick(3) * 3.0007 + pick(2) * 0.00011;
                break;
            case 5: {
                PowerDevice remembered;
                remembered.id = "ios-" + phone.identifier;
                model.forget(phone.identifier);
                monitor.forget(remembered);
                break;
            }
            default:
                now += pick(4) * 0.37 + pick(40) * 0.9100013 * pick(2) + 0.000001;
            }
            loop.advanceTo(seconds(now));
            model.advanceTo(now);
            ASSERT_TRUE(isNear(rows(monitor.devices().get()), model.shown()))
                << "seed " << seed << ", step " << step << text(rows(monitor.devices().get())) << " vs"
                << text(model.shown());
            auto held = library.references;
            std::erase_if(held, [](const auto& entry) { return entry.second == 0; });
            ASSERT_EQ(held, model.references()) << "seed " << seed << ", step " << step;
        }
    }
}

} // namespace
} // namespace kivo
