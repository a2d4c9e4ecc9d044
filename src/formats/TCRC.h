#pragma once

#include "formats/ICRC.h"

#include <QStringList>

// The catalogue of CRC models and checksums offered by the CRC command.
class TCRC {
public:
    // A new model object for a name or alias (exact, case-sensitive), or null; the caller deletes it.
    static ICRC* createCRCObject(const QString& name);
    static QString getCRCNameDef();
    static QString getFormatDef();
    // The names switched on ("NAME=1") in "crc.lst" beside the executable, in file order.
    static QStringList getAlgListView();
    static QStringList getAlgListView(const QString& file);
};
