// SPDX-License-Identifier: MIT
#pragma once

#include "views/Blocks.h"

#include <functional>
#include <optional>

namespace kivo {

// What a permission's row has at its right: a button that asks for it, or the sign that it is granted.
class PermissionControl final : public QWidget {
public:
    // `subject`: what it is about, said with the button. `done`: what the sign says.
    PermissionControl(Kit& kit, const std::string& subject, const std::string& done, FormButton::Kind kind,
                      std::function<void()> ask);

    // `button`: the button's text; absent: it is granted.
    void show(const std::optional<std::string>& button);

private:
    FormButton* button_;
    QWidget* sign_;
};

} // namespace kivo
