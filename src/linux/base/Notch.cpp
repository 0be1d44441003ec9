// SPDX-License-Identifier: MIT
#include "linux/base/Notch.h"

#include "linux/base/WholeFile.h"

#include <cmath>

namespace kivo {
namespace {

struct Panel {
    double width;
    double height;
    Notch notch;
};

// A picture without the band beside the housing is as high as the notch lower: 16 to 10.
constexpr Panel panels[] = {
    {3024, 1964, {370, 74}}, // 14 inch
    {3456, 2234, {370, 74}}, // 16 inch
    {2560, 1664, {326, 64}}, // 13 inch
    {2880, 1864, {326, 64}}, // 15 inch
};

} // namespace

std::optional<Notch> notch(std::string_view model, std::string_view output, double width, double height) {
    const bool isNotebook = model.find("MacBook") != std::string_view::npos ||
                            (model.starts_with("Mac1") && model.find(',') != std::string_view::npos);
    if (!isNotebook || !output.starts_with("eDP"))
        return std::nullopt;
    for (const auto& panel : panels)
        if (std::abs(panel.width - width) < 2 && std::abs(panel.height - height) < 2)
            return panel.notch;
    return std::nullopt;
}

std::string computerModel() {
    for (const char* path : {"/sys/firmware/devicetree/base/model", "/sys/class/dmi/id/product_name"}) {
        const auto file = readWholeFile(path);
        const auto end = file.text.find_first_of(std::string_view("\0\n", 2));
        if (file.state == FileText::State::read && end != 0 && !file.text.empty())
            return file.text.substr(0, end);
    }
    return {};
}

} // namespace kivo
