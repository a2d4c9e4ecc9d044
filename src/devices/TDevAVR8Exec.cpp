#include "devices/TDevAVR8Exec.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/TSignature.h"
#include "link/TSerialPort.h"
#include "misc/TLockOut.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {
const QString kData = QStringLiteral("data");
enum DataMode { ModeRead, ModeWrite, ModeVerify };

QByteArray blank(qint64, int len) {
    return QByteArray(len, char(0xFF));
}
} // namespace

TDevAVR8Exec::TDevAVR8Exec(const TData& p, QObject* parent) : IDeviceExec(p, parent) {}

bool TDevAVR8Exec::execute(TSerialPort& port, bool&, int&, int&) {
    namespace C = CTagCmdCode;
    using E = TDevAVR8Exec;
    static const struct {
        const char* code;
        bool (TDevAVR8Exec::*op)(TSerialPort&);
    } ops[] = {
        {C::set_clk, &E::setCLK},
        {C::leave, &E::leave},
        {C::ident, &E::ident},
        {C::erase, &E::erase},
        {C::test_empty_flash, &E::testEmptyFlash},
        {C::test_empty_eeprom, &E::testEmptyEEPROM},
        {C::flash_char_write, &E::writeFlashChar},
        {C::flash_char_verify, &E::verifyFlashChar},
        {C::flash_data_write, &E::writeFlashData},
        {C::flash_data_verify, &E::verifyFlashData},
        {C::flash_data_read, &E::readFlashData},
        {C::eeprom_char_write, &E::writeEepromChar},
        {C::eeprom_char_verify, &E::verifyEepromChar},
        {C::eeprom_data_write, &E::writeEepromData},
        {C::eeprom_data_verify, &E::verifyEepromData},
        {C::eeprom_data_read, &E::readEepromData},
        {C::flash_file_read, &E::readFlashFile},
        {C::flash_file_write, &E::writeFlashFile},
        {C::flash_file_verify, &E::verifyFlashFile},
        {C::eeprom_file_read, &E::readEepromFile},
        {C::eeprom_file_write, &E::writeEepromFile},
        {C::eeprom_file_verify, &E::verifyEepromFile},
        {C::fuse_read, &E::readFuse},
        {C::fuse_write, &E::writeFuse},
        {C::fuse_verify, &E::verifyFuse},
        {C::lock_read, &E::readLockBits},
        {C::lock_write, &E::writeLockBits},
        {C::lock_verify, &E::verifyLockBits},
        {C::osccal_read, &E::readOscCal},
    };
    const QString code = TAPP_PARAM(param, CTagCmd::cmd).toString();
    for (const auto& entry : ops)
        if (code == QLatin1String(entry.code)) {
            // A stop on the user's request is no failure: the worker sees its stop flag and ends as stopped.
            const bool ok = (this->*entry.op)(port);
            return ok || isStop();
        }
    return false;
}

// ---- shared steps ----

bool TDevAVR8Exec::prepare(TSerialPort& port) {
    if (!isOpenPort(port)) return false;
    if (!readSetup(dev, maxData)) return false;
    flashState = TDevAVR8Alg::FlashState();
    return maxData > 0;
}

int TDevAVR8Exec::alg(const char* key) const {
    return TAPP_PARAM(dev, key).toInt();
}

unsigned char TDevAVR8Exec::waitByte(const TData& dev, const QString& prefix) {
    if (dev.value(prefix + QStringLiteral("_polling")).toBool()) return TDevAVR8Alg::waitPoll;
    return static_cast<unsigned char>(dev.value(prefix + QStringLiteral("_delay")).toUInt() & 0xFF);
}

bool TDevAVR8Exec::fail(const QString& err, const char* algKey) {
    setErrorText(err.isEmpty() ? Lang.get(483).arg(alg(algKey)) : err);
    return false;
}

int TDevAVR8Exec::writeChunk(Space space) const {
    const int page = TAPP_PARAM(dev, "flash_page_size").toInt();
    return space == Space::Flash && page > 0 ? qMin(maxData, page) : maxData;
}

bool TDevAVR8Exec::readPiece(TSerialPort& port, Space space, qint64 addr, int len, QByteArray& out) {
    QString err;
    const bool flash = space == Space::Flash;
    const bool ok = flash
                        ? TDevAVR8Alg::readFlash(alg("alg_flash_read"), port, flashState, addr, len, out, err)
                        : TDevAVR8Alg::readEeprom(alg("alg_eeprom_read"), port, addr, len, out, err);
    if (!ok) return fail(err, flash ? "alg_flash_read" : "alg_eeprom_read");
    if (out.size() == len) return true;
    setErrorText(Lang.get(484).arg(out.size()).arg(len));
    return false;
}

