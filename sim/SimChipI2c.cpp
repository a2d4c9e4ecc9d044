#include "SimChipI2c.h"

#include "SimChipRegistry.h"
#include "SimProtocol.h"

#include <QThread>

namespace {
SimChipRegistrar registrar("Dev24",
                           [](const SimChipInfo& info) { return std::make_unique<SimChipI2c>(info); });
} // namespace

SimChipI2c::SimChipI2c(const SimChipInfo& info)
    : SimChip(info), memory(int(info.params.value("size").toLongLong()), char(0xFF)),
      addrBytes(info.params.value("addr_size").toInt()),
      page(qMax(1, info.params.value("page_size").toInt())),
      pinMask(info.params.value("addr_mask").toUInt() & 7), pins(info.params.value("sim_pins").toUInt() & 7),
      timing(info.params.value("sim_timing").toBool()),
      // tWR of the common parts unless the socket is told otherwise.
      writeCycleMs(info.params.value("sim_write_cycle_ms", 5).toInt()) {}

void SimChipI2c::select(const QByteArray& payload) {
    // Type (2), hardware configuration, bus address, clock (4), delay.
    setAddress = payload.size() == 9 ? static_cast<unsigned char>((payload.at(3) & 7) << 1) : 0;
    writeWaitMs = payload.size() == 9 ? static_cast<unsigned char>(payload.at(8)) : 0;
}

bool SimChipI2c::inWriteCycle() const {
    return timing && writeCycle.isValid() && writeCycle.nsecsElapsed() < qint64(writeCycleMs) * 1000000;
}

bool SimChipI2c::address(const QByteArray& data, int at, qint64& addr) const {
    const unsigned select = static_cast<unsigned char>(data.at(at)) | setAddress;
    if ((select & SimProtocol::I2cSelectMask) != SimProtocol::I2cSelectBase || inWriteCycle()) return false;
    const unsigned bits = select >> 1 & 7;
    if ((bits & pinMask) != (pins & pinMask)) return false;
    const qint64 wordSpan = qint64(1) << (8 * addrBytes);
    const unsigned blockMask = unsigned((memory.size() - 1) / wordSpan) & 7 & ~pinMask;
    addr = 0;
    for (int i = 0; i < addrBytes; ++i)
        addr = addr << 8 | static_cast<unsigned char>(data.at(at + 1 + i));
    addr += (bits & blockMask) * wordSpan;
    return addr < memory.size();
}

SimReply SimChipI2c::write(const QByteArray& data) {
    qint64 addr = 0;
    if (data.size() < 1 + addrBytes) return SimReply::fail(ErrLength);
    if (!address(data, 0, addr)) return SimReply::fail(ErrNoAck);
    const qint64 base = addr - addr % page;
    for (int i = 1 + addrBytes, n = 0; i < data.size(); ++i, ++n)
        memory[int(base + (addr - base + n) % page)] = data.at(i);
    if (timing) {
        writeCycle.start();
        QThread::msleep(ulong(writeWaitMs));
    }
    return SimReply::ok();
}

SimReply SimChipI2c::read(const QByteArray& data) {
    qint64 addr = 0;
    if (data.size() != 3 + addrBytes) return SimReply::fail(ErrLength);
    if (!address(data, 2, addr)) return SimReply::fail(ErrNoAck);
    // The programmer's read buffer never holds more than the whole array.
    const int count = qMin(
        static_cast<unsigned char>(data.at(0)) | static_cast<unsigned char>(data.at(1)) << 8, memory.size());
    QByteArray out(count, 0);
    for (int i = 0; i < count; ++i)
        out[i] = memory.at(int((addr + i) % memory.size()));
    return SimReply::memory(out);
}

SimReply SimChipI2c::request(unsigned char cmd, const QByteArray& data) {
    switch (cmd) {
    case SimProtocol::I2cSetAddr:
        if (data.size() != 1) return SimReply::fail(ErrLength);
        setAddress = static_cast<unsigned char>(data.at(0));
        return SimReply::ok();
    case SimProtocol::I2cWrite:
        return write(data);
    case SimProtocol::I2cRead:
        return read(data);
    default:
        return SimReply::fail(ErrUnknownCommand);
    }
}
