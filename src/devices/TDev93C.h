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

protected:
    // The clock and the leave.
    void ownDefaults(const TCmdRow& row, TData& p) override;
    TFormCmd* ownForm(const TCmdRow& row, const TData& p) const override;
    bool ownCheck(const TCmdRow& row, const TData& p) const override;
};
