#pragma once

#include "SimChip.h"

// A 93-series Microwire EEPROM as far as the application drives one: the clock (a socket hook) and the
// whole-chip erase; every other packet is unknown to it.
class SimChipMw : public SimChip {
public:
    explicit SimChipMw(const SimChipInfo& info);

    SimReply request(unsigned char cmd, const QByteArray& data) override;
    QByteArray* contents() override { return &memory; }

private:
    QByteArray memory;
};
