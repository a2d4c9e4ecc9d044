#include "devices/TDevAVR8Alg.h"

#include "app/TLang.h"
#include "link/CProtocol.h"
#include "link/TSerialPort.h"

namespace A = CProtocol::Avr;

namespace {
void append16(QByteArray& out, qint64 v) {
    out.append(char(v & 0xFF)).append(char(v >> 8 & 0xFF));
}

unsigned char u8(qint64 v) {
    return static_cast<unsigned char>(v & 0xFF);
}

// Fuse bytes in the order low, high, extended: read and write instruction bytes.
const unsigned char fuseReads[3][2] = {{A::InReadFuseLow, 0x00},
                                       {A::InReadLockHigh, A::InReadSelectHigh},
                                       {A::InReadFuseLow, A::InReadSelectHigh}};
const unsigned char fuseWrites[3] = {A::InWriteFuseLow, A::InWriteFuseHigh, A::InWriteFuseExt};
} // namespace

// ---- payloads ----

QByteArray TDevAVR8Alg::payloadInstr(unsigned char wait, const unsigned char (&bytes)[4]) {
    return QByteArray(1, char(wait)) + QByteArray(reinterpret_cast<const char*>(bytes), 4);
}

QByteArray TDevAVR8Alg::payloadRead(qint64 addr, int len) {
    QByteArray out;
    append16(out, addr);
    append16(out, len);
    return out;
}

QByteArray TDevAVR8Alg::payloadWrite(qint64 addr, const QByteArray& data) {
    QByteArray out;
    append16(out, addr);
    return out + data;
}

QByteArray TDevAVR8Alg::payloadExtendedAddress(qint64 addr) {
    return payloadInstr(0, {A::InExtendedAddress, 0x00, u8(addr >> 16), 0x00});
}

QByteArray TDevAVR8Alg::payloadPageCommit(unsigned char wait, qint64 addr) {
    const qint64 word = addr / 2;
    return payloadInstr(wait, {A::InWritePage, u8(word >> 8), u8(word), 0x00});
}

QList<QByteArray> TDevAVR8Alg::payloadReadFuse(int alg, int count) {
    if (alg == 0) return {payloadInstr(0, {A::InReadLockHigh, 0x00, 0x00, 0x00})};
    QList<QByteArray> out;
    for (int i = 0; alg == 1 && i < qMin(count, 3); ++i)
        out << payloadInstr(0, {fuseReads[i][0], fuseReads[i][1], 0x00, 0x00});
    return out;
}

QList<QByteArray> TDevAVR8Alg::payloadWriteFuse(int alg, unsigned char wait, const QByteArray& fuses) {
    if (fuses.isEmpty()) return {};
    const unsigned char v = u8(fuses.at(0));
    if (alg == 0) return {payloadInstr(wait, {A::InProgram, u8((v & 0x01) | A::InWriteFuseOld), 0x00, 0x00})};
    if (alg == 1)
        return {payloadInstr(wait, {A::InProgram, u8((v & 0x1F) | A::InWriteFuseFive), 0x00, 0x00})};
    QList<QByteArray> out;
    for (int i = 0; alg == 2 && i < qMin(int(fuses.size()), 3); ++i)
        out << payloadInstr(wait, {A::InProgram, fuseWrites[i], 0x00, u8(fuses.at(i))});
    return out;
}

QByteArray TDevAVR8Alg::payloadWriteLock(int alg, unsigned char wait, unsigned char v) {
    if (alg == 0) return payloadInstr(wait, {A::InProgram, v, 0x00, 0x00});
    if (alg == 1) return payloadInstr(wait, {A::InProgram, A::InWriteLock, 0x00, v});
    return QByteArray();
}

QByteArray TDevAVR8Alg::payloadIdent(unsigned char i) {
    return payloadInstr(0, {A::InReadSignature, 0x00, i, 0x00});
}

QByteArray TDevAVR8Alg::payloadErase(unsigned char wait) {
    return payloadInstr(wait, {A::InProgram, A::InChipErase, 0x00, 0x00});
}

QByteArray TDevAVR8Alg::payloadReadLock() {
    return payloadInstr(0, {A::InReadLockHigh, 0x00, 0x00, 0x00});
}

QByteArray TDevAVR8Alg::payloadReadOscCal(unsigned char i) {
    return payloadInstr(0, {A::InReadCalibration, 0x00, i, 0x00});
}

unsigned char TDevAVR8Alg::fuseFromReply(int alg, unsigned char r3) {
    return alg == 0 ? r3 & 0x21 : r3;
}

unsigned char TDevAVR8Alg::lockFromReply(int alg, unsigned char r3) {
    return alg == 0 ? (r3 >> 4) & 6 : r3;
}

void TDevAVR8Alg::alignDataToWord(qint64& addr, QByteArray& data) {
    if (addr & 1) {
        data.prepend(char(0xFF));
        --addr;
    }
    if ((addr + data.size()) & 1) data.append(char(0xFF));
}

// ---- exchanges ----

bool TDevAVR8Alg::send(TSerialPort& port, unsigned char cmd, QByteArray& data, QString& err) {
    if (port.sendPackage(cmd, data)) return true;
    err = port.getErrorText();
    return false;
}

