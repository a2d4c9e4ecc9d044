#pragma once

#include "SimSocket.h"

// The SPI lines of hardware that shifts bytes itself (serprog, Bus Pirate) to a 25-series model that
// expects the native programmer's transactions: reads go as read transactions, the rest as writes.
// It keeps the write enable latch, so a write without write enable before it changes nothing, as on
// the chip, and the status register shows the latch.
class SimSpiBus {
public:
    explicit SimSpiBus(SimSocket& socket);
    // Sends tx and returns the readCount bytes the chip shifts out after it.
    QByteArray transfer(const QByteArray& tx, int readCount);

private:
    SimSocket& socket;
    bool writeEnabled = false;
};
