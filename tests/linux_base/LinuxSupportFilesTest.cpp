// SPDX-License-Identifier: MIT
#include "linux/base/LinuxSupportFiles.h"

#include "linux_base/TestFolder.h"
#include "support/VirtualLoop.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

constexpr const char* path = "Kivo/energy.json";

TEST(LinuxSupportFiles, TextsInPiecesAreMadeElsewhereAndWrittenWhole) {
    const TestFolder folder;
    VirtualLoop loop;
    DiskWriter writer;
    LinuxSupportFiles files(folder / "kivo", writer, loop);
    TextPieces pieces;
    std::string whole;
    // More than the kernel takes at once, some of them empty.
    for (int i = 0; i < 3000; ++i) {
        pieces.push_back(std::make_shared<const std::string>(i % 7 == 0 ? 0 : i % 900, 'a' + i % 26));
        whole += *pieces.back();
    }
    std::optional<std::thread::id> maker;
    int dones = 0;
    files.writePiecesInBackground(
        path,
        [&] {
            maker = std::this_thread::get_id();
            return pieces;
        },
        [&](const std::optional<std::string>& error) {
            EXPECT_EQ(error, std::nullopt);
            ++dones;
        });
    EXPECT_EQ(files.read(path), whole);
    EXPECT_NE(maker, std::this_thread::get_id());
    EXPECT_EQ(textOf(folder / "kivo/energy.json"), whole);
    EXPECT_EQ(dones, 0) << "not on the writer's thread";
    loop.runPosted();
    EXPECT_EQ(dones, 1);

    // What is written and waited for comes after what was handed over before.
    files.writePiecesInBackground(
        path, [&] { return pieces; }, [](const auto&) {});
    EXPECT_EQ(files.write(path, "last"), std::nullopt);
    EXPECT_EQ(files.read(path), "last");
}

TEST(LinuxSupportFiles, OnlyWhatIsThereIsKeptAside) {
    const TestFolder folder;
    VirtualLoop loop;
    DiskWriter writer;
    LinuxSupportFiles files(folder.path, writer, loop);
    EXPECT_FALSE(files.keepAside(path));
    put(folder / "energy.json", "damaged");
    EXPECT_TRUE(files.keepAside(path));
    EXPECT_EQ(folder.names(), std::vector<std::string>{"energy.json.unreadable"});
    EXPECT_FALSE(files.keepAside(path));
}

} // namespace
} // namespace kivo