bool TDevAVR8Exec::writePiece(TSerialPort& port, Space space, qint64 addr, const QByteArray& data) {
    QString err;
    if (space == Space::Eeprom)
        return TDevAVR8Alg::writeEeprom(alg("alg_eeprom_write"), port, addr, data, err) ||
               fail(err, "alg_eeprom_write");
    int taken = 0;
    return TDevAVR8Alg::writeFlash(alg("alg_flash_write"), port, flashState,
                                   waitByte(dev, QStringLiteral("flash")), addr, data, taken, err) ||
           fail(err, "alg_flash_write");
}

bool TDevAVR8Exec::writeRange(TSerialPort& port, Space space, qint64 addr, qint64 end, const Source& source) {
    int last = -1, counter = 0;
    for (qint64 n; (n = TMiscDev::getSize(addr, end, writeChunk(space))) > 0; addr += n) {
        if (!writePiece(port, space, addr, source(addr, int(n)))) return false;
        if (processGUI(last, counter, addr + n, end)) return false;
    }
    return true;
}

bool TDevAVR8Exec::verifyRange(TSerialPort& port, Space space, qint64 addr, qint64 end,
                               const Source& expected) {
    return readRange(port, space, addr, end, [&](qint64 at, const QByteArray& read) {
        return compare(at, expected(at, read.size()), read);
    });
}

bool TDevAVR8Exec::readRange(TSerialPort& port, Space space, qint64 addr, qint64 end, const Sink& sink) {
    int last = -1, counter = 0;
    QByteArray read;
    for (qint64 n; (n = TMiscDev::getSize(addr, end, maxData)) > 0; addr += n) {
        if (!readPiece(port, space, addr, int(n), read) || !sink(addr, read)) return false;
        if (processGUI(last, counter, addr + n, end)) return false;
    }
    return true;
}

// ---- identification, clock, leave, erase ----

bool TDevAVR8Exec::execReadSignature(TSerialPort& port, QString& signature) {
    if (!prepare(port)) return false;
    QByteArray id;
    QString err;
    if (!TDevAVR8Alg::ident(alg("alg_ident"), port, id, err)) return fail(err, "alg_ident");
    signature = TMiscDev::getHexFromByteArray(id);
    return true;
}

bool TDevAVR8Exec::ident(TSerialPort& port) {
    QString read;
    return execReadSignature(port, read) && checkSignature(dev, read);
}

bool TDevAVR8Exec::setCLK(TSerialPort& port) {
    if (!prepare(port)) return false;
    const quint32 clk = TMiscDev::getCLK(param);
    QByteArray payload;
    for (int i = 0; i < 4; ++i)
        payload.append(char(clk >> (8 * i) & 0xFF));
    return sendPackage(port, TDevAVR8Alg::CmdClk, payload);
}

bool TDevAVR8Exec::leave(TSerialPort& port) {
    if (!prepare(port)) return false;
    QByteArray payload = TNormCmdParam::cmdLeaveExec(TAPP_PARAM(param, CTagCmd::id_cmd).toInt(), true);
    return sendPackage(port, TDevAVR8Alg::CmdLeave, payload);
}

bool TDevAVR8Exec::erase(TSerialPort& port) {
    if (!prepare(port)) return false;
    QString err;
    return TDevAVR8Alg::erase(alg("alg_erase"), port, waitByte(dev, QStringLiteral("erase")), err) ||
           fail(err, "alg_erase");
}

// ---- flash and EEPROM: empty tests, characters, literal data ----

bool TDevAVR8Exec::testEmptySpace(TSerialPort& port, Space space) {
    if (!prepare(port)) return false;
    const bool flash = space == Space::Flash;
    const qint64 begin = TAPP_PARAM(dev, flash ? "flash_addr_begin" : "eeprom_addr_begin").toLongLong();
    const qint64 size = TAPP_PARAM(dev, flash ? "flash_size" : "eeprom_size").toLongLong();
    return verifyRange(port, space, begin, begin + size - 1, blank);
}

