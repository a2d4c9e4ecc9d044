#pragma once

#include "app/TTypes.h"

#include <QByteArray>

class IDevice;
class TFormCmd;

// The device-specific settings a set-device command carries for a 24-series part: its bus address pins,
// which the set-device payload carries as its family byte.
class TDev24CDevParam {
public:
    static constexpr const char* addr = "addr";

    static void def(TData& p);
    // The A2, A1, A0 pins as a number: only three pins exist.
    static bool check(const TData& p);
    // One check box per address pin, A2 first; pins outside the part's addr_mask cannot be set.
    static TFormCmd* form(const IDevice* dev, const TData& p);
};
