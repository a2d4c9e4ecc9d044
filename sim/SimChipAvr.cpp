#include "SimChipAvr.h"

#include "SimChipRegistry.h"
#include "SimProtocol.h"

using namespace SimProtocol;

namespace {
SimChipRegistrar registrar("DevAVR8_SPI",
                           [](const SimChipInfo& info) { return std::make_unique<SimChipAvr>(info); });

int u16(const QByteArray& d, int at) {
    return static_cast<unsigned char>(d.at(at)) | static_cast<unsigned char>(d.at(at + 1)) << 8;
}

QByteArray hexBytes(const QVariant& v) {
    return QByteArray::fromHex(v.toString().toLatin1());
}

// EESAVE, where the megaAVR parts keep it: high fuse bit 3, programmed when 0.
constexpr unsigned char eesaveBit = 0x08;
} // namespace

SimChipAvr::SimChipAvr(const SimChipInfo& info)
    : SimChip(info), flashSize(info.params.value("flash_size").toInt()),
      eepromSize(info.params.value("eeprom_size").toInt()), eepromEnd(flashSize + eepromSize),
      page(qMax(2, info.params.value("flash_page_size").toInt())), pageBuffer(page, char(0xFF)),
      signature(hexBytes(info.params.value("signature"))),
      osccalCount(int(hexBytes(info.params.value("osccal_def")).size())),
      algFlashWrite(info.params.value("alg_flash_write").toInt()),
      algFuseRead(info.params.value("alg_fuse_read").toInt()),
      algFuseWrite(info.params.value("alg_fuse_write").toInt()),
      algLockWrite(info.params.value("alg_lock_write").toInt()),
      resetPolarity(info.params.value("reset_pol").toInt()) {
    const QByteArray fuses = hexBytes(info.params.value("fuse_def")) + QByteArray(3, char(0xFF));
    const QByteArray locks = hexBytes(info.params.value("lock_def"));
    lockDefault = locks.isEmpty() ? 0xFF : static_cast<unsigned char>(locks.at(0));
    memory = QByteArray(eepromEnd, char(0xFF)) + fuses.left(3) + QByteArray(1, char(lockDefault));
}

void SimChipAvr::select(const QByteArray& payload) {
    // Type (2), hardware configuration, reset polarity, clock (4), delay.
    programming = payload.size() == 9 && static_cast<unsigned char>(payload.at(3)) == resetPolarity;
    extended = 0;
}

bool SimChipAvr::writesLocked() const {
    // Lock bit 1 programmed (0): the memories take no more writes until a chip erase.
    return (lock() & (algLockWrite == 0 ? 0x02 : 0x01)) == 0;
}

SimReply SimChipAvr::readSpace(const QByteArray& data, int base, int size, qint64 upper) {
    if (data.size() != 4) return SimReply::fail(ErrLength);
    const qint64 addr = upper << 16 | u16(data, 0);
    const int len = u16(data, 2);
    if (addr + len > size) return SimReply::fail(ErrRange);
    if (!programming) return SimReply::ok(QByteArray(len, char(0xFF)));
    return SimReply::ok(memory.mid(int(base + addr), len));
}

// The programmer loads whole words into the page buffer at their offset inside the page; for parts
// without a commit instruction (flash algorithm 0) it writes the page itself afterwards.
SimReply SimChipAvr::loadPage(const QByteArray& data) {
    if (data.size() < 4 || data.size() % 2 || u16(data, 0) % 2) return SimReply::fail(ErrLength);
    const int addr = u16(data, 0);
    if (!programming) return SimReply::ok();
    for (int i = 2; i < data.size(); ++i)
        pageBuffer[(addr + i - 2) % page] = data.at(i);
    if (algFlashWrite == 0) commitPage(addr);
    return SimReply::ok();
}

// Flash cells only go from 1 to 0 when written; the buffer is FF again afterwards.
void SimChipAvr::commitPage(qint64 byteAddr) {
    const qint64 base = byteAddr - byteAddr % page;
    if (!writesLocked() && base + page <= flashSize)
        for (int i = 0; i < page; ++i)
            memory[int(base + i)] = char(memory.at(int(base + i)) & pageBuffer.at(i));
    pageBuffer.fill(char(0xFF));
}

