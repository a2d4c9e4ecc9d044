#include "formats/TCRCAlg.h"

#include <QtEndian>
#include <cstring>

TCRCAlg::TCRCAlg(const quint64* table, int width, bool reflected) : width(width), reflected(reflected) {
    const int shift = reflected ? 0 : 64 - width;
    for (int i = 0; i < 256; ++i)
        slice[0][i] = table[i] << shift;
    for (int k = 1; k < 8; ++k)
        for (int i = 0; i < 256; ++i) {
            const quint64 prev = slice[k - 1][i];
            slice[k][i] =
                reflected ? (prev >> 8) ^ slice[0][prev & 0xff] : (prev << 8) ^ slice[0][prev >> 56];
        }
}

quint64 TCRCAlg::update(quint64 reg, const char* data, qint64 length) const {
    const uchar* p = reinterpret_cast<const uchar*>(data);
    if (length <= 0) return reg;
    if (reflected) return updateReflected(reg, p, length);
    return updateNormal(reg << (64 - width), p, length) >> (64 - width);
}

quint64 TCRCAlg::updateReflected(quint64 reg, const uchar* p, qint64 n) const {
    for (; n >= 8; n -= 8, p += 8) {
        quint64 word;
        std::memcpy(&word, p, 8);
        reg ^= qFromLittleEndian(word);
        reg = slice[7][reg & 0xff] ^ slice[6][(reg >> 8) & 0xff] ^ slice[5][(reg >> 16) & 0xff] ^
              slice[4][(reg >> 24) & 0xff] ^ slice[3][(reg >> 32) & 0xff] ^ slice[2][(reg >> 40) & 0xff] ^
              slice[1][(reg >> 48) & 0xff] ^ slice[0][reg >> 56];
    }
    for (; n > 0; --n, ++p)
        reg = (reg >> 8) ^ slice[0][(reg ^ *p) & 0xff];
    return reg;
}

quint64 TCRCAlg::updateNormal(quint64 reg, const uchar* p, qint64 n) const {
    for (; n >= 8; n -= 8, p += 8) {
        quint64 word;
        std::memcpy(&word, p, 8);
        reg ^= qFromBigEndian(word);
        reg = slice[7][reg >> 56] ^ slice[6][(reg >> 48) & 0xff] ^ slice[5][(reg >> 40) & 0xff] ^
              slice[4][(reg >> 32) & 0xff] ^ slice[3][(reg >> 24) & 0xff] ^ slice[2][(reg >> 16) & 0xff] ^
              slice[1][(reg >> 8) & 0xff] ^ slice[0][reg & 0xff];
    }
    for (; n > 0; --n, ++p)
        reg = (reg << 8) ^ slice[0][(reg >> 56) ^ *p];
    return reg;
}

quint64 TCRCAlg::finish(quint64 reg, int width, bool reflect_out, quint64 xorout) {
    if (reflect_out) reg = reflect(reg, width);
    const quint64 mask = width >= 64 ? ~quint64(0) : (quint64(1) << width) - 1;
    return (reg ^ xorout) & mask;
}

quint64 TCRCAlg::reflect(quint64 value, int width) {
    quint64 out = 0;
    for (int i = 0; i < width; ++i, value >>= 1)
        out = (out << 1) | (value & 1);
    return out;
}

QByteArray TCRCAlg::toBytes(quint64 value, int width) {
    QByteArray out((width + 7) / 8, 0);
    for (int i = 0; i < out.size(); ++i)
        out[out.size() - 1 - i] = static_cast<char>(static_cast<uchar>(value >> (8 * i)));
    return out;
}

quint64 TCRCAlg::subtractBytes(quint64 reg, const char* data, qint64 length) {
    for (qint64 i = 0; i < length; ++i)
        reg -= static_cast<uchar>(data[i]);
    return reg & 0xff;
}
