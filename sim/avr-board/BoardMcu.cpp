#include "BoardMcu.h"

#include "BoardSerial.h"
#include "BoardSimavrFixes.h"

extern "C" {
#include <sim_avr.h>
#include <sim_elf.h>
}

#include <cstdlib>
#include <poll.h>

namespace {
constexpr uint32_t ClockHz = 16000000;
constexpr int StepsPerSlice = 20000; // instructions between looks at the line
constexpr int IdleWaitMs = 200;
} // namespace

BoardMcu::~BoardMcu() {
    if (core) {
        avr_terminate(core);
        std::free(core);
    }
}

bool BoardMcu::load(const QString& elfFile, QString& error) {
    elf_firmware_t fw{};
    if (elf_read_firmware(elfFile.toLocal8Bit().constData(), &fw) != 0) {
        error = QStringLiteral("cannot read the firmware %1").arg(elfFile);
        return false;
    }
    core = avr_make_mcu_by_name("atmega328p");
    if (!core || avr_init(core) != 0) {
        error = QStringLiteral("simavr has no ATmega328P");
        return false;
    }
    core->log = LOG_ERROR;
    avr_load_firmware(core, &fw);
    core->frequency = ClockHz;
    if (!BoardSimavrFixes::install(core)) {
        error = QStringLiteral("simavr's ATmega328P lacks its SPI, TWI or USART");
        return false;
    }
    return true;
}

bool BoardMcu::idle(const BoardSerial& serial) const {
    return core->state == cpu_Sleeping && !core->cycle_timers.timer && !serial.hasInput();
}

BoardMcu::End BoardMcu::run(BoardSerial& serial, int ptyMaster, int stopFd) {
    for (;;) {
        pollfd fds[2] = {{ptyMaster, POLLIN, 0}, {stopFd, POLLIN, 0}};
        if (poll(fds, 2, idle(serial) ? IdleWaitMs : 0) > 0 && fds[1].revents) return End::Stopped;
        if (!serial.pump()) return End::Failed;
        if (idle(serial)) continue;
        for (int i = 0; i < StepsPerSlice; ++i) {
            const int state = avr_run(core);
            if (state == cpu_Done || state == cpu_Crashed) return End::Crashed;
            if (idle(serial)) break;
        }
        if (!serial.flush()) return End::Failed;
    }
}

double BoardMcu::simulatedSeconds() const {
    return core ? double(core->cycle) / ClockHz : 0.0;
}
