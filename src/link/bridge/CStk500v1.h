#pragma once

// STK500 version 1 as the ArduinoISP sketch speaks it (Atmel AVR061): a command byte, its parameters
// and the end mark; the answer starts with INSYNC and ends with OK.
namespace CStk500v1 {
const unsigned char eop = 0x20;
const unsigned char ok = 0x10;
const unsigned char failed = 0x11;
const unsigned char unknown = 0x12;
const unsigned char inSync = 0x14;
const unsigned char noSync = 0x15;

const unsigned char getSync = 0x30;
const unsigned char getParameter = 0x41;
const unsigned char setDevice = 0x42;
const unsigned char setDeviceExt = 0x45;
const unsigned char enterProgmode = 0x50;
const unsigned char leaveProgmode = 0x51;
const unsigned char loadAddress = 0x55;
const unsigned char universal = 0x56;
const unsigned char progPage = 0x64;
const unsigned char readPage = 0x74;

const unsigned char parmHwVersion = 0x80;
const unsigned char parmSwMajor = 0x81;
const unsigned char parmSwMinor = 0x82;

const char memFlash = 'F';
const char memEeprom = 'E';
// The sketch's page buffer.
const int pageMax = 256;
// Device codes: the sketch drives the reset line high only for codes from 0xE0 on (AT89 parts).
const unsigned char devcodeAvr = 0x86;
const unsigned char devcodeResetHigh = 0xE0;
} // namespace CStk500v1
