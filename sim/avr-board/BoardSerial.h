#pragma once

#include "SimFrame.h"

#include <QByteArray>
#include <cstdint>

struct avr_t;
struct avr_irq_t;
class SimTrace;

// The board's USB serial bridge: bytes from the pseudo-terminal go into the USART only while simavr's
// receive queue has room (it says so with its XON and XOFF lines; a byte given while it is full is
// lost), and every byte the USART sends goes back out. Both directions are cut into frames for the
// trace, in the simulator's format.
class BoardSerial {
public:
    BoardSerial(avr_t* avr, int ptyMaster, SimTrace& trace);

    // Reads what the host has sent and hands the USART what it can take; false when the line failed.
    bool pump();
    // Writes what the USART has sent to the host.
    bool flush();
    bool hasInput() const { return fed < pending.size(); }

private:
    static void onOutput(avr_irq_t* irq, uint32_t value, void* self);
    static void onXon(avr_irq_t* irq, uint32_t value, void* self);
    static void onXoff(avr_irq_t* irq, uint32_t value, void* self);
    void feed();
    void traceFrames(SimFrameParser& parser, char direction);

    int fd;
    SimTrace& trace;
    avr_irq_t* input;
    bool full = true; // until the firmware has switched the receiver on
    QByteArray pending, out;
    int fed = 0;
    SimFrameParser requests, replies;
};
