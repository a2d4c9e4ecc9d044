#include "BoardSpiFlash.h"

#include "SimChipSpiSfdp.h"

#include <QCryptographicHash>
#include <QStringList>

namespace {
constexpr uint8_t OpWriteEnable = 0x06, OpWriteDisable = 0x04, OpPageProgram = 0x02;
constexpr uint8_t OpRead = 0x03, OpFastRead = 0x0B, OpJedec = 0x9F, OpSfdp = 0x5A, OpUniqueId = 0x4B;
constexpr uint8_t OpStatus1 = 0x05, OpStatus2 = 0x35, OpStatus3 = 0x15;
constexpr uint8_t OpWriteStatus1 = 0x01, OpWriteStatus2 = 0x31, OpWriteStatus3 = 0x11;
constexpr uint8_t OpSecurityRead = 0x48, OpSecurityProgram = 0x42, OpSecurityErase = 0x44;
constexpr uint8_t OpChipErase60 = 0x60, OpChipEraseC7 = 0xC7;
constexpr uint8_t StatusBusy = 0x01, StatusWel = 0x02;
constexpr int SecurityCount = 3, RegisterSize = 256;
// Typical times of a 25-series part: page program, 4 KiB, 32 KiB and 64 KiB erase.
constexpr unsigned long PageProgramUs = 700, Erase4KMs = 45, Erase32KMs = 120, Erase64KMs = 150;

bool eraseEntry(const QString& text, uint8_t& op, qint64& size) {
    const QStringList f = text.split('|');
    bool ok1 = false, ok2 = false;
    if (f.size() != 2) return false;
    op = uint8_t(f.at(0).trimmed().toUInt(&ok1, 16));
    size = f.at(1).trimmed().toLongLong(&ok2);
    return ok1 && ok2 && size > 0;
}

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
} // namespace

BoardSpiFlash::BoardSpiFlash(avr_t* avr, const QVariantMap& params, const QString& name)
    : BoardSpiChip(avr, params), pageSize(qMax(1, params.value("page_size").toInt())) {
    flash = QByteArray(int(qMax<qint64>(1, params.value("size").toLongLong())), char(0xFF));
    security = QByteArray(SecurityCount * RegisterSize, char(0xFF));
    jedec = QByteArray::fromHex(params.value("signature").toString().toLatin1());
    const QByteArray def = QByteArray::fromHex(params.value("status_reg_def").toString().toLatin1());
    for (int i = 0; i < 3 && i < def.size(); ++i)
        status[i] = uint8_t(def.at(i)) & (i == 0 ? 0xFC : 0xFF);
    uint8_t op;
    qint64 size;
    if (eraseEntry(params.value("erase").toString(), op, size)) chipErase = op;
    QList<QPair<unsigned char, qint64>> types;
    for (const QString& e : params.value("erase_blocks").toStringList())
        if (eraseEntry(e, op, size)) {
            blockErase.insert(op, size);
            types.append({op, size});
        }
    sfdp = SimChipSpiSfdp::build(flash.size(), pageSize, types);
    // Every part has its own unique ID, the same in every run and in the programmer simulator.
    uniqueId = QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Md5).left(8);
}

void BoardSpiFlash::selectLine(bool high) {
    if (high && selected) finish();
    selected = !high;
    command.clear();
}

qint64 BoardSpiFlash::address() const {
    if (command.size() < 4) return 0;
    return qint64(uint8_t(command.at(1))) << 16 | uint8_t(command.at(2)) << 8 | uint8_t(command.at(3));
}

uint8_t BoardSpiFlash::transfer(uint8_t mosi) {
    if (!selected) return 0xFF;
    command.append(char(mosi));
    const int index = command.size() - 1;
    if (index == 0) return 0xFF;
    return readByte(index - headerOf(uint8_t(command.at(0))));
}

// The byte the part drives while the index-th data byte is clocked (negative: still in the header).
uint8_t BoardSpiFlash::readByte(int i) {
    const uint8_t op = uint8_t(command.at(0));
    if (op == OpStatus1) return status[0] | (writeEnabled ? StatusWel : 0) | (busy() ? StatusBusy : 0);
    if (i < 0 || busy()) return 0xFF;
    const qint64 a = address();
    auto cyclic = [i](const QByteArray& src, qint64 from) {
        return src.isEmpty() ? uint8_t(0xFF) : uint8_t(src.at(int((from + i) % src.size())));
    };
    switch (op) {
    case OpJedec:
        return cyclic(jedec, 0);
    case OpRead:
    case OpFastRead:
        return cyclic(flash, a % flash.size());
    case OpStatus2:
        return status[1];
    case OpStatus3:
        return status[2];
    case OpSfdp:
        return cyclic(sfdp, a & 0xFF);
    case OpSecurityRead: {
        const int r = securityRegister(a);
        return r < 0 ? 0xFF : uint8_t(security.at(r * RegisterSize + int((a + i) & 0xFF)));
    }
    case OpUniqueId:
        return cyclic(uniqueId, 0);
    default: // an opcode the part does not know: the data line floats high
        return 0xFF;
    }
}

