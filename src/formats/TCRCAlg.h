#pragma once

#include <QByteArray>
#include <QtGlobal>

// The table-driven computation shared by every CRC model up to 64 bits wide. A model hands over its
// 256-entry byte table once; the seven further tables of slicing-by-8 are derived from it, so that long
// inputs are consumed eight bytes per step.
class TCRCAlg {
public:
    TCRCAlg(const quint64* table, int width, bool reflected);

    // reg is the register right-aligned, as the model keeps it.
    quint64 update(quint64 reg, const char* data, qint64 length) const;

    // Output reflection (only when it differs from the input's), xorout and the width mask.
    static quint64 finish(quint64 reg, int width, bool reflect, quint64 xorout);
    static quint64 reflect(quint64 value, int width);
    static QByteArray toBytes(quint64 value, int width);
    static quint64 subtractBytes(quint64 reg, const char* data, qint64 length);

private:
    quint64 updateReflected(quint64 reg, const uchar* p, qint64 n) const;
    quint64 updateNormal(quint64 reg, const uchar* p, qint64 n) const;

    int width;
    bool reflected;
    // Non-reflected tables are kept left-aligned in 64 bits, so one loop serves every width.
    quint64 slice[8][256];
};
