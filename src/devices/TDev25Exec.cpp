#include "devices/TDev25Exec.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/TDev25Alg.h"
#include "devices/TSignature.h"
#include "link/TSerialPort.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {
const QString kData = QStringLiteral("data");
constexpr int kRegisterSize = 256;
} // namespace

TDev25Exec::TDev25Exec(const TData& p, QObject* parent) : IDeviceExec(p, parent) {}

bool TDev25Exec::execute(TSerialPort& port, bool&, int&, int&) {
    namespace C = CTagCmdCode;
    using Op = bool (TDev25Exec::*)(TSerialPort&);
    static const struct {
        const char* code;
        Op op;
    } ops[] = {
        {C::set_clk, &TDev25Exec::setCLK},
        {C::ident, &TDev25Exec::ident},
        {C::erase, &TDev25Exec::erase},
        {C::test_empty, &TDev25Exec::testEmpty},
        {C::erase_blocks, &TDev25Exec::eraseBlocks},
        {C::test_empty_blocks, &TDev25Exec::testEmptyBlocks},
        {C::char_write, &TDev25Exec::writeChar},
        {C::char_verify, &TDev25Exec::verifyChar},
        {C::data_read, &TDev25Exec::readData},
        {C::data_write, &TDev25Exec::writeData},
        {C::data_verify, &TDev25Exec::verifyData},
        {C::file_read, &TDev25Exec::readFile},
        {C::file_write, &TDev25Exec::writeFile},
        {C::file_verify, &TDev25Exec::verifyFile},
        {C::status_reg_read, &TDev25Exec::readStatusReg},
        {C::status_reg_write, &TDev25Exec::writeStatusReg},
        {C::status_reg_verify, &TDev25Exec::verifyStatusReg},
        {C::security_reg_erase, &TDev25Exec::eraseSecurityReg},
        {C::security_reg_test_empty, &TDev25Exec::testEmptySecurityReg},
        {C::security_reg_read, &TDev25Exec::readSecurityReg},
        {C::security_reg_write, &TDev25Exec::writeSecurityReg},
        {C::security_reg_verify, &TDev25Exec::verifySecurityReg},
        {C::unique_id_read, &TDev25Exec::readUniqueID},
        {C::sfdp_reg_read, &TDev25Exec::readSFDPReg},
        {C::leave, &TDev25Exec::leave},
    };
    const QString code = TAPP_PARAM(param, CTagCmd::cmd).toString();
    for (const auto& entry : ops)
        if (code == QLatin1String(entry.code)) {
            // An operation abandoned on the user's request is no failure of the run: the worker sees its
            // stop flag next and ends the run as stopped.
            const bool ok = (this->*entry.op)(port);
            return ok || isStop();
        }
    return false;
}

// ---- shared steps ----

bool TDev25Exec::prepare(TSerialPort& port) {
    if (!isOpenPort(port)) return false;
    if (!readSetup(dev, maxData)) return false;
    return maxData > 0;
}

unsigned TDev25Exec::alg(const char* key) const {
    return TAPP_PARAM(dev, key).toUInt();
}

int TDev25Exec::readChunk(Space space) const {
    return space == Space::Flash ? maxData : qMin(maxData, kRegisterSize);
}

int TDev25Exec::writeChunk(Space space) const {
    if (space != Space::Flash) return qMin(maxData, kRegisterSize);
    const int page = TAPP_PARAM(dev, "page_size").toInt();
    return page > 0 ? qMin(maxData, page) : maxData;
}

bool TDev25Exec::readPiece(TSerialPort& port, Space space, qint64 addr, int len, QByteArray& out) {
    QString err;
    bool ok = false;
    if (space == Space::Flash)
        ok = TDev25Alg::read(alg("alg_flash_read"), port, addr, quint16(len), out, err);
    else if (space == Space::Security)
        ok = TDev25Alg::readSecurityReg(alg("alg_security_reg_read"), port, addr, quint16(len), out, err);
    else
        ok = TDev25Alg::readSFDPReg(alg("alg_fsdp_read"), port, addr, quint16(len), out, err);
    if (!ok) {
        setErrorText(err);
        return false;
    }
    if (out.size() == len) return true;
    setErrorText(Lang.get(470).arg(out.size()).arg(len));
    return false;
}

