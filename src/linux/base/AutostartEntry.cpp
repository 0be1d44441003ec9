// SPDX-License-Identifier: MIT
#include "linux/base/AutostartEntry.h"

#include "linux/base/Words.h"
#include "platform/Application.h"

#include <algorithm>
#include <optional>

namespace kivo::autostart {
namespace {

constexpr std::string_view group = "[Desktop Entry]";
constexpr std::string_view hiddenKey = "Hidden";
constexpr std::string_view gnomeKey = "X-GNOME-Autostart-enabled";

// A line's key within the entry's own group; empty for anything else.
struct Line {
    std::string_view whole; // with its line end
    std::string_view key;
    std::string_view value;
    bool isHeader = false; // the group's
};

template <typename Visit>
void forEachLine(std::string_view text, Visit visit) {
    bool isInGroup = false;
    while (!text.empty()) {
        const auto end = text.find('\n');
        Line line{text.substr(0, end == text.npos ? end : end + 1), {}, {}};
        text.remove_prefix(line.whole.size());
        auto content = line.whole;
        if (content.ends_with('\n'))
            content.remove_suffix(1);
        content = trimmed(content);
        const auto equals = content.find('=');
        if (content.starts_with('[')) {
            isInGroup = content == group;
            line.isHeader = isInGroup;
        } else if (isInGroup && !content.starts_with('#') && equals != content.npos) {
            line.key = trimmed(content.substr(0, equals));
            line.value = trimmed(content.substr(equals + 1));
        }
        visit(line);
    }
}

std::optional<std::string_view> value(std::string_view text, std::string_view key) {
    std::optional<std::string_view> found;
    forEachLine(text, [&](const Line& line) {
        if (line.key == key)
            found = line.value;
    });
    return found;
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '\\')
            result += "\\\\";
        else if (c == '\n')
            result += "\\n";
        else if (c == '\t')
            result += "\\t";
        else if (c == '\r')
            result += "\\r";
        else
            result += c;
    }
    return result;
}

std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            result += text[i];
            continue;
        }
        switch (text[++i]) {
        case 's':
            result += ' ';
            break;
        case 'n':
            result += '\n';
            break;
        case 't':
            result += '\t';
            break;
        case 'r':
            result += '\r';
            break;
        case '\\':
            result += '\\';
            break;
        default:
            result += '\\';
            result += text[i];
        }
    }
    return result;
}

// One word of a command line.
std::string quoted(std::string_view word) {
    constexpr std::string_view reserved = " \t\n\"'\\><~|&;$*?#()`";
    const bool needsQuotes = word.find_first_of(reserved) != word.npos;
    std::string result(needsQuotes ? "\"" : "");
    for (const char c : word) {
        if (c == '"' || c == '`' || c == '$' || c == '\\')
            result += '\\';
        if (c == '%')
            result += '%';
        result += c;
    }
    return result + (needsQuotes ? "\"" : "");
}

std::string firstWord(std::string_view line) {
    const bool isQuoted = line.starts_with('"');
    std::string word;
    for (std::size_t i = isQuoted ? 1 : 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == (isQuoted ? '"' : ' '))
            break;
        const bool isPair =
            i + 1 < line.size() && ((isQuoted && c == '\\') || (c == '%' && line[i + 1] == '%'));
        word += isPair ? line[++i] : c;
    }
    return word;
}

// Whether two lists have a word in common; the lists' words end with these characters.
bool haveCommon(std::string_view first, char firstEnd, std::string_view second, char secondEnd) {
    const auto others = split(second, secondEnd);
    const auto isAmongOthers = [&](std::string_view part) {
        const auto word = trimmed(part);
        return !word.empty() && std::any_of(others.begin(), others.end(),
                                            [&](std::string_view other) { return trimmed(other) == word; });
    };
    const auto parts = split(first, firstEnd);
    return std::any_of(parts.begin(), parts.end(), isAmongOthers);
}

bool isSwitch(const Line& line) {
    return line.key == hiddenKey || line.key == gnomeKey;
}

} // namespace

std::string entry(std::string_view program) {
    const std::string name(applicationIdentifier);
    return std::string(group) +
           "\nType=Application\n"
           "Name=Kivo\n"
           "Comment=Speaks up when a battery needs you\n"
           "Icon=" +
           name + "\nExec=" + escaped(quoted(program)) + "\nTryExec=" + escaped(program) +
           "\nTerminal=false\n"
           "StartupNotify=false\n";
}

bool isOwn(std::string_view text) {
    bool isBare = true;
    forEachLine(text, [&](const Line& line) { isBare = isBare && (line.key.empty() || isSwitch(line)); });
    const auto program = value(text, "TryExec");
    return isBare || (program && switchedOn(text) == entry(unescaped(*program)));
}

bool isSwitchedOff(std::string_view text) {
    return value(text, hiddenKey) == "true" || value(text, gnomeKey) == "false";
}

bool isStarted(std::string_view text, const Session& session) {
    if (isSwitchedOff(text) || value(text, "Type") != "Application")
        return false;
    const auto isHere = [&](std::string_view desktops) {
        return haveCommon(desktops, ';', session.desktops, ':');
    };
    if (const auto only = value(text, "OnlyShowIn"); only && !isHere(*only))
        return false;
    if (const auto other = value(text, "NotShowIn"); other && isHere(*other))
        return false;
    if (const auto program = value(text, "TryExec");
        program && !program->empty() && !session.isRunnable(unescaped(*program)))
        return false;
    const std::string program = firstWord(unescaped(value(text, "Exec").value_or("")));
    return !program.empty() && session.isRunnable(program);
}

std::string switchedOn(std::string_view text) {
    std::string result;
    forEachLine(text, [&](const Line& line) {
        if (!isSwitch(line))
            result += line.whole;
    });
    return result;
}

std::string switchedOff(std::string_view text) {
    std::string result;
    bool isDone = false;
    forEachLine(text, [&](const Line& line) {
        if (isSwitch(line))
            return;
        result += line.whole;
        if (!line.isHeader || isDone)
            return;
        isDone = true;
        result += line.whole.ends_with('\n') ? "" : "\n";
        result += "Hidden=true\n";
    });
    return isDone ? result : std::string(group) + "\nHidden=true\n" + result;
}

} // namespace kivo::autostart
