#include "BoardMcu.h"

#include "BoardSerial.h"
#include "BoardSimavrFixes.h"

extern "C" {
#include <sim_avr.h>
#include <sim_elf.h>
}

#include <chrono>
#include <cstdlib>
#include <poll.h>

namespace {
constexpr uint32_t ClockHz = 16000000;
constexpr int StepsPerSlice = 20000; // instructions between looks at the line
constexpr int IdleWaitMs = 200;
constexpr int64_t MaxAheadUs = 2000;
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

// The board never runs ahead of the wall clock by more than a little: a host writes a frame as fast as
// to the real board, and the firmware's time-outs inside a frame mean what they mean there. Time that
// stands still while the firmware sleeps does not count.
BoardMcu::End BoardMcu::run(BoardSerial& serial, int ptyMaster, int stopFd) {
    uint64_t cycleMark = core->cycle;
    auto wallMark = std::chrono::steady_clock::now();
    for (;;) {
        const bool waiting = idle(serial);
        const auto wall = std::chrono::steady_clock::now();
        const int64_t aheadUs =
            int64_t(core->cycle - cycleMark) * 1000000 / ClockHz -
            std::chrono::duration_cast<std::chrono::microseconds>(wall - wallMark).count();
        const int waitMs = waiting ? IdleWaitMs : aheadUs > MaxAheadUs ? int(aheadUs / 1000) : 0;
        pollfd fds[2] = {{ptyMaster, POLLIN, 0}, {stopFd, POLLIN, 0}};
        if (poll(fds, 2, waitMs) > 0 && fds[1].revents) return End::Stopped;
        if (!serial.pump()) return End::Failed;
        if (idle(serial)) {
            cycleMark = core->cycle;
            wallMark = std::chrono::steady_clock::now();
            continue;
        }
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
