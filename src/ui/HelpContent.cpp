// SPDX-License-Identifier: MIT
#include "ui/SettingsContent.h"

#include "support/Text.h"

namespace kivo {
namespace {

struct Topic {
    const char* title;
    const char* symbol;
    std::vector<const char*> steps;
};

const std::vector<Topic>& topics() {
    static const std::vector<Topic> all{
        {"Up and running in 10 seconds",
         "sparkles",
         {
             "It's already working. Kivo lives in your menu bar and speaks up on its own; there's nothing to "
             "open.",
             "Tap **Test** on any alert to see it before it happens for real.",
             "The one thing worth doing today: turn on **Open at login** above, so you never have to remember "
             "to open it.",
         }},
        {"Alerts",
         "bell.badge",
         {
             "Each alert fires **just once**, right when your battery crosses its percentage. If it stays "
             "there, Kivo won't nag.",
             "Tap an alert to make it yours: percentage, whether it shows up at the **Top** (from the notch) "
             "or in the **Center**, color, sound, and edge glow.",
             "Missing one? Tap **+** and create your own in seconds.",
             "If several arrive at once, they show one after another, most urgent first.",
         }},
        {"The island",
         "capsule.fill",
         {
             "Alerts grow out of the notch like an island and tuck back in. The colored ring tells you the "
             "percentage at a glance.",
             "While you're charging, the ring keeps going until it wraps all the way around: that's your juice "
             "filling up.",
             "It never gets in your way: clicks pass right through, and it leaves on its own in a few seconds.",
             "Prefer calm? Turn it off with the ✦ icon in the menu. With **Reduce motion** on in "
             "Accessibility, it simply fades in and out.",
         }},
        {"iPhone and iPad",
         "iphone",
         {
             "The first time, connect your iPhone with a cable, unlock it, and tap **Trust**. You only do this "
             "once.",
             "To skip the cable from then on: in Finder, open your iPhone and turn on **Show this iPhone when "
             "on Wi‑Fi**. As long as both are on the same network, Kivo reads it on its own.",
             "You'll see its level, whether it's charging and, when the iPhone shares it, its battery health "
             "and cycle count.",
             "When you disconnect it, it stays in the list with its last reading. Right-click and choose "
             "**Forget** if you don't want to see it anymore.",
         }},
        {"AirPods and accessories",
         "airpodspro",
         {
             "So your AirPods never die mid-call: Kivo shows them as soon as they connect, along with Magic "
             "Mouse, Magic Keyboard, and Magic Trackpad.",
             "For AirPods you see each part on its own: **L** (left), **R** (right), and **Case**. The case "
             "only reports with the lid open near your Mac.",
             "**Devices** alerts work just like your Mac's: when they drop below your percentage, when they "
             "finish charging, or when they connect.",
         }},
        {"Widget",
         "square.grid.2x2",
         {
             "Right-click the desktop, choose **Edit Widgets**, and search for **Kivo**.",
             "Three sizes: rings, a list with bars, or the full list with your AirPods by part.",
             "Whatever needs charging always comes first, so you see it without looking.",
         }},
        {"Energy by app",
         "chart.bar.xaxis",
         {
             "Battery draining faster than usual? In **Energy** you'll see which app is eating it.",
             "Pick **Now** to see what's using power right this moment, or look back over the last hours, "
             "days, or the whole month.",
             "**Apps** are the ones you opened; **System processes** are macOS services. Percentages are of "
             "the total.",
             "It measures what each app uses on the processor. Great for comparing apps, not for exact watts.",
         }},
        {"Charge limit",
         "leaf",
         {
             "Always charging to 100% wears your battery out faster. macOS can stop earlier, and Kivo takes "
             "you straight to that setting.",
             "In General, tap **Open Battery settings…** and pick a limit, like 80%.",
             "When macOS pauses charging, you'll see a leaf 🍃 in the menu with the percentage where it "
             "stopped.",
         }},
        {"Battery health",
         "heart.text.square",
         {
             "**Health** compares what your battery holds today with what it held when new. It's the same "
             "number System Settings shows.",
             "**mAh** is that real capacity, **Cycles** is how many full charges it has used out of the 1000 "
             "it's designed for, and **Watts** is what's going in or out right now.",
             "If macOS recommends a checkup, you'll see a notice in the menu.",
         }},
        {"Closing macOS pop-ups",
         "bell.slash",
         {
             "Kivo already tells you with the island, so the macOS low battery pop-up is just noise.",
             "Turn on **Close macOS battery pop-ups** here in General, then allow Kivo in System Settings "
             "under **Accessibility**.",
             "It only acts when you're unplugged and below 20%. It never touches any other notification.",
         }},
        {"Menu bar",
         "menubar.rectangle",
         {
             "Choose how your battery looks up top: compact with the number inside, icon with percentage, or "
             "just the number.",
             "The icon only turns colorful when it matters, so one glance tells you everything's fine.",
             "Inside the menu, **⌘,** opens Settings and **⌘Q** quits Kivo.",
         }},
        {"Privacy",
         "lock.shield",
         {
             "Everything stays on your Mac. Kivo never connects to the internet or sends data to anyone.",
         }},
    };
    return all;
}

} // namespace

HelpContent helpContent() {
    HelpContent content{.title = localized("How to use Kivo")};
    for (const auto& topic : topics()) {
        HelpContent::Topic shown{.title = localized(topic.title), .symbol = topic.symbol};
        for (const char* step : topic.steps)
            shown.steps.push_back(localized(step));
        content.topics.push_back(std::move(shown));
    }
    return content;
}

} // namespace kivo
