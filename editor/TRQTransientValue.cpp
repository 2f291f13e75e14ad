#include "editor/TRQTransientValue.h"

void TRQTransientValue::show (double now)
{
    shownMs = now;
    if (!valueDisplayActive)
        opacity.jumpTo (0.0f);
    valueDisplayActive = true;
    if (opacity.getTarget() != 1.0f)
        opacity.setTarget (1.0f, fadeInMs * (1.0 - opacity.valueAt (now)), now);
}

void TRQTransientValue::advance (double now)
{
    if (!valueDisplayActive)
        return;
    if (opacity.getTarget() == 1.0f && now - shownMs >= fadeInMs + holdMs)
        opacity.setTarget (0.0f, fadeOutMs, now);
    else if (opacity.getTarget() == 0.0f && !opacity.isMoving (now))
        valueDisplayActive = false;
}
