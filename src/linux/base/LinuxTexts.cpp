// SPDX-License-Identifier: MIT
#include "linux/base/LinuxTexts.h"

namespace kivo {
namespace {

struct Row {
    const char* english; // the key
    const char* here;
};

constexpr Row rows[] = {
    // Alerts
    {"Alerts when your Mac's battery drops below a percentage",
     "Alerts when your computer's battery drops below a percentage"},
    {"Couldn’t change this. Move Kivo to Applications and try again.",
     "Couldn’t change this. Check that your autostart folder can be written and try again."},
    // The menu
    {"This Mac has no battery", "This computer has no battery"},
    {"macOS paused charging at %lld% to protect the battery",
     "Charging paused at %lld% to protect the battery"},
    {"macOS recommends having Apple check your battery",
     "This battery holds much less than when it was new: have it checked"},
    {"⌘,", "Ctrl+,"},
    {"⌘Q", "Ctrl+Q"},
    // Settings
    {"macOS can already cap charging (80–100%) in System Settings → Battery → Charging. Kivo "
     "respects it and lets you know when charging is paused.",
     "Many computers can cap charging (80–100%) in the system's power settings. Kivo respects it "
     "and lets you know when charging is paused."},
    {"Close macOS battery pop-ups", "Close the system's battery pop-ups"},
    {"Kivo already tells you with the island, so the macOS “Low Battery” pop-up is just noise. It "
     "only acts when you're unplugged and below %lld%.",
     "Kivo already tells you with the island, so the system's “Low Battery” pop-up is just noise. "
     "It only acts when you're unplugged and below %lld%."},
    {"Open System Settings…", "Open the system's settings…"},
    // The introduction
    {"In Finder, open your iPhone and turn on **Show this iPhone when on Wi‑Fi**. From then on, "
     "no cable needed.",
     "On a computer that syncs it, turn on **Show this iPhone when on Wi‑Fi**. From then on, no "
     "cable needed."},
    {"So important alerts also stay in Notification Center.",
     "So important alerts also stay in the list of notifications."},
    {"Kivo already lets you know, so the macOS pop-up won't interrupt you. Needs Accessibility "
     "permission.",
     "Kivo already lets you know, so the system's pop-up won't interrupt you. Needs Accessibility "
     "permission."},
    {"It lives up top, in your menu bar. Pick how you want to see it there:",
     "It lives in your panel's tray. Pick how you want to see it there:"},
    // Help
    {"It's already working. Kivo lives in your menu bar and speaks up on its own; there's nothing "
     "to open.",
     "It's already working. Kivo lives in your panel's tray and speaks up on its own; there's "
     "nothing to open."},
    {"To skip the cable from then on: in Finder, open your iPhone and turn on **Show this iPhone "
     "when on Wi‑Fi**. As long as both are on the same network, Kivo reads it on its own.",
     "To skip the cable from then on: on a computer that syncs your iPhone, turn on **Show this "
     "iPhone when on Wi‑Fi**. As long as both are on the same network, Kivo reads it on its own."},
    {"For AirPods you see each part on its own: **L** (left), **R** (right), and **Case**. The "
     "case only reports with the lid open near your Mac.",
     "For AirPods you see each part on its own: **L** (left), **R** (right), and **Case**, where "
     "your system tells them apart. The case only reports with the lid open near your computer."},
    {"**Devices** alerts work just like your Mac's: when they drop below your percentage, when "
     "they finish charging, or when they connect.",
     "**Devices** alerts work just like your computer's: when they drop below your percentage, "
     "when they finish charging, or when they connect."},
    {"Right-click the desktop, choose **Edit Widgets**, and search for **Kivo**.",
     "Let your bar run **kivo-batteries**, which prints every battery; its help tells how."},
    {"Three sizes: rings, a list with bars, or the full list with your AirPods by part.",
     "As plain text, or in the form that your bar reads."},
    {"**Apps** are the ones you opened; **System processes** are macOS services. Percentages are "
     "of the total.",
     "**Apps** are the ones you opened; **System processes** are your system's services. "
     "Percentages are of the total."},
    {"Always charging to 100% wears your battery out faster. macOS can stop earlier, and Kivo "
     "takes you straight to that setting.",
     "Always charging to 100% wears your battery out faster. Many computers can stop earlier, and "
     "Kivo takes you straight to the power settings."},
    {"When macOS pauses charging, you'll see a leaf 🍃 in the menu with the percentage where it "
     "stopped.",
     "When your computer pauses charging, you'll see a leaf 🍃 in the menu with the percentage "
     "where it stopped."},
    {"**Health** compares what your battery holds today with what it held when new. It's the same "
     "number System Settings shows.",
     "**Health** compares what your battery holds today with what it held when new."},
    {"If macOS recommends a checkup, you'll see a notice in the menu.",
     "If the battery needs a checkup, you'll see a notice in the menu."},
    {"Closing macOS pop-ups", "Closing the system's pop-ups"},
    {"Kivo already tells you with the island, so the macOS low battery pop-up is just noise.",
     "Kivo already tells you with the island, so the system's low battery pop-up is just noise."},
    {"Turn on **Close macOS battery pop-ups** here in General, then allow Kivo in System Settings "
     "under **Accessibility**.",
     "Turn on **Close the system's battery pop-ups** here in General, then allow assistive "
     "technologies in the system's settings under **Accessibility**."},
    {"Inside the menu, **⌘,** opens Settings and **⌘Q** quits Kivo.",
     "Inside the menu, **Ctrl+,** opens Settings and **Ctrl+Q** quits Kivo."},
    {"Everything stays on your Mac. Kivo never connects to the internet or sends data to anyone.",
     "Everything stays on your computer. Kivo sends no data to anyone; at most it looks for new "
     "versions of itself."},
};

} // namespace

TextCatalogue linuxTexts() {
    TextCatalogue texts;
    for (const auto& row : rows)
        texts.emplace(row.english, row.here);
    return texts;
}

} // namespace kivo
