#include "BoardAvrTarget.h"

namespace {
constexpr uint8_t IProgram = 0xAC, IEnable = 0x53, IErase = 0x80, IReadFlashLow = 0x20, IReadFlashHigh = 0x28;
constexpr uint8_t ILoadLow = 0x40, ILoadHigh = 0x48, IWritePage = 0x4C, IExtended = 0x4D;
constexpr uint8_t IReadEeprom = 0xA0, IWriteEeprom = 0xC0, IPoll = 0xF0, ISignature = 0x30, IOscCal = 0x38;
constexpr uint8_t IFuseLow = 0x50, IFuseHigh = 0x58;
constexpr uint8_t WFuseLow = 0xA0, WFuseHigh = 0xA8, WFuseExt = 0xA4, WLock = 0xE0;
// Write times of the common parts: flash page, EEPROM byte, chip erase, fuse and lock.
constexpr unsigned long FlashUs = 4500, EepromUs = 3600, EraseUs = 9000, FuseUs = 4500;
// EESAVE, where the megaAVR parts keep it: high fuse bit 3, programmed when 0.
constexpr uint8_t EesaveBit = 0x08;

QByteArray hexBytes(const QVariant& v) {
    return QByteArray::fromHex(v.toString().toLatin1());
}
} // namespace

BoardAvrTarget::BoardAvrTarget(avr_t* avr, const QVariantMap& params)
    : BoardSpiChip(avr, params), flashSize(params.value("flash_size").toInt()),
      eepromSize(params.value("eeprom_size").toInt()), eepromEnd(flashSize + eepromSize),
      page(qMax(2, params.value("flash_page_size").toInt())), pageBuffer(page, char(0xFF)),
      signature(hexBytes(params.value("signature"))),
      osccalCount(int(hexBytes(params.value("osccal_def")).size())) {
    const QByteArray fuses = hexBytes(params.value("fuse_def")) + QByteArray(3, char(0xFF));
    const QByteArray locks = hexBytes(params.value("lock_def"));
    lockDefault = locks.isEmpty() ? 0xFF : uint8_t(locks.at(0));
    memory = QByteArray(eepromEnd, char(0xFF)) + fuses.left(3) + QByteArray(1, char(lockDefault));
}

// RESET low holds the part in reset and ready for the programming enable; high lets it run.
void BoardAvrTarget::selectLine(bool high) {
    inReset = !high;
    enabled = false;
    index = 0;
    previous = 0;
}

uint8_t BoardAvrTarget::transfer(uint8_t mosi) {
    if (!inReset) return 0xFF;
    uint8_t out = previous;
    bytes[index] = mosi;
    previous = mosi;
    if (index == 2 && bytes[0] == IProgram && bytes[1] == IEnable) enabled = true;
    if (index == 2 && enabled) {
        const int r = readInstruction(bytes);
        if (r >= 0) previous = uint8_t(r); // the answer comes with the fourth byte
    }
    if (++index == 4) {
        index = 0;
        if (enabled) execute(bytes);
        previous = 0;
    }
    return out;
}

uint8_t BoardAvrTarget::execute(const uint8_t* b) {
    if (b[0] == IPoll || busy()) return 0;
    if (b[0] == IExtended) {
        extended = b[2];
    } else if (b[0] == ILoadLow || b[0] == ILoadHigh) {
        pageBuffer[(b[2] * 2 + (b[0] == ILoadHigh)) % page] = char(b[3]);
    } else if (b[0] == IWritePage) {
        commitPage((unsigned long)extended << 16 | b[1] << 8 | b[2]);
    } else if (b[0] == IWriteEeprom) {
        const int a = (b[1] << 8 | b[2]) % qMax(1, eepromSize);
        if (lock() & 0x01) memory[flashSize + a] = char(b[3]);
        busyFor(EepromUs);
    } else if (b[0] == IProgram) {
        writeInstruction(b);
    }
    return 0;
}

// The value a read instruction answers with, -1 for any other instruction.
int BoardAvrTarget::readInstruction(const uint8_t* b) {
    if (b[0] == IPoll) return busy() ? 1 : 0;
    if (b[0] == ISignature) return b[2] < signature.size() ? uint8_t(signature.at(b[2])) : 0;
    if (b[0] == IOscCal) return b[2] < osccalCount ? 0xA0 + b[2] : 0xFF; // factory trim A0, A1, ...
    if (b[0] == IFuseLow) return uint8_t(fuse(b[1] == 0x08 ? 2 : 0));
    if (b[0] == IFuseHigh) return uint8_t(b[1] == 0x08 ? fuse(1) : lock());
    if (b[0] == IReadFlashLow || b[0] == IReadFlashHigh) {
        const unsigned long byte =
            ((unsigned long)extended << 16 | b[1] << 8 | b[2]) * 2 + (b[0] == IReadFlashHigh);
        return busy() || byte >= (unsigned long)flashSize ? 0xFF : uint8_t(memory.at(int(byte)));
    }
    if (b[0] == IReadEeprom)
        return busy() ? 0xFF : uint8_t(memory.at(flashSize + (b[1] << 8 | b[2]) % qMax(1, eepromSize)));
    return -1;
}

void BoardAvrTarget::writeInstruction(const uint8_t* b) {
    if (b[1] == IErase) return chipErase();
    if (b[1] == WFuseLow || b[1] == WFuseHigh || b[1] == WFuseExt)
        fuse(b[1] == WFuseLow ? 0 : b[1] == WFuseHigh ? 1 : 2) = char(b[3]);
    else if (b[1] == WLock)
        lock() = char(lock() & b[3]); // lock bits are only programmed; the chip erase clears them
    else
        return;
    busyFor(FuseUs);
}

// Lock bit 1 programmed keeps the memories as they are until a chip erase; cells only go from 1 to 0.
void BoardAvrTarget::commitPage(unsigned long wordAddr) {
    const unsigned long base = wordAddr * 2 / page * page;
    if ((lock() & 0x01) && base + page <= (unsigned long)flashSize)
        for (int i = 0; i < page; ++i)
            memory[int(base + i)] = char(memory.at(int(base + i)) & pageBuffer.at(i));
    pageBuffer.fill(char(0xFF));
    busyFor(FlashUs);
}

void BoardAvrTarget::chipErase() {
    memory.replace(0, flashSize, QByteArray(flashSize, char(0xFF)));
    if (fuse(1) & EesaveBit) memory.replace(flashSize, eepromSize, QByteArray(eepromSize, char(0xFF)));
    lock() = char(lockDefault);
    busyFor(EraseUs);
}
