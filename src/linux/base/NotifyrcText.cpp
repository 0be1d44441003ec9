// SPDX-License-Identifier: MIT
#include "linux/base/NotifyrcText.h"

#include "linux/base/Words.h"

#include <algorithm>
#include <vector>

namespace kivo::notifyrc {
namespace {

// A line with its end. Marks such as "[$i]" stand behind a group's or a key's name.
struct Line {
    enum class Kind { header, entry, other };
    Kind kind = Kind::other;
    std::string_view text;
    std::string_view name;  // of the group or the key
    std::string_view marks; // with their brackets
    std::string_view value;
    bool isInGroup = false;
};

Line parsed(std::string_view text) {
    Line line{.text = text};
    const std::string_view content = trimmed(text);
    if (content.starts_with('[')) {
        const auto end = content.find(']');
        line.kind = Line::Kind::header;
        line.name = content.substr(1, end == std::string_view::npos ? end : end - 1);
        line.marks = end == std::string_view::npos ? std::string_view() : content.substr(end + 1);
        return line;
    }
    const auto equals = content.find('=');
    if (content.starts_with('#') || equals == std::string_view::npos)
        return line;
    line.kind = Line::Kind::entry;
    const std::string_view whole = trimmed(content.substr(0, equals));
    const auto mark = std::min(whole.find('['), whole.size());
    line.name = whole.substr(0, mark);
    line.marks = whole.substr(mark);
    line.value = trimmed(content.substr(equals + 1));
    return line;
}

std::vector<Line> linesOf(std::string_view text, std::string_view group) {
    std::vector<Line> lines;
    bool isInGroup = false;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size() - 1) + 1;
        Line line = parsed(text.substr(0, end));
        text.remove_prefix(end);
        // "[group][another]" is a group of its own.
        if (line.kind == Line::Kind::header)
            isInGroup = line.name == group && (line.marks.empty() || line.marks.starts_with("[$"));
        line.isInGroup = isInGroup;
        lines.push_back(line);
    }
    return lines;
}

bool isKey(const Line& line, const Key& key) {
    // A value for one language, "Name[de]", is another key.
    return line.isInGroup && line.kind == Line::Kind::entry && line.name == key.name &&
           (line.marks.empty() || line.marks.starts_with("[$"));
}

} // namespace

bool hasGroup(std::string_view text, std::string_view group) {
    const auto lines = linesOf(text, group);
    return std::any_of(lines.begin(), lines.end(), [](const Line& line) { return line.isInGroup; });
}

std::optional<std::string> value(std::string_view text, const Key& key) {
    const auto lines = linesOf(text, key.group);
    const auto last =
        std::find_if(lines.rbegin(), lines.rend(), [&](const Line& line) { return isKey(line, key); });
    return last == lines.rend() ? std::nullopt : std::optional<std::string>(last->value);
}

bool isImmutable(std::string_view text, const Key& key) {
    const auto lines = linesOf(text, key.group);
    return std::any_of(lines.begin(), lines.end(), [&](const Line& line) {
        const bool isOfFile = line.kind == Line::Kind::header && line.name == "$i";
        const bool isOfGroup = line.isInGroup && line.kind == Line::Kind::header;
        return isOfFile || ((isOfGroup || isKey(line, key)) && line.marks.find("$i") != std::string_view::npos);
    });
}

std::string with(std::string_view text, const Key& key, std::string_view value) {
    const std::string entry = std::string(key.name) + "=" + std::string(value) + "\n";
    const auto lines = linesOf(text, key.group);
    std::string result;
    if (notifyrc::value(text, key)) {
        for (const auto& line : lines)
            result += isKey(line, key) ? entry : std::string(line.text);
        return result;
    }
    bool isPlaced = false;
    for (const auto& line : lines) {
        result += line.text;
        if (isPlaced || !line.isInGroup)
            continue;
        if (!result.ends_with('\n'))
            result += '\n';
        result += entry;
        isPlaced = true;
    }
    if (isPlaced)
        return result;
    if (!result.empty())
        result += result.ends_with('\n') ? "\n" : "\n\n";
    return result + "[" + std::string(key.group) + "]\n" + entry;
}

std::string without(std::string_view text, const Key& key) {
    const auto lines = linesOf(text, key.group);
    const bool isLeftEmpty = std::none_of(lines.begin(), lines.end(), [&](const Line& line) {
        return line.isInGroup && line.kind != Line::Kind::header && !isKey(line, key) &&
               !trimmed(line.text).empty();
    });
    std::string result;
    for (const auto& line : lines) {
        if (isKey(line, key) || (isLeftEmpty && line.isInGroup && line.kind == Line::Kind::header))
            continue;
        result += line.text;
    }
    return result;
}

} // namespace kivo::notifyrc
