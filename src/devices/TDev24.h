#pragma once

#include "devices/TDevFamily.h"

// Two-wire (I2C) serial EEPROMs of the 24 series: one address space, page writes, a bus address set by
// the part's address pins.
class TDev24 : public TDevFamily {
    Q_OBJECT
public:
    TDev24(const QString& code, const TData& param);

    // One memory space; the executor dispatches by the same rows.
    static const TCmdRows& cmdTable();

    // "Address: A2A1A0", a pin the part does not use shown as "-".
    QString getViewSetAddress(const TData& param) const;

    // The set-device settings are the address pins, as the set_addr command has them.
    bool checkCmdSetDeviceParam(const TData& param) override;
    void getDefaultParamCmdSetDevice(TData& param) override;
    QWidget* getWgtCmdSetDeviceParam(const TData& param) override;
    IDeviceExec* createExecObject(const TData& param) override;
};