bool TDev25Exec::writePiece(TSerialPort& port, Space space, qint64 addr, const QByteArray& data) {
    QString err;
    const bool ok = space == Space::Flash
                        ? TDev25Alg::write(alg("alg_flash_write"), port, addr, data, err)
                        : TDev25Alg::writeSecurityReg(alg("alg_security_reg_write"), port, addr, data, err);
    if (!ok) setErrorText(err);
    return ok;
}

// Progress counts from address 0, not from the range's start: the done value is the next address.
bool TDev25Exec::writeRange(TSerialPort& port, Space space, qint64 addr, qint64 end, const Source& source) {
    int last = -1, counter = 0;
    for (qint64 n; (n = TMiscDev::getSize(addr, end, writeChunk(space))) > 0; addr += n) {
        if (!writePiece(port, space, addr, source(addr, int(n)))) return false;
        if (processGUI(last, counter, addr + n, end)) return false;
    }
    return true;
}

bool TDev25Exec::verifyRange(TSerialPort& port, Space space, qint64 addr, qint64 end,
                             const Source& expected) {
    return readRange(port, space, addr, end, [&](qint64 at, const QByteArray& read) {
        return compare(at, expected(at, read.size()), read);
    });
}

bool TDev25Exec::readRange(TSerialPort& port, Space space, qint64 addr, qint64 end, const Sink& sink) {
    int last = -1, counter = 0;
    QByteArray read;
    for (qint64 n; (n = TMiscDev::getSize(addr, end, readChunk(space))) > 0; addr += n) {
        if (!readPiece(port, space, addr, int(n), read) || !sink(addr, read)) return false;
        if (processGUI(last, counter, addr + n, end)) return false;
    }
    return true;
}

// ---- identification, clock, leave ----

bool TDev25Exec::execReadSignature(TSerialPort& port, QString& signature) {
    if (!prepare(port)) return false;
    QByteArray id;
    QString err;
    if (!TDev25Alg::ident(alg("alg_ident"), port, id, err)) {
        setErrorText(err);
        return false;
    }
    signature = TMiscDev::getHexFromByteArray(id);
    return true;
}

bool TDev25Exec::ident(TSerialPort& port) {
    QString read;
    return execReadSignature(port, read) && checkSignature(dev, read);
}

bool TDev25Exec::setCLK(TSerialPort& port) {
    if (!prepare(port)) return false;
    QString err;
    if (TDev25Alg::setClk(0, port, TMiscDev::getCLK(param), err)) return true;
    setErrorText(err);
    return false;
}

bool TDev25Exec::leave(TSerialPort& port) {
    if (!prepare(port)) return false;
    const QByteArray bytes = TNormCmdParam::cmdLeaveExec(TAPP_PARAM(param, CTagCmd::id_cmd).toInt(), true);
    QString err;
    if (TDev25Alg::leave(0, port, bytes, err)) return true;
    setErrorText(err);
    return false;
}

// ---- erase and empty tests ----

bool TDev25Exec::erase(TSerialPort& port) {
    if (!prepare(port)) return false;
    const QStringList fields = TAPP_PARAM(dev, "erase").toString().split(QLatin1Char('|'));
    if (fields.size() != 2) return false;
    const auto opcode = uchar(TMiscDev::getIntFromHex(fields.at(0)));
    const qint64 block = fields.at(1).trimmed().toLongLong();
    if (block <= 0) return false;
    const qint64 blocks = TAPP_PARAM(dev, "size").toLongLong() / block;
    int last = -1, counter = 0;
    for (qint64 i = 0; i < blocks; ++i) {
        QString err;
        if (!TDev25Alg::erase_blocks(alg("alg_erase"), port, opcode, i * block, err)) {
            setErrorText(err);
            return false;
        }
        if (processGUI(last, counter, i, blocks)) return false;
    }
    return true;
}