bool TDevAVR8Alg::instr(TSerialPort& port, const QByteArray& payload, QByteArray& reply, QString& err, int r1,
                        int r2, int r3) {
    reply = payload;
    if (!send(port, A::Instr, reply, err)) return false;
    const int expected[3] = {r1, r2, r3};
    bool ok = reply.size() == 4;
    for (int i = 0; ok && i < 3; ++i)
        ok = expected[i] < 0 || static_cast<unsigned char>(reply.at(i + 1)) == expected[i];
    // A part that is not in programming mode does not echo: it is not answering at all.
    if (!ok) err = Lang.get(389);
    return ok;
}

bool TDevAVR8Alg::ident(int alg, TSerialPort& port, QByteArray& signature, QString& err) {
    if (alg != 0) return false;
    signature.clear();
    for (unsigned char i = 0; i < 3; ++i) {
        QByteArray r;
        if (!instr(port, payloadIdent(i), r, err, A::InReadSignature, 0x00)) return false;
        signature.append(r.at(3));
    }
    return true;
}

bool TDevAVR8Alg::erase(int alg, TSerialPort& port, unsigned char wait, QString& err) {
    if (alg != 0) return false;
    QByteArray r;
    return instr(port, payloadErase(wait), r, err, A::InProgram, A::InChipErase, 0x00);
}

bool TDevAVR8Alg::extendedAddress(TSerialPort& port, FlashState& st, qint64 addr, QString& err) {
    const int upper = int(addr >> 16 & 0xFF);
    if (st.extended == upper) return true;
    QByteArray r;
    if (!instr(port, payloadExtendedAddress(addr), r, err)) return false;
    st.extended = upper;
    return true;
}

bool TDevAVR8Alg::readFlash(int alg, TSerialPort& port, FlashState& st, qint64 addr, int len, QByteArray& out,
                            QString& err) {
    if (alg != 0 && alg != 1) return false;
    // A read from address 0 starts a new pass over the flash: its upper bits are always sent.
    if (alg == 1 && addr == 0) st.extended = -1;
    if (alg == 1 && !extendedAddress(port, st, addr, err)) return false;
    out = payloadRead(addr, len);
    return send(port, A::ReadFlash, out, err);
}

bool TDevAVR8Alg::writeFlash(int alg, TSerialPort& port, FlashState& st, unsigned char wait, qint64 addr,
                             const QByteArray& data, int& taken, QString& err) {
    if (alg < 0 || alg > 2) return false;
    QByteArray payload = data;
    alignDataToWord(addr, payload);
    if (alg == 2 && !extendedAddress(port, st, addr, err)) return false;
    QByteArray packet = payloadWrite(addr, payload);
    taken = packet.size() - 2;
    if (!send(port, A::WriteFlash, packet, err)) return false;
    if (alg == 0) return true;
    QByteArray r;
    return instr(port, payloadPageCommit(wait, addr), r, err);
}

bool TDevAVR8Alg::readEeprom(int alg, TSerialPort& port, qint64 addr, int len, QByteArray& out,
                             QString& err) {
    if (alg != 0) return false;
    out = payloadRead(addr, len);
    return send(port, A::ReadEeprom, out, err);
}

bool TDevAVR8Alg::writeEeprom(int alg, TSerialPort& port, qint64 addr, const QByteArray& data, QString& err) {
    if (alg != 0) return false;
    QByteArray packet = payloadWrite(addr, data);
    return send(port, A::WriteEeprom, packet, err);
}

bool TDevAVR8Alg::readFuseBits(int alg, TSerialPort& port, int count, QByteArray& out, QString& err) {
    const QList<QByteArray> payloads = payloadReadFuse(alg, count);
    if (payloads.isEmpty()) return false;
    out.clear();
    for (const QByteArray& p : payloads) {
        QByteArray r;
        // The single-byte read of the oldest parts has no echo to check.
        if (!instr(port, p, r, err, alg == 0 ? -1 : u8(p.at(1)))) return false;
        out.append(char(fuseFromReply(alg, u8(r.at(3)))));
    }
    return true;
}

bool TDevAVR8Alg::writeFuse(int alg, TSerialPort& port, unsigned char wait, const QByteArray& fuses,
                            QString& err) {
    const QList<QByteArray> payloads = payloadWriteFuse(alg, wait, fuses);
    if (payloads.isEmpty()) return false;
    for (const QByteArray& p : payloads) {
        QByteArray r;
        const bool full = alg != 2; // the byte-per-instruction writes check the first echo only
        if (!instr(port, p, r, err, A::InProgram, full ? u8(p.at(2)) : -1, full ? 0x00 : -1)) return false;
    }
    return true;
}

bool TDevAVR8Alg::readLockBits(int alg, TSerialPort& port, unsigned char& out, QString& err) {
    if (alg != 0 && alg != 1) return false;
    QByteArray r;
    if (!instr(port, payloadReadLock(), r, err, A::InReadLockHigh, 0x00)) return false;
    out = lockFromReply(alg, u8(r.at(3)));
    return true;
}

bool TDevAVR8Alg::writeLockBits(int alg, TSerialPort& port, unsigned char wait, unsigned char v,
                                QString& err) {
    const QByteArray p = payloadWriteLock(alg, wait, v);
    if (p.isEmpty()) return false;
    QByteArray r;
    return instr(port, p, r, err, A::InProgram, u8(p.at(2)), 0x00);
}

bool TDevAVR8Alg::readOscCal(int alg, TSerialPort& port, int count, QByteArray& out, QString& err) {
    if (alg != 0) return false;
    out.clear();
    for (int i = 0; i < count; ++i) {
        QByteArray r;
        if (!instr(port, payloadReadOscCal(u8(i)), r, err, A::InReadCalibration, 0x00)) return false;
        out.append(r.at(3));
    }
    return true;
}
