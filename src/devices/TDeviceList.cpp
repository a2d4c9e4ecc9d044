#include "devices/TDeviceList.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/CTagDevices.h"
#include "devices/TDev24.h"
#include "devices/TDev25.h"
#include "devices/TDevAVR8_SPI.h"
#include "devices/TDevProg.h"
#include "devices/TDevTools.h"
#include "devices/TSignature.h"
#include "formats/IFormat.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

TDeviceList DeviceList;

namespace {
struct FamilyRow {
    const char* name;
    TDeviceList::Creator creator;
};

// The one table of families: a description file names its family ("gui_type") by one of these names.
// The Microwire family is deliberately absent: its devices stay out of the catalogue until it is finished.
const FamilyRow familyRows[] = {
    {CTagDevices::Tools, TCmdFamily::create<TDevTools>},
    {CTagDevices::Prog, TCmdFamily::create<TDevProg>},
    {CTagDevices::Dev24, TCmdFamily::create<TDev24>},
    {CTagDevices::Dev25, TCmdFamily::create<TDev25>},
    {CTagDevices::DevAVR8_SPI, TCmdFamily::create<TDevAVR8_SPI>},
};

QString devicesFile(const QString& name) {
    return TApp::getAbsoluteFile(AppData.getPathDevicesAbs(), name);
}

// Calls take(before, after) for each trimmed, non-comment line that has a "=", until take says stop.
template <typename F> void readListFile(const QString& name, F take) {
    for (const auto& pair : TSignature::readPairFile(devicesFile(name)))
        if (!take(pair.first, pair.second)) return;
}

bool readDescription(const QString& file, QStringList& lines) {
    if (!TDeviceList::checkDescription(file).isEmpty()) return false;
    QFile f(devicesFile(file));
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) return false;
    QTextStream in(&f);
    in.setCodec("UTF-8");
    QString line;
    while (in.readLineInto(&line))
        if (!line.isEmpty() && !line.startsWith(QLatin1Char('#'))) lines.append(line);
    return true;
}

// A value that does not convert under its letter is stored as zero of the letter's type.
QVariant convert(QChar type, const QString& v) {
    bool ok = false;
    switch (type.unicode()) {
    case 's':
        return v;
    case 'd':
        return v.toInt(&ok);
    case 'D':
        return v.toLongLong(&ok);
    case 'u':
        return v.toUInt(&ok);
    case 'U':
        return v.toULongLong(&ok);
    case 'x':
        return v.toUInt(&ok, 16);
    case 'X':
        return v.toULongLong(&ok, 16);
    case 'b':
        return v.toUInt(&ok, 2);
    case 'B':
        return v.toULongLong(&ok, 2);
    case 'o':
        return v.toUInt(&ok, 8);
    case 'O':
        return v.toULongLong(&ok, 8);
    case 'f':
        return v.toFloat(&ok);
    case 'F':
        return v.toDouble(&ok);
    default:
        return QVariant();
    }
}
} // namespace

TDeviceList::TDeviceList() {
    for (const FamilyRow& row : familyRows)
        if (row.creator) factory.insert(QString::fromLatin1(row.name), row.creator);
}

QStringList TDeviceList::getFamilyNames() {
    QStringList names;
    for (const FamilyRow& row : familyRows)
        names.append(QString::fromLatin1(row.name));
    return names;
}

QHash<QString, QString> TDeviceList::getDeviceList() const {
    QHash<QString, QString> list;
    readListFile(QStringLiteral("devices.lst"), [&](const QString& name, const QString& file) {
        list.insert(name, file);
        return true;
    });
    return list;
}

unsigned int TDeviceList::getDevCode(QString& name) const {
    unsigned int code = 0;
    readListFile(QStringLiteral("types.lst"), [&](const QString& type, const QString& value) {
        if (type != name) return true;
        code = value.toUInt();
        return false;
    });
    return code;
}

bool TDeviceList::getParamFields(const QString& line, QString& key, QString& type, QString& value) {
    const int eq = line.indexOf(QLatin1Char('='));
    if (eq < 0) return false;
    const int bar = line.indexOf(QLatin1Char('|'), eq + 1);
    if (bar < 0) return false;
    key = line.left(eq).trimmed();
    type = line.mid(eq + 1, bar - eq - 1).trimmed();
    value = line.mid(bar + 1);
    return true;
}

QString TDeviceList::checkDescription(const QString& file) {
    const QString path = devicesFile(file);
    const QFileInfo info(path);
    if (!info.exists()) return Lang.get(1412).arg(path);
    return IFormat::checkReadable(path, maxDescriptionSize);
}

TData TDeviceList::getParamData(const QStringList& lines) {
    TData data;
    QString listKey;
    QStringList list;
    auto flush = [&]() {
        if (!listKey.isEmpty()) data.insert(listKey, list);
        listKey.clear();
        list.clear();
    };
    QString key, type, value;
    for (const QString& line : lines) {
        if (!getParamFields(line, key, type, value)) continue;
        if (key != listKey) flush();
        if (type == QLatin1String("l")) {
            listKey = key;
            list.append(value);
            continue;
        }
        const QVariant v = type.size() == 1 ? convert(type.at(0), value) : QVariant();
        if (v.isValid()) data.insert(key, v);
    }
    flush();
    return data;
}

TDeviceList::Creator TDeviceList::getDeviceInstance(const QString& code, const QString& file, TData& param,
                                                    QStringList* desc) const {
    if (file.isEmpty()) return factory.value(code, nullptr);
    QStringList lines;
    if (!readDescription(file, lines)) return nullptr;
    param = getParamData(lines);
    param.insert(QStringLiteral("dev_file"), file);
    if (desc) *desc = lines;
    return factory.value(param.value(QStringLiteral("gui_type")).toString(), nullptr);
}
