#pragma once

// Chips for the end-to-end family tests: one description serves both the application's device object
// and the simulator's chip model, so the two sides always agree on the part.

#include "app/TAppData.h"
#include "devices/IDevice.h"
#include "link/TSerialPort.h"
#include "project/TDataPrj.h"
#include "support/CmdText.h"
#include "support/WorkerFixture.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

namespace ChipKit {

using Keys = QList<QPair<QString, QVariant>>;
using Creator = IDevice* (*)(const QString&, const TData&);

// Writes devices.lst, types.lst and the description of name into dir and returns the device record.
inline TData writeChip(const QString& dir, const QString& name, const Keys& keys) {
    QDir().mkpath(dir);
    QFile lst(dir + "/devices.lst");
    lst.open(QIODevice::Append | QIODevice::Text);
    QTextStream(&lst) << name << "=" << name.toLower() << ".cfg\n";
    QFile types(dir + "/types.lst");
    types.open(QIODevice::WriteOnly | QIODevice::Text);
    QTextStream(&types) << "# type codes\nI2C_EEPROM =7\nI2C_EEPROM=772\nAVR_SPI=1029\n";
    QFile f(dir + "/" + name.toLower() + ".cfg");
    f.open(QIODevice::WriteOnly | QIODevice::Text);
    QTextStream out(&f);
    TData record;
    for (const auto& k : keys) {
        const bool text = k.second.type() == QVariant::String;
        out << k.first << "=" << (text ? "s" : "D") << "|" << k.second.toString() << "\n";
        record.insert(k.first, text ? k.second : QVariant(k.second.toLongLong()));
    }
    return record;
}

// Makes every chip of records through creator, and the programmer and tools families as usual.
inline void useFamily(const QHash<QString, TData>& records, Creator creator) {
    ProjectData.setDeviceFactory([records, creator](const QString& name, const QString&) -> IDevice* {
        if (name == "Tools") return TCmdFamily::create<TDevTools>(name, TData());
        if (name == "Prog") return TCmdFamily::create<TDevProg>(name, TData());
        return records.contains(name) ? creator(name, records.value(name)) : nullptr;
    });
}

// A request frame as the trace shows it.
inline QString frame(unsigned char cmd, const QByteArray& payload) {
    QByteArray f;
    f.append(char(0xC0))
        .append(char(cmd))
        .append(char(payload.size() & 0xFF))
        .append(char(payload.size() >> 8));
    f += payload;
    f.append(char(TSerialPort::getCRC(f, static_cast<unsigned short>(f.size()))));
    return QString::fromLatin1(f.toHex(' ').toUpper());
}

using ::cmd;

inline const QString setProg =
    R"({"status": "1", "cmd": "set_prog", "prog": "Sim", "alt_enabled": "false", "alt_port": ""})";

inline TRunner::Options options(const QString& file) {
    TRunner::Options o;
    o.project = file;
    return o;
}

inline QByteArray readFile(const QString& file) {
    QFile f(file);
    f.open(QIODevice::ReadOnly);
    return f.readAll();
}

inline void writeFile(const QString& file, const QByteArray& bytes) {
    QFile f(file);
    f.open(QIODevice::WriteOnly);
    f.write(bytes);
}

} // namespace ChipKit