bool TDev25Exec::eraseBlocks(TSerialPort& port) {
    if (!prepare(port)) return false;
    const qint64 size = TAPP_PARAM(param, "size").toLongLong();
    const qint64 begin = TAPP_PARAM(param, "begin").toLongLong();
    const qint64 count = TAPP_PARAM(param, "count").toLongLong();
    uchar opcode = 0; // no entry for the size: the last match wins, none sends 00
    for (const QString& entry : TAPP_PARAM(dev, "erase_blocks").toStringList()) {
        const QStringList f = entry.split(QLatin1Char('|'));
        if (f.size() == 2 && f.at(1).trimmed().toLongLong() == size)
            opcode = uchar(TMiscDev::getIntFromHex(f.at(0)));
    }
    int last = -1, counter = 0;
    for (qint64 i = 0; i < count; ++i) {
        QString err;
        if (!TDev25Alg::erase_blocks(alg("alg_erase"), port, opcode, (begin + i) * size, err)) {
            setErrorText(err);
            return false;
        }
        if (processGUI(last, counter, i, count)) return false;
    }
    return true;
}

namespace {
QByteArray blank(qint64, int len) {
    return QByteArray(len, char(0xFF));
}
} // namespace

bool TDev25Exec::testEmpty(TSerialPort& port) {
    if (!prepare(port)) return false;
    const qint64 begin = TAPP_PARAM(dev, "addr_begin").toLongLong();
    return verifyRange(port, Space::Flash, begin, begin + TAPP_PARAM(dev, "size").toLongLong() - 1, blank);
}

bool TDev25Exec::testEmptyBlocks(TSerialPort& port) {
    if (!prepare(port)) return false;
    const qint64 size = TAPP_PARAM(param, "size").toLongLong();
    const qint64 begin = TAPP_PARAM(param, "begin").toLongLong();
    const qint64 count = TAPP_PARAM(param, "count").toLongLong();
    return verifyRange(port, Space::Flash, begin * size, (begin + count) * size - 1, blank);
}

// ---- characters and literal data ----

bool TDev25Exec::writeChar(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addr, end;
    uchar fill;
    TMiscDev::getCmdParamRWVChar(param, id, addr, end, fill);
    return writeRange(port, Space::Flash, addr, end,
                      [fill](qint64, int n) { return QByteArray(n, char(fill)); });
}

bool TDev25Exec::verifyChar(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addr, end;
    uchar fill;
    TMiscDev::getCmdParamRWVChar(param, id, addr, end, fill);
    return verifyRange(port, Space::Flash, addr, end,
                       [fill](qint64, int n) { return QByteArray(n, char(fill)); });
}

bool TDev25Exec::writeData(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addr, end;
    QByteArray data;
    QString text;
    TMiscDev::getCmdParamRWVData(param, id, addr, end, data, text);
    const qint64 start = addr;
    return writeRange(port, Space::Flash, addr, end,
                      [&](qint64 at, int n) { return data.mid(int(at - start), n); });
}

bool TDev25Exec::verifyData(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addr, end;
    QByteArray data;
    QString text;
    TMiscDev::getCmdParamRWVData(param, id, addr, end, data, text);
    const qint64 start = addr;
    return verifyRange(port, Space::Flash, addr, end,
                       [&](qint64 at, int n) { return data.mid(int(at - start), n); });
}

bool TDev25Exec::readData(TSerialPort& port) {
    if (!prepare(port)) return false;
    int id;
    qint64 addr, end;
    QByteArray data;
    QString text;
    TMiscDev::getCmdParamRWVData(param, id, addr, end, data, text);
    QByteArray read;
    if (!readRange(port, Space::Flash, addr, end, [&](qint64, const QByteArray& piece) {
            read += piece;
            return true;
        }))
        return false;
    return storeData(TMiscDev::getHexFromByteArrayMask(text, read));
}

// ---- files ----

bool TDev25Exec::writeFile(TSerialPort& port) {
    return prepare(port) && writeFileSpace(port, Space::Flash);
}

bool TDev25Exec::verifyFile(TSerialPort& port) {
    return prepare(port) && verifyFileSpace(port, Space::Flash);
}

bool TDev25Exec::readFile(TSerialPort& port) {
    return prepare(port) && readFileSpace(port, Space::Flash);
}

bool TDev25Exec::writeFileSpace(TSerialPort& port, Space space) {
    return writeFileRange(writeChunk(space), [&](qint64 at, const QByteArray& piece) {
        return writePiece(port, space, at, piece);
    });
}

bool TDev25Exec::verifyFileSpace(TSerialPort& port, Space space) {
    return verifyFileRange(readChunk(space), [&](qint64 at, int len, QByteArray& out) {
        return readPiece(port, space, at, len, out);
    });
}

