#include "misc/TNormCmdParam.h"

#include "app/CApp.h"
#include "app/TApp.h"
#include "devices/IDevice.h"
#include "formats/TFormat.h"
#include "link/TProg.h"
#include "misc/dev_misc.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QRegularExpression>

namespace {
const QString kAddrDevice = CTagCmdRWV::addr_device;
const QString kCount = CTagCmdRWV::count;
const QString kFill = CTagCmdRWV::fill_char;
const QString kData = CTagCmdRWV::data;
const QString kFile = CTagCmdRWV::file;
const QString kAddrFile = CTagCmdRWV::addr_file;
const QString kFormat = CTagCmdRWV::format;
const QString kState = CTagCmdLeave::state;
const QString kDuration = CTagCmdLeave::duration;
const QString kClk = CTagCmdSetCLK::clk;

void readPair(const IDevice* dev, const char* beginKey, const char* sizeKey, qint64& begin, qint64& size) {
    const TData d = dev ? dev->getDevParam() : TData();
    begin = d.value(beginKey).toLongLong();
    size = d.value(sizeKey).toLongLong();
}

bool isInt64(const QVariant& v) {
    bool ok = false;
    v.toLongLong(&ok);
    return ok;
}
} // namespace

void TNormCmdParam::readDevData(const IDevice* dev, qint64& b, qint64& s) {
    readPair(dev, "addr_begin", "size", b, s);
}
void TNormCmdParam::readDevDataFlash(const IDevice* dev, qint64& b, qint64& s) {
    readPair(dev, "flash_addr_begin", "flash_size", b, s);
}
void TNormCmdParam::readDevDataEEPROM(const IDevice* dev, qint64& b, qint64& s) {
    readPair(dev, "eeprom_addr_begin", "eeprom_size", b, s);
}

// ---- defaults ----

void TNormCmdParam::writeParamRWVChar(TData& p, qint64 begin, qint64 size, int fill) {
    p.insert(kAddrDevice, begin);
    p.insert(kCount, size);
    p.insert(kFill, fill);
}

void TNormCmdParam::writeDataRWVData(TData& p, qint64 addr, const QString& text) {
    p.insert(kAddrDevice, addr);
    p.insert(kData, text);
}

void TNormCmdParam::defRWVFile(TData& p, qint64 begin, qint64 size) {
    p.insert(kFormat, QStringLiteral("HEX"));
    p.insert(kFile, QString());
    p.insert(kAddrFile, 0);
    p.insert(kAddrDevice, begin);
    p.insert(kCount, size);
}

#define RWV_VARIANTS(Space, reader)                                                                          \
    void TNormCmdParam::cmdRWV##Space##CharDef(IDevice* dev, TData& p) {                                     \
        qint64 b, s;                                                                                         \
        reader(dev, b, s);                                                                                   \
        writeParamRWVChar(p, b, s, 0xFF);                                                                    \
    }                                                                                                        \
    void TNormCmdParam::cmdRWV##Space##DataDef(IDevice* dev, TData& p) {                                     \
        qint64 b, s;                                                                                         \
        reader(dev, b, s);                                                                                   \
        writeDataRWVData(p, b, QString());                                                                   \
    }                                                                                                        \
    void TNormCmdParam::cmdRWV##Space##FileDef(IDevice* dev, TData& p) {                                     \
        qint64 b, s;                                                                                         \
        reader(dev, b, s);                                                                                   \
        defRWVFile(p, b, s);                                                                                 \
    }                                                                                                        \
    bool TNormCmdParam::cmdRWV##Space##CharCheck(IDevice* dev, const TData& p) {                             \
        qint64 b, s;                                                                                         \
        reader(dev, b, s);                                                                                   \
        return checkParamRWVChar(p, b, s);                                                                   \
    }                                                                                                        \
    bool TNormCmdParam::cmdRWV##Space##DataCheck(IDevice* dev, const TData& p) {                             \
        qint64 b, s;                                                                                         \
        reader(dev, b, s);                                                                                   \
        return checkParamRWVData(p, b, s);                                                                   \
    }                                                                                                        \
    bool TNormCmdParam::cmdRWV##Space##FileCheck(IDevice* dev, const TData& p) {                             \
        qint64 b, s;                                                                                         \
        reader(dev, b, s);                                                                                   \
        return checkParamRWVFile(p, b, s);                                                                   \
    }

RWV_VARIANTS(, readDevData)
RWV_VARIANTS(Flash, readDevDataFlash)
RWV_VARIANTS(EEPROM, readDevDataEEPROM)

// ---- checks ----

bool TNormCmdParam::checkParamRWVChar(const TData& p, qint64 begin, qint64 size) {
    if (!isInt64(p.value(kAddrDevice)) || !isInt64(p.value(kCount))) return false;
    bool ok = false;
    const int fill = p.value(kFill).toInt(&ok);
    const qint64 count = p.value(kCount).toLongLong();
    return ok && fill >= 0 && fill <= 255 && count > 0 &&
           TMiscDev::isRangeInside(p.value(kAddrDevice).toLongLong(), count, begin, size);
}

