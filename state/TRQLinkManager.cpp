#include "state/TRQLinkManager.h"

TRQLinkManager::~TRQLinkManager() = default;

bool TRQLinkManager::isAutomatable() const
{
    return true;
}

void TRQLinkManager::valueChanged (float, float) {}
