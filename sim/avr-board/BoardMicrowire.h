#pragma once

#include "BoardChip.h"

#include <cstdint>

struct avr_irq_t;

// A 93-series Microwire EEPROM on four port pins: CS (D4), SK (D5) and DI (D6) from the board, DO (A2)
// back to it. An instruction is a start bit, two opcode bits and the address bits, sampled on the rising
// edge of SK while CS is high. DO floats high (the board's pull-up) except for the dummy 0 and the data
// of a read, and, with CS high after a write or erase, shows the part busy (0) and ready (1).
class BoardMicrowire : public BoardChip {
public:
    BoardMicrowire(avr_t* avr, const QVariantMap& params);
    QByteArray& contents() override { return memory; }

private:
    static void onCs(avr_irq_t* irq, uint32_t value, void* self);
    static void onSk(avr_irq_t* irq, uint32_t value, void* self);
    static void onDi(avr_irq_t* irq, uint32_t value, void* self);
    static uint64_t onReady(avr_t* avr, uint64_t when, void* self);
    void clock();
    void decoded();
    void endOfInstruction();
    void startCycle(unsigned long us);
    void drive(bool level);
    int word(int index) const;
    void setWord(int index, int value);

    QByteArray memory;
    int addrBits, dataBits;
    avr_irq_t* doIrq;
    bool cs = false, sk = false, di = false;
    bool enabled = false, busy = false;
    int bits = 0; // bits after the start bit
    unsigned long shift = 0;
    int opcode = -1, address = 0;
    int pendingOp = -1; // an erase or write that starts when CS goes low
    int pendingData = 0;
    int readBit = -1; // the next bit of a read to put on DO
};
