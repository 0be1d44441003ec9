// SPDX-License-Identifier: MIT
#include "scenario/ScenarioRun.h"
#include "scenario/StepTable.h"
#include "scenario/ViewTable.h"

namespace kivo {
namespace {

StepTable::Action readPrint(const PropertyValue& value) {
    const PropertyValue record = value.string() ? PropertyValue(Dictionary{{"view", value}}) : value;
    if (!record.dictionary())
        reading::mismatch("print", "a view's name or an object", value);
    RecordReader options(record, "print");
    const std::string name = options.requireString("view");
    const auto* reader = allViews().find(name);
    if (!reader)
        throw DecodingError("unknown view \"" + name + "\"");
    auto view = (*reader)(options);
    options.finish();
    return [name, view = std::move(view)](ScenarioRun& run) {
        run.events().record("view",
                            {{"view", name}, {"content", run.application() ? view(run) : PropertyValue()}});
    };
}

} // namespace

void addPrintStep(StepTable& steps) {
    steps.add("print", readPrint);
}

} // namespace kivo
