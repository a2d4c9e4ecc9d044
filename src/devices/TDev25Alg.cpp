#include "devices/TDev25Alg.h"

#include "link/CProtocol.h"
#include "link/TSerialPort.h"

namespace S = CProtocol::Spi;

namespace {
void appendLen(QByteArray& out, quint16 len) {
    out.append(char(len & 0xFF));
    out.append(char(len >> 8));
}

void appendAddr(QByteArray& out, qint64 addr) {
    out.append(char((addr >> 16) & 0xFF));
    out.append(char((addr >> 8) & 0xFF));
    out.append(char(addr & 0xFF));
}

QByteArray bytes(std::initializer_list<unsigned char> list) {
    QByteArray out;
    for (unsigned char b : list)
        out.append(char(b));
    return out;
}

// The security registers are one linear space for the user: offset x is byte x & 255 of register
// x >> 8, and register r lies at flash address (r + 1) * 4096.
void appendSecurityAddr(QByteArray& out, qint64 addr) {
    out.append(char(0));
    out.append(char((((qint16)addr >> 8) + 1) * 16));
    out.append(char(addr & 0xFF));
}
} // namespace

QByteArray TDev25Alg::payloadIdent() {
    return bytes({3, 0, S::OpJedecId}); // three identification bytes back
}

QByteArray TDev25Alg::payloadRead(qint64 addr, quint16 len) {
    QByteArray out;
    appendLen(out, len);
    out.append(char(S::OpFastRead));
    appendAddr(out, addr);
    out.append(char(0)); // the fast read's dummy byte
    return out;
}

QByteArray TDev25Alg::payloadWrite(qint64 addr, const QByteArray& data) {
    QByteArray out(1, char(S::OpPageProgram));
    appendAddr(out, addr);
    return out + data;
}

QByteArray TDev25Alg::payloadErase(unsigned char opcode, qint64 addr) {
    QByteArray out(1, char(opcode));
    appendAddr(out, addr);
    return out;
}

QList<QByteArray> TDev25Alg::payloadReadStatusReg() {
    return {bytes({1, 0, S::OpReadStatus1}), bytes({1, 0, S::OpReadStatus2}),
            bytes({1, 0, S::OpReadStatus3})};
}

QList<QByteArray> TDev25Alg::payloadWriteStatusReg(const QByteArray& data) {
    if (data.size() != 3) return {};
    return {QByteArray(1, char(S::OpWriteStatus1)) + data.at(0),
            QByteArray(1, char(S::OpWriteStatus2)) + data.at(1),
            QByteArray(1, char(S::OpWriteStatus3)) + data.at(2)};
}

QByteArray TDev25Alg::payloadReadSFDPReg(qint64 addr, quint16 len) {
    // The SFDP address is only its low byte: the table offered for reading lies within 0..255.
    QByteArray out;
    appendLen(out, len);
    out.append(bytes({S::OpReadSfdp, 0x00, 0x00}));
    out.append(char(addr & 0xFF));
    out.append(char(0));
    return out;
}

QByteArray TDev25Alg::payloadEraseSecurityReg(int n) {
    return bytes({S::OpEraseSecurity, 0x00, (unsigned char)((n + 1) * 16), 0x00});
}

QByteArray TDev25Alg::payloadReadSecurityReg(qint64 addr, quint16 len) {
    QByteArray out;
    appendLen(out, len);
    out.append(char(S::OpReadSecurity));
    appendSecurityAddr(out, addr);
    out.append(char(0));
    return out;
}

QByteArray TDev25Alg::payloadWriteSecurityReg(qint64 addr, const QByteArray& data) {
    QByteArray out(1, char(S::OpProgramSecurity));
    appendSecurityAddr(out, addr);
    return out + data;
}

QByteArray TDev25Alg::payloadReadUniqueID() {
    return bytes({8, 0, S::OpReadUniqueId, 0x00, 0x00, 0x00, 0x00}); // 8 bytes after four dummies
}

