#pragma once

#include <QString>

struct avr_t;
class BoardSerial;

// The board's ATmega328P at 16 MHz running the firmware's ELF file.
class BoardMcu {
public:
    BoardMcu() = default;
    ~BoardMcu();
    BoardMcu(const BoardMcu&) = delete;
    BoardMcu& operator=(const BoardMcu&) = delete;

    bool load(const QString& elfFile, QString& error);
    avr_t* avr() const { return core; }

    enum class End { Stopped, Failed, Crashed };
    // Runs until stopFd becomes readable. While the firmware sleeps with nothing to do (no byte for it,
    // no timer running) simulated time stands still and the board waits for the host instead.
    End run(BoardSerial& serial, int ptyMaster, int stopFd);
    double simulatedSeconds() const;

private:
    bool idle(const BoardSerial& serial) const;

    avr_t* core = nullptr;
};