bool TDev25Exec::readFileSpace(TSerialPort& port, Space space) {
    return readFileRange(readChunk(space), [&](qint64 addr, qint64 end, const FilePiece& sink) {
        return readRange(port, space, addr, end, sink);
    });
}

// ---- registers ----

bool TDev25Exec::readStatusReg(TSerialPort& port) {
    if (!prepare(port)) return false;
    QByteArray read;
    QString err;
    if (!TDev25Alg::readStatusReg(alg("alg_status_reg_read"), port, read, err)) {
        setErrorText(err);
        return false;
    }
    return storeData(TMiscDev::getHexFromByteArray(read));
}

// The command's data, when it has as many bytes as the part has status registers (at most three).
bool TDev25Exec::statusRegData(QByteArray& data) {
    data = TMiscDev::getByteArrayFromHex(TAPP_PARAM(param, kData).toString());
    const int n = TAPP_PARAM(dev, "status_reg_def").toString().size() / 2;
    if (n < 4 && n == data.size()) return true;
    setErrorText(Lang.get(471).arg(n));
    return false;
}

bool TDev25Exec::writeStatusReg(TSerialPort& port) {
    QByteArray data;
    if (!prepare(port) || !statusRegData(data)) return false;
    QString err;
    if (TDev25Alg::writeStatusReg(alg("alg_status_reg_write"), port, data, err)) return true;
    setErrorText(err);
    return false;
}

bool TDev25Exec::verifyStatusReg(TSerialPort& port) {
    QByteArray data, read;
    if (!prepare(port) || !statusRegData(data)) return false;
    QString err;
    if (!TDev25Alg::readStatusReg(alg("alg_status_reg_read"), port, read, err)) {
        setErrorText(err);
        return false;
    }
    if (read == data) return true;
    setErrorText(Lang.get(472).arg(TMiscDev::getHexFromByteArray(data), TMiscDev::getHexFromByteArray(read)));
    return false;
}

bool TDev25Exec::eraseSecurityReg(TSerialPort& port) {
    if (!prepare(port)) return false;
    const quint32 mask = TAPP_PARAM(param, kData).toUInt();
    const int registers = int(TAPP_PARAM(dev, "security_reg_size").toLongLong() / kRegisterSize) & 255;
    int last = -1, counter = 0;
    for (int i = 0; i < registers; ++i) {
        if (i >= 32 || !(mask >> i & 1)) continue;
        QString err;
        if (!TDev25Alg::eraseSecurityReg(alg("alg_security_reg_erase"), port, i, err)) {
            setErrorText(err);
            return false;
        }
        if (processGUI(last, counter, i, registers)) return false;
    }
    return true;
}

bool TDev25Exec::testEmptySecurityReg(TSerialPort& port) {
    if (!prepare(port)) return false;
    const quint32 mask = TAPP_PARAM(param, kData).toUInt();
    const int registers = int(TAPP_PARAM(dev, "security_reg_size").toLongLong() / kRegisterSize) & 255;
    for (int i = 0; i < registers && i < 32; ++i) {
        const qint64 begin = qint64(i) * kRegisterSize;
        if (mask >> i & 1 && !verifyRange(port, Space::Security, begin, begin + kRegisterSize - 1, blank))
            return false;
    }
    return true;
}

bool TDev25Exec::readSecurityReg(TSerialPort& port) {
    return prepare(port) && readFileSpace(port, Space::Security);
}

bool TDev25Exec::writeSecurityReg(TSerialPort& port) {
    return prepare(port) && writeFileSpace(port, Space::Security);
}

bool TDev25Exec::verifySecurityReg(TSerialPort& port) {
    return prepare(port) && verifyFileSpace(port, Space::Security);
}

bool TDev25Exec::readSFDPReg(TSerialPort& port) {
    return prepare(port) && readFileSpace(port, Space::SFDP);
}

bool TDev25Exec::readUniqueID(TSerialPort& port) {
    if (!prepare(port)) return false;
    QByteArray id;
    QString err;
    if (!TDev25Alg::readUniqueID(alg("alg_unique_id_read"), port, id, err)) {
        setErrorText(err);
        return false;
    }
    return storeData(TMiscDev::getHexFromByteArray(id));
}
