#pragma once

#include "SimChip.h"

// The bus a family's packets drive.
enum class SimBus { I2C, SPI, AVR };

bool simBusFromName(const QString& name, SimBus& bus);
bool simBusOfFamily(const QString& family, SimBus& bus);

// A socket with no chip answers as the bare bus would: nobody acknowledges on I2C, and the data line
// floats high on SPI and on the AVR programming interface, so every byte read is 0xFF.
class SimEmptySocket : public SimChip {
public:
    SimEmptySocket(const SimChipInfo& info, SimBus bus);
    SimReply request(unsigned char cmd, const QByteArray& data) override;

private:
    SimReply requestI2C(unsigned char cmd, const QByteArray& data);
    SimReply requestSPI(unsigned char cmd, const QByteArray& data);
    SimReply requestAVR(unsigned char cmd, const QByteArray& data);

    SimBus bus;
};
