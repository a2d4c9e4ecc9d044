#include "devices/TDevAVR8Alg.h"

#include "app/TLang.h"
#include "link/TSerialPort.h"

namespace {
void append16(QByteArray& out, qint64 v) {
    out.append(char(v & 0xFF)).append(char(v >> 8 & 0xFF));
}
} // namespace

bool TDevAVR8Alg::send(TSerialPort& port, unsigned char cmd, QByteArray& data, QString& err) {
    if (port.sendPackage(cmd, data)) return true;
    err = port.getErrorText();
    return false;
}

QByteArray TDevAVR8Alg::addrLen(qint64 addr, int len) {
    QByteArray out;
    append16(out, addr);
    append16(out, len);
    return out;
}

bool TDevAVR8Alg::instr(TSerialPort& port, unsigned char wait, const unsigned char (&bytes)[4],
                        QByteArray& reply, QString& err, int r1, int r2, int r3) {
    reply = QByteArray(1, char(wait)) + QByteArray(reinterpret_cast<const char*>(bytes), 4);
    if (!send(port, CmdInstr, reply, err)) return false;
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
        if (!instr(port, 0, {0x30, 0x00, i, 0x00}, r, err, 0x30, 0x00)) return false;
        signature.append(r.at(3));
    }
    return true;
}

bool TDevAVR8Alg::erase(int alg, TSerialPort& port, unsigned char wait, QString& err) {
    if (alg != 0) return false;
    QByteArray r;
    return instr(port, wait, {0xAC, 0x80, 0x00, 0x00}, r, err, 0xAC, 0x80, 0x00);
}

bool TDevAVR8Alg::extendedAddress(TSerialPort& port, FlashState& st, qint64 addr, QString& err) {
    const int upper = int(addr >> 16 & 0xFF);
    if (st.extended == upper) return true;
    QByteArray r;
    if (!instr(port, 0, {0x4D, 0x00, static_cast<unsigned char>(upper), 0x00}, r, err)) return false;
    st.extended = upper;
    return true;
}

bool TDevAVR8Alg::readFlash(int alg, TSerialPort& port, FlashState& st, qint64 addr, int len, QByteArray& out,
                            QString& err) {
    if (alg != 0 && alg != 1) return false;
    // A read from address 0 starts a new pass over the flash: its upper bits are always sent.
    if (alg == 1 && addr == 0) st.extended = -1;
    if (alg == 1 && !extendedAddress(port, st, addr, err)) return false;
    out = addrLen(addr, len);
    return send(port, CmdReadFlash, out, err);
}

void TDevAVR8Alg::alignDataToWord(qint64& addr, QByteArray& data) {
    if (addr & 1) {
        data.prepend(char(0xFF));
        --addr;
    }
    if ((addr + data.size()) & 1) data.append(char(0xFF));
}

bool TDevAVR8Alg::writeFlash(int alg, TSerialPort& port, FlashState& st, unsigned char wait, qint64 addr,
                             const QByteArray& data, int& taken, QString& err) {
    if (alg < 0 || alg > 2) return false;
    QByteArray payload = data;
    alignDataToWord(addr, payload);
    if (alg == 2 && !extendedAddress(port, st, addr, err)) return false;
    QByteArray packet;
    append16(packet, addr);
    packet += payload;
    taken = packet.size() - 2;
    if (!send(port, CmdWriteFlash, packet, err)) return false;
    if (alg == 0) return true;
    const qint64 word = addr / 2;
    QByteArray r;
    return instr(port, wait,
                 {0x4C, static_cast<unsigned char>(word >> 8), static_cast<unsigned char>(word), 0x00}, r,
                 err);
}

bool TDevAVR8Alg::readEeprom(int alg, TSerialPort& port, qint64 addr, int len, QByteArray& out,
                             QString& err) {
    if (alg != 0) return false;
    out = addrLen(addr, len);
    return send(port, CmdReadEeprom, out, err);
}

bool TDevAVR8Alg::writeEeprom(int alg, TSerialPort& port, qint64 addr, const QByteArray& data, QString& err) {
    if (alg != 0) return false;
    QByteArray packet;
    append16(packet, addr);
    packet += data;
    return send(port, CmdWriteEeprom, packet, err);
}

bool TDevAVR8Alg::readFuseBits(int alg, TSerialPort& port, int count, QByteArray& out, QString& err) {
    out.clear();
    QByteArray r;
    if (alg == 0) {
        if (!instr(port, 0, {0x58, 0x00, 0x00, 0x00}, r, err)) return false;
        out.append(char(r.at(3) & 0x21));
        return true;
    }
    if (alg != 1) return false;
    static const unsigned char reads[3][2] = {{0x50, 0x00}, {0x58, 0x08}, {0x50, 0x08}};
    for (int i = 0; i < qMin(count, 3); ++i) {
        if (!instr(port, 0, {reads[i][0], reads[i][1], 0x00, 0x00}, r, err, reads[i][0])) return false;
        out.append(r.at(3));
    }
    return true;
}

bool TDevAVR8Alg::writeFuse(int alg, TSerialPort& port, unsigned char wait, const QByteArray& fuses,
                            QString& err) {
    if (fuses.isEmpty() || alg < 0 || alg > 2) return false;
    QByteArray r;
    const unsigned char v = static_cast<unsigned char>(fuses.at(0));
    if (alg == 0 || alg == 1) {
        const unsigned char b = alg == 0 ? ((v & 0x01) | 0xBE) : ((v & 0x1F) | 0xA0);
        return instr(port, wait, {0xAC, b, 0x00, 0x00}, r, err, 0xAC, b, 0x00);
    }
    static const unsigned char writes[3] = {0xA0, 0xA8, 0xA4};
    for (int i = 0; i < qMin(fuses.size(), 3); ++i)
        if (!instr(port, wait, {0xAC, writes[i], 0x00, static_cast<unsigned char>(fuses.at(i))}, r, err,
                   0xAC))
            return false;
    return true;
}

bool TDevAVR8Alg::readLockBits(int alg, TSerialPort& port, unsigned char& out, QString& err) {
    if (alg != 0 && alg != 1) return false;
    QByteArray r;
    if (!instr(port, 0, {0x58, 0x00, 0x00, 0x00}, r, err, 0x58, 0x00)) return false;
    const unsigned char v = static_cast<unsigned char>(r.at(3));
    out = alg == 0 ? (v >> 4) & 6 : v;
    return true;
}

bool TDevAVR8Alg::writeLockBits(int alg, TSerialPort& port, unsigned char wait, unsigned char v,
                                QString& err) {
    QByteArray r;
    if (alg == 0) return instr(port, wait, {0xAC, v, 0x00, 0x00}, r, err, 0xAC, v, 0x00);
    if (alg == 1) return instr(port, wait, {0xAC, 0xE0, 0x00, v}, r, err, 0xAC, 0xE0, 0x00);
    return false;
}

bool TDevAVR8Alg::readOscCal(int alg, TSerialPort& port, int count, QByteArray& out, QString& err) {
    if (alg != 0) return false;
    out.clear();
    for (int i = 0; i < count; ++i) {
        QByteArray r;
        if (!instr(port, 0, {0x38, 0x00, static_cast<unsigned char>(i), 0x00}, r, err, 0x38, 0x00))
            return false;
        out.append(r.at(3));
    }
    return true;
}