QByteArray TDev25Alg::payloadSetClk(unsigned int value) {
    QByteArray out;
    for (int i = 0; i < 4; ++i)
        out.append(char((value >> (8 * i)) & 0xFF));
    return out;
}

bool TDev25Alg::send(TSerialPort& port, unsigned char cmd, QByteArray& data, QString& err) {
    if (port.sendPackage(cmd, data)) return true;
    err = port.getErrorText();
    return false;
}

bool TDev25Alg::ident(unsigned alg, TSerialPort& port, QByteArray& out, QString& err) {
    if (alg != 0) return false;
    out = payloadIdent();
    return send(port, S::Read, out, err);
}

bool TDev25Alg::read(unsigned alg, TSerialPort& port, qint64 addr, quint16 len, QByteArray& out,
                     QString& err) {
    if (alg != 0) return false;
    out = payloadRead(addr, len);
    return send(port, S::Read, out, err);
}

bool TDev25Alg::write(unsigned alg, TSerialPort& port, qint64 addr, const QByteArray& data, QString& err) {
    if (alg != 0) return false;
    QByteArray packet = payloadWrite(addr, data);
    return send(port, S::Write, packet, err);
}

bool TDev25Alg::erase_blocks(unsigned alg, TSerialPort& port, unsigned char opcode, qint64 addr,
                             QString& err) {
    if (alg != 0) return false;
    QByteArray packet = payloadErase(opcode, addr);
    return send(port, S::Write, packet, err);
}

bool TDev25Alg::readStatusReg(unsigned alg, TSerialPort& port, QByteArray& out, QString& err) {
    if (alg != 0) return false;
    out.clear();
    for (QByteArray packet : payloadReadStatusReg()) {
        if (!send(port, S::Read, packet, err)) return false;
        if (!packet.isEmpty()) out.append(packet.at(0));
    }
    return true;
}

bool TDev25Alg::writeStatusReg(unsigned alg, TSerialPort& port, const QByteArray& data, QString& err) {
    if (alg != 0) return false;
    const QList<QByteArray> packets = payloadWriteStatusReg(data);
    if (packets.isEmpty()) return false;
    for (QByteArray packet : packets)
        if (!send(port, S::Write, packet, err)) return false;
    return true;
}

bool TDev25Alg::readSFDPReg(unsigned alg, TSerialPort& port, qint64 addr, quint16 len, QByteArray& out,
                            QString& err) {
    if (alg != 0) return false;
    out = payloadReadSFDPReg(addr, len);
    return send(port, S::Read, out, err);
}

bool TDev25Alg::eraseSecurityReg(unsigned alg, TSerialPort& port, int n, QString& err) {
    if (alg != 0) return false;
    QByteArray packet = payloadEraseSecurityReg(n);
    return send(port, S::Write, packet, err);
}

bool TDev25Alg::readSecurityReg(unsigned alg, TSerialPort& port, qint64 addr, quint16 len, QByteArray& out,
                                QString& err) {
    if (alg != 0) return false;
    out = payloadReadSecurityReg(addr, len);
    return send(port, S::Read, out, err);
}

bool TDev25Alg::writeSecurityReg(unsigned alg, TSerialPort& port, qint64 addr, const QByteArray& data,
                                 QString& err) {
    if (alg != 0) return false;
    QByteArray packet = payloadWriteSecurityReg(addr, data);
    return send(port, S::Write, packet, err);
}

bool TDev25Alg::readUniqueID(unsigned alg, TSerialPort& port, QByteArray& out, QString& err) {
    if (alg != 0) return false;
    out = payloadReadUniqueID();
    return send(port, S::Read, out, err);
}

bool TDev25Alg::setClk(unsigned alg, TSerialPort& port, unsigned int value, QString& err) {
    if (alg != 0) return false;
    QByteArray packet = payloadSetClk(value);
    return send(port, CProtocol::Family::SetClk, packet, err);
}

bool TDev25Alg::leave(unsigned alg, TSerialPort& port, const QByteArray& payload, QString& err) {
    if (alg != 0) return false;
    QByteArray packet = payload;
    return send(port, CProtocol::Family::Leave, packet, err);
}
