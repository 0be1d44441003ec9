// SPDX-License-Identifier: MIT
// Pulls a charger out and sees what comes of it, from outside: it plays UPower with a laptop's battery on the
// system bus, the notification service on the session bus, and watches the X server for windows being painted.
//
// Commands on standard input, a line each; the answer is the nanoseconds from just before the signal was sent
// until the outcome arrived, or "none" after a second:
//   notify WHO     until a notification is posted
//   present WHO    until a window of an island's size is painted
//   foreign N      N signals of other objects; answers "done"
//   open NAME      a click on the tray item with this bus name, until a window of the menu's size is painted
//   click NAME     the same without waiting; answers "done"
//   frames WHO     the microseconds of each painting of such a window in the next 3.9 seconds, in one line
// WHO is `laptop` (the devices that UPower lists) or `floor` (two that it does not list). Each turn flips the
// charger. The first line printed is this program's unique name on the system bus.

#include <systemd/sd-bus.h>
#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <poll.h>
#include <time.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const char* manager = "/org/freedesktop/UPower";
constexpr const char* charger = "/org/freedesktop/UPower/devices/line_power_AC";
constexpr const char* battery = "/org/freedesktop/UPower/devices/battery_BAT0";
constexpr const char* floorCharger = "/org/freedesktop/UPower/devices/line_power_FLOOR";
constexpr const char* floorBattery = "/org/freedesktop/UPower/devices/battery_FLOOR";
constexpr const char* deviceInterface = "org.freedesktop.UPower.Device";

void check(int result, const char* what) {
    if (result < 0) {
        std::fprintf(stderr, "probe: %s: %s\n", what, std::strerror(-result));
        std::exit(1);
    }
}

std::int64_t now() {
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * std::int64_t{1'000'000'000} + time.tv_nsec;
}

// What a device answers; `flips` are the values that the charger's going changes.
struct Device {
    std::uint32_t type;
    std::uint32_t state = 0; // 1 charging, 2 discharging
    int online = 0;
    double percentage = 0;
    std::int64_t timeToEmpty = 0;
};
Device laptopCharger{1, 0, 1};
Device laptopBattery{2, 1, 0, 79};
Device floorDevice{1, 0, 1};
Device floorCell{2, 1, 0, 79};

int isPresent(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
    return sd_bus_message_append(reply, "b", 1);
}
int isSupply(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
    return sd_bus_message_append(reply, "b", 1);
}
int nativePath(sd_bus*, const char* path, const char*, const char*, sd_bus_message* reply, void*,
               sd_bus_error*) {
    return sd_bus_message_append(reply, "s", std::strrchr(path, '_') + 1);
}
int energy(sd_bus*, const char*, const char*, const char* name, sd_bus_message* reply, void* user,
           sd_bus_error*) {
    const auto* device = static_cast<const Device*>(user);
    double value = device->type != 2 ? 0 : 50;
    if (std::strcmp(name, "EnergyFullDesign") == 0)
        value *= 1.2;
    else if (std::strcmp(name, "Energy") == 0)
        value *= device->percentage / 100;
    return sd_bus_message_append(reply, "d", value);
}

#define KEPT(name, type, field)                                                                                \
    SD_BUS_PROPERTY(name, type, nullptr, offsetof(Device, field), SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE)
const sd_bus_vtable deviceTable[] = {
    SD_BUS_VTABLE_START(0),
    KEPT("Type", "u", type),
    KEPT("State", "u", state),
    KEPT("Online", "b", online),
    KEPT("Percentage", "d", percentage),
    KEPT("TimeToEmpty", "x", timeToEmpty),
    SD_BUS_PROPERTY("NativePath", "s", nativePath, 0, 0),
    SD_BUS_PROPERTY("PowerSupply", "b", isSupply, 0, 0),
    SD_BUS_PROPERTY("IsPresent", "b", isPresent, 0, 0),
    SD_BUS_PROPERTY("Energy", "d", energy, 0, 0),
    SD_BUS_PROPERTY("EnergyFull", "d", energy, 0, 0),
    SD_BUS_PROPERTY("EnergyFullDesign", "d", energy, 0, 0),
    SD_BUS_VTABLE_END,
};

int enumerateDevices(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "ao", 2, charger, battery);
}
const sd_bus_vtable managerTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("EnumerateDevices", "", "ao", enumerateDevices, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

std::int64_t notified = 0;
std::uint32_t notificationNumber = 0;

int notify(sd_bus_message* call, void*, sd_bus_error*) {
    notified = now();
    return sd_bus_reply_method_return(call, "u", ++notificationNumber);
}
int capabilities(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "as", 2, "body", "actions");
}
int serverInformation(sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "ssss", "probe", "kivo", "1", "1.2");
}
const sd_bus_vtable notificationTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Notify", "susssasa{sv}i", "u", notify, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetCapabilities", "", "as", capabilities, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetServerInformation", "", "ssss", serverInformation, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

