#pragma once

#include "app/TTypes.h"

#include <QString>

class IDevice;

// Why a command cannot run, in the one wording that the command list, "--list" and the worker show:
// no programmer or device for it (with the reason when its device description cannot be read), or
// invalid parameters (with the key when a value cannot be kept in a project file). Empty when it can run.
class TCmdProblem {
public:
    // data is the command's record with the model keys; name its display name; group its family, which
    // may say why the chip has no such command.
    static QString get(const QString& name, const TData& data, const IDevice* group = nullptr);
};
