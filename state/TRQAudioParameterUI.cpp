#include "state/TRQAudioParameterUI.h"

TRQAudioParameterUI::~TRQAudioParameterUI() = default;

bool TRQAudioParameterUI::getIfChanged (float& out)
{
    if (changedFlag.exchange (0, std::memory_order_acq_rel) == 0)
        return false;
    out = getValue();
    return true;
}
