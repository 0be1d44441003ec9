// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kivo {

// What is asked of one object of an application's accessible tree.
struct AccessibleQuestion {
    enum class Kind {
        isShowing,        // number
        role,             // number, as AT-SPI counts roles
        children,         // texts: the paths of those that belong to the same application
        actions,          // texts: their names
        name,             // one text
        description,      // one text
        text,             // one text: what stands in it
        imageDescription, // one text
        attributes,       // texts: a name, its value, a name, …
    };
    std::string path;
    Kind kind = Kind::role;
};

struct AccessibleAnswer {
    std::uint32_t number = 0;
    std::vector<std::string> texts;
};

// The objects of one application, wherever they are read from. May wait for the application, never for long;
// an application that does not answer once is not asked again.
class AccessibleSource {
public:
    virtual ~AccessibleSource() = default;

    // In the order of the questions; nothing where the object is gone, cannot do this, or time is up.
    virtual std::vector<std::optional<AccessibleAnswer>>
    ask(const std::vector<AccessibleQuestion>& questions) = 0;
    // Does the object's action of that number; whether it was done.
    virtual bool perform(const std::string& path, std::int32_t action) = 0;
};

} // namespace kivo
