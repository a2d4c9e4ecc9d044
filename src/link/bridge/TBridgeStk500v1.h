#pragma once

#include "link/bridge/IBridge.h"

// An Arduino running the ArduinoISP sketch (STK500 version 1, what avrdude -c stk500v1 speaks):
// serves the AVR family. Single instructions go through UNIVERSAL; page loads are kept on the host
// until the family commits the page, then go as one PROG_PAGE, which the sketch commits itself.
class TBridgeStk500v1 : public IBridge {
public:
    TBridgeStk500v1();
    void describeTarget(const TData& params) override;

    // The "/Main/Protocol" value of its descriptions.
    static constexpr const char* protocolName = "stk500v1";
    static constexpr unsigned short interface = 0x0B02;
    // The board resets when the port opens and starts the sketch after its boot loader.
    static constexpr int resetPulseMs = 50;
    static constexpr int syncWindowFactor = 3;
    static constexpr int syncAttemptMs = 200;
    static constexpr int busyTimeOutMs = 1000;

    // Packet builders.
    static QByteArray setDevicePacket(const TData& part, unsigned char resetPolarity);
    static QByteArray loadAddressPacket(int wordAddress);
    static QByteArray pagePacket(unsigned char cmd, char memory, int length, const QByteArray& data);
    static QByteArray universalPacket(const QByteArray& instruction);

protected:
    TBridgeReply start(IBridgeWire& wire) override;
    TBridgeReply selectDevice(IBridgeWire& wire, unsigned short type, const QByteArray& payload) override;
    TBridgeReply family(IBridgeWire& wire, unsigned char cmd, const QByteArray& data) override;
    TBridgeReply leave(IBridgeWire& wire) override;
    void forget() override;

private:
    // Sends a command and reads INSYNC, answerSize bytes and OK.
    TBridgeReply command(IBridgeWire& wire, const QByteArray& packet, int answerSize, QByteArray& answer,
                         int timeOutMs = 0);
    TBridgeReply answerOf(IBridgeWire& wire, const QString& what, int answerSize, QByteArray& answer,
                          int timeOutMs);
    // The address (and the extended address when it changes) sent with the page command that uses it,
    // the answers read after: one round trip on the line instead of two or three.
    TBridgeReply addressed(IBridgeWire& wire, bool flash, qint64 byteAddress, const QByteArray& pageCommand,
                           int answerSize, QByteArray& answer);
    TBridgeReply instruction(IBridgeWire& wire, const QByteArray& data);
    TBridgeReply universal(IBridgeWire& wire, unsigned char a, unsigned char b, unsigned char c,
                           unsigned char d, unsigned char& result);
    TBridgeReply wait(IBridgeWire& wire, unsigned char waitByte, unsigned char a, unsigned char b);
    // The part's delay in ms for a write instruction beginning a, b.
    int delayOf(unsigned char a, unsigned char b) const;
    TBridgeReply flushPage(IBridgeWire& wire);
    TBridgeReply readMemory(IBridgeWire& wire, char memory, qint64 byteAddress, int length);
    TBridgeReply writeEeprom(IBridgeWire& wire, int byteAddress, QByteArray data);
    TBridgeReply leaveProgramming(IBridgeWire& wire);
    static QString name(unsigned char cmd);
    int flashPage() const;

    TData part;
    bool programming = false;
    int extendedByte = 0;  // byte-address bits 23-16, as the family's extended address carries them
    int targetExt = -1;    // word-address bits 23-16 the target last received, -1 unknown
    qint64 pendingAt = -1; // byte address of the page load kept on the host
    QByteArray pending;
};
