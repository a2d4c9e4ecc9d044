#include "SimChipSpiFlash.h"

#include "SimChipRegistry.h"
#include "SimChipSpiSfdp.h"
#include "SimProtocol.h"

#include <QCryptographicHash>
#include <QThread>

using namespace SimProtocol;

namespace {
SimChipRegistrar registrar("Dev25",
                           [](const SimChipInfo& info) { return std::make_unique<SimChipSpiFlash>(info); });

constexpr int kSecurityCount = 3;
constexpr int kRegister = 256;
// Typical times of a 25-series part (page program, 4 KiB, 32 KiB and 64 KiB erase), used with timing on.
constexpr int kPageProgramUs = 700;
constexpr int kEraseMsPer4K = 45, kEraseMs32K = 120, kEraseMs64K = 150;

qint64 addr24(const QByteArray& tx, int at) {
    if (tx.size() < at + 3) return 0;
    return qint64(uchar(tx.at(at))) << 16 | uchar(tx.at(at + 1)) << 8 | uchar(tx.at(at + 2));
}

QByteArray fromHex(const QString& text) {
    return QByteArray::fromHex(text.toLatin1());
}

// (opcode, size) from a catalogue text "opcode|size".
bool eraseEntry(const QString& text, unsigned char& op, qint64& size) {
    const QStringList f = text.split('|');
    if (f.size() != 2) return false;
    bool ok1 = false, ok2 = false;
    op = uchar(f.at(0).trimmed().toUInt(&ok1, 16));
    size = f.at(1).trimmed().toLongLong(&ok2);
    return ok1 && ok2 && size > 0;
}
} // namespace

SimChipSpiFlash::SimChipSpiFlash(const SimChipInfo& info)
    : SimChip(info), pageSize(qMax(1, info.params.value("page_size").toInt())),
      timing(info.params.value("sim_timing").toBool()),
      byteProgram(info.params.value("program_mode").toString() != QLatin1String("page") &&
                  info.params.contains("program_mode")) {
    const QVariantMap& p = info.params;
    flash = QByteArray(int(qMax<qint64>(1, p.value("size").toLongLong())), char(0xFF));
    security = QByteArray(kSecurityCount * kRegister, char(0xFF));
    jedec = fromHex(p.value("signature").toString());
    const QByteArray def = fromHex(p.value("status_reg_def").toString());
    for (int i = 0; i < 3 && i < def.size(); ++i)
        status[i] = uchar(def.at(i)) & (i == 0 ? 0xFC : 0xFF);
    unsigned char op;
    qint64 size;
    if (eraseEntry(p.value("erase").toString(), op, size)) chipErase = op;
    QList<QPair<unsigned char, qint64>> types;
    for (const QString& e : p.value("erase_blocks").toStringList())
        if (eraseEntry(e, op, size)) {
            blockErase.insert(op, size);
            types.append({op, size});
        }
    sfdp = SimChipSpiSfdp::build(flash.size(), pageSize, types);
    // Every part has its own unique ID, the same in every run.
    uniqueId = QCryptographicHash::hash(info.name.toUtf8(), QCryptographicHash::Md5).left(8);
}

SimReply SimChipSpiFlash::request(unsigned char cmd, const QByteArray& data) {
    if (cmd == SpiRead) {
        if (data.size() < 3) return SimReply::fail(ErrLength);
        const int len = uchar(data.at(0)) | uchar(data.at(1)) << 8;
        const unsigned char op = uchar(data.at(2));
        const QByteArray out = read(data.mid(2), len);
        return op == OpRead || op == OpFastRead ? SimReply::memory(out) : SimReply::ok(out);
    }
    if (cmd == SpiWrite) {
        if (data.isEmpty()) return SimReply::fail(ErrLength);
        write(data);
        return SimReply::ok();
    }
    return SimReply::fail(ErrUnknownCommand);
}

QByteArray SimChipSpiFlash::read(const QByteArray& tx, int len) const {
    QByteArray out;
    const unsigned char op = uchar(tx.at(0));
    auto cycle = [&](const QByteArray& src, qint64 from) {
        for (int i = 0; i < len; ++i)
            out.append(src.at(int((from + i) % src.size())));
    };
    switch (op) {
    case OpJedecId:
        cycle(jedec.isEmpty() ? QByteArray(1, char(0xFF)) : jedec, 0);
        break;
    case OpRead:
    case OpFastRead:
        cycle(flash, addr24(tx, 1) % flash.size());
        break;
    case OpReadStatus1:
    case OpReadStatus2:
    case OpReadStatus3:
        out = QByteArray(len, char(status[op == OpReadStatus1 ? 0 : op == OpReadStatus2 ? 1 : 2]));
        break;
    case OpReadSfdp:
        cycle(sfdp, addr24(tx, 1) & 0xFF);
        break;
    case OpReadSecurity:
        out = readSecurity(addr24(tx, 1), len);
        break;
    case OpReadUniqueId:
        cycle(uniqueId, 0);
        break;
    default: // an opcode the part does not know: the data line floats high
        out = QByteArray(len, char(0xFF));
    }
    return out;
}

