#include "devices/TDev24Exec.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "devices/TDev24CAlg.h"
#include "formats/TFormat.h"
#include "link/TSerialPort.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"

#include <QCoreApplication>

TDev24CExec::TDev24CExec(const TData& p, QObject* parent) : IDeviceExec(p, parent) {}

bool TDev24CExec::execute(TSerialPort& port, bool&, int&, int&) {
    using Op = bool (TDev24CExec::*)(TSerialPort&);
    static const QHash<QString, Op> ops{
        {CTagCmdCode::set_addr, &TDev24CExec::setAddress},
        {CTagCmdCode::set_clk, &TDev24CExec::setCLK},
        {CTagCmdCode::erase, &TDev24CExec::erase},
        {CTagCmdCode::test_empty, &TDev24CExec::testEmpty},
        {CTagCmdCode::char_write, &TDev24CExec::writeChar},
        {CTagCmdCode::char_verify, &TDev24CExec::verifyChar},
        {CTagCmdCode::data_read, &TDev24CExec::readData},
        {CTagCmdCode::data_write, &TDev24CExec::writeData},
        {CTagCmdCode::data_verify, &TDev24CExec::verifyData},
        {CTagCmdCode::file_read, &TDev24CExec::readFile},
        {CTagCmdCode::file_write, &TDev24CExec::writeFile},
        {CTagCmdCode::file_verify, &TDev24CExec::verifyFile},
        {CTagCmdCode::leave, &TDev24CExec::leave},
    };
    const Op op = ops.value(TAPP_PARAM(param, CTagCmd::cmd).toString(), nullptr);
    return op && (this->*op)(port);
}

bool TDev24CExec::execReadSignature(TSerialPort&, QString&) {
    return true;
}

// ---- shared steps ----

bool TDev24CExec::prepare(TSerialPort& port) {
    if (!isOpenPort(port)) return false;
    if (!readSetup(dev, maxData)) return false;
    page = TAPP_PARAM(dev, "page_size").toInt();
    addrSize = static_cast<unsigned char>(TAPP_PARAM(dev, "addr_size").toUInt());
    return maxData > 0 && page > 0;
}

void TDev24CExec::processGUI(int& lastPercent, qint64 addr, qint64 end) {
    const int percent = end == 0 ? 100 : int(qMin<qint64>(addr * 100 / end, 100));
    if (percent == lastPercent) return;
    lastPercent = percent;
    QCoreApplication::processEvents();
    emit signalEventProc(percent);
}

bool TDev24CExec::readPiece(TSerialPort& port, qint64 addr, int len, QByteArray& out) {
    QString err;
    const int alg = TAPP_PARAM(dev, "alg_read").toInt();
    if (!TDev24CAlg::read(alg, port, addr, addrSize, static_cast<unsigned short>(len), out, err)) {
        setErrorText(err.isEmpty() ? Lang.get(483).arg(alg) : err);
        return false;
    }
    if (out.size() == len) return true;
    setErrorText(Lang.get(484).arg(out.size()).arg(len));
    return false;
}

// Page-sized pieces, so that no write crosses a page of the chip.
bool TDev24CExec::writeRange(TSerialPort& port, qint64 addr, qint64 end, const Source& source) {
    const int alg = TAPP_PARAM(dev, "alg_write").toInt();
    int last = -1;
    for (qint64 n; (n = TMiscDev::getSize(addr, end, page)) > 0; addr += n) {
        QString err;
        if (!TDev24CAlg::write(alg, port, addr, addrSize, source(addr, int(n)), err)) {
            setErrorText(err.isEmpty() ? Lang.get(483).arg(alg) : err);
            return false;
        }
        processGUI(last, addr + n, end);
        if (isStop()) return false;
    }
    return true;
}

bool TDev24CExec::readRange(TSerialPort& port, qint64 addr, qint64 end, const Sink& sink) {
    const qint64 chunk = qMin(maxData, 0xFFFF);
    int last = -1;
    for (qint64 n; (n = TMiscDev::getSize(addr, end, chunk)) > 0; addr += n) {
        QByteArray piece;
        if (!readPiece(port, addr, int(n), piece) || !sink(addr, piece)) return false;
        processGUI(last, addr + n, end);
        if (isStop()) return false;
    }
    return true;
}

bool TDev24CExec::verifyRange(TSerialPort& port, qint64 addr, qint64 end, const Source& expected) {
    return readRange(port, addr, end, [&](qint64 at, const QByteArray& piece) {
        return compare(at, expected(at, piece.size()), piece);
    });
}

// ---- commands ----

bool TDev24CExec::setAddress(TSerialPort& port) {
    if (!prepare(port)) return false;
    const unsigned masked = TAPP_PARAM(param, "addr").toUInt() & TAPP_PARAM(dev, "addr_mask").toUInt();
    QString err;
    if (TDev24CAlg::setAddress(port, static_cast<unsigned char>(masked << 1), err)) return true;
    setErrorText(err);
    return false;
}

bool TDev24CExec::setCLK(TSerialPort& port) {
    if (!isOpenPort(port)) return false;
    QString err;
    if (TDev24CAlg::setClk(port, TMiscDev::getCLK(param), err)) return true;
    setErrorText(err);
    return false;
}

