#include "SimChipAvr.h"

#include "SimChipRegistry.h"
#include "SimProtocol.h"

#include <QThread>

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
constexpr unsigned char waitPoll = 0xFF;
// Poll RDY/BSY: every part answers it, bit 0 of the last byte set while a write is still going on.
constexpr unsigned char pollReady = 0xF0;

// The fuse byte (low, high, extended) each fuse instruction reaches; parts with one fuse byte call it
// "fuse".
const char* const fuseNames[3][2] = {{"lfuse", "fuse"}, {"hfuse", nullptr}, {"efuse", nullptr}};

int fuseIndex(const QString& memory) {
    for (int i = 0; i < 3; ++i)
        for (const char* n : fuseNames[i])
            if (n && memory == QLatin1String(n)) return i;
    return -1;
}

const QStringList readNames = {"signature_read", "calibration_read", "lfuse_read", "hfuse_read",
                               "efuse_read",     "fuse_read",        "lock_read"};
const QStringList writeNames = {"chip_erase", "lfuse_write", "hfuse_write",     "efuse_write",
                                "fuse_write", "lock_write",  "flash_writepage", "pgm_enable"};
} // namespace

SimChipAvr::SimChipAvr(const SimChipInfo& info)
    : SimChip(info), flashSize(info.params.value("flash_size").toInt()),
      eepromSize(info.params.value("eeprom_size").toInt()), eepromEnd(flashSize + eepromSize),
      page(qMax(2, info.params.value("flash_page_size").toInt())), pageBuffer(page, char(0xFF)),
      signature(hexBytes(info.params.value("signature"))),
      osccalCount(int(hexBytes(info.params.value("osccal_def")).size())),
      algFlashWrite(info.params.value("alg_flash_write").toInt()),
      resetPolarity(info.params.value("reset_pol").toInt()), isp(SimAvrIsp::fromParams(info.params)),
      params(info.params), timing(info.params.value("sim_timing").toBool()) {
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
    // Lock bit 1 (the lowest the part's lock instruction carries) programmed (0): the memories take no
    // more writes until a chip erase.
    const unsigned char mask = isp.value("lock_write").dataMask();
    return mask && (lock() & (mask & -mask)) == 0;
}

// A packet that reaches the part while it is still writing is lost; by the next one it is ready.
bool SimChipAvr::takeBusy() {
    const bool was = busy;
    busy = false;
    return was;
}

SimReply SimChipAvr::readSpace(const QByteArray& data, int base, int size, qint64 upper) {
    if (data.size() != 4) return SimReply::fail(ErrLength);
    const qint64 addr = upper << 16 | u16(data, 0);
    const int len = u16(data, 2);
    if (addr + len > size) return SimReply::fail(ErrRange);
    if (!programming || takeBusy()) return SimReply::ok(QByteArray(len, char(0xFF)));
    return SimReply::memory(memory.mid(int(base + addr), len));
}

// The programmer loads whole words into the page buffer at their offset inside the page; for parts
// without a commit instruction (flash algorithm 0) it writes the page itself afterwards.
SimReply SimChipAvr::loadPage(const QByteArray& data) {
    if (data.size() < 4 || data.size() % 2 || u16(data, 0) % 2) return SimReply::fail(ErrLength);
    const int addr = u16(data, 0);
    if (!programming || takeBusy()) return SimReply::ok();
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
    if (programming && !takeBusy() && !writesLocked())
        memory.replace(flashSize + addr, data.size() - 2, data.mid(2));
    return SimReply::ok();
}

void SimChipAvr::chipErase() {
    const bool keepEeprom = (fuse(1) & eesaveBit) == 0 && isp.contains("hfuse_write");
    memory.replace(0, flashSize, QByteArray(flashSize, char(0xFF)));
    if (!keepEeprom) memory.replace(flashSize, eepromSize, QByteArray(eepromSize, char(0xFF)));
    lock() = lockDefault;
}