// Register r (0..2) lies at (r + 1) * 4096; anything else reads as 0xFF.
int SimChipSpiFlash::securityIndex(qint64 addr) const {
    const int r = int(addr >> 12) - 1;
    return r >= 0 && r < kSecurityCount ? r : -1;
}

QByteArray SimChipSpiFlash::readSecurity(qint64 addr, int len) const {
    const int r = securityIndex(addr);
    QByteArray out;
    for (int i = 0; i < len; ++i)
        out.append(r < 0 ? char(0xFF) : security.at(r * kRegister + int((addr + i) & 0xFF)));
    return out;
}

void SimChipSpiFlash::write(const QByteArray& tx) {
    const unsigned char op = uchar(tx.at(0));
    const qint64 addr = addr24(tx, 1);
    if (op == OpPageProgram && tx.size() >= 4)
        program(addr, tx.mid(4));
    else if (op == chipErase || op == OpChipErase60 || op == OpChipEraseC7)
        eraseRange(0, flash.size(), int(flash.size() / 4096) * kEraseMsPer4K / 8);
    else if (blockErase.contains(op)) {
        const qint64 size = blockErase.value(op);
        const int ms = size <= 4096 ? kEraseMsPer4K : size <= 32768 ? kEraseMs32K : kEraseMs64K;
        eraseRange(addr % flash.size() / size * size, size, ms);
    } else if (op == OpWriteStatus1 && tx.size() >= 2) {
        writeStatus(0, uchar(tx.at(1)));
        if (tx.size() >= 3) writeStatus(1, uchar(tx.at(2)));
    } else if ((op == OpWriteStatus2 || op == OpWriteStatus3) && tx.size() >= 2)
        writeStatus(op == OpWriteStatus2 ? 1 : 2, uchar(tx.at(1)));
    else if (op == OpProgramSecurity && tx.size() >= 4)
        programSecurity(addr, tx.mid(4));
    else if (op == OpEraseSecurity)
        eraseSecurity(addr);
}

// Within the page, the address wraps; a programmed bit can only go from 1 to 0. A part whose program
// instruction writes one byte takes the first and ignores the rest.
void SimChipSpiFlash::program(qint64 addr, const QByteArray& data) {
    if (byteProgram) return program(addr, data.left(1), 1);
    program(addr, data, pageSize);
}

void SimChipSpiFlash::program(qint64 addr, const QByteArray& data, int span) {
    addr %= flash.size();
    const qint64 page = addr / span * span;
    const int n = int(qMin<qint64>(data.size(), span));
    const QByteArray bytes = data.right(n); // a longer burst keeps only its last page of bytes
    if (!isProtected(page, span))
        for (int i = 0; i < n; ++i) {
            const qint64 at = page + (addr - page + i) % span;
            if (at < flash.size()) flash[int(at)] = char(flash.at(int(at)) & bytes.at(i));
        }
    wait(timing ? kPageProgramUs / 1000 + 1 : 0);
}

void SimChipSpiFlash::eraseRange(qint64 begin, qint64 size, int typicalMs) {
    if (!isProtected(begin, size)) flash.replace(int(begin), int(size), QByteArray(int(size), char(0xFF)));
    wait(typicalMs);
}

void SimChipSpiFlash::programSecurity(qint64 addr, const QByteArray& data) {
    const int r = securityIndex(addr);
    if (r < 0 || status[1] >> (3 + r) & 1) return; // a locked register stays as it is
    for (int i = 0; i < data.size() && i < kRegister; ++i) {
        const int at = r * kRegister + int((addr + i) & 0xFF);
        security[at] = char(security.at(at) & data.at(i));
    }
}

void SimChipSpiFlash::eraseSecurity(qint64 addr) {
    const int r = securityIndex(addr);
    if (r < 0 || status[1] >> (3 + r) & 1) return;
    security.replace(r * kRegister, kRegister, QByteArray(kRegister, char(0xFF)));
    wait(kEraseMsPer4K);
}

// BUSY and WEL are the part's own; the security lock bits, once set, stay set.
void SimChipSpiFlash::writeStatus(int reg, unsigned char value) {
    if (reg == 0)
        status[0] = value & 0xFC;
    else if (reg == 1)
        status[1] = (value & 0x7B) | (status[1] & 0x38);
    else
        status[2] = value;
}

// BP2..BP0 (bits 4..2) protect the upper (TB, bit 5, clear) or lower 1/64 .. 1/2 of the part; 7 all.
void SimChipSpiFlash::protectedRange(qint64& begin, qint64& end) const {
    const int bp = status[0] >> 2 & 7;
    const qint64 size = flash.size();
    const qint64 part = bp == 0 ? 0 : bp == 7 ? size : size >> (7 - bp);
    const bool bottom = status[0] >> 5 & 1;
    begin = bottom ? 0 : size - part;
    end = bottom ? part : size;
}

bool SimChipSpiFlash::isProtected(qint64 begin, qint64 size) const {
    qint64 pb, pe;
    protectedRange(pb, pe);
    return pb < pe && begin < pe && begin + size > pb;
}

void SimChipSpiFlash::wait(int ms) const {
    if (timing && ms > 0) QThread::msleep(ulong(ms));
}
