// SPDX-License-Identifier: MIT
// The ledger of 721 hours with 40 keys each, beside the least that encoding, reading and adding up can cost.
#include "Rows.h"
#include "energy/EnergyLedgerText.h"
#include "linux/base/DiskWriter.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <malloc.h>
#include <random>
#include <simdjson.h>
#include <string>
#include <unistd.h>
#include <unordered_map>

namespace {

bool isDiskSlow = false;

} // namespace

// Takes the C library's place, for a disk that takes its time.
extern "C" int fsync(int) {
    if (isDiskSlow)
        usleep(300'000);
    return 0;
}

namespace kivo {
namespace {

constexpr int hours = 721;
constexpr int keys = 40;
constexpr int names = 60;

struct Entry {
    std::uint16_t key;
    double joules;
};
struct Hour {
    double start;
    std::vector<Entry> entries;
};

// The same history for Kivo and for the floors.
struct History {
    History() {
        std::mt19937_64 random(42);
        std::lognormal_distribution<double> joules(1.0, 2.5);
        for (int i = 0; i < names; ++i) {
            std::string key = "org.example.application";
            key += std::to_string(random() % 1'000'000'000);
            key.resize(20 + random() % 26, 'x');
            key += std::to_string(i);
            identities[key] = {.key = key,
                               .name = "Application " + std::to_string(i),
                               .bundlePath = "/usr/share/applications/" + key + ".desktop",
                               .isApp = i % 3 != 0};
            texts.push_back(key);
        }
        std::vector<std::uint16_t> order(names);
        for (std::uint16_t i = 0; i < names; ++i)
            order[i] = i;
        std::vector<EnergyLedger::Bucket> buckets;
        for (int h = 0; h < hours; ++h) {
            std::shuffle(order.begin(), order.end(), random);
            Hour hour{788918400.0 + h * 3600.0, {}};
            EnergyLedger::Bucket bucket{Date{hour.start}, {}};
            for (int i = 0; i < keys; ++i) {
                hour.entries.push_back({order[static_cast<std::size_t>(i)], joules(random)});
                bucket.joules[texts[hour.entries.back().key]] = hour.entries.back().joules;
            }
            flat.push_back(std::move(hour));
            buckets.push_back(std::move(bucket));
        }
        ledger = EnergyLedger(buckets, identities);
    }
    std::vector<std::string> texts;
    std::vector<Hour> flat;
    EnergyLedger::Identities identities;
    EnergyLedger ledger;
};

char* put(char* place, std::string_view text) {
    std::memcpy(place, text.data(), text.size());
    return place + text.size();
}

// Numbers by std::to_chars, keys quoted once, one buffer; the identities are left out.
std::string leastEncode(const History& history) {
    std::vector<std::string> members;
    for (const auto& text : history.texts)
        members.push_back('"' + text + "\":");
    std::string result(history.flat.size() * (64 + keys * 96), '\0');
    char* place = put(result.data(), "{\"buckets\":[");
    for (const auto& hour : history.flat) {
        place = put(place, "{\"hourStart\":");
        place = std::to_chars(place, place + 32, hour.start).ptr;
        place = put(place, ",\"joules\":{");
        for (const auto& entry : hour.entries) {
            place = put(place, members[entry.key]);
            place = std::to_chars(place, place + 32, entry.joules).ptr;
            *place++ = ',';
        }
        place[-1] = '}';
        place = put(place, "},");
    }
    result.resize(static_cast<std::size_t>(place - result.data()));
    return result;
}

std::size_t simdjsonRead(const simdjson::padded_string& text) {
    simdjson::ondemand::parser parser;
    auto document = parser.iterate(text).value();
    std::unordered_map<std::string, std::uint16_t> ids;
    std::vector<Hour> result;
    for (auto bucket : document["buckets"].get_array()) {
        Hour hour{bucket["hourStart"].get_double().value(), {}};
        hour.entries.reserve(keys);
        for (auto field : bucket["joules"].get_object()) {
            const std::string_view key = field.unescaped_key().value();
            const auto id =
                ids.try_emplace(std::string(key), static_cast<std::uint16_t>(ids.size())).first->second;
            hour.entries.push_back({id, field.value().get_double().value()});
        }
        result.push_back(std::move(hour));
    }
    return result.size();
}

double leastTotal(const History& history) {
    std::vector<double> sums(names);
    for (const auto& hour : history.flat) {
        for (const auto& entry : hour.entries)
            sums[entry.key] += entry.joules;
    }
    std::sort(sums.begin(), sums.end(), std::greater());
    return sums[0];
}

double megabytesInUse() {
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / 1e6;
}

void measureMemory(Rows& rows, const std::string& text) {
    const double before = megabytesInUse();
    EnergyLedger ledger = decodeEnergyLedger(text);
    rows.absolute("ledger in memory", megabytesInUse() - before, "MB", 1);
    EnergyLedgerText kept;
    kept.encode(ledger);
    rows.absolute("ledger with the kept text", megabytesInUse() - before, "MB", 2.5);
}

// How long the caller is held when a save is handed over while the disk takes 300 ms for each sync.
void measureHold(Rows& rows, const EnergyLedger& ledger) {
    char folder[] = "/tmp/kivoXXXXXX";
    if (!mkdtemp(folder))
        return;
    const std::string path = std::string(folder) + "/energy.json";
    double longest = 0;
    {
        DiskWriter writer;
        const auto text = std::make_shared<EnergyLedgerText>();
        isDiskSlow = true;
        for (int i = 0; i < 5; ++i) {
            const double before = seconds(CLOCK_MONOTONIC);
            writer.write(path, std::function<TextPieces()>([text, ledger] { return text->encode(ledger); }),
                         {});
            longest = std::max(longest, (seconds(CLOCK_MONOTONIC) - before) * 1e3);
            usleep(100'000);
        }
        writer.flush();
        isDiskSlow = false;
    }
    rows.absolute("main thread held by a save, slow disk", longest, "ms", 1);
    unlink(path.c_str());
    rmdir(folder);
}

int run() {
    Rows rows;
    const History history;
    const std::string text = encode(history.ledger);
    measureMemory(rows, text);
    const simdjson::padded_string padded(text);
    EnergyLedgerText kept;
    kept.encode(history.ledger);
    volatile double sink = 0;
    const auto found =
        medians(31, {
                        [&] { sink = static_cast<double>(leastEncode(history).size()); },
                        [&] { sink = static_cast<double>(EnergyLedgerText().encode(history.ledger).size()); },
                        [&] { sink = static_cast<double>(kept.encode(history.ledger).size()); },
                        [&] { sink = static_cast<double>(simdjsonRead(padded)); },
                        [&] { sink = static_cast<double>(decodeEnergyLedger(text).hours().size()); },
                        [&] { sink = leastTotal(history); },
                        [&] { sink = history.ledger.totals(Date{0})[0].joules; },
                        [&] {
                            sink = static_cast<double>(history.ledger
                                                           .record({{history.identities.begin()->second, 1}},
                                                                   Date{788918400.0 + 720 * 3600}, TimeZone())
                                                           .hours()
                                                           .size());
                        },
                    });
    rows.ratio("ledger: full encode / to_chars", found[1], found[0], "ms", 1.5);
    rows.ratio("ledger: encode of a periodic save / to_chars", found[2], found[0], "ms", 0.05);
    rows.ratio("ledger: load / simdjson", found[4], found[3], "ms", 1.5);
    rows.ratio("ledger: totals of 30 days / interned sum", found[6], found[5], "ms", 2);
    rows.absolute("ledger: booking one interval", found[7], "ms", 1);
    measureHold(rows, history.ledger);
    return rows.exitStatus();
}

} // namespace
} // namespace kivo

int main() {
    return kivo::run();
}
