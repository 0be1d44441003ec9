// SPDX-License-Identifier: MIT
#include "linux/base/LinuxTexts.h"

namespace kivo {
namespace {

void addAlertTexts(TextCatalogue& texts) {
    texts["Alerts when your Mac's battery drops below a percentage"] =
        "Alerts when your computer's battery drops below a percentage";
    texts["Couldn’t change this. Move Kivo to Applications and try again."] =
        "Couldn’t change this. Check that your autostart folder can be written and try again.";
}

void addMenuTexts(TextCatalogue& texts) {
    texts["This Mac has no battery"] = "This computer has no battery";
    texts["macOS paused charging at %lld% to protect the battery"] =
        "Charging paused at %lld% to protect the battery";
    texts["macOS recommends having Apple check your battery"] =
        "This battery holds much less than when it was new: have it checked";
    texts["⌘,"] = "Ctrl+,";
    texts["⌘Q"] = "Ctrl+Q";
}

void addSettingsTexts(TextCatalogue& texts) {
    texts["macOS can already cap charging (80–100%) in System Settings → Battery → Charging. Kivo respects it "
          "and lets "
          "you know when charging is paused."] = "Many computers can cap charging (80–100%) in the system's "
                                                 "power settings. Kivo respects it and lets you know "
                                                 "when charging is paused.";
    texts["Close macOS battery pop-ups"] = "Close the system's battery pop-ups";
    texts["Kivo already tells you with the island, so the macOS “Low Battery” pop-up is just noise. It only "
          "acts when "
          "you're unplugged and below %lld%."] = "Kivo already tells you with the island, so the system's “Low "
                                                 "Battery” pop-up is just noise. It only acts when "
                                                 "you're unplugged and below %lld%.";
    texts["Open System Settings…"] = "Open the system's settings…";
}

void addIntroductionTexts(TextCatalogue& texts) {
    texts["In Finder, open your iPhone and turn on **Show this iPhone when on Wi‑Fi**. From then on, no cable "
          "needed."] = "On a computer that syncs it, turn on **Show this iPhone when on Wi‑Fi**. From then on, "
                       "no cable needed.";
    texts["So important alerts also stay in Notification Center."] =
        "So important alerts also stay in the list of notifications.";
    texts["Kivo already lets you know, so the macOS pop-up won't interrupt you. Needs Accessibility "
          "permission."] = "Kivo already lets you know, so the system's pop-up won't interrupt you. Needs "
                           "Accessibility permission.";
    texts["It lives up top, in your menu bar. Pick how you want to see it there:"] =
        "It lives in your panel's tray. Pick how you want to see it there:";
}

void addHelpTexts(TextCatalogue& texts) {
    texts["It's already working. Kivo lives in your menu bar and speaks up on its own; there's nothing to "
          "open."] = "It's already working. Kivo lives in your panel's tray and speaks up on its own; there's "
                     "nothing to open.";
    texts["To skip the cable from then on: in Finder, open your iPhone and turn on **Show this iPhone when on "
          "Wi‑Fi**. "
          "As long as both are on the same network, Kivo reads it on its own."] =
        "To skip the cable from then on: on a computer that syncs your iPhone, turn on **Show this iPhone when "
        "on "
        "Wi‑Fi**. As long as both are on the same network, Kivo reads it on its own.";
    texts["For AirPods you see each part on its own: **L** (left), **R** (right), and **Case**. The case only "
          "reports "
          "with the lid open near your Mac."] =
        "For AirPods you see each part on its own: **L** (left), **R** (right), and **Case**, where your "
        "system tells "
        "them apart. The case only reports with the lid open near your computer.";
    texts
        ["**Devices** alerts work just like your Mac's: when they drop below your percentage, when they finish "
         "charging, or when they connect."] = "**Devices** alerts work just like your computer's: when they "
                                              "drop below your percentage, when they finish "
                                              "charging, or when they connect.";
    texts["Right-click the desktop, choose **Edit Widgets**, and search for **Kivo**."] =
        "Let your bar run **kivo-batteries**, which prints every battery; its help tells how.";
    texts["Three sizes: rings, a list with bars, or the full list with your AirPods by part."] =
        "As plain text, or in the form that your bar reads.";
    texts["**Apps** are the ones you opened; **System processes** are macOS services. Percentages are of the "
          "total."] = "**Apps** are the ones you opened; **System processes** are your system's services. "
                      "Percentages are of the "
                      "total.";
    texts["Always charging to 100% wears your battery out faster. macOS can stop earlier, and Kivo takes you "
          "straight "
          "to that setting."] = "Always charging to 100% wears your battery out faster. Many computers can "
                                "stop earlier, and Kivo takes you "
                                "straight to the power settings.";
    texts["When macOS pauses charging, you'll see a leaf 🍃 in the menu with the percentage where it stopped."] =
        "When your computer pauses charging, you'll see a leaf 🍃 in the menu with the percentage where it "
        "stopped.";
    texts["**Health** compares what your battery holds today with what it held when new. It's the same number "
          "System "
          "Settings shows."] = "**Health** compares what your battery holds today with what it held when new.";
    texts["If macOS recommends a checkup, you'll see a notice in the menu."] =
        "If the battery needs a checkup, you'll see a notice in the menu.";
    texts["Closing macOS pop-ups"] = "Closing the system's pop-ups";
    texts["Kivo already tells you with the island, so the macOS low battery pop-up is just noise."] =
        "Kivo already tells you with the island, so the system's low battery pop-up is just noise.";
    texts["Turn on **Close macOS battery pop-ups** here in General, then allow Kivo in System Settings under "
          "**Accessibility**."] = "Turn on **Close the system's battery pop-ups** here in General, then allow "
                                  "assistive technologies in the system's settings under **Accessibility**.";
    texts["Inside the menu, **⌘,** opens Settings and **⌘Q** quits Kivo."] =
        "Inside the menu, **Ctrl+,** opens Settings and **Ctrl+Q** quits Kivo.";
    texts["Everything stays on your Mac. Kivo never connects to the internet or sends data to anyone."] =
        "Everything stays on your computer. Kivo never connects to the internet or sends data to anyone.";
}

} // namespace

TextCatalogue linuxTexts() {
    TextCatalogue texts;
    addAlertTexts(texts);
    addMenuTexts(texts);
    addSettingsTexts(texts);
    addIntroductionTexts(texts);
    addHelpTexts(texts);
    return texts;
}

} // namespace kivo
