#include "devices/TDev25Exec.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "devices/TDev25.h"
#include "devices/TDev25Alg.h"
#include "link/TSerialPort.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"

namespace {
const QString kData = CTagCmdRegister::data;
constexpr int kRegisterSize = 256;
} // namespace

TDev25Exec::TDev25Exec(const TData& p, QObject* parent) : IDeviceExec(p, parent) {}

bool TDev25Exec::execute(TSerialPort& port, bool&, int&, int&) {
    namespace C = CTagCmdCode;
    using E = TDev25Exec;
    return runByTable<E>(
        port, TDev25::cmdTable(),
        {
            {C::set_clk, &E::setCLK},
            {C::ident, &E::identify},
            {C::erase, &E::erase},
            {C::test_empty, &E::testEmpty},
            {C::erase_blocks, &E::eraseBlocks},
            {C::test_empty_blocks, &E::testEmptyBlocks},
            {C::status_reg_read, &E::readStatusReg},
            {C::status_reg_write, &E::writeStatusReg},
            {C::status_reg_verify, &E::verifyStatusReg},
            {C::security_reg_erase, &E::eraseSecurityReg},
            {C::security_reg_test_empty, &E::testEmptySecurityReg},
            {C::unique_id_read, &E::readUniqueID},
            {C::leave, &E::leave},
        },
        [&](int space, RangeCmd cmd) { return prepare(port) && runRange(memory(port, Space(space)), cmd); });
}

// ---- shared steps ----

bool TDev25Exec::prepare(TSerialPort& port) {
    return prepareDevice(port);
}

unsigned TDev25Exec::alg(const char* key) const {
    return TAPP_PARAM(dev, key).toUInt();
}

// An algorithm the family does not have fails without a text of its own, as the family is defined; the
// worker names the command that failed.
bool TDev25Exec::fail(const QString& err, const char*) {
    setErrorText(err);
    return false;
}

// Flash is written a page at a time; the registers and SFDP go in pieces of at most one register.
TMemorySpace TDev25Exec::memory(TSerialPort& port, Space space) {
    TMemorySpace s;
    s.read = [this, &port, space](qint64 addr, int len, QByteArray& out) {
        QString err;
        const quint16 n = quint16(len);
        if (space == Space::Flash)
            return TDev25Alg::read(alg("alg_flash_read"), port, addr, n, out, err) ||
                   fail(err, "alg_flash_read");
        if (space == Space::Security)
            return TDev25Alg::readSecurityReg(alg("alg_security_reg_read"), port, addr, n, out, err) ||
                   fail(err, "alg_security_reg_read");
        return TDev25Alg::readSFDPReg(alg("alg_fsdp_read"), port, addr, n, out, err) ||
               fail(err, "alg_fsdp_read");
    };
    s.write = [this, &port, space](qint64 addr, const QByteArray& data) {
        QString err;
        if (space == Space::Flash)
            return TDev25Alg::write(alg("alg_flash_write"), port, addr, data, err) ||
                   fail(err, "alg_flash_write");
        return TDev25Alg::writeSecurityReg(alg("alg_security_reg_write"), port, addr, data, err) ||
               fail(err, "alg_security_reg_write");
    };
    const int page = TAPP_PARAM(dev, "page_size").toInt();
    s.readChunk = space == Space::Flash ? maxData : qMin(maxData, kRegisterSize);
    s.writeChunk = space != Space::Flash ? qMin(maxData, kRegisterSize)
                   : page > 0            ? qMin(maxData, page)
                                         : maxData;
    return s;
}

// ---- identification, clock, leave ----