bool TDevAVR8Exec::writeCharSpace(TSerialPort& port, Space space, bool verify) {
    if (!prepare(port)) return false;
    int id;
    qint64 addr, end;
    uchar fill;
    TMiscDev::getCmdParamRWVChar(param, id, addr, end, fill);
    const auto source = [fill](qint64, int n) { return QByteArray(n, char(fill)); };
    return verify ? verifyRange(port, space, addr, end, source) : writeRange(port, space, addr, end, source);
}

bool TDevAVR8Exec::dataSpace(TSerialPort& port, Space space, int mode) {
    if (!prepare(port)) return false;
    int id;
    qint64 addr, end;
    QByteArray data;
    QString text;
    TMiscDev::getCmdParamRWVData(param, id, addr, end, data, text);
    const qint64 start = addr;
    const auto source = [&](qint64 at, int n) { return data.mid(int(at - start), n); };
    if (mode == ModeWrite) return writeRange(port, space, addr, end, source);
    if (mode == ModeVerify) return verifyRange(port, space, addr, end, source);
    QByteArray read;
    if (!readRange(port, space, addr, end, [&](qint64, const QByteArray& piece) {
            read += piece;
            return true;
        }))
        return false;
    return storeData(TMiscDev::getHexFromByteArrayMask(text, read));
}

bool TDevAVR8Exec::testEmptyFlash(TSerialPort& port) {
    return testEmptySpace(port, Space::Flash);
}
bool TDevAVR8Exec::testEmptyEEPROM(TSerialPort& port) {
    return testEmptySpace(port, Space::Eeprom);
}
bool TDevAVR8Exec::writeFlashChar(TSerialPort& port) {
    return writeCharSpace(port, Space::Flash, false);
}
bool TDevAVR8Exec::verifyFlashChar(TSerialPort& port) {
    return writeCharSpace(port, Space::Flash, true);
}
bool TDevAVR8Exec::writeEepromChar(TSerialPort& port) {
    return writeCharSpace(port, Space::Eeprom, false);
}
bool TDevAVR8Exec::verifyEepromChar(TSerialPort& port) {
    return writeCharSpace(port, Space::Eeprom, true);
}
bool TDevAVR8Exec::writeFlashData(TSerialPort& port) {
    return dataSpace(port, Space::Flash, ModeWrite);
}
bool TDevAVR8Exec::verifyFlashData(TSerialPort& port) {
    return dataSpace(port, Space::Flash, ModeVerify);
}
bool TDevAVR8Exec::readFlashData(TSerialPort& port) {
    return dataSpace(port, Space::Flash, ModeRead);
}
bool TDevAVR8Exec::writeEepromData(TSerialPort& port) {
    return dataSpace(port, Space::Eeprom, ModeWrite);
}
bool TDevAVR8Exec::verifyEepromData(TSerialPort& port) {
    return dataSpace(port, Space::Eeprom, ModeVerify);
}
bool TDevAVR8Exec::readEepromData(TSerialPort& port) {
    return dataSpace(port, Space::Eeprom, ModeRead);
}

// ---- files ----

bool TDevAVR8Exec::readFlashFile(TSerialPort& port) {
    return prepare(port) && readFileSpace(port, Space::Flash);
}
bool TDevAVR8Exec::writeFlashFile(TSerialPort& port) {
    return prepare(port) && writeFileSpace(port, Space::Flash);
}
bool TDevAVR8Exec::verifyFlashFile(TSerialPort& port) {
    return prepare(port) && verifyFileSpace(port, Space::Flash);
}
bool TDevAVR8Exec::readEepromFile(TSerialPort& port) {
    return prepare(port) && readFileSpace(port, Space::Eeprom);
}
bool TDevAVR8Exec::writeEepromFile(TSerialPort& port) {
    return prepare(port) && writeFileSpace(port, Space::Eeprom);
}
bool TDevAVR8Exec::verifyEepromFile(TSerialPort& port) {
    return prepare(port) && verifyFileSpace(port, Space::Eeprom);
}

bool TDevAVR8Exec::writeFileSpace(TSerialPort& port, Space space) {
    return writeFileRange(writeChunk(space), [&](qint64 at, const QByteArray& piece) {
        return writePiece(port, space, at, piece);
    });
}

bool TDevAVR8Exec::verifyFileSpace(TSerialPort& port, Space space) {
    return verifyFileRange(
        maxData, [&](qint64 at, int len, QByteArray& out) { return readPiece(port, space, at, len, out); });
}

