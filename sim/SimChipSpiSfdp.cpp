#include "SimChipSpiSfdp.h"

namespace {
constexpr int kTableAt = 0x30;
constexpr int kTableDwords = 16;

void putDword(QByteArray& out, int at, quint32 v) {
    for (int i = 0; i < 4; ++i)
        out[at + i] = char((v >> (8 * i)) & 0xFF);
}

int log2Of(qint64 v) {
    int n = 0;
    while (v > 1) {
        v >>= 1;
        ++n;
    }
    return n;
}
} // namespace

QByteArray SimChipSpiSfdp::build(qint64 size, int pageSize,
                                 const QList<QPair<unsigned char, qint64>>& eraseTypes) {
    QByteArray out(256, char(0xFF));
    // Header: "SFDP", revision 1.6, one parameter header, then the basic table's header.
    const char header[] = {'S',  'F',  'D',  'P',          0x06,     0x01, 0x00, char(0xFF),
                           0x00, 0x06, 0x01, kTableDwords, kTableAt, 0x00, 0x00, char(0xFF)};
    out.replace(0, sizeof header, QByteArray(header, sizeof header));

    unsigned char op4k = 0xFF;
    for (const auto& e : eraseTypes)
        if (e.second == 4096) op4k = e.first;
    // 1st dword: 4 KiB erase (01) or none (11), 64-byte write granularity, 3-byte addresses only.
    putDword(out, kTableAt, (op4k == 0xFF ? 0x3u : 0x1u) | 0x4u | quint32(op4k) << 8 | 0xFFF00000u);
    putDword(out, kTableAt + 4, quint32(size * 8 - 1)); // density in bits, minus one
    for (int i = 2; i < 7; ++i)
        putDword(out, kTableAt + 4 * i, 0); // no fast read modes beyond 1-1-1
    // 8th and 9th dwords: erase types 1-4 as (size exponent, opcode).
    quint32 types[2] = {0, 0};
    for (int i = 0; i < eraseTypes.size() && i < 4; ++i)
        types[i / 2] |= quint32(log2Of(eraseTypes.at(i).second) | eraseTypes.at(i).first << 8)
                        << (16 * (i % 2));
    putDword(out, kTableAt + 28, types[0]);
    putDword(out, kTableAt + 32, types[1]);
    putDword(out, kTableAt + 36, 0);
    putDword(out, kTableAt + 40, quint32(log2Of(pageSize)) << 4); // 11th dword: page size exponent
    for (int i = 11; i < kTableDwords; ++i)
        putDword(out, kTableAt + 4 * i, 0);
    return out;
}
