#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>

// The SFDP area of a serial NOR flash: the header, one parameter header and the basic flash parameter
// table (JESD216) describing the part's size, page and erase types. 256 bytes, unused bytes 0xFF.
namespace SimChipSpiSfdp {
// eraseTypes: (opcode, bytes) of the part's block erases, at most four used.
QByteArray build(qint64 size, int pageSize, const QList<QPair<unsigned char, qint64>>& eraseTypes);
} // namespace SimChipSpiSfdp
