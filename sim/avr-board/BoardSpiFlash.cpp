#include "BoardSpiFlash.h"

namespace {
constexpr uint8_t OpWriteEnable = 0x06, OpWriteDisable = 0x04, OpStatus1 = 0x05, OpPageProgram = 0x02;
constexpr uint8_t OpRead = 0x03, OpFastRead = 0x0B, OpSfdp = 0x5A, OpSecurityRead = 0x48, OpUniqueId = 0x4B;
constexpr uint8_t OpSecurityProgram = 0x42, OpErase4K = 0x20, OpErase32K = 0x52, OpErase64K = 0xD8;
constexpr uint8_t OpWriteStatus1 = 0x01, OpWriteStatus2 = 0x31, OpWriteStatus3 = 0x11;
constexpr uint8_t OpChipErase60 = 0x60, OpChipEraseC7 = 0xC7, OpStatus2 = 0x35, OpStatus3 = 0x15,
                  OpJedec = 0x9F;
constexpr uint8_t StatusBusy = 0x01, StatusWel = 0x02;
constexpr int ReadAhead = 4096;
// Typical times of a 25-series part.
constexpr unsigned long PageProgramUs = 700, StatusWriteUs = 10000, Erase4KUs = 45000, Erase32KUs = 120000,
                        Erase64KUs = 150000;

// Bytes before the data: opcode, address, dummy bytes.
int headerOf(uint8_t op) {
    switch (op) {
    case OpRead:
        return 4;
    case OpFastRead:
    case OpSfdp:
    case OpSecurityRead:
    case OpUniqueId:
        return 5;
    default:
        return 1;
    }
}

bool isRead(uint8_t op) {
    return headerOf(op) > 1 || op == OpStatus1 || op == OpStatus2 || op == OpStatus3 || op == OpJedec;
}
} // namespace

BoardSpiFlash::BoardSpiFlash(avr_t* avr, const QVariantMap& params, const QString& name)
    : BoardSpiChip(avr, params), part(SimChipInfo{name, params, QString()}),
      chipEraseOp(uint8_t(params.value("erase").toString().section('|', 0, 0).toUInt(nullptr, 16))),
      chipEraseUs(Erase4KUs / 8 * (unsigned long)(params.value("size").toLongLong() / 4096)) {}

void BoardSpiFlash::selectLine(bool high) {
    if (high && selected) finish();
    selected = !high;
    command.clear();
    ahead.clear();
}

uint8_t BoardSpiFlash::transfer(uint8_t mosi) {
    if (!selected) return 0xFF;
    command.append(char(mosi));
    const int index = command.size() - 1;
    return index == 0 ? 0xFF : answer(index - headerOf(uint8_t(command.at(0))));
}

// The byte the part drives while data byte i is clocked (negative: still in the header).
uint8_t BoardSpiFlash::answer(int i) {
    const uint8_t op = uint8_t(command.at(0));
    if (op == OpStatus1) {
        const uint8_t s = uint8_t(part.request(3, QByteArray::fromHex("0100") + command.left(1)).data.at(0));
        return s | (writeEnabled ? StatusWel : 0) | (busy() ? StatusBusy : 0);
    }
    if (i < 0 || busy()) return 0xFF;
    if (i >= ahead.size()) {
        const int len = qMin(i + ReadAhead, 0xFFFF);
        QByteArray request(1, char(len & 0xFF));
        request.append(char(len >> 8)).append(command.left(headerOf(op)));
        ahead = part.request(3, request).data;
    }
    return i < ahead.size() ? uint8_t(ahead.at(i)) : 0xFF;
}

// Writes take effect when chip select goes high, and only with the write-enable latch set.
void BoardSpiFlash::finish() {
    if (command.isEmpty() || busy()) return;
    const uint8_t op = uint8_t(command.at(0));
    if (op == OpWriteEnable || op == OpWriteDisable) {
        writeEnabled = op == OpWriteEnable;
        return;
    }
    if (!writeEnabled || isRead(op)) return;
    part.request(4, command);
    busyUntil = now() + cyclesOfUs(writeTimeUs(op));
    writeEnabled = false;
}

unsigned long BoardSpiFlash::writeTimeUs(uint8_t op) const {
    if (op == OpPageProgram || op == OpSecurityProgram) return PageProgramUs;
    if (op == OpWriteStatus1 || op == OpWriteStatus2 || op == OpWriteStatus3) return StatusWriteUs;
    if (op == chipEraseOp || op == OpChipErase60 || op == OpChipEraseC7) return chipEraseUs;
    if (op == OpErase32K) return Erase32KUs;
    if (op == OpErase64K) return Erase64KUs;
    return Erase4KUs;
}