// Parts that read several things with one instruction (fuse and lock bits of the oldest parts) shift
// them out together; each leaves the other's bits at 1.
int SimChipAvr::readInstruction(quint32 instr) const {
    int out = -1;
    for (const QString& name : readNames) {
        const auto it = isp.constFind(name);
        if (it == isp.constEnd() || !it->matches(instr)) continue;
        const quint32 addr = it->address(instr);
        unsigned char value = 0xFF;
        if (name == QLatin1String("signature_read"))
            value =
                addr < quint32(signature.size()) ? static_cast<unsigned char>(signature.at(int(addr))) : 0;
        else if (name == QLatin1String("calibration_read"))
            value = int(addr) < osccalCount ? 0xA0 + addr : 0xFF; // factory trims A0, A1, ...
        else if (name == QLatin1String("lock_read"))
            value = lock();
        else
            value = fuse(fuseIndex(name.section('_', 0, 0)));
        out &= it->readOut(value);
    }
    return out;
}

QString SimChipAvr::writeInstruction(quint32 instr) {
    for (const QString& name : writeNames) {
        const auto it = isp.constFind(name);
        if (it == isp.constEnd() || !it->matches(instr)) continue;
        const QString memory = name.section('_', 0, 0);
        const unsigned char mask = it->dataMask(), v = it->data(instr);
        if (name == QLatin1String("chip_erase")) {
            chipErase();
        } else if (memory == QLatin1String("lock")) {
            lock() &= static_cast<unsigned char>(v | ~mask); // lock bits are only programmed
        } else if (name == QLatin1String("flash_writepage")) {
            commitPage(qint64(extended >> 1) << 17 | qint64(it->address(instr) & 0xFFFF) << 1);
        } else if (fuseIndex(memory) >= 0) {
            unsigned char& f = fuse(fuseIndex(memory));
            f = static_cast<unsigned char>((f & ~mask) | (v & mask));
        }
        return name;
    }
    return QString();
}

// The programmer waits the wait byte after the instruction, or polls until the part is ready.
void SimChipAvr::writeTime(const QString& name, unsigned char wait) {
    const QString memory = name.section('_', 0, 0);
    const QString key = name == QLatin1String("chip_erase")        ? QStringLiteral("isp_chip_erase_us")
                        : name == QLatin1String("flash_writepage") ? QStringLiteral("isp_write_flash_us")
                                                                   : "isp_write_" + memory + "_us";
    const int needUs = params.value(key).toInt();
    if (!timing || needUs <= 0) return;
    const int waitUs = wait == waitPoll ? needUs : wait * 1000;
    busy = waitUs < needUs;
    writeStart.start();
    writeUs = needUs;
    QThread::usleep(ulong(waitUs));
}

SimReply SimChipAvr::instruction(const QByteArray& data) {
    if (data.size() != 5) return SimReply::fail(ErrLength);
    const auto b = [&](int i) { return static_cast<unsigned char>(data.at(1 + i)); };
    if (programming && b(0) == pollReady && b(1) == 0x00) {
        const bool writing = busy && writeStart.nsecsElapsed() < qint64(writeUs) * 1000;
        busy = writing;
        return SimReply::ok(QByteArray(1, '\0') + char(b(0)) + char(b(1)) + char(writing ? 1 : 0));
    }
    if (!programming || takeBusy()) return SimReply::ok(QByteArray(4, char(0xFF)));
    const quint32 instr = quint32(b(0)) << 24 | quint32(b(1)) << 16 | quint32(b(2)) << 8 | b(3);
    QByteArray reply(4, 0);
    reply[1] = char(b(0));
    reply[2] = char(b(1));
    reply[3] = char(b(2));
    if (b(0) == AvrInExtendedAddress) {
        extended = b(2);
        return SimReply::ok(reply);
    }
    const int read = readInstruction(instr);
    if (read >= 0) {
        reply[3] = char(read);
        return SimReply::ok(reply);
    }
    const QString written = writeInstruction(instr);
    if (written.isEmpty()) return SimReply::ok(QByteArray(4, char(0xFF)));
    writeTime(written, static_cast<unsigned char>(data.at(0)));
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