bool TNormCmdParam::checkParamRWVData(const TData& p, qint64 begin, qint64 size) {
    if (!isInt64(p.value(kAddrDevice))) return false;
    // Literal data: whole bytes of hexadecimal text, at most the size a data command may carry.
    QString text = p.value(kData).toString();
    text.remove(QRegularExpression(QStringLiteral("\\s")));
    static const QRegularExpression hex(QStringLiteral("^([0-9A-Fa-f]{2})+$"));
    if (!hex.match(text).hasMatch() || text.size() / 2 > CApp::rwv_data_max_size) return false;
    return TMiscDev::isRangeInside(p.value(kAddrDevice).toLongLong(), text.size() / 2, begin, size);
}

bool TNormCmdParam::checkParamRWVFile(const TData& p, qint64 begin, qint64 size) {
    if (p.value(kFile).toString().isEmpty()) return false;
    if (!TFormat::isFormat(p.value(kFormat).toString())) return false;
    if (!isInt64(p.value(kAddrFile)) || p.value(kAddrFile).toLongLong() < 0) return false;
    if (!isInt64(p.value(kAddrDevice)) || !isInt64(p.value(kCount))) return false;
    return TMiscDev::isRangeInside(p.value(kAddrDevice).toLongLong(), p.value(kCount).toLongLong(), begin,
                                   size);
}

// ---- views ----

QString TNormCmdParam::cmdRWVCharView(const TData& p) {
    return TMiscDev::getViewParamRWVChar(p.value(kAddrDevice).toLongLong(), p.value(kCount).toLongLong(),
                                         p.value(kFill).toInt());
}

QString TNormCmdParam::cmdRWVDataView(const TData& p) {
    return TMiscDev::getViewParamRWVData(p.value(kAddrDevice).toLongLong(), p.value(kData).toString());
}

QString TNormCmdParam::cmdRWVFileView(const TData& p) {
    return TMiscDev::getViewParamRWVFile(p.value(kFile).toString(), p.value(kFormat).toString());
}

// ---- pin states ----

void TNormCmdParam::cmdLeaveDef(TData& p, bool withDuration) {
    p.insert(kState, QString());
    if (withDuration) p.insert(kDuration, 0);
}

bool TNormCmdParam::cmdLeaveCheck(const TData& p, bool withDuration) {
    static const QRegularExpression states(QStringLiteral("^[-IlhLHoOZ]*$"));
    if (!states.match(p.value(kState).toString()).hasMatch()) return false;
    if (!withDuration) return true;
    bool ok = false;
    const int d = p.value(kDuration).toInt(&ok);
    return ok && d >= 0 && d <= 0xFFFF;
}

QString TNormCmdParam::cmdLeaveView(const TData& p, bool withDuration) {
    const QString state = p.value(kState).toString();
    QString view = state.isEmpty() ? QStringLiteral("-") : state;
    if (withDuration) view += QStringLiteral(", %1 ms").arg(p.value(kDuration).toInt());
    return view;
}

TProg* TNormCmdParam::pinsOf(int idCmd, const IDevice* dev, QStringList& pins) {
    TLocker lock(ProjectData.getMutex());
    TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(idCmd);
    TProg* prog = cmd ? cmd->getProgObject() : nullptr;
    // The pins are those of the device the command works on, whichever family edits it.
    if (cmd) dev = cmd->getDeviceObject();
    pins = prog ? prog->getPinsConnect(dev ? dev->getDevConnect() : QString(), 0) : QStringList();
    return prog;
}

QByteArray TNormCmdParam::cmdLeaveExec(int idCmd, bool withDuration) {
    TLocker lock(ProjectData.getMutex());
    QStringList pinNames;
    TProg* prog = pinsOf(idCmd, nullptr, pinNames);
    if (!prog) return QByteArray();
    const TData p = ProjectData.getCmdObjectFromIdCmd(idCmd)->getParam();
    const int duration = withDuration ? p.value(kDuration).toInt() : 0;
    QByteArray payload;
    TMiscDev::appendLE(payload, quint16(duration), 2);
    const int pins = pinNames.size();
    QString state = p.value(kState).toString();
    if (state.size() < pins) state += QString(pins - state.size(), QLatin1Char('-'));
    for (const QChar c : state)
        payload.append(char(prog->getPinsTypeCode(c)));
    return payload;
}

// ---- clock ----

void TNormCmdParam::cmdSetCLKDef(const QString& group, TData& p) {
    TLocker lock(ProjectData.getMutex());
    TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(p.value(QStringLiteral("id_cmd"), -1).toInt());
    TProg* prog = cmd ? cmd->getProgObject() : nullptr;
    p.insert(kClk, prog ? prog->getCLKDef(group) : 0);
}

bool TNormCmdParam::cmdSetCLKCheck(const TData& p) {
    bool ok = false;
    return p.value(kClk).toLongLong(&ok) >= 0 && ok;
}

QString TNormCmdParam::getNormIOStateView(int state) {
    static const char* const views[] = {"-", "I", "l", "h", "L", "H", "o", "O", "Z"};
    return state >= 0 && state < 9 ? QString::fromLatin1(views[state]) : QStringLiteral("?");
}
