#pragma once

// A value with a flag that says whether it is present.
template<typename T>
struct HVNChecked
{
    T value{};
    bool present = false;

    HVNChecked() = default;
    HVNChecked (T v)
        : value (v)
        , present (true)
    {
    }

    explicit operator bool() const { return present; }
    T valueOr (T fallback) const { return present ? value : fallback; }
};
