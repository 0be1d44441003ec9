// SPDX-License-Identifier: MIT
#pragma once

#include "linux/AtSpiConnection.h"
#include "linux/base/AccessibleSource.h"

#include <memory>
#include <string>
#include <utility>

namespace kivo {

// The objects of one application on the accessibility bus.
class AtSpiSource final : public AccessibleSource {
public:
    AtSpiSource(std::shared_ptr<AtSpiConnection> connection, std::string application)
        : connection_(std::move(connection)), application_(std::move(application)) {}

    std::vector<std::optional<AccessibleAnswer>> ask(const std::vector<AccessibleQuestion>& questions) override;
    // By a deadline of its own.
    bool perform(const std::string& path, std::int32_t action) override;

private:
    std::shared_ptr<AtSpiConnection> connection_;
    std::string application_;
};

} // namespace kivo