bool TDev25Exec::execReadSignature(TSerialPort& port, QString& signature) {
    if (!prepare(port)) return false;
    QByteArray id;
    QString err;
    if (!TDev25Alg::ident(alg("alg_ident"), port, id, err)) return fail(err, "alg_ident");
    signature = TMiscDev::getHexFromByteArray(id);
    return true;
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

bool TDev25Exec::eraseBlockRun(TSerialPort& port, unsigned char opcode, qint64 first, qint64 count,
                               qint64 block) {
    int last = -1, counter = 0;
    for (qint64 i = 0; i < count; ++i) {
        QString err;
        if (!TDev25Alg::erase_blocks(alg("alg_erase"), port, opcode, (first + i) * block, err))
            return fail(err, "alg_erase");
        if (processGUI(last, counter, i, count)) return false;
    }
    return true;
}

bool TDev25Exec::erase(TSerialPort& port) {
    if (!prepare(port)) return false;
    const QStringList fields = TAPP_PARAM(dev, "erase").toString().split(QLatin1Char('|'));
    if (fields.size() != 2) return false;
    const auto opcode = uchar(TMiscDev::getIntFromHex(fields.at(0)));
    const qint64 block = fields.at(1).trimmed().toLongLong();
    if (block <= 0) return false;
    return eraseBlockRun(port, opcode, 0, TAPP_PARAM(dev, "size").toLongLong() / block, block);
}

bool TDev25Exec::eraseBlocks(TSerialPort& port) {
    if (!prepare(port)) return false;
    const qint64 size = TAPP_PARAM(param, CTagCmdDev25EraseBlocks::size).toLongLong();
    uchar opcode = 0; // no entry for the size: the last match wins, none sends 00
    for (const QString& entry : TAPP_PARAM(dev, "erase_blocks").toStringList()) {
        const QStringList f = entry.split(QLatin1Char('|'));
        if (f.size() == 2 && f.at(1).trimmed().toLongLong() == size)
            opcode = uchar(TMiscDev::getIntFromHex(f.at(0)));
    }
    return eraseBlockRun(port, opcode, TAPP_PARAM(param, CTagCmdDev25EraseBlocks::begin).toLongLong(),
                         TAPP_PARAM(param, CTagCmdDev25EraseBlocks::count).toLongLong(), size);
}

bool TDev25Exec::testEmpty(TSerialPort& port) {
    if (!prepare(port)) return false;
    const qint64 begin = TAPP_PARAM(dev, "addr_begin").toLongLong();
    return testEmptyRange(memory(port, Space::Flash), begin,
                          begin + TAPP_PARAM(dev, "size").toLongLong() - 1);
}

bool TDev25Exec::testEmptyBlocks(TSerialPort& port) {
    if (!prepare(port)) return false;
    const qint64 size = TAPP_PARAM(param, CTagCmdDev25EraseBlocks::size).toLongLong();
    const qint64 begin = TAPP_PARAM(param, CTagCmdDev25EraseBlocks::begin).toLongLong();
    const qint64 count = TAPP_PARAM(param, CTagCmdDev25EraseBlocks::count).toLongLong();
    return testEmptyRange(memory(port, Space::Flash), begin * size, (begin + count) * size - 1);
}

// ---- registers ----

bool TDev25Exec::readStatusReg(TSerialPort& port) {
    if (!prepare(port)) return false;
    QByteArray read;
    QString err;
    if (!TDev25Alg::readStatusReg(alg("alg_status_reg_read"), port, read, err))
        return fail(err, "alg_status_reg_read");
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
    return TDev25Alg::writeStatusReg(alg("alg_status_reg_write"), port, data, err) ||
           fail(err, "alg_status_reg_write");
}

bool TDev25Exec::verifyStatusReg(TSerialPort& port) {
    QByteArray data, read;
    if (!prepare(port) || !statusRegData(data)) return false;
    QString err;
    if (!TDev25Alg::readStatusReg(alg("alg_status_reg_read"), port, read, err))
        return fail(err, "alg_status_reg_read");
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
        if (!TDev25Alg::eraseSecurityReg(alg("alg_security_reg_erase"), port, i, err))
            return fail(err, "alg_security_reg_erase");
        if (processGUI(last, counter, i, registers)) return false;
    }
    return true;
}

bool TDev25Exec::testEmptySecurityReg(TSerialPort& port) {
    if (!prepare(port)) return false;
    const quint32 mask = TAPP_PARAM(param, kData).toUInt();
    const int registers = int(TAPP_PARAM(dev, "security_reg_size").toLongLong() / kRegisterSize) & 255;
    const TMemorySpace security = memory(port, Space::Security);
    for (int i = 0; i < registers && i < 32; ++i) {
        const qint64 begin = qint64(i) * kRegisterSize;
        if (mask >> i & 1 && !testEmptyRange(security, begin, begin + kRegisterSize - 1)) return false;
    }
    return true;
}

bool TDev25Exec::readUniqueID(TSerialPort& port) {
    if (!prepare(port)) return false;
    QByteArray id;
    QString err;
    if (!TDev25Alg::readUniqueID(alg("alg_unique_id_read"), port, id, err))
        return fail(err, "alg_unique_id_read");
    return storeData(TMiscDev::getHexFromByteArray(id));
}
