#include "devices/TDev24CAlg.h"

#include "link/CProtocol.h"
#include "link/TSerialPort.h"

namespace {
unsigned char byteOf(qint64 value, int n) {
    return n < 8 ? static_cast<unsigned char>(quint64(value) >> (8 * n)) : 0;
}
} // namespace

QByteArray TDev24CAlg::selectAndAddress(qint64 addr, unsigned char addrSize) {
    QByteArray out;
    out.append(char((CProtocol::I2c::SelectBase | byteOf(addr, addrSize) << 1) & 0xFF));
    if (addrSize == 0) return out;
    out.append(char(byteOf(addr, addrSize - 1)));
    if (addrSize > 1) out.append(char(byteOf(addr, 0)));
    return out;
}

bool TDev24CAlg::send(TSerialPort& port, unsigned char cmd, QByteArray& data, QString& err) {
    if (port.sendPackage(cmd, data)) return true;
    err = port.getErrorText();
    return false;
}

bool TDev24CAlg::setAddress(TSerialPort& port, unsigned char addr, QString& err) {
    QByteArray data(1, char(addr));
    return send(port, CProtocol::I2c::SetAddr, data, err);
}

bool TDev24CAlg::setClk(TSerialPort& port, unsigned int hz, QString& err) {
    QByteArray data;
    for (int i = 0; i < 4; ++i)
        data.append(char(hz >> (8 * i) & 0xFF));
    return send(port, CProtocol::Family::SetClk, data, err);
}

bool TDev24CAlg::leave(TSerialPort& port, const QByteArray& payload, QString& err) {
    QByteArray data = payload;
    return send(port, CProtocol::Family::Leave, data, err);
}

bool TDev24CAlg::read(int alg, TSerialPort& port, qint64 addr, unsigned char addrSize, unsigned short count,
                      QByteArray& out, QString& err) {
    if (alg == 0) return readAlg_0(port, addr, addrSize, count, out, err);
    return false;
}

bool TDev24CAlg::write(int alg, TSerialPort& port, qint64 addr, unsigned char addrSize,
                       const QByteArray& data, QString& err) {
    if (alg == 0) return writeAlg_0(port, addr, addrSize, data, err);
    return false;
}

bool TDev24CAlg::readAlg_0(TSerialPort& port, qint64 addr, unsigned char addrSize, unsigned short count,
                           QByteArray& out, QString& err) {
    out.clear();
    out.append(char(count & 0xFF)).append(char(count >> 8));
    out.append(selectAndAddress(addr, addrSize));
    return send(port, CProtocol::I2c::Read, out, err);
}

bool TDev24CAlg::writeAlg_0(TSerialPort& port, qint64 addr, unsigned char addrSize, const QByteArray& data,
                            QString& err) {
    QByteArray packet = selectAndAddress(addr, addrSize) + data;
    return send(port, CProtocol::I2c::Write, packet, err);
}
