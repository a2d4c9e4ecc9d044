#pragma once

#include "app/TTypes.h"

#include <QString>

class TDataPrj;

// Adds commands to a project the way the editor does: bound to the family that will serve them, with
// that family's defaults, then the given values on top. The window's insert menu, the command-line
// one-liners and the chip panel build their commands here, so a command made anywhere starts alike.
class TPrjBuilder {
public:
    // Returns the new command's id; pos < 0 appends to the configuration.
    static int addCmd(TDataPrj& prj, int idCfg, const QString& code, const TData& values = TData(),
                      int pos = -1);
    // A "set_device" for a catalogue device, with the device's own settings at their defaults.
    static int addSetDevice(TDataPrj& prj, int idCfg, const QString& device, const QString& file);
};