bool TDev24CExec::leave(TSerialPort& port) {
    if (!isOpenPort(port)) return false;
    const QByteArray payload = TNormCmdParam::cmdLeaveExec(TAPP_PARAM(param, CTagCmd::id_cmd).toInt(), true);
    QString err;
    if (TDev24CAlg::leave(port, payload, err)) return true;
    setErrorText(err);
    return false;
}

bool TDev24CExec::erase(TSerialPort& port) {
    if (!prepare(port)) return false;
    const qint64 begin = TAPP_PARAM(dev, "addr_begin").toLongLong();
    const qint64 end = begin + TAPP_PARAM(dev, "size").toLongLong() - 1;
    return writeRange(port, begin, end, [](qint64, int n) { return QByteArray(n, char(0xFF)); });
}

bool TDev24CExec::testEmpty(TSerialPort& port) {
    if (!prepare(port)) return false;
    const qint64 begin = TAPP_PARAM(dev, "addr_begin").toLongLong();
    const qint64 end = begin + TAPP_PARAM(dev, "size").toLongLong() - 1;
    return verifyRange(port, begin, end, [](qint64, int n) { return QByteArray(n, char(0xFF)); });
}

bool TDev24CExec::writeChar(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addr, end;
    uchar fill;
    TMiscDev::getCmdParamRWVChar(param, id, addr, end, fill);
    return writeRange(port, addr, end, [fill](qint64, int n) { return QByteArray(n, char(fill)); });
}

bool TDev24CExec::verifyChar(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addr, end;
    uchar fill;
    TMiscDev::getCmdParamRWVChar(param, id, addr, end, fill);
    return verifyRange(port, addr, end, [fill](qint64, int n) { return QByteArray(n, char(fill)); });
}

bool TDev24CExec::writeData(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addr, end;
    QByteArray data;
    QString text;
    TMiscDev::getCmdParamRWVData(param, id, addr, end, data, text);
    const qint64 begin = addr;
    return writeRange(port, addr, end, [&](qint64 at, int n) { return data.mid(int(at - begin), n); });
}

bool TDev24CExec::verifyData(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addr, end;
    QByteArray data;
    QString text;
    TMiscDev::getCmdParamRWVData(param, id, addr, end, data, text);
    const qint64 begin = addr;
    return verifyRange(port, addr, end, [&](qint64 at, int n) { return data.mid(int(at - begin), n); });
}

bool TDev24CExec::readData(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addr, end;
    QByteArray data;
    QString text;
    TMiscDev::getCmdParamRWVData(param, id, addr, end, data, text);
    QByteArray read;
    if (!readRange(port, addr, end, [&](qint64, const QByteArray& piece) {
            read += piece;
            return true;
        }))
        return false;
    emit signalEventText(ExecResult, TMiscDev::getHexFromByteArrayMask(text, read), QString());
    return true;
}

bool TDev24CExec::writeFile(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addrFile, addr, end;
    QString file, format;
    TMiscDev::getCmdParamRWVFile(param, id, addrFile, addr, end, file, format);
    TFormat data(format, file, addrFile, addr, end, page);
    if (!openFile(data, FormatModeRead)) return false;
    const int alg = TAPP_PARAM(dev, "alg_write").toInt();
    int last = -1;
    const bool ok = forEachFilePiece(data, addr, [&](qint64 at, const QByteArray& piece) {
        QString err;
        if (!TDev24CAlg::write(alg, port, at, addrSize, piece, err))
            return setErrorText(err.isEmpty() ? Lang.get(483).arg(alg) : err), false;
        processGUI(last, at + piece.size(), end);
        return !isStop();
    });
    return ok && (data.close() || (setFileError(data), false));
}

bool TDev24CExec::verifyFile(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addrFile, addr, end;
    QString file, format;
    TMiscDev::getCmdParamRWVFile(param, id, addrFile, addr, end, file, format);
    const int chunk = qMin(maxData, 0xFFFF);
    TFormat data(format, file, addrFile, addr, end, chunk);
    if (!openFile(data, FormatModeRead)) return false;
    int last = -1;
    const bool ok = forEachFilePiece(data, addr, [&](qint64 at, const QByteArray& piece) {
        QByteArray read;
        if (!readPiece(port, at, piece.size(), read) || !compare(at, piece, read)) return false;
        processGUI(last, at + piece.size(), end);
        return !isStop();
    });
    return ok && (data.close() || (setFileError(data), false));
}

bool TDev24CExec::readFile(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addrFile, addr, end;
    QString file, format;
    TMiscDev::getCmdParamRWVFile(param, id, addrFile, addr, end, file, format);
    TFormat data(format, file, addrFile, addr, end, qMin(maxData, 0xFFFF));
    if (!openFile(data, FormatModeWrite)) return false;
    const qint64 begin = addr;
    const bool ok = readRange(port, addr, end, [&](qint64 at, const QByteArray& piece) {
        return data.write(addrFile + at - begin, piece) || (setFileError(data), false);
    });
    return data.close() && ok;
}
