#pragma once

#include "app/TTypes.h"

#include <QByteArray>

class IDevice;
class TDataCmd;
class TProg;

// Parameter handling shared by the device families: defaults, checks and views of the read, write and
// verify commands (on characters, literal data and files, in the plain, flash and EEPROM address
// spaces), the pin states of "leave" and "set_io", and the clock command.
class TNormCmdParam {
public:
    // Address ranges of a device: (begin, size) of each space.
    static void readDevData(IDevice* dev, qint64& begin, qint64& size);
    static void readDevDataFlash(IDevice* dev, qint64& begin, qint64& size);
    static void readDevDataEEPROM(IDevice* dev, qint64& begin, qint64& size);

    static void cmdRWVCharDef(IDevice* dev, TData& p);
    static void cmdRWVDataDef(IDevice* dev, TData& p);
    static void cmdRWVFileDef(IDevice* dev, TData& p);
    static void cmdRWVFlashCharDef(IDevice* dev, TData& p);
    static void cmdRWVFlashDataDef(IDevice* dev, TData& p);
    static void cmdRWVFlashFileDef(IDevice* dev, TData& p);
    static void cmdRWVEEPROMCharDef(IDevice* dev, TData& p);
    static void cmdRWVEEPROMDataDef(IDevice* dev, TData& p);
    static void cmdRWVEEPROMFileDef(IDevice* dev, TData& p);

    static bool cmdRWVCharCheck(IDevice* dev, const TData& p);
    static bool cmdRWVDataCheck(IDevice* dev, const TData& p);
    static bool cmdRWVFileCheck(IDevice* dev, const TData& p);
    static bool cmdRWVFlashCharCheck(IDevice* dev, const TData& p);
    static bool cmdRWVFlashDataCheck(IDevice* dev, const TData& p);
    static bool cmdRWVFlashFileCheck(IDevice* dev, const TData& p);
    static bool cmdRWVEEPROMCharCheck(IDevice* dev, const TData& p);
    static bool cmdRWVEEPROMDataCheck(IDevice* dev, const TData& p);
    static bool cmdRWVEEPROMFileCheck(IDevice* dev, const TData& p);

    static QString cmdRWVCharView(const TData& p);
    static QString cmdRWVDataView(const TData& p);
    static QString cmdRWVFileView(const TData& p);

    // The common routines behind the variants, for a range [begin, begin + size).
    static void writeParamRWVChar(TData& p, qint64 begin, qint64 size, int fill);
    static void writeDataRWVData(TData& p, qint64 addr, const QString& text);
    static void defRWVFile(TData& p, qint64 begin, qint64 size);
    static bool checkParamRWVChar(const TData& p, qint64 begin, qint64 size);
    static bool checkParamRWVData(const TData& p, qint64 begin, qint64 size);
    static bool checkParamRWVFile(const TData& p, qint64 begin, qint64 size);

    // Pin states of "leave" (withDuration) and "set_io".
    static void cmdLeaveDef(TData& p, bool withDuration);
    static bool cmdLeaveCheck(const TData& p, bool withDuration);
    static QString cmdLeaveView(const TData& p, bool withDuration);
    // Payload: duration (16 bits, low byte first; 0 without a duration), then one pin-state code per pin
    // of the programmer's pin connection for the device, the state text padded with "-" to that count.
    static QByteArray cmdLeaveExec(int idCmd, bool withDuration);

    static void cmdSetCLKDef(const QString& code, TData& p);
    static bool cmdSetCLKCheck(const TData& p);

    static QString getNormIOStateView(int state);
};
