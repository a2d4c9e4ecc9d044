#include "SimProgrammer.h"

#include "SimProtocol.h"

using namespace SimProtocol;

namespace {
unsigned int le(const QByteArray& d, int at, int size) {
    unsigned int v = 0;
    for (int i = size - 1; i >= 0; --i)
        v = v << 8 | static_cast<unsigned char>(d.at(at + i));
    return v;
}
unsigned int byteAt(const QByteArray& d, int at) {
    return static_cast<unsigned char>(d.at(at));
}
SimReply inRange(bool ok) {
    return ok ? SimReply::ok() : SimReply::fail(ErrRange);
}
} // namespace

SimProgrammer::SimProgrammer(std::unique_ptr<SimChip> chip, unsigned short code)
    : targetSocket(std::move(chip)), interfaceCode(code) {}

const char* SimProgrammer::identification() {
    return "Tarvelix programmer simulator 1.0";
}

SimReply SimProgrammer::handle(const SimFrame& request) {
    if (!request.checkOk) return SimReply::fail(ErrBadFrame);
    if (request.cmd >= FamilyFirst && request.cmd <= FamilyLast)
        return targetSocket.request(request.cmd, request.data);
    return own(request.cmd, request.data);
}

SimReply SimProgrammer::own(unsigned char cmd, const QByteArray& data) {
    switch (cmd) {
    case ProgInterface:
    case ProgIdent:
    case ProgLeave:
        if (!data.isEmpty()) return SimReply::fail(ErrLength);
        if (cmd == ProgInterface)
            return SimReply::ok(QByteArray(1, static_cast<char>(interfaceCode & 0xFF))
                                    .append(static_cast<char>(interfaceCode >> 8)));
        if (cmd == ProgIdent) return SimReply::ok(QByteArray(identification()).append('\0'));
        targetSocket.deselect();
        return SimReply::ok();
    case ProgLED:
        if (data.size() != 1) return SimReply::fail(ErrLength);
        return inRange(byteAt(data, 0) <= ledMax);
    case ProgSetDevice:
        targetSocket.select(data);
        return SimReply::ok();
    case ProgReset:
        return reset(data);
    case ProgGenerator:
        return generator(data);
    case ProgSetIO:
        return pins(data);
    default:
        return supplies(cmd, data);
    }
}

// 0x89 Vcc, 0x8A Vpp: one byte; 0x8B: Vcc, 32-bit Icc, OCP; 0x8C: Vpp, 16-bit Ipp, OCP.
SimReply SimProgrammer::supplies(unsigned char cmd, const QByteArray& data) {
    const int sizes[] = {1, 1, 6, 4};
    if (cmd < ProgSetVcc || cmd > ProgSetVIpp) return SimReply::fail(ErrUnknownCommand);
    if (data.size() != sizes[cmd - ProgSetVcc]) return SimReply::fail(ErrLength);
    const bool pp = cmd == ProgSetVpp || cmd == ProgSetVIpp;
    if (byteAt(data, 0) > static_cast<unsigned int>(pp ? vppMax : vccMax)) return SimReply::fail(ErrRange);
    if (cmd == ProgSetVIcc) return inRange(le(data, 1, 4) <= iccMax && byteAt(data, 5) <= 1);
    if (cmd == ProgSetVIpp) return inRange(le(data, 1, 2) <= ippMax && byteAt(data, 3) <= 1);
    return SimReply::ok();
}

// Frequency 0 stops the generator.
SimReply SimProgrammer::generator(const QByteArray& data) {
    if (data.size() != 6) return SimReply::fail(ErrLength);
    return inRange(le(data, 0, 4) <= freqMax && le(data, 4, 2) <= dutyMax);
}

// The sign selects the polarity; 0 leaves the reset line alone.
SimReply SimProgrammer::reset(const QByteArray& data) {
    if (data.size() != 2) return SimReply::fail(ErrLength);
    const int d = qAbs(static_cast<int>(static_cast<short>(le(data, 0, 2))));
    return inRange(d == 0 || (d >= resetMin && d <= resetMax));
}

SimReply SimProgrammer::pins(const QByteArray& data) {
    if (data.isEmpty() || data.size() > SimSocket::pinCount) return SimReply::fail(ErrLength);
    for (char c : data)
        if (static_cast<unsigned char>(c) > SimSocket::pinStateMax) return SimReply::fail(ErrRange);
    return SimReply::ok();
}
