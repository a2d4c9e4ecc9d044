#pragma once

#include <QByteArray>
#include <QVector>

// One frame of the programmer protocol: C0, command, length (16-bit, low byte first), data, check byte
// making the byte sum of the whole frame zero.
struct SimFrame {
    unsigned char cmd = 0;
    QByteArray data;
    bool checkOk = true;
    QByteArray raw; // the frame as it arrived
};

namespace SimFrameCodec {
unsigned char checkByte(const QByteArray& bytes);
QByteArray encode(unsigned char cmd, const QByteArray& data);
// An error reply: command 0xFF with the 16-bit code.
QByteArray encodeError(unsigned short code);
} // namespace SimFrameCodec

// Collects frames from a byte stream: bytes before a start byte are dropped, and once a start byte is
// seen everything up to the check byte belongs to the frame.
class SimFrameParser {
public:
    void feed(const char* bytes, int count);
    bool next(SimFrame& frame);

private:
    QByteArray pending;
    QVector<SimFrame> frames;
};