// Tells when a small window above the others gets painted.
class Painting {
public:
    Painting() {
        connection_ = xcb_connect(nullptr, nullptr);
        const auto* extension = xcb_get_extension_data(connection_, &xcb_damage_id);
        if (xcb_connection_has_error(connection_) || !extension || !extension->present)
            check(-ENOTSUP, "X server with DAMAGE");
        firstEvent_ = extension->first_event;
        std::free(
            xcb_damage_query_version_reply(connection_, xcb_damage_query_version(connection_, 1, 1), nullptr));
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &mask);
        auto* tree = xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root_), nullptr);
        for (int i = 0; tree && i < xcb_query_tree_children_length(tree); ++i)
            watch(xcb_query_tree_children(tree)[i]);
        std::free(tree);
        xcb_flush(connection_);
    }

    int descriptor() const { return xcb_get_file_descriptor(connection_); }

    bool awaitsMenu = false;
    // The moments of all paintings since it was emptied; those of one frame count once.
    std::vector<std::int64_t> frames;

    // The moment of the last painting of an island-sized area, or what it was before.
    void process(std::int64_t& painted) {
        while (auto* event = xcb_poll_for_event(connection_)) {
            const int type = event->response_type & 0x7f;
            if (type == XCB_CREATE_NOTIFY)
                watch(reinterpret_cast<xcb_create_notify_event_t*>(event)->window);
            else if (type == XCB_DESTROY_NOTIFY)
                damages_.erase(reinterpret_cast<xcb_destroy_notify_event_t*>(event)->window);
            else if (type == firstEvent_ + XCB_DAMAGE_NOTIFY)
                damaged(*reinterpret_cast<xcb_damage_notify_event_t*>(event), painted);
            std::free(event);
        }
        xcb_flush(connection_);
    }

private:
    void watch(xcb_window_t window) {
        if (damages_.count(window) != 0)
            return;
        const auto damage = xcb_generate_id(connection_);
        xcb_damage_create(connection_, damage, window, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
        damages_[window] = damage;
    }

    void damaged(const xcb_damage_notify_event_t& event, std::int64_t& painted) {
        const auto& all = event.geometry;
        const bool isMenu = all.width == 340 && all.height > 320;
        const bool isIsland = all.width >= 120 && all.width <= 640 && all.height >= 40 && all.height <= 320;
        const bool isWanted = awaitsMenu ? isMenu && event.area.width >= 300 && event.area.height >= 300
                                         : isIsland && event.area.width >= 60 && event.area.height >= 20;
        if (!isWanted)
            return;
        const std::int64_t moment = now();
        if (painted == 0)
            painted = moment;
        if (frames.empty() || moment - frames.back() > 4'000'000)
            frames.push_back(moment);
    }

    xcb_connection_t* connection_;
    xcb_window_t root_ = 0;
    int firstEvent_ = 0;
    std::map<xcb_window_t, xcb_damage_damage_t> damages_;
};

sd_bus* systemBus = nullptr;
sd_bus* sessionBus = nullptr;

void tellChanged(const char* path, const char* first, const char* second = nullptr) {
    check(sd_bus_emit_properties_changed(systemBus, path, deviceInterface, first, second, nullptr), "signal");
    check(sd_bus_flush(systemBus), "flush");
}

// What UPower says when a charger is pulled out or plugged in, the same for both.
void flip(const std::string& who) {
    const bool isFloor = who == "floor";
    Device& supply = isFloor ? floorDevice : laptopCharger;
    Device& cell = isFloor ? floorCell : laptopBattery;
    supply.online = !supply.online;
    cell.state = supply.online ? 1 : 2;
    cell.timeToEmpty = supply.online ? 0 : 12'000;
    tellChanged(isFloor ? floorCharger : charger, "Online");
    tellChanged(isFloor ? floorBattery : battery, "State", "TimeToEmpty");
}