// Writes take effect when chip select goes high, and only with the write-enable latch set.
void BoardSpiFlash::finish() {
    if (command.isEmpty() || busy()) return;
    const uint8_t op = uint8_t(command.at(0));
    if (op == OpWriteEnable || op == OpWriteDisable) {
        writeEnabled = op == OpWriteEnable;
        return;
    }
    if (!writeEnabled) return;
    const qint64 a = address();
    if (op == OpPageProgram && command.size() > 4) {
        if (!isProtected(a / pageSize * pageSize, pageSize))
            program(flash, a % flash.size() / pageSize * pageSize, pageSize, a % flash.size(),
                    command.mid(4));
        busyUntil = now() + cyclesOfUs(PageProgramUs);
    } else if ((op == chipErase || op == OpChipErase60 || op == OpChipEraseC7) && command.size() == 1) {
        erase(0, flash.size(), flash.size() / 4096 * Erase4KMs / 8);
    } else if (blockErase.contains(op) && command.size() == 4) {
        const qint64 size = blockErase.value(op);
        erase(a % flash.size() / size * size, size,
              size <= 4096    ? Erase4KMs
              : size <= 32768 ? Erase32KMs
                              : Erase64KMs);
    } else if (op == OpWriteStatus1 && command.size() >= 2) {
        writeStatus(0, uint8_t(command.at(1)));
        if (command.size() >= 3) writeStatus(1, uint8_t(command.at(2)));
    } else if ((op == OpWriteStatus2 || op == OpWriteStatus3) && command.size() >= 2) {
        writeStatus(op == OpWriteStatus2 ? 1 : 2, uint8_t(command.at(1)));
    } else if (op == OpSecurityProgram && command.size() > 4) {
        const int r = securityRegister(a);
        if (r >= 0 && !(status[1] >> (3 + r) & 1))
            program(security, r * RegisterSize, RegisterSize, r * RegisterSize + (a & 0xFF), command.mid(4));
    } else if (op == OpSecurityErase && command.size() == 4) {
        const int r = securityRegister(a);
        if (r >= 0 && !(status[1] >> (3 + r) & 1))
            security.replace(r * RegisterSize, RegisterSize, QByteArray(RegisterSize, char(0xFF)));
    } else {
        return;
    }
    writeEnabled = false;
}

// Within its page the address wraps; a longer burst keeps its last page of bytes; bits only go to 0.
void BoardSpiFlash::program(QByteArray& target, qint64 base, int span, qint64 addr, const QByteArray& data) {
    const int n = qMin(data.size(), span);
    const QByteArray bytes = data.right(n);
    for (int i = 0; i < n; ++i) {
        const qint64 at = base + (addr - base + i) % span;
        if (at < target.size()) target[int(at)] = char(target.at(int(at)) & bytes.at(i));
    }
}

void BoardSpiFlash::erase(qint64 begin, qint64 size, unsigned long ms) {
    if (!isProtected(begin, size)) flash.replace(int(begin), int(size), QByteArray(int(size), char(0xFF)));
    busyUntil = now() + cyclesOfUs(ms * 1000);
}

// BUSY and WEL are the part's own; the security lock bits, once set, stay set.
void BoardSpiFlash::writeStatus(int reg, uint8_t value) {
    if (reg == 0)
        status[0] = value & 0xFC;
    else if (reg == 1)
        status[1] = (value & 0x7B) | (status[1] & 0x38);
    else
        status[2] = value;
}

// BP2..BP0 (bits 4..2) protect the upper (TB, bit 5, clear) or lower 1/64 .. 1/2 of the part; 7 all.
bool BoardSpiFlash::isProtected(qint64 begin, qint64 size) const {
    const int bp = status[0] >> 2 & 7;
    const qint64 part = bp == 0 ? 0 : bp == 7 ? flash.size() : flash.size() >> (7 - bp);
    const bool bottom = status[0] >> 5 & 1;
    const qint64 pb = bottom ? 0 : flash.size() - part, pe = bottom ? part : flash.size();
    return pb < pe && begin < pe && begin + size > pb;
}

// Register r (0..2) lies at (r + 1) * 4096.
int BoardSpiFlash::securityRegister(qint64 addr) const {
    const int r = int(addr >> 12) - 1;
    return r >= 0 && r < SecurityCount ? r : -1;
}
