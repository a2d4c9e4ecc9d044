#pragma once

#include "link/bridge/CSerprog.h"
#include "link/bridge/IBridge.h"
#include "link/bridge/TBridgeSpiFlash.h"

// serprog hardware (pico-serprog, stm32-vserprog, frser-duino): serves the 25-series family's SPI
// transactions with O_SPIOP, as the native programmer does, write enable and busy wait included.
class TBridgeSerprog : public IBridge {
public:
    TBridgeSerprog();

    // The "/Main/Protocol" value of its descriptions.
    static constexpr const char* protocolName = "serprog";
    static constexpr unsigned short interface = 0x0B01;

    // Packet builders.
    static QByteArray spiOp(const QByteArray& tx, int readCount);
    static QByteArray spiFreq(unsigned int hz);
    static QByteArray length24(int n);

protected:
    TBridgeReply start(IBridgeWire& wire) override;
    TBridgeReply selectDevice(IBridgeWire& wire, unsigned short type, const QByteArray& payload) override;
    TBridgeReply family(IBridgeWire& wire, unsigned char cmd, const QByteArray& data) override;
    TBridgeReply leave(IBridgeWire& wire) override;
    void forget() override;

private:
    TBridgeReply synchronise(IBridgeWire& wire);
    TBridgeReply query(IBridgeWire& wire, unsigned char op, int answerSize, QByteArray& answer);
    // One command: op and its parameters out, ACK and answerSize bytes back.
    TBridgeReply command(IBridgeWire& wire, unsigned char op, const QByteArray& params, int answerSize,
                         QByteArray& answer);
    // The ACK or NAK of op and its answer, once op has been sent.
    TBridgeReply answerOf(IBridgeWire& wire, unsigned char op, int answerSize, QByteArray& answer);
    TBridgeReply transaction(IBridgeWire& wire, const QByteArray& tx, int readCount, QByteArray& rx);
    TBridgeReply transactions(IBridgeWire& wire, const QList<TBridgeSpiFlash::Shift>& shifts,
                              QList<QByteArray>& rx);
    TBridgeReply read(IBridgeWire& wire, const QByteArray& data);
    TBridgeReply write(IBridgeWire& wire, const QByteArray& tx);
    TBridgeSpiFlash::Transaction spi(IBridgeWire& wire);
    TBridgeReply setClock(IBridgeWire& wire, unsigned int hz);
    TBridgeReply setPins(IBridgeWire& wire, bool on);
    bool offers(unsigned char op) const;
    static QString name(unsigned char op);

    QByteArray cmdMap;
    int readMax = CSerprog::opMax;
    int writeMax = CSerprog::opMax;
    int serBuf = CSerprog::serBufDefault;
};
