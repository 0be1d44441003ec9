// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/DiskWriter.h"
#include "platform/UserDefaults.h"
#include "support/Log.h"

#include <memory>
#include <string>

namespace kivo {

// A database of settings in one JSON file. Values live in memory; each change hands the whole text to the
// disk writer, so that the main thread never waits for a disk. A process killed right after a change may lose
// that change, never the file. What a full disk did not take is written with the next change, at the latest in
// the end. A file that cannot be read or understood counts as empty and is moved aside,
// not overwritten, by the first save. Changes that others make to the file while the process runs are not
// seen.
class FileUserDefaults final : public UserDefaults {
public:
    // The writer must outlive this object.
    FileUserDefaults(std::string path, DiskWriter& writer, LogSink& log);
    // Waits until the last change is safe, or has failed twice.
    ~FileUserDefaults() override;

    std::optional<PropertyValue> value(std::string_view key) override;
    void set(std::string_view key, PropertyValue value) override;
    void remove(std::string_view key) override;

private:
    struct Outcome;
    void load();
    void save();

    std::string path_;
    DiskWriter& writer_;
    Logger logger_;
    Dictionary values_;
    DiskWriter::KeepsOld keepsOld_; // empty unless the file could not be read
    std::shared_ptr<Outcome> outcome_;
};

namespace defaults {

// The file's text: an object with a key a line. Data that holds a JSON object or array stands there as itself,
// so that people and other programs can read it; other data and plain lists are marked.
std::string encode(const Dictionary& values);
// Throws DecodingError when the text is no such file.
Dictionary decode(std::string_view text);

} // namespace defaults
} // namespace kivo
