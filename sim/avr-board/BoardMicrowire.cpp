#include "BoardMicrowire.h"

extern "C" {
#include <avr_ioport.h>
#include <sim_avr.h>
#include <sim_cycle_timers.h>
#include <sim_io.h>
}

namespace {
constexpr int OpSpecial = 0, OpWrite = 1, OpRead = 2, OpErase = 3;
// The two upper address bits of the special opcode.
constexpr int SpecialEwds = 0, SpecialWral = 1, SpecialEral = 2, SpecialEwen = 3;
constexpr int EraseAll = 100, WriteAll = 101;
// Erase or write cycle of the common parts.
constexpr unsigned long CycleUs = 6000;
} // namespace

BoardMicrowire::BoardMicrowire(avr_t* avr, const QVariantMap& params)
    : BoardChip(avr, params), memory(int(qMax<qint64>(1, params.value("size").toLongLong())), char(0xFF)),
      addrBits(params.value("width_addr").toInt()),
      dataBits(params.value("width_data").toInt() == 16 ? 16 : 8),
      doIrq(avr_io_getirq(avr, AVR_IOCTL_IOPORT_GETIRQ('C'), 2)) {
    avr_irq_register_notify(avr_io_getirq(avr, AVR_IOCTL_IOPORT_GETIRQ('D'), 4), onCs, this);
    avr_irq_register_notify(avr_io_getirq(avr, AVR_IOCTL_IOPORT_GETIRQ('D'), 5), onSk, this);
    avr_irq_register_notify(avr_io_getirq(avr, AVR_IOCTL_IOPORT_GETIRQ('D'), 6), onDi, this);
}

void BoardMicrowire::drive(bool level) {
    avr_raise_irq(doIrq, level ? 1 : 0);
}

void BoardMicrowire::onCs(avr_irq_t*, uint32_t value, void* self) {
    auto* c = static_cast<BoardMicrowire*>(self);
    const bool high = value != 0;
    if (high == c->cs) return;
    c->cs = high;
    if (!high) c->endOfInstruction();
    c->bits = 0;
    c->opcode = -1;
    c->readBit = -1;
    c->drive(!(high && c->busy));
}

void BoardMicrowire::onSk(avr_irq_t*, uint32_t value, void* self) {
    auto* c = static_cast<BoardMicrowire*>(self);
    const bool rising = value && !c->sk;
    c->sk = value != 0;
    if (rising && c->cs && !c->busy) c->clock();
}

void BoardMicrowire::onDi(avr_irq_t*, uint32_t value, void* self) {
    static_cast<BoardMicrowire*>(self)->di = value != 0;
}

int BoardMicrowire::word(int index) const {
    if (dataBits == 8) return uint8_t(memory.at(index % memory.size()));
    const int at = index * 2 % memory.size();
    return uint8_t(memory.at(at)) << 8 | uint8_t(memory.at(at + 1));
}

void BoardMicrowire::setWord(int index, int value) {
    if (dataBits == 8) {
        memory[index % memory.size()] = char(value);
        return;
    }
    const int at = index * 2 % memory.size();
    memory[at] = char(value >> 8);
    memory[at + 1] = char(value);
}

// Leading zeros before the start bit are ignored; a read shifts its data out for as long as SK runs,
// from one word into the next.
void BoardMicrowire::clock() {
    if (readBit >= 0) {
        const int words = memory.size() / (dataBits / 8);
        const int n = readBit++;
        const int w = (address + n / dataBits) % words;
        drive(word(w) >> (dataBits - 1 - n % dataBits) & 1);
        return;
    }
    if (bits == 0 && !di && opcode < 0) return;
    if (bits == 0 && opcode < 0) {
        bits = 1;
        shift = 0;
        return;
    }
    shift = shift << 1 | (di ? 1 : 0);
    ++bits;
    if (bits == 3) opcode = int(shift & 3);
    if (bits == 3 + addrBits) {
        address = int(shift & ((1UL << addrBits) - 1));
        decoded();
    }
    if (bits == 3 + addrBits + dataBits) pendingData = int(shift & ((1UL << dataBits) - 1));
}

void BoardMicrowire::decoded() {
    const int special = address >> (addrBits - 2) & 3;
    if (opcode == OpRead) {
        readBit = 0;
        drive(false); // the dummy 0
    } else if (opcode == OpSpecial && special == SpecialEwen) {
        enabled = true;
    } else if (opcode == OpSpecial && special == SpecialEwds) {
        enabled = false;
    } else if (opcode == OpSpecial) {
        pendingOp = special == SpecialEral ? EraseAll : WriteAll;
    } else {
        pendingOp = opcode;
    }
}

// Erase and write begin when CS goes low after their last bit.
void BoardMicrowire::endOfInstruction() {
    const int op = pendingOp;
    pendingOp = -1;
    const bool complete = bits >= 3 + addrBits + (op == OpWrite || op == WriteAll ? dataBits : 0);
    if (op < 0 || !enabled || !complete) return;
    const int words = memory.size() / (dataBits / 8);
    if (op == EraseAll || op == WriteAll)
        for (int i = 0; i < words; ++i)
            setWord(i, op == EraseAll ? 0xFFFF : pendingData);
    else
        setWord(address, op == OpErase ? 0xFFFF : pendingData);
    startCycle(CycleUs);
}

void BoardMicrowire::startCycle(unsigned long us) {
    busy = true;
    avr_cycle_timer_register_usec(mcu, uint32_t(us), onReady, this);
}

uint64_t BoardMicrowire::onReady(avr_t*, uint64_t, void* self) {
    auto* c = static_cast<BoardMicrowire*>(self);
    c->busy = false;
    if (c->cs) c->drive(true);
    return 0;
}
