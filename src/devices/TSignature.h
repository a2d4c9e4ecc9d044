#pragma once

#include "devices/TFamilyRecord.h"
#include "devices/TPairStringList.h"

#include <QStringList>
#include <QVector>

// Turns identification bytes into device names: "auto.lst", the families' signature lists,
// "signature.lst", and the route tables of the auto-detect command.
class TSignature {
public:
    static QVector<TFamilyRecord> getAutoData();
    static QStringList getAutoFamilyList();
    static QString getAutoDevFile(const QString& family);
    static QString getAutoSignFile(const QString& family);
    static TPairStringList getSignatureListFromFile(const QString& path);
    static TPairStringList getSignatureListFromName(const QString& family);
    static QString getSignatureDeviceName(const QString& folder, const QString& signature);
    static TPairStringList getAutoRouteTable(const QString& text);

    // The line rules shared by the lists: trimmed, no empty or "#" lines, split at the first "=".
    static TPairStringList readPairFile(const QString& path);
};