SimReply SimChipAvr::writeEeprom(const QByteArray& data) {
    if (data.size() < 3) return SimReply::fail(ErrLength);
    const int addr = u16(data, 0);
    if (addr + data.size() - 2 > eepromSize) return SimReply::fail(ErrRange);
    if (programming && !writesLocked()) memory.replace(flashSize + addr, data.size() - 2, data.mid(2));
    return SimReply::ok();
}

void SimChipAvr::chipErase() {
    const bool keepEeprom = (fuse(1) & eesaveBit) == 0 && algFuseWrite == 2;
    memory.replace(0, flashSize, QByteArray(flashSize, char(0xFF)));
    if (!keepEeprom) memory.replace(flashSize, eepromSize, QByteArray(eepromSize, char(0xFF)));
    lock() = lockDefault;
}

int SimChipAvr::readInstruction(unsigned char b0, unsigned char b1, unsigned char b2) const {
    if (b0 == AvrInReadSignature && b1 == 0x00)
        return b2 < signature.size() ? static_cast<unsigned char>(signature.at(b2)) : 0;
    // Factory-trimmed calibration: A0, A1, ... for as many bytes as the part has.
    if (b0 == AvrInReadCalibration && b1 == 0x00) return b2 < osccalCount ? 0xA0 + b2 : 0xFF;
    if (b0 == AvrInReadFuseLow && b1 == 0x00) return fuse(0);
    if (b0 == AvrInReadFuseLow && b1 == AvrInSelectHigh) return fuse(2);
    if (b0 == AvrInReadLockHigh && b1 == AvrInSelectHigh) return fuse(1);
    if (b0 == AvrInReadLockHigh && b1 == 0x00) {
        // The oldest parts show their lock bits in bits 6 and 5 beside fuse bits 5 and 0.
        if (algLockWrite == 0) return (lock() & 0x06) << 4 | (algFuseRead == 0 ? fuse(0) & 0x21 : 0);
        return lock();
    }
    return -1;
}

void SimChipAvr::writeInstruction(unsigned char b1, unsigned char b3) {
    if (b1 == AvrInChipErase) return chipErase();
    if (algFuseWrite == 0 && (b1 & 0xFE) == AvrInWriteFuseOld) {
        fuse(0) = static_cast<unsigned char>((fuse(0) & ~1) | (b1 & 1));
    } else if (algFuseWrite == 1 && (b1 & 0xE0) == AvrInWriteFuseLow) {
        fuse(0) = static_cast<unsigned char>((fuse(0) & 0xE0) | (b1 & 0x1F));
    } else if (algFuseWrite == 2 &&
               (b1 == AvrInWriteFuseLow || b1 == AvrInWriteFuseHigh || b1 == AvrInWriteFuseExt)) {
        fuse(b1 == AvrInWriteFuseLow ? 0 : b1 == AvrInWriteFuseHigh ? 1 : 2) = b3;
    } else if (algLockWrite == 1 && b1 == AvrInWriteLock) {
        lock() &= b3; // lock bits are only programmed; the chip erase clears them
    } else if (algLockWrite == 0) {
        lock() &= static_cast<unsigned char>(b1 | ~0x06);
    }
}

SimReply SimChipAvr::instruction(const QByteArray& data) {
    if (data.size() != 5) return SimReply::fail(ErrLength);
    if (!programming) return SimReply::ok(QByteArray(4, char(0xFF)));
    const auto b = [&](int i) { return static_cast<unsigned char>(data.at(1 + i)); };
    QByteArray reply(4, 0);
    reply[1] = char(b(0));
    reply[2] = char(b(1));
    reply[3] = char(b(2));
    const int read = readInstruction(b(0), b(1), b(2));
    if (read >= 0)
        reply[3] = char(read);
    else if (b(0) == AvrInExtendedAddress)
        extended = b(2);
    else if (b(0) == AvrInWritePage)
        commitPage(qint64(extended >> 1) << 17 | (b(1) << 8 | b(2)) << 1);
    else if (b(0) == AvrInProgram)
        writeInstruction(b(1), b(3));
    return SimReply::ok(reply);
}

SimReply SimChipAvr::request(unsigned char cmd, const QByteArray& data) {
    switch (cmd) {
    case AvrReadFlash:
        return readSpace(data, 0, flashSize, extended);
    case AvrWriteFlash:
        return loadPage(data);
    case AvrReadEeprom:
        return readSpace(data, flashSize, eepromSize, 0);
    case AvrWriteEeprom:
        return writeEeprom(data);
    case AvrInstr:
        return instruction(data);
    default:
        return SimReply::fail(ErrUnknownCommand);
    }
}
