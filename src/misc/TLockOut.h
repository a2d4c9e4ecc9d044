#pragma once

#include "app/TTypes.h"

#include <QByteArray>
#include <QStringList>

// Fuse values after which a part no longer answers serial programming (SPIEN unprogrammed, the reset
// pin or debugWIRE taking /RESET, a clock source the board may not have), as the fuse form description
// marks them, and whether a run may write them: the command line allows it for every run, the window
// run by run after asking.
class TLockOut {
public:
    // One text per field of the fuse bytes that locks the part out, naming the field and its meaning.
    static QStringList reasons(const TData& devParam, const QByteArray& fuses);
    static QStringList reasons(const class TFormDesc& desc, const QByteArray& fuses);

    static void setAllowedAll(bool allowed);
    static void setAllowed(int idCfg, bool allowed);
    static bool isAllowed(int idCfg);
};
