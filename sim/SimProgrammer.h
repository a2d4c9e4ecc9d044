#pragma once

#include "SimFrame.h"
#include "SimSocket.h"

// The programmer's own commands (0x80 ... 0x8C) with range checks against its own limits; family
// packets (1 ... 7) go to the socket.
class SimProgrammer {
public:
    SimProgrammer(std::unique_ptr<SimChip> chip, unsigned short interfaceCode);

    SimReply handle(const SimFrame& request);
    SimSocket& socket() { return targetSocket; }

    static const char* identification();
    // Limits, in the units the packets carry: tenths of a volt, current × 1000, Hz, duty × 10, ms.
    static constexpr int vccMax = 55, vppMax = 130, iccMax = 500, ippMax = 100;
    static constexpr unsigned int freqMax = 8000000;
    static constexpr int dutyMax = 1000, resetMin = 10, resetMax = 1000, ledMax = 3;

private:
    SimReply own(unsigned char cmd, const QByteArray& data);
    SimReply supplies(unsigned char cmd, const QByteArray& data);
    SimReply generator(const QByteArray& data);
    SimReply reset(const QByteArray& data);
    SimReply pins(const QByteArray& data);

    SimSocket targetSocket;
    unsigned short interfaceCode;
};
