#include "project/TChipCmds.h"

#include "devices/IDevice.h"
#include "misc/TNormCmdParam.h"
#include "project/CTagCmdCode.h"

namespace {

const QStringList kMemories = {"flash", "eeprom", "fuses", "lock", "status"};
// The register memories' command prefixes.
const QHash<QString, QString> kRegisterPrefix = {
    {"fuses", "fuse_"}, {"lock", "lock_"}, {"status", "status_reg_"}};

QString opName(TChipCmds::Op op) {
    switch (op) {
    case TChipCmds::Read:
        return QStringLiteral("read");
    case TChipCmds::Write:
        return QStringLiteral("write");
    default:
        return QStringLiteral("verify");
    }
}

// Candidates in order of preference.
QStringList candidates(TChipCmds::Op op, const QString& memory) {
    using namespace CTagCmdCode;
    if (op == TChipCmds::Detect) return {ident};
    if (op == TChipCmds::Erase) return {erase};
    if (op == TChipCmds::BlankCheck) {
        if (memory == QLatin1String("eeprom")) return {test_empty_eeprom};
        if (memory == QLatin1String("flash")) return {test_empty_flash, test_empty};
        return {};
    }
    if (kRegisterPrefix.contains(memory)) return {kRegisterPrefix.value(memory) + opName(op)};
    const QString plain = QStringLiteral("file_") + opName(op);
    if (memory == QLatin1String("eeprom")) return {QStringLiteral("eeprom_") + plain};
    if (memory == QLatin1String("flash")) return {QStringLiteral("flash_") + plain, plain};
    return {};
}

} // namespace

QStringList TChipCmds::memories(const IDevice* dev) {
    QStringList list;
    for (const QString& memory : kMemories)
        if (!code(dev, Read, memory).isEmpty() || !code(dev, Write, memory).isEmpty()) list.append(memory);
    return list;
}

bool TChipCmds::isRegister(const QString& memory) {
    return kRegisterPrefix.contains(memory);
}

QString TChipCmds::code(const IDevice* dev, Op op, const QString& memory) {
    if (!dev) return QString();
    for (const QString& c : candidates(op, memory))
        if (dev->supportCmd(c)) return c;
    return QString();
}

TData TChipCmds::values(Op op, const QString& memory, const QString& file, const QString& format,
                        const QString& value) {
    TData v;
    if (op != Read && op != Write && op != Verify) return v;
    if (isRegister(memory)) {
        if (op != Read) v.insert(CTagCmdRWV::data, value.toUpper());
        return v;
    }
    v.insert(CTagCmdRWV::file, file);
    v.insert(CTagCmdRWV::format, format);
    return v;
}
