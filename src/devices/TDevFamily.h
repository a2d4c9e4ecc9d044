#pragma once

#include "devices/TCmdFamily.h"

// The editing side of a chip family: its command table (TCmdFamily) and the set-device command, whose
// usual setting is the clock of the device's pin connection.
class TDevFamily : public TCmdFamily {
    Q_OBJECT
public:
    void getDefaultParamCmdSetDevice(TData& param) override;
    QWidget* getWgtCmdSetDeviceParam(const TData& param) override;
    // The nine bytes every family sends (docs/protocol.md): type code (16 bits), cfg_hw, the family's
    // byte, clock (32 bits), delay. A command without a clock of its own takes the connection's default.
    QByteArray getCmdSetDeviceExec(const TData& param) override;

protected:
    using TCmdFamily::TCmdFamily;

    // The key of the payload's third byte, what the family's bus needs beyond clock and delay: a setting
    // of the set-device command, else a key of the device's description; none sends 0.
    const char* familyByteKey = nullptr;
};
