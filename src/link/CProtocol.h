#pragma once

// Numbers of the native programmer protocol, as docs/protocol.md describes them: frames, command bytes,
// error codes and the bytes the host itself builds for the chips (SPI flash opcodes, AVR serial
// programming instructions). The simulator keeps its own copy (sim/SimProtocol.h), so that it stays a
// programmer of its own and does not follow a change here by accident.
namespace CProtocol {

// Frames (docs/protocol.md, "Frames").
constexpr unsigned char FrameStart = 0xC0;
constexpr unsigned char ErrorReply = 0xFF;
constexpr int FrameHeader = 4;   // start, command, two length bytes
constexpr int FrameOverhead = 5; // header and check byte
constexpr int MaxPayload = 0xFFFF;

// Error codes of an error reply (docs/protocol.md, "Error codes").
enum Error : unsigned short {
    ErrUnknownCommand = 0,
    ErrBadFrame = 1,
    ErrLength = 2,
    ErrRange = 3,
    ErrNoDevice = 4,
    ErrNoAck = 5,
    ErrBusy = 6,
    ErrWrite = 7,
    ErrOverCurrent = 8,
    ErrSupply = 9,
    ErrNotSupported = 10,
    ErrInternal = 11,
    ErrCount = 12
};

// The programmer's own commands (docs/protocol.md, "Programmer commands").
namespace Prog {
constexpr unsigned char Interface = 0x80;
constexpr unsigned char Ident = 0x81;
constexpr unsigned char LED = 0x83;
constexpr unsigned char SetDevice = 0x84;
constexpr unsigned char Leave = 0x85;
constexpr unsigned char Reset = 0x86;
constexpr unsigned char Generator = 0x87;
constexpr unsigned char SetIO = 0x88;
constexpr unsigned char SetVcc = 0x89;
constexpr unsigned char SetVpp = 0x8A;
constexpr unsigned char SetVIcc = 0x8B;
constexpr unsigned char SetVIpp = 0x8C;

constexpr unsigned char LedIdle = 0;
constexpr unsigned char LedSelected = 1;
constexpr unsigned char LedError = 2;
} // namespace Prog

// Family packets shared by every target bus (docs/protocol.md, "Family packets").
namespace Family {
constexpr unsigned char Leave = 1;
constexpr unsigned char SetClk = 2;
} // namespace Family

// 24 series on I2C.
namespace I2c {
constexpr unsigned char SetAddr = 3;
constexpr unsigned char Write = 4;
constexpr unsigned char Read = 5;
constexpr unsigned char SelectBase = 0xA0; // device-select byte of a 24-series EEPROM
} // namespace I2c

// 25 series: two generic SPI transactions, and the flash opcodes the host puts in them.
namespace Spi {
constexpr unsigned char Read = 3;
constexpr unsigned char Write = 4;

constexpr unsigned char OpReadStatus1 = 0x05;
constexpr unsigned char OpReadStatus2 = 0x35;
constexpr unsigned char OpReadStatus3 = 0x15;
constexpr unsigned char OpWriteStatus1 = 0x01;
constexpr unsigned char OpWriteStatus2 = 0x31;
constexpr unsigned char OpWriteStatus3 = 0x11;
constexpr unsigned char OpPageProgram = 0x02;
constexpr unsigned char OpFastRead = 0x0B;
constexpr unsigned char OpJedecId = 0x9F;
constexpr unsigned char OpReadSfdp = 0x5A;
constexpr unsigned char OpEraseSecurity = 0x44;
constexpr unsigned char OpProgramSecurity = 0x42;
constexpr unsigned char OpReadSecurity = 0x48;
constexpr unsigned char OpReadUniqueId = 0x4B;
} // namespace Spi

// AVR serial programming: bulk packets, and the one-instruction packet with its instruction bytes.
namespace Avr {
constexpr unsigned char ReadFlash = 3;
constexpr unsigned char WriteFlash = 4;
constexpr unsigned char ReadEeprom = 5;
constexpr unsigned char WriteEeprom = 6;
constexpr unsigned char Instr = 7;

constexpr unsigned char WaitPoll = 0xFF; // wait byte: poll the part until it is ready

constexpr unsigned char InReadSignature = 0x30;
constexpr unsigned char InReadCalibration = 0x38;
constexpr unsigned char InReadFuseLow = 0x50;  // with 08 in the second byte: extended fuse
constexpr unsigned char InReadLockHigh = 0x58; // lock bits; with 08: high fuse
constexpr unsigned char InReadSelectHigh = 0x08;
constexpr unsigned char InWritePage = 0x4C;
constexpr unsigned char InExtendedAddress = 0x4D;
constexpr unsigned char InProgram = 0xAC; // first byte of erase and of fuse and lock writes
constexpr unsigned char InChipErase = 0x80;
constexpr unsigned char InWriteFuseLow = 0xA0;
constexpr unsigned char InWriteFuseHigh = 0xA8;
constexpr unsigned char InWriteFuseExt = 0xA4;
constexpr unsigned char InWriteLock = 0xE0;
constexpr unsigned char InWriteFuseOld = 0xBE;  // oldest parts: one fuse bit in bit 0
constexpr unsigned char InWriteFuseFive = 0xA0; // five fuse bits in bits 4..0
} // namespace Avr

// 93 series (Microwire): only the erase exists so far.
namespace Mw {
constexpr unsigned char Erase = 3;
} // namespace Mw

} // namespace CProtocol
