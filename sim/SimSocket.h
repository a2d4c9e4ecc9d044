#pragma once

#include "SimChip.h"

#include <memory>

// The programmer's target socket: checks the packets every family shares (1 leave, 2 clock), refuses
// family packets until a device has been selected, and hands the rest to the chip model.
class SimSocket {
public:
    explicit SimSocket(std::unique_ptr<SimChip> chip);

    SimReply request(unsigned char cmd, const QByteArray& data);
    void select(const QByteArray& payload);
    void deselect();
    SimChip& chip() { return *model; }

    static constexpr unsigned int clockMax = 8000000;
    static constexpr int pinCount = 8;
    static constexpr unsigned char pinStateMax = 8;

private:
    std::unique_ptr<SimChip> model;
    bool selected = false;
};
