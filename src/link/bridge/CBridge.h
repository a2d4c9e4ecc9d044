#pragma once

// What a bridge needs of the native protocol beyond the numbers of link/CProtocol.h.
namespace CBridge {
// Family packets are command bytes 1 to 7; their meaning depends on the selected device type.
const unsigned char famFirst = 1;
const unsigned char famLast = 7;

// Set-device payload: type (16-bit), hardware configuration, address or reset polarity, clock
// (32-bit), delay.
const int setDeviceSize = 9;
const int setDeviceClockAt = 4;
// Device type codes of the catalogue's types.lst.
const unsigned short typeI2c = 1;
const unsigned short typeSpiFlash = 2;
const unsigned short typeAvr = 3;

// SPI flash opcodes the programmer itself sends around a write transaction, and a plain read.
const unsigned char spiWriteEnable = 0x06;
const unsigned char spiStatusBusy = 0x01;
const unsigned char spiReadData = 0x03;
} // namespace CBridge
