// SPDX-License-Identifier: MIT
#include "scenario/ViewTable.h"

#include <utility>

namespace kivo {

void ViewTable::addPlain(std::string_view name, View view) {
    add(name, [view = std::move(view)](RecordReader&) { return view; });
}

const ViewTable::Reader* ViewTable::find(std::string_view name) const {
    const auto reader = readers_.find(name);
    return reader == readers_.end() ? nullptr : &reader->second;
}

const ViewTable& allViews() {
    static const ViewTable table = [] {
        ViewTable views;
        addStateView(views);
        addIslandViews(views);
        addLabelView(views);
        addMenuView(views);
        addSettingsViews(views);
        addOnboardingView(views);
        addEnergyViews(views);
        return views;
    }();
    return table;
}

} // namespace kivo
