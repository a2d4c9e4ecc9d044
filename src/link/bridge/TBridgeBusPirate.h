#pragma once

#include "link/bridge/IBridge.h"
#include "link/bridge/TBridgeSpiFlash.h"

// A Bus Pirate in binary mode: SPI (write-then-read with its own chip select) for the 25 series, I2C
// (start, bulk writes with their acknowledge bits, byte reads, stop) for the 24 series.
class TBridgeBusPirate : public IBridge {
public:
    TBridgeBusPirate();

    // The "/Main/Protocol" value of its descriptions.
    static constexpr const char* protocolName = "buspirate";
    static constexpr unsigned short interface = 0x0B03;
    static constexpr int enterQuietMs = 20;

    // Packet builders.
    static QByteArray spiTransfer(const QByteArray& tx, int readCount);
    // The fastest speed of the table at or below hz (the slowest when none is).
    static unsigned char speedIndex(const unsigned int* speeds, int count, unsigned int hz);

protected:
    TBridgeReply start(IBridgeWire& wire) override;
    TBridgeReply selectDevice(IBridgeWire& wire, unsigned short type, const QByteArray& payload) override;
    TBridgeReply family(IBridgeWire& wire, unsigned char cmd, const QByteArray& data) override;
    TBridgeReply leave(IBridgeWire& wire) override;
    void forget() override;

private:
    TBridgeReply expect(IBridgeWire& wire, const QByteArray& out, const QByteArray& answer,
                        const QString& what);
    TBridgeReply simple(IBridgeWire& wire, unsigned char cmd, const QString& what);
    TBridgeReply toBinary(IBridgeWire& wire);
    TBridgeReply setSpeed(IBridgeWire& wire, unsigned int hz);
    TBridgeSpiFlash::Transaction spi(IBridgeWire& wire);
    TBridgeReply spiTransaction(IBridgeWire& wire, const QByteArray& tx, int readCount, QByteArray& rx);
    TBridgeReply i2cWrite(IBridgeWire& wire, const QByteArray& bytes, bool stop);
    TBridgeReply i2cRead(IBridgeWire& wire, const QByteArray& data);
    TBridgeReply i2cFail(IBridgeWire& wire, const TBridgeReply& reply);
    QByteArray withPins(QByteArray bytes, int selectAt) const;
    static QString name(unsigned char cmd);

    unsigned short mode = 0; // the device type the Bus Pirate's mode serves, 0 in binary mode
    unsigned char pins = 0;  // bus address pins of a 24-series part, in select-byte position
    int writeDelayMs = 0;
};
