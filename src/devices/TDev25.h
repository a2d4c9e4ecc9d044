#pragma once

#include "devices/TDevFamily.h"

// The editing side of the 25-series SPI flash family: its commands, their defaults, checks and
// one-line views, and the set-device payload.
class TDev25 : public TDevFamily {
    Q_OBJECT
public:
    TDev25(const QString& code, const TData& param);

    // Read by the editing side and the executor alike; the memory spaces are those of Region.
    static const TCmdRows& cmdTable();

    IDeviceExec* createExecObject(const TData& param) override;

    static QString cmdEraseBlocksView(const TData& p);
    static QString cmdSecurityRegView(const TData& p);
    // The check list of the security registers' form, one line per register.
    static QStringList getSecurityRegLines(int registers);

private:
    // The space numbers of the rows, in the order of the constructor's spaces.
    enum class Region { Flash, Security, SFDP };
};
