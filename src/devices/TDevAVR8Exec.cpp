#include "devices/TDevAVR8Exec.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "devices/TDevAVR8_SPI.h"
#include "link/CProtocol.h"
#include "link/TSerialPort.h"
#include "misc/TLockOut.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"

#include <QFileInfo>

namespace {
const QString kData = CTagCmdRegister::data;
} // namespace

TDevAVR8Exec::TDevAVR8Exec(const TData& p, QObject* parent) : IDeviceExec(p, parent) {}

bool TDevAVR8Exec::execute(TSerialPort& port, bool&, int&, int&) {
    namespace C = CTagCmdCode;
    using E = TDevAVR8Exec;
    return runByTable<E>(port, TDevAVR8_SPI::cmdTable(),
                         {
                             {C::set_clk, &E::setCLK},
                             {C::leave, &E::leave},
                             {C::ident, &E::identify},
                             {C::erase, &E::erase},
                             {C::test_empty_flash, &E::testEmptyFlash},
                             {C::test_empty_eeprom, &E::testEmptyEEPROM},
                             {C::fuse_read, &E::readFuse},
                             {C::fuse_write, &E::writeFuse},
                             {C::fuse_verify, &E::verifyFuse},
                             {C::lock_read, &E::readLockBits},
                             {C::lock_write, &E::writeLockBits},
                             {C::lock_verify, &E::verifyLockBits},
                             {C::osccal_read, &E::readOscCal},
                         },
                         [&](int space, RangeCmd cmd) {
                             return prepare(port) &&
                                    runRange(memory(port, space == 1 ? Space::Eeprom : Space::Flash), cmd);
                         });
}

// ---- shared steps ----

bool TDevAVR8Exec::prepare(TSerialPort& port) {
    if (!prepareDevice(port)) return false;
    flashState = TDevAVR8Alg::FlashState();
    return true;
}

int TDevAVR8Exec::alg(const char* key) const {
    return TAPP_PARAM(dev, key).toInt();
}

unsigned char TDevAVR8Exec::waitByte(const TData& dev, const QString& prefix) {
    if (dev.value(prefix + QStringLiteral("_polling")).toBool()) return CProtocol::Avr::WaitPoll;
    return static_cast<unsigned char>(dev.value(prefix + QStringLiteral("_delay")).toUInt() & 0xFF);
}

// Flash is written a page at a time (the page buffer's size); the EEPROM and all reads in the
// programmer's largest pieces.
TMemorySpace TDevAVR8Exec::memory(TSerialPort& port, Space space) {
    TMemorySpace s;
    if (space == Space::Flash) {
        s.read = [this, &port](qint64 addr, int len, QByteArray& out) {
            QString err;
            return TDevAVR8Alg::readFlash(alg("alg_flash_read"), port, flashState, addr, len, out, err) ||
                   failAlg(err, "alg_flash_read");
        };
        s.write = [this, &port](qint64 addr, const QByteArray& data) {
            QString err;
            int taken = 0;
            return TDevAVR8Alg::writeFlash(alg("alg_flash_write"), port, flashState,
                                           waitByte(dev, QStringLiteral("flash")), addr, data, taken, err) ||
                   failAlg(err, "alg_flash_write");
        };
    } else {
        s.read = [this, &port](qint64 addr, int len, QByteArray& out) {
            QString err;
            return TDevAVR8Alg::readEeprom(alg("alg_eeprom_read"), port, addr, len, out, err) ||
                   failAlg(err, "alg_eeprom_read");
        };
        s.write = [this, &port](qint64 addr, const QByteArray& data) {
            QString err;
            return TDevAVR8Alg::writeEeprom(alg("alg_eeprom_write"), port, addr, data, err) ||
                   failAlg(err, "alg_eeprom_write");
        };
    }
    const int page = TAPP_PARAM(dev, "flash_page_size").toInt();
    s.readChunk = maxData;
    s.writeChunk = space == Space::Flash && page > 0 ? qMin(maxData, page) : maxData;
    return s;
}

// ---- identification, clock, leave, erase ----

bool TDevAVR8Exec::execReadSignature(TSerialPort& port, QString& signature) {
    if (!prepare(port)) return false;
    QByteArray id;
    QString err;
    if (!TDevAVR8Alg::ident(alg("alg_ident"), port, id, err)) return failAlg(err, "alg_ident");
    signature = TMiscDev::getHexFromByteArray(id);
    return true;
}

bool TDevAVR8Exec::setCLK(TSerialPort& port) {
    if (!prepare(port)) return false;
    QByteArray payload;
    TMiscDev::appendLE(payload, TMiscDev::getCLK(param), 4);
    return sendPackage(port, CProtocol::Family::SetClk, payload);
}

bool TDevAVR8Exec::leave(TSerialPort& port) {
    if (!prepare(port)) return false;
    QByteArray payload = TNormCmdParam::cmdLeaveExec(TAPP_PARAM(param, CTagCmd::id_cmd).toInt(), true);
    return sendPackage(port, CProtocol::Family::Leave, payload);
}

bool TDevAVR8Exec::erase(TSerialPort& port) {
    if (!prepare(port)) return false;
    QString err;
    return TDevAVR8Alg::erase(alg("alg_erase"), port, waitByte(dev, QStringLiteral("erase")), err) ||
           failAlg(err, "alg_erase");
}

// ---- flash and EEPROM ----

bool TDevAVR8Exec::testEmptySpace(TSerialPort& port, Space space) {
    if (!prepare(port)) return false;
    const bool flash = space == Space::Flash;
    const qint64 begin = TAPP_PARAM(dev, flash ? "flash_addr_begin" : "eeprom_addr_begin").toLongLong();
    const qint64 size = TAPP_PARAM(dev, flash ? "flash_size" : "eeprom_size").toLongLong();
    return testEmptyRange(memory(port, space), begin, begin + size - 1);
}

bool TDevAVR8Exec::testEmptyFlash(TSerialPort& port) {
    return testEmptySpace(port, Space::Flash);
}
bool TDevAVR8Exec::testEmptyEEPROM(TSerialPort& port) {
    return testEmptySpace(port, Space::Eeprom);
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
           failAlg(err, "alg_fuse_read");
}

bool TDevAVR8Exec::readLockByte(TSerialPort& port, QByteArray& read) {
    unsigned char v = 0;
    QString err;
    if (!TDevAVR8Alg::readLockBits(alg("alg_lock_read"), port, v, err)) return failAlg(err, "alg_lock_read");
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
           failAlg(err, "alg_fuse_write");
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
           failAlg(err, "alg_lock_write");
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
        return failAlg(err, "alg_osccal_read");
    return storeData(TMiscDev::getHexFromByteArray(read));
}
