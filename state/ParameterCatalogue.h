#pragma once

#include "state/ParameterId.h"
#include "state/ParameterSpec.h"
#include "toolkit/HVNChecked.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// A click area on the face that flips a parameter between two values.
struct ToggleOverlay
{
    struct State
    {
        float value = 0.0f;
        std::string label;
    };

    std::uint32_t kind = 0;
    ParameterId target = 0;
    ParameterRect clickArea;
    std::vector<State> states;
};

// A meter the plug-in can show to hosts that display read-only meter parameters.
struct MeterSpec
{
    std::string name;
    std::uint32_t kind = 0;
};

// The host's category number for a meter of the given kind.
constexpr std::uint32_t hostMeterCategory (std::uint32_t kind)
{
    return 0x20000u + (kind < 5u ? kind : 5u);
}

// A parameter's default for one main-bus layout, used before any state is restored.
struct LayoutDefault
{
    ParameterId id = 0;
    int inputs = 0;
    int outputs = 0;
    float value = 0.0f;
};

struct ProductInfo
{
    std::string displayName;
    // Names for hosts with little room, longest first; neighbours that repeat stay.
    std::array<std::string, 14> alternateNames;
    // Key in preset JSON, factory preset sub-folder and preferences sub-key.
    std::string pluginNumber;
    std::string pluginCode;
    std::string version;
};

// The constant table of the plug-in's parameters and the product data beside it.
// Built once on first use, then shared read-only by every instance and thread.
class ParameterCatalogue
{
public:
    // Throws std::out_of_range for an id of kNumParameters or more.
    static const ParameterSpec& row (ParameterId id);
    static const std::array<ParameterSpec, kNumParameters>& rows();

    // Parameter ids in the order the tab key walks the controls.
    static const std::array<ParameterId, kNumParameters>& focusOrder();

    static const std::vector<ToggleOverlay>& toggleOverlays();
    static const std::vector<MeterSpec>& meters();
    static const ProductInfo& product();

    static const std::vector<LayoutDefault>& layoutDefaults();
    // The default of a parameter for a main-bus layout, if the table holds one.
    static HVNChecked<float> layoutDefault (ParameterId id, int inputs, int outputs);
};