void sendForeign(int count) {
    for (int i = 0; i < count; ++i) {
        sd_bus_message* signal = nullptr;
        check(sd_bus_message_new_signal(systemBus, &signal, "/org/example/Other",
                                        "org.freedesktop.DBus.Properties", "PropertiesChanged"),
              "foreign signal");
        check(sd_bus_message_append(signal, "sa{sv}as", "org.example.Other", 1, "Level", "i", i, 0),
              "foreign signal");
        check(sd_bus_send(systemBus, signal, nullptr), "foreign signal");
        sd_bus_message_unref(signal);
        check(sd_bus_flush(systemBus), "flush");
    }
}

void click(const std::string& item) {
    sd_bus_message* call = nullptr;
    check(sd_bus_message_new_method_call(sessionBus, &call, item.c_str(), "/StatusNotifierItem",
                                         "org.kde.StatusNotifierItem", "Activate"),
          "click");
    check(sd_bus_message_append(call, "ii", 16, 16), "click");
    check(sd_bus_message_set_expect_reply(call, 0), "click");
    check(sd_bus_send(sessionBus, call, nullptr), "click");
    sd_bus_message_unref(call);
    check(sd_bus_flush(sessionBus), "flush");
}

void turn(Painting& painting, std::int64_t& painted, int milliseconds) {
    pollfd waits[] = {{0, POLLIN, 0},
                      {sd_bus_get_fd(systemBus), POLLIN, 0},
                      {sd_bus_get_fd(sessionBus), POLLIN, 0},
                      {painting.descriptor(), POLLIN, 0}};
    // Standard input is read between the turns only.
    poll(waits + (milliseconds >= 0 ? 1 : 0), milliseconds >= 0 ? 3 : 4, milliseconds);
    while (sd_bus_process(systemBus, nullptr) > 0) {
    }
    while (sd_bus_process(sessionBus, nullptr) > 0) {
    }
    painting.process(painted);
}

void command(const std::string& what, const std::string& argument, Painting& painting) {
    if (what == "foreign") {
        sendForeign(std::atoi(argument.c_str()));
        std::puts("done");
        return;
    }
    if (what == "flip" || what == "click") {
        what == "flip" ? flip(argument) : click(argument);
        std::puts("done");
        return;
    }
    painting.awaitsMenu = what == "open";
    std::int64_t painted = 0;
    turn(painting, painted, 0);
    if (what == "frames") {
        painting.frames.clear();
        const std::int64_t begin = now();
        flip(argument);
        while (now() - begin < 3'900'000'000)
            turn(painting, painted, 20);
        for (const std::int64_t moment : painting.frames)
            std::printf("%lld ", static_cast<long long>((moment - begin) / 1000));
        std::puts("");
        return;
    }
    painted = notified = 0;
    const std::int64_t& outcome = what == "notify" ? notified : painted;
    const std::int64_t sent = now();
    painting.awaitsMenu ? click(argument) : flip(argument);
    while (outcome == 0 && now() - sent < 1'000'000'000)
        turn(painting, painted, 100);
    if (outcome != 0)
        std::printf("%lld\n", static_cast<long long>(outcome - sent));
    else
        std::puts("none");
}

} // namespace

int main() {
    check(sd_bus_open_system(&systemBus), "system bus");
    check(sd_bus_open_user(&sessionBus), "session bus");
    check(
        sd_bus_add_object_vtable(systemBus, nullptr, manager, "org.freedesktop.UPower", managerTable, nullptr),
        "UPower");
    for (const auto& [path, device] : {std::pair(charger, &laptopCharger),
                                       {battery, &laptopBattery},
                                       {floorCharger, &floorDevice},
                                       {floorBattery, &floorCell}})
        check(sd_bus_add_object_vtable(systemBus, nullptr, path, deviceInterface, deviceTable, device), path);
    check(sd_bus_add_object_vtable(sessionBus, nullptr, "/org/freedesktop/Notifications",
                                   "org.freedesktop.Notifications", notificationTable, nullptr),
          "notifications");
    check(sd_bus_request_name(systemBus, "org.freedesktop.UPower", 0), "UPower's name");
    check(sd_bus_request_name(sessionBus, "org.freedesktop.Notifications", 0), "the notifications' name");
    Painting painting;
    const char* name = nullptr;
    check(sd_bus_get_unique_name(systemBus, &name), "unique name");
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    std::puts(name);

    std::int64_t ignored = 0;

    for (;;) {
        pollfd wait{0, POLLIN, 0};
        if (poll(&wait, 1, 0) <= 0) {
            turn(painting, ignored, -1);
            continue;
        }
        char line[80];
        if (!std::fgets(line, sizeof line, stdin))
            return 0;
        char what[40] = {}, argument[64] = {};
        if (std::sscanf(line, "%39s %63s", what, argument) == 2)
            command(what, argument, painting);
    }
}
