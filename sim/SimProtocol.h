#pragma once

// The simulator's own numbers of the native programmer protocol (docs/protocol.md). The application has
// its copy in src/link/CProtocol.h; the two are kept apart on purpose, so that the simulator stays an
// independent programmer that tests can hold the application against.
namespace SimProtocol {

constexpr unsigned char FrameStart = 0xC0;
constexpr unsigned char ErrorReply = 0xFF;
constexpr int FrameHeader = 4;
constexpr int FrameOverhead = 5;

// The programmer's own commands.
constexpr unsigned char ProgInterface = 0x80;
constexpr unsigned char ProgIdent = 0x81;
constexpr unsigned char ProgLED = 0x83;
constexpr unsigned char ProgSetDevice = 0x84;
constexpr unsigned char ProgLeave = 0x85;
constexpr unsigned char ProgReset = 0x86;
constexpr unsigned char ProgGenerator = 0x87;
constexpr unsigned char ProgSetIO = 0x88;
constexpr unsigned char ProgSetVcc = 0x89;
constexpr unsigned char ProgSetVpp = 0x8A;
constexpr unsigned char ProgSetVIcc = 0x8B;
constexpr unsigned char ProgSetVIpp = 0x8C;

// Family packets: 1 and 2 on every bus, the rest by bus.
constexpr unsigned char FamilyFirst = 1;
constexpr unsigned char FamilyLast = 7;
constexpr unsigned char FamilyLeave = 1;
constexpr unsigned char FamilySetClk = 2;

constexpr unsigned char I2cSetAddr = 3;
constexpr unsigned char I2cWrite = 4;
constexpr unsigned char I2cRead = 5;
constexpr unsigned char I2cSelectBase = 0xA0;
constexpr unsigned char I2cSelectMask = 0xF0;

constexpr unsigned char SpiRead = 3;
constexpr unsigned char SpiWrite = 4;

constexpr unsigned char AvrReadFlash = 3;
constexpr unsigned char AvrWriteFlash = 4;
constexpr unsigned char AvrReadEeprom = 5;
constexpr unsigned char AvrWriteEeprom = 6;
constexpr unsigned char AvrInstr = 7;

// SPI flash opcodes the chip model answers.
constexpr unsigned char OpWriteStatus1 = 0x01;
constexpr unsigned char OpPageProgram = 0x02;
constexpr unsigned char OpRead = 0x03;
constexpr unsigned char OpReadStatus1 = 0x05;
constexpr unsigned char OpFastRead = 0x0B;
constexpr unsigned char OpWriteStatus3 = 0x11;
constexpr unsigned char OpReadStatus3 = 0x15;
constexpr unsigned char OpWriteStatus2 = 0x31;
constexpr unsigned char OpReadStatus2 = 0x35;
constexpr unsigned char OpProgramSecurity = 0x42;
constexpr unsigned char OpEraseSecurity = 0x44;
constexpr unsigned char OpReadSecurity = 0x48;
constexpr unsigned char OpReadUniqueId = 0x4B;
constexpr unsigned char OpReadSfdp = 0x5A;
constexpr unsigned char OpChipErase60 = 0x60;
constexpr unsigned char OpJedecId = 0x9F;
constexpr unsigned char OpChipEraseC7 = 0xC7;

// AVR serial programming instructions (first byte, and the second where it tells them apart).
constexpr unsigned char AvrInReadSignature = 0x30;
constexpr unsigned char AvrInReadCalibration = 0x38;
constexpr unsigned char AvrInReadFuseLow = 0x50;
constexpr unsigned char AvrInReadLockHigh = 0x58;
constexpr unsigned char AvrInSelectHigh = 0x08;
constexpr unsigned char AvrInWritePage = 0x4C;
constexpr unsigned char AvrInExtendedAddress = 0x4D;
constexpr unsigned char AvrInProgram = 0xAC;
constexpr unsigned char AvrInChipErase = 0x80;
constexpr unsigned char AvrInWriteFuseLow = 0xA0;
constexpr unsigned char AvrInWriteFuseHigh = 0xA8;
constexpr unsigned char AvrInWriteFuseExt = 0xA4;
constexpr unsigned char AvrInWriteLock = 0xE0;
constexpr unsigned char AvrInWriteFuseOld = 0xBE;

} // namespace SimProtocol