bool TDevAVR8Exec::readFileSpace(TSerialPort& port, Space space) {
    return readFileRange(maxData, [&](qint64 addr, qint64 end, const FilePiece& sink) {
        return readRange(port, space, addr, end, sink);
    });
}

// ---- fuses, lock bits, calibration ----

bool TDevAVR8Exec::verifyBytes(const QByteArray& read, int id) {
    const QByteArray expected = TMiscDev::getByteArrayFromHex(TAPP_PARAM(param, kData).toString());
    if (read == expected) return true;
    setErrorText(
        Lang.get(id).arg(TMiscDev::getHexFromByteArray(expected), TMiscDev::getHexFromByteArray(read)));
    return false;
}

bool TDevAVR8Exec::readFuseBytes(TSerialPort& port, QByteArray& read) {
    const int count = TAPP_PARAM(dev, "fuse_def").toString().size() / 2;
    QString err;
    return TDevAVR8Alg::readFuseBits(alg("alg_fuse_read"), port, count, read, err) ||
           fail(err, "alg_fuse_read");
}

bool TDevAVR8Exec::readLockByte(TSerialPort& port, QByteArray& read) {
    unsigned char v = 0;
    QString err;
    if (!TDevAVR8Alg::readLockBits(alg("alg_lock_read"), port, v, err)) return fail(err, "alg_lock_read");
    read = QByteArray(1, char(v));
    return true;
}

bool TDevAVR8Exec::readFuse(TSerialPort& port) {
    QByteArray read;
    return prepare(port) && readFuseBytes(port, read) && storeData(TMiscDev::getHexFromByteArray(read));
}

bool TDevAVR8Exec::writeFuse(TSerialPort& port) {
    if (!prepare(port)) return false;
    const QByteArray fuses = TMiscDev::getByteArrayFromHex(TAPP_PARAM(param, kData).toString());
    const int count = TAPP_PARAM(dev, "fuse_def").toString().size() / 2;
    if (fuses.size() != count || count == 0) {
        setErrorText(Lang.get(487).arg(count));
        return false;
    }
    // Fuses after which the part no longer answers are written only when the user agreed to it.
    const QStringList lockOut = TLockOut::reasons(dev, fuses);
    if (!lockOut.isEmpty() && !TLockOut::isAllowed(TAPP_PARAM(param, CTagCmd::id_cfg).toInt())) {
        const QString part = QFileInfo(TAPP_PARAM(dev, "dev_file").toString()).completeBaseName();
        setErrorText(Lang.get(1105).arg(part, lockOut.join(QStringLiteral("; "))));
        return false;
    }
    QString err;
    return TDevAVR8Alg::writeFuse(alg("alg_fuse_write"), port, waitByte(dev, QStringLiteral("fuse")), fuses,
                                  err) ||
           fail(err, "alg_fuse_write");
}

bool TDevAVR8Exec::verifyFuse(TSerialPort& port) {
    QByteArray read;
    return prepare(port) && readFuseBytes(port, read) && verifyBytes(read, 480);
}

bool TDevAVR8Exec::readLockBits(TSerialPort& port) {
    QByteArray read;
    return prepare(port) && readLockByte(port, read) && storeData(TMiscDev::getHexFromByteArray(read));
}

bool TDevAVR8Exec::writeLockBits(TSerialPort& port) {
    if (!prepare(port)) return false;
    const QByteArray v = TMiscDev::getByteArrayFromHex(TAPP_PARAM(param, kData).toString());
    if (v.size() != 1) {
        setErrorText(Lang.get(488));
        return false;
    }
    QString err;
    return TDevAVR8Alg::writeLockBits(alg("alg_lock_write"), port, waitByte(dev, QStringLiteral("lock")),
                                      uchar(v.at(0)), err) ||
           fail(err, "alg_lock_write");
}

bool TDevAVR8Exec::verifyLockBits(TSerialPort& port) {
    QByteArray read;
    return prepare(port) && readLockByte(port, read) && verifyBytes(read, 481);
}

bool TDevAVR8Exec::readOscCal(TSerialPort& port) {
    if (!prepare(port)) return false;
    const int count = TAPP_PARAM(dev, "osccal_def").toString().size() / 2;
    QByteArray read;
    QString err;
    if (!TDevAVR8Alg::readOscCal(alg("alg_osccal_read"), port, count, read, err))
        return fail(err, "alg_osccal_read");
    return storeData(TMiscDev::getHexFromByteArray(read));
}
