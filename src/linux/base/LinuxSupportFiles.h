// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/DiskWriter.h"
#include "platform/SupportFiles.h"
#include "support/MainLoop.h"

#include <string>

namespace kivo {

// The support files under the user's data folder: "Kivo/energy.json" is FOLDER/energy.json.
class LinuxSupportFiles final : public SupportFiles {
public:
    // The loop and the writer must outlive this object.
    LinuxSupportFiles(std::string folder, DiskWriter& writer, MainLoop& loop)
        : folder_(std::move(folder)), writer_(writer), loop_(loop) {}

    std::optional<std::string> read(std::string_view path) override;
    bool keepAside(std::string_view path) override;
    std::optional<std::string> write(std::string_view path, const std::string& text) override;
    void writeInBackground(std::string_view path, std::string text,
                           std::function<void(std::optional<std::string>)> done) override;
    void writePiecesInBackground(std::string_view path, std::function<TextPieces()> text,
                                 std::function<void(std::optional<std::string>)> done) override;

private:
    template <typename Text>
    void handOver(std::string_view path, Text text, std::function<void(std::optional<std::string>)> done);
    // Nothing for a path that leads out of the folder.
    std::optional<std::string> located(std::string_view path) const;

    std::string folder_;
    DiskWriter& writer_;
    MainLoop& loop_;
};

} // namespace kivo
