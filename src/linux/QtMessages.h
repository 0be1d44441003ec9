// SPDX-License-Identifier: MIT
#pragma once

#include "support/Log.h"

namespace kivo {

// What Qt itself reports (a theme it cannot load, a D-Bus reply it does not understand), as lines of category
// "qt" in the log, from whichever thread they come. One at a time: it stands in for the process's own handler,
// which is back when it goes.
class QtMessages {
public:
    explicit QtMessages(LogSink& log);
    ~QtMessages();
    QtMessages(const QtMessages&) = delete;
    QtMessages& operator=(const QtMessages&) = delete;
};

} // namespace kivo
