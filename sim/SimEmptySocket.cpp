#include "SimEmptySocket.h"

#include "SimProtocol.h"

namespace {
int word(const QByteArray& d, int at) {
    return static_cast<unsigned char>(d.at(at)) | static_cast<unsigned char>(d.at(at + 1)) << 8;
}
SimReply floating(int count) {
    return SimReply::ok(QByteArray(count, static_cast<char>(0xFF)));
}
} // namespace

bool simBusFromName(const QString& name, SimBus& bus) {
    if (name == "i2c")
        bus = SimBus::I2C;
    else if (name == "spi")
        bus = SimBus::SPI;
    else if (name == "avr")
        bus = SimBus::AVR;
    else
        return false;
    return true;
}

bool simBusOfFamily(const QString& family, SimBus& bus) {
    if (family == "Dev24")
        bus = SimBus::I2C;
    else if (family == "Dev25")
        bus = SimBus::SPI;
    else if (family == "DevAVR8_SPI")
        bus = SimBus::AVR;
    else
        return false;
    return true;
}

SimEmptySocket::SimEmptySocket(const SimChipInfo& info, SimBus b) : SimChip(info), bus(b) {}

SimReply SimEmptySocket::request(unsigned char cmd, const QByteArray& data) {
    switch (bus) {
    case SimBus::I2C:
        return requestI2C(cmd, data);
    case SimBus::SPI:
        return requestSPI(cmd, data);
    case SimBus::AVR:
        return requestAVR(cmd, data);
    }
    return SimReply::fail(ErrInternal);
}

// 3 set address (kept by the programmer), 4 write, 5 read.
SimReply SimEmptySocket::requestI2C(unsigned char cmd, const QByteArray& data) {
    if (cmd == SimProtocol::I2cSetAddr) return data.size() == 1 ? SimReply::ok() : SimReply::fail(ErrLength);
    if (cmd == SimProtocol::I2cWrite)
        return data.size() >= 1 ? SimReply::fail(ErrNoAck) : SimReply::fail(ErrLength);
    if (cmd == SimProtocol::I2cRead)
        return data.size() >= 3 ? SimReply::fail(ErrNoAck) : SimReply::fail(ErrLength);
    return SimReply::fail(ErrUnknownCommand);
}

// 3 read transaction (count, bytes to send), 4 write transaction.
SimReply SimEmptySocket::requestSPI(unsigned char cmd, const QByteArray& data) {
    if (cmd == SimProtocol::SpiRead)
        return data.size() >= 2 ? floating(word(data, 0)) : SimReply::fail(ErrLength);
    if (cmd == SimProtocol::SpiWrite) return SimReply::ok();
    return SimReply::fail(ErrUnknownCommand);
}

// 3 and 5 read flash and EEPROM (address, count), 4 and 6 write them, 7 one 4-byte instruction.
SimReply SimEmptySocket::requestAVR(unsigned char cmd, const QByteArray& data) {
    switch (cmd) {
    case SimProtocol::AvrReadFlash:
    case SimProtocol::AvrReadEeprom:
        return data.size() == 4 ? floating(word(data, 2)) : SimReply::fail(ErrLength);
    case SimProtocol::AvrWriteFlash:
    case SimProtocol::AvrWriteEeprom:
        return data.size() >= 2 ? SimReply::ok() : SimReply::fail(ErrLength);
    case SimProtocol::AvrInstr:
        return data.size() == 5 ? floating(4) : SimReply::fail(ErrLength);
    default:
        return SimReply::fail(ErrUnknownCommand);
    }
}
