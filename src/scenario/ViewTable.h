// SPDX-License-Identifier: MIT
#pragma once

#include "simulated/RecordReader.h"
#include "support/PropertyValue.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace kivo {

class ScenarioRun;

// What a `print` step can show, by name. An area of the application registers its views in a file of its own.
class ViewTable {
public:
    // The view's content right now. The application runs while this is called.
    using View = std::function<PropertyValue(ScenarioRun&)>;
    // Reads the options that stand beside the view's name. Throws DecodingError for wrong ones.
    using Reader = std::function<View(RecordReader& options)>;

    void add(std::string_view name, Reader reader) { readers_.emplace(name, std::move(reader)); }
    // A view without options.
    void addPlain(std::string_view name, View view);
    // A null pointer for an unknown view.
    const Reader* find(std::string_view name) const;

private:
    std::map<std::string, Reader, std::less<>> readers_;
};

void addStateView(ViewTable& views);
void addIslandViews(ViewTable& views);
void addLabelView(ViewTable& views);
void addMenuView(ViewTable& views);
void addSettingsViews(ViewTable& views);
void addOnboardingView(ViewTable& views);
void addEnergyViews(ViewTable& views);

// Every view that there is.
const ViewTable& allViews();

} // namespace kivo
