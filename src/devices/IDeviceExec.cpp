#include "devices/IDeviceExec.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TSignature.h"
#include "formats/TFormat.h"
#include "link/TProg.h"
#include "link/TSerialPort.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdParam.h"
#include "project/CTagPrj.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QCoreApplication>
#include <QFileInfo>

IDeviceExec::IDeviceExec(const TData& p, QObject* parent) : QObject(parent), param(p) {}

IDeviceExec::~IDeviceExec() = default;

bool IDeviceExec::execReadSignature(TSerialPort&, QString&) {
    return false;
}

bool IDeviceExec::isOpenPort(TSerialPort& port) {
    if (port.isOpen()) return true;
    errorText = Lang.get(392);
    return false;
}

bool IDeviceExec::sendPackage(TSerialPort& port, unsigned char cmd, QByteArray& data) {
    if (port.sendPackage(cmd, data)) return true;
    errorText = port.getErrorText();
    return false;
}

bool IDeviceExec::processGUI(int& lastPercent, int& counter, long long done, long long total) {
    const int percent = total == 0 ? 100 : int(qMin<long long>(done * 100 / total, 100));
    if (percent != lastPercent) {
        QCoreApplication::processEvents();
        emit signalEventProc(percent);
        lastPercent = percent;
        counter = 1;
    } else if (counter++ % 16 == 0) {
        QCoreApplication::processEvents();
    }
    return isStop();
}

bool IDeviceExec::storeParam(const QString& key, const QVariant& value) {
    const int idCmd = param.value(QStringLiteral("id_cmd"), -1).toInt();
    TLocker lock(ProjectData.getMutex());
    TData p = ProjectData.getCmdData(idCmd);
    if (p.isEmpty()) return false;
    p.insert(key, value);
    ProjectData.updCmdParam(idCmd, p);
    return true;
}

bool IDeviceExec::storeData(const QString& hex) {
    storeParam(QStringLiteral("data"), hex);
    emit signalEventText(ExecResult, hex, QString());
    return true;
}

bool IDeviceExec::readSetup(TData& devParam, int& max) const {
    TLocker lock(ProjectData.getMutex());
    TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(TAPP_PARAM(param, CTagCmd::id_cmd).toInt());
    IDevice* device = cmd ? cmd->getDeviceObject() : nullptr;
    TProg* prog = cmd ? cmd->getProgObject() : nullptr;
    if (!device || !prog) return false;
    devParam = device->getDevParam();
    unsigned short limit = 0;
    prog->getProtocolSettings(limit);
    max = limit;
    return true;
}

namespace {
enum LangId {
    TextVerifyRange = 1731,
    TextBlankRange = 1732,
    TextVerify = 1733,
    TextFile = 1734,
    TextExpected = 1735,
    TextBlank = 1736,
};

// The device range [begin, end] a read, write or verify command names; false for other commands.
bool commandRange(const TData& p, qint64& begin, qint64& end) {
    const QString code = p.value(CTagCmd::cmd).toString();
    begin = 0;
    end = -1;
    int id = 0;
    if (code.contains(QLatin1String("file_"))) {
        qint64 addrFile;
        QString file, format;
        TMiscDev::getCmdParamRWVFile(p, id, addrFile, begin, end, file, format);
    } else if (code.contains(QLatin1String("data_"))) {
        QByteArray data;
        QString text;
        TMiscDev::getCmdParamRWVData(p, id, begin, end, data, text);
    } else if (code.contains(QLatin1String("char_"))) {
        uchar fill;
        TMiscDev::getCmdParamRWVChar(p, id, begin, end, fill);
    }
    return end >= begin;
}

// What failed, over which range: the line before the address of the first difference.
QString differenceHeader(const TData& p) {
    const bool blank = p.value(CTagCmd::cmd).toString().contains(QLatin1String("test_empty"));
    qint64 begin, end;
    if (!commandRange(p, begin, end)) return Lang.get(blank ? TextBlank : TextVerify);
    auto hex = [](qint64 v) { return QStringLiteral("0x") + TMiscDev::getHexFromInt(v); };
    return Lang.get(blank ? TextBlankRange : TextVerifyRange).arg(hex(begin), hex(end));
}
} // namespace

bool IDeviceExec::prepareDevice(TSerialPort& port) {
    return isOpenPort(port) && readSetup(dev, maxData) && maxData > 0;
}

bool IDeviceExec::compare(qint64 addr, const QByteArray& expected, const QByteArray& read) {
    for (int i = 0; i < expected.size(); ++i)
        if (i >= read.size() || expected.at(i) != read.at(i)) {
            setErrorText(differenceHeader(param) + QLatin1Char('\n') +
                         TMiscDev::getMsgVerifyError(addr + i, uchar(expected.at(i)),
                                                     i < read.size() ? uchar(read.at(i)) : 0));
            return false;
        }
    return true;
}

bool IDeviceExec::failAlg(const QString& err, const char* algKey) {
    setErrorText(err.isEmpty() ? Lang.get(483).arg(TAPP_PARAM(dev, algKey).toInt()) : err);
    return false;
}

bool IDeviceExec::identify(TSerialPort& port) {
    QString read;
    if (!execReadSignature(port, read)) return false;
    const QByteArray expected = TMiscDev::getByteArrayFromHex(TAPP_PARAM(dev, "signature").toString());
    if (TMiscDev::getByteArrayFromHex(read) == expected) return true;
    const QString devFile =
        TApp::getAbsoluteFile(AppData.getPathDevicesAbs(), TAPP_PARAM(dev, "dev_file").toString());
    const QString names = TSignature::getSignatureDeviceName(QFileInfo(devFile).absolutePath(), read);
    QString device;
    {
        TLocker lock(ProjectData.getMutex());
        TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(TAPP_PARAM(param, CTagCmd::id_cmd).toInt());
        if (IDevice* d = cmd ? cmd->getDeviceObject() : nullptr) device = d->getDeviceCode();
    }
    // What was expected follows on a line of its own.
    setErrorText(Lang.get(404).arg(read, names) + QLatin1Char('\n') +
                 Lang.get(TextExpected).arg(TAPP_PARAM(dev, "signature").toString().toUpper(), device));
    return false;
}

void IDeviceExec::setFileError(const TFormat& data) {
    const QString file =
        TApp::getAbsoluteFile(ProjectData.getPrjWorkPath(), TAPP_PARAM(param, CTagCmdRWV::file).toString());
    setErrorText(data.getErrorText() + QLatin1Char('\n') + Lang.get(TextFile).arg(file));
}

bool IDeviceExec::openFile(TFormat& data, TFormatMode mode) {
    if (data.open(mode)) return true;
    setFileError(data);
    return false;
}

bool IDeviceExec::forEachFilePiece(TFormat& data, qint64 addr, const FilePiece& each) {
    for (long long at = addr;;) {
        QByteArray piece;
        if (!data.read(at, piece)) {
            setFileError(data);
            return false;
        }
        if (piece.isEmpty()) return true;
        if (!each(at, piece)) return false;
        at += piece.size();
    }
}
