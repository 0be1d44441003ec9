// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kivo {

// A text in pieces that never change, so that another thread can write it without a copy. Null pointers are
// not allowed.
using TextPieces = std::vector<std::shared_ptr<const std::string>>;

// The files of the user's Application Support folder, by relative path ("Kivo/energy.json").
class SupportFiles {
public:
    virtual ~SupportFiles() = default;

    // The whole file; nothing when it is missing or cannot be read.
    virtual std::optional<std::string> read(std::string_view path) = 0;
    // Keeps a file that could not be understood, under another name, before it is replaced. False when it
    // could not be kept.
    virtual bool keepAside(std::string_view path) = 0;

    // Replaces the file as a whole, creating its folders; gives the error's description, nothing on success.
    // Returns when the file is safe.
    virtual std::optional<std::string> write(std::string_view path, const std::string& text) = 0;
    // The same off the main thread; `done` runs on the main thread.
    virtual void writeInBackground(std::string_view path, std::string text,
                                   std::function<void(std::optional<std::string> error)> done) = 0;
    // The same for a long text: `text` makes it, off the main thread as well where there is another thread. It
    // throws nothing and touches nothing that the main thread owns.
    virtual void writePiecesInBackground(std::string_view path, std::function<TextPieces()> text,
                                         std::function<void(std::optional<std::string> error)> done) {
        const auto make = std::move(text);
        std::string whole;
        for (const auto& piece : make())
            whole += *piece;
        writeInBackground(path, std::move(whole), std::move(done));
    }
};

} // namespace kivo
