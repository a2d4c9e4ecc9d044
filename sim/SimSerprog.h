#pragma once

#include "SimSocket.h"
#include "SimSpiBus.h"
#include "SimStreamProtocol.h"

// A serprog programmer (as pico-serprog is) with an SPI flash in its socket: interface version 1,
// bus type SPI, O_SPIOP.
class SimSerprog : public SimStreamProtocol {
public:
    explicit SimSerprog(SimSocket& socket);

    bool take(QByteArray& request) override;
    QByteArray answer(const QByteArray& request) override;
    QByteArray refusal(const QByteArray& request) override;

    // What the firmware takes in one O_SPIOP.
    static constexpr int readMax = 4096;
    static constexpr int writeMax = 4096;

private:
    QByteArray spiOp(const QByteArray& request);
    QByteArray setFreq(const QByteArray& request);
    static QByteArray commandMap();

    SimSocket& socket;
    SimSpiBus bus;
};
