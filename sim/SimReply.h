#pragma once

#include <QByteArray>

// Error codes of the programmer's error replies (docs/protocol.md, "Error codes").
enum SimError : unsigned short {
    ErrUnknownCommand = 0,
    ErrBadFrame = 1,
    ErrLength = 2,
    ErrRange = 3,
    ErrNoDevice = 4,
    ErrNoAck = 5,
    ErrBusy = 6,
    ErrWrite = 7,
    ErrOverCurrent = 8,
    ErrSupply = 9,
    ErrNotSupported = 10,
    ErrInternal = 11
};

// What the programmer answers to one request: data, or an error code.
struct SimReply {
    bool isError = false;
    unsigned short error = 0;
    QByteArray data;
    bool fromMemory = false; // data read from the chip's memory array, which --short may cut

    static SimReply ok(const QByteArray& d = QByteArray()) { return SimReply{false, 0, d}; }
    static SimReply memory(const QByteArray& d) { return SimReply{false, 0, d, true}; }
    static SimReply fail(unsigned short code) { return SimReply{true, code, QByteArray()}; }
};
