#pragma once

#include "devices/TCmdFamily.h"

// Three-wire (Microwire) EEPROMs of the 93 series. Unfinished: the catalogue never makes this family, and
// its executor has only the clock and the erase; the other commands wait for their packets. Its set-device
// command has no settings and an empty payload until the family's layout is designed.
class TDev93C : public TCmdFamily {
    Q_OBJECT
public:
    TDev93C(const QString& code, const TData& param);

    // The family's commands in the order offered.
    static const TCmdRows& cmdTable();

    IDeviceExec* createExecObject(const TData& param) override;
};
