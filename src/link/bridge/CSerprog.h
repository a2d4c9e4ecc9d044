#pragma once

// The serprog protocol (flashrom's serprog-protocol.txt): one command byte, its parameters, and an
// ACK or NAK followed by the command's answer.
namespace CSerprog {
const unsigned char ack = 0x06;
const unsigned char nak = 0x15;

const unsigned char nop = 0x00;
const unsigned char qIface = 0x01;
const unsigned char qCmdMap = 0x02;
const unsigned char qPgmName = 0x03;
const unsigned char qSerBuf = 0x04;
const unsigned char qBusType = 0x05;
const unsigned char qWrnMaxLen = 0x08;
const unsigned char syncNop = 0x10;
const unsigned char qRdnMaxLen = 0x11;
const unsigned char sBusType = 0x12;
const unsigned char oSpiOp = 0x13;
const unsigned char sSpiFreq = 0x14;
const unsigned char sPinState = 0x15;

const unsigned short ifaceVersion = 1;
const int cmdMapSize = 32;
const int pgmNameSize = 16;
const unsigned char busSpi = 0x08;
// Lengths are 24-bit; 0 in a length query means the protocol's maximum.
const int lengthMax = (1 << 24) - 1;
// What flashrom assumes of a firmware's serial buffer when it does not answer Q_SERBUF: commands sent
// ahead of their answers must stay below it.
const int serBufDefault = 16;
// Some firmwares (pico-serprog) take no more than this in one operation.
const int opMax = 4096;
} // namespace CSerprog
