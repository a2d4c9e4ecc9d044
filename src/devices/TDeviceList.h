#pragma once

#include "app/TTypes.h"

#include <QHash>
#include <QString>
#include <QStringList>

class IDevice;

// The device catalogue: which devices exist ("devices.lst"), their type codes ("types.lst"), the
// parameters of their description files, and the family that serves each of them.
class TDeviceList {
public:
    using Creator = IDevice* (*)(const QString& code, const TData& param);

    TDeviceList();

    QHash<QString, QString> getDeviceList() const;
    // Returns the creator of the family serving the device and fills param from its description file;
    // desc (when given) receives the description lines the new object keeps.
    Creator getDeviceInstance(const QString& code, const QString& file, TData& param,
                              QStringList* desc = nullptr) const;
    static TData getParamData(const QStringList& lines);
    // Why a description file is not read (missing, not a regular file, larger than any description can
    // be); empty when it is read. A description comes with someone's project, so /dev/zero or a FIFO
    // must neither hang nor fill the memory.
    static QString checkDescription(const QString& file);
    static const qint64 maxDescriptionSize = 1 << 20;
    static bool getParamFields(const QString& line, QString& key, QString& type, QString& value);
    unsigned int getDevCode(QString& name) const;

    // The family rows of the factory, including those whose classes are not built in yet.
    static QStringList getFamilyNames();
    Creator getCreator(const QString& family) const { return factory.value(family, nullptr); }

private:
    QHash<QString, Creator> factory;
};

extern TDeviceList DeviceList;
