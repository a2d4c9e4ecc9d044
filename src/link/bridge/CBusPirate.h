#pragma once

// The Bus Pirate's binary modes (its firmware's "Bitbang", "SPI" and "I2C" binary protocols): one
// command byte and its bytes; most commands answer 0x01.
namespace CBusPirate {
const unsigned char reset = 0x00; // from the terminal: twenty of them enter binary mode
const unsigned char toTerminal = 0x0F;
const unsigned char modeSpi = 0x01;
const unsigned char modeI2c = 0x02;
const char* const bbio = "BBIO1";
const char* const spi = "SPI1";
const char* const i2c = "I2C1";
const int enterResets = 20;
const unsigned char done = 0x01;

// Both modes.
const unsigned char peripherals = 0x40; // | power 0x08, pull-ups 0x04, AUX 0x02, CS 0x01
const unsigned char power = 0x08;
const unsigned char pullUps = 0x04;
const unsigned char csHigh = 0x01;
const unsigned char speed = 0x60; // | index into the mode's speed table

// SPI.
const unsigned char spiConfig = 0x80; // | 3.3 V outputs 0x08, idle-high clock 0x04, edge 0x02, sample 0x01
const unsigned char spiOutputs33 = 0x08;
const unsigned char spiEdge = 0x02;
const unsigned char writeThenRead = 0x04; // write and read lengths (16-bit, high first), the bytes
const int transferMax = 4096;
const unsigned int spiSpeeds[] = {30000, 125000, 250000, 1000000, 2000000, 2600000, 4000000, 8000000};

// I2C.
const unsigned char i2cStart = 0x02;
const unsigned char i2cStop = 0x03;
const unsigned char i2cReadByte = 0x04;
const unsigned char i2cAck = 0x06;
const unsigned char i2cNack = 0x07;
const unsigned char i2cBulkWrite = 0x10; // | count - 1; answers 0x01, then one ACK bit a byte
const int bulkMax = 16;
const unsigned char ackBit = 0x00;
const unsigned int i2cSpeeds[] = {5000, 50000, 100000, 400000};
} // namespace CBusPirate
