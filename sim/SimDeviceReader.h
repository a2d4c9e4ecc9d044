#pragma once

#include <QString>
#include <QVariantMap>

// The simulator's own small reader of the device catalogue: "devices.lst" (name=file) and description
// files of lines key=type|value.
namespace SimDeviceReader {
bool readChip(const QString& dir, const QString& name, QVariantMap& params, QString& error);
QVariantMap parseLines(const QStringList& lines);
} // namespace SimDeviceReader
