// SPDX-License-Identifier: MIT
#include "linux/base/DesktopEntries.h"

#include "linux_base/TestFolder.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

TEST(DesktopEntries, Parsing) {
    struct Row {
        const char* label;
        const char* lines;
        const char* name; // null: no entry
        const char* executable;
        bool isShown;
    };
    const Row rows[] = {
        {"plain", "Name=Kate\nExec=/usr/bin/kate -b %U", "Kate", "kate", true},
        {"the user's language", "Name=Files\nName[fr]=Fichiers\nName[de]=Dateien\nExec=nautilus", "Dateien",
         "nautilus", true},
        {"the user's country first", "Name[de_AT]=A\nName[de]=D\nName=N\nExec=n", "A", "n", true},
        {"quoted program", "Name=N\nExec=\"/opt/My App/run me\" %F", "N", "run me", true},
        {"environment before it", "Name=N\nExec=env A=1 B=2 /usr/bin/prog x", "N", "prog", true},
        {"run by an interpreter", "Name=N\nExec=python3 /usr/share/x.py", "N", "", true},
        {"run by Flatpak", "Name=N\nExec=/usr/bin/flatpak run org.x.Y", "N", "", true},
        {"no program", "Name=N", "N", "", true},
        {"not in menus", "Name=N\nExec=n\nNoDisplay=true", "N", "n", false},
        {"in a terminal", "Name=N\nExec=n\nTerminal=true", "N", "n", false},
        {"other groups say nothing", "Name=N\nExec=n\n[Desktop Action New]\nName=New\nExec=other\nHidden=true",
         "N", "n", true},
        {"spaces and comments", "# Name=X\n Name = N \r\nExec = n\r", "N", "n", true},
        {"deleted by the user", "Name=N\nExec=n\nHidden=true", nullptr, "", true},
        {"nameless", "Exec=n", nullptr, "", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const auto entry =
            parseDesktopEntry("[Desktop Entry]\nType=Application\n" + std::string(row.lines), "de_AT.UTF-8@x");
        ASSERT_EQ(entry.has_value(), row.name != nullptr);
        if (!entry)
            continue;
        EXPECT_EQ(entry->name, row.name);
        EXPECT_EQ(entry->executable, row.executable);
        EXPECT_EQ(entry->isShown, row.isShown);
    }
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=Link\nName=N", "C"));
    EXPECT_FALSE(parseDesktopEntry("Type=Application\nName=N", "C"));
}

TEST(DesktopEntries, FoldersInTheirOrder) {
    TestFolder folder;
    for (const char* path : {"/own/applications", "/shared/applications/kde"})
        std::filesystem::create_directories(folder.path + path);
    const auto entry = [](const std::string& name, const std::string& program) {
        return "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + program + "\n";
    };
    put(folder / "own/applications/org.Editor.desktop", entry("Mine", "editor"));
    put(folder / "shared/applications/org.Editor.desktop", entry("Theirs", "editor-old"));
    put(folder / "shared/applications/kde/viewer.desktop", entry("Viewer", "viewer"));
    put(folder / "shared/applications/readme.txt", entry("None", "none"));
    DesktopEntries entries({folder / "own", folder / "shared", folder / "missing"}, "C");
    EXPECT_EQ(entries.withId("org.editor")->name, "Mine");
    EXPECT_EQ(entries.withId("kde-viewer")->path, folder / "shared/applications/kde/viewer.desktop");
    EXPECT_EQ(entries.withExecutable("editor")->id, "org.Editor");
    EXPECT_EQ(entries.withExecutable("editor-old"), nullptr);
    EXPECT_EQ(entries.withExecutable("none"), nullptr);
    put(folder / "shared/applications/new.desktop", entry("New", "new"));
    EXPECT_EQ(entries.withId("new"), nullptr);
    entries.reload();
    EXPECT_EQ(entries.withId("new")->name, "New");
}

} // namespace
} // namespace kivo
