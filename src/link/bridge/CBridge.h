#pragma once

// Numbers of the native frame protocol that a bridge serves in place of the programmer's firmware.
namespace CBridge {
// The programmer's own commands.
const unsigned char cmdInterface = 0x80;
const unsigned char cmdIdentify = 0x81;
const unsigned char cmdLed = 0x83;
const unsigned char cmdSetDevice = 0x84;
const unsigned char cmdLeave = 0x85;
const unsigned char cmdReset = 0x86;
const unsigned char cmdGenerator = 0x87;
const unsigned char cmdPins = 0x88;
const unsigned char cmdVcc = 0x89;
const unsigned char cmdVpp = 0x8A;
const unsigned char cmdVicc = 0x8B;
const unsigned char cmdVipp = 0x8C;
// Family packets; their meaning depends on the selected device type.
const unsigned char famLeave = 1;
const unsigned char famClock = 2;
const unsigned char famFirst = 1;
const unsigned char famLast = 7;
const unsigned char spiRead = 3;  // count (16-bit), then the bytes to send; reply: count bytes
const unsigned char spiWrite = 4; // the bytes to send, with write enable before and busy wait after
const unsigned char i2cWrite = 4; // select byte, address bytes, data
const unsigned char i2cRead = 5;  // count (16-bit), select byte, address bytes
const unsigned char avrReadFlash = 3;
const unsigned char avrLoadPage = 4;
const unsigned char avrReadEeprom = 5;
const unsigned char avrWriteEeprom = 6;
const unsigned char avrInstruction = 7; // wait byte, 4 instruction bytes; reply r0..r3

// Set-device payload: type (16-bit), hardware configuration, address or reset polarity, clock
// (32-bit), delay.
const int setDeviceSize = 9;
const int setDeviceClockAt = 4;
// Device type codes of the catalogue's types.lst.
const unsigned short typeI2c = 1;
const unsigned short typeSpiFlash = 2;
const unsigned short typeAvr = 3;
const unsigned short typeMicrowire = 4;

// Error codes of error replies (docs/programmer-errors.md).
const unsigned short errUnknownCommand = 0;
const unsigned short errLength = 2;
const unsigned short errRange = 3;
const unsigned short errNoDevice = 4;
const unsigned short errNoAck = 5;
const unsigned short errBusy = 6;
const unsigned short errNotSupported = 10;

// SPI flash opcodes the programmer itself sends around a write transaction.
const unsigned char spiWriteEnable = 0x06;
const unsigned char spiReadStatus = 0x05;
const unsigned char spiStatusBusy = 0x01;
const unsigned char spiReadData = 0x03;
const unsigned char spiFastRead = 0x0B;
} // namespace CBridge
