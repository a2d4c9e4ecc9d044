#pragma once

#include "SimSocket.h"
#include "SimSpiBus.h"
#include "SimStreamProtocol.h"

// A Bus Pirate with its binary modes: twenty 0x00 from the terminal enter binary mode (BBIO1), 0x01
// SPI (write-then-read), 0x02 I2C (start, bulk write with acknowledge bits, byte read, stop). The
// chip in its socket gets power from the peripherals command; unpowered, it does not answer.
class SimBusPirate : public SimStreamProtocol {
public:
    explicit SimBusPirate(SimSocket& socket);

    bool take(QByteArray& request) override;
    QByteArray answer(const QByteArray& request) override;
    QByteArray refusal(const QByteArray& request) override;

private:
    enum class Mode { Terminal, Binary, Spi, I2c };
    QByteArray binary(unsigned char cmd);
    QByteArray spi(const QByteArray& request);
    QByteArray i2c(const QByteArray& request);
    QByteArray bulkWrite(const QByteArray& bytes);
    void stop();
    bool acknowledges(unsigned char select);

    SimSocket& socket;
    SimSpiBus bus;
    Mode mode = Mode::Terminal;
    int resets = 0;
    bool powered = false;
    QByteArray transfer;  // the I2C bytes written since the last start
    QByteArray addressed; // a write phase ended by a repeated start: where a read begins
    QByteArray readData;
    int readAt = 0;
};
