#include "BoardI2cEeprom.h"

extern "C" {
#include <avr_twi.h>
#include <sim_avr.h>
#include <sim_io.h>
}

BoardI2cEeprom::BoardI2cEeprom(avr_t* avr, const QVariantMap& params, int strappedPins,
                               unsigned long writeCycleUs)
    : BoardChip(avr, params), memory(int(qMax<qint64>(1, params.value("size").toLongLong())), char(0xFF)),
      addrBytes(params.value("addr_size").toInt()), page(qMax(1, params.value("page_size").toInt())),
      pinMask(params.value("addr_mask").toUInt() & 7), pins(unsigned(strappedPins) & 7),
      cycleUs(writeCycleUs), toMcu(avr_io_getirq(avr, AVR_IOCTL_TWI_GETIRQ(0), TWI_IRQ_INPUT)) {
    avr_irq_register_notify(avr_io_getirq(avr, AVR_IOCTL_TWI_GETIRQ(0), TWI_IRQ_OUTPUT), onMessage, this);
}

void BoardI2cEeprom::onMessage(avr_irq_t*, uint32_t value, void* self) {
    avr_twi_msg_irq_t m;
    m.u.v = value;
    static_cast<BoardI2cEeprom*>(self)->message(m.u.twi.msg, m.u.twi.addr, m.u.twi.data);
}

void BoardI2cEeprom::answer(uint8_t msg, uint8_t data) {
    avr_raise_irq(toMcu, avr_twi_irq_msg(msg, 0, data));
}

// Device type 1010, then the pins the part uses and the block bits of the larger parts.
bool BoardI2cEeprom::start(uint8_t select) {
    if ((select & 0xF0) != 0xA0 || mcu->cycle < busyUntil) return false;
    const unsigned bits = select >> 1 & 7;
    if ((bits & pinMask) != (pins & pinMask)) return false;
    const qint64 wordSpan = qint64(1) << (8 * addrBytes);
    const unsigned blockMask = unsigned((memory.size() - 1) / wordSpan) & 7 & ~pinMask;
    block = (bits & blockMask) * wordSpan;
    return true;
}

void BoardI2cEeprom::message(uint8_t msg, uint8_t addr, uint8_t data) {
    if (msg & TWI_COND_STOP) {
        if (selected && written) busyUntil = now() + cyclesOfUs(cycleUs);
        selected = written = false;
        return;
    }
    if (msg & TWI_COND_START) {
        selected = start(addr);
        reading = addr & 1;
        index = 0;
        if (selected) answer(TWI_COND_ACK, 1);
        return;
    }
    if (!selected) return;
    if ((msg & TWI_COND_WRITE) && !reading) {
        answer(TWI_COND_ACK, 1);
        if (index < addrBytes) {
            pointer = (index == 0 ? 0 : pointer << 8) | data;
            if (index == addrBytes - 1) pointer = (pointer + block) % memory.size();
        } else {
            const qint64 base = pointer - pointer % page;
            memory[int(base + (pointer - base + index - addrBytes) % page)] = char(data);
            written = true;
        }
        ++index;
    } else if ((msg & TWI_COND_READ) && reading) {
        answer(TWI_COND_READ, uint8_t(memory.at(int(pointer))));
        pointer = (pointer + 1) % memory.size();
    }
}
