#pragma once

#include "formats/IFormat.h"
#include "formats/THexRecordWriter.h"
#include "formats/TIntelHexLine.h"

#include <QMap>

// Intel HEX as other tools read and write it (I8HEX, I16HEX, I32HEX): type 02 records carry a segment
// (value x 16), type 04 records the upper 16 address bits. Reading takes in the whole file at open and
// refuses any damage, naming the line; writing uses type 04 records only. Record addresses are file
// addresses: device address d is stored at d - addr_device + addr_file.
class TFormatIHEX : public IFormat {
public:
    TFormatIHEX(const QString& file_name, qint64 addr_file, qint64 addr_device, qint64 last_address,
                qint64 chunk);

    bool open(TFormatMode mode) override;
    bool read(long long& addr, QByteArray& data) override;
    bool write(long long pos, QByteArray data) override;
    bool close() override;

private:
    bool load();
    bool addData(qint64 addr, const uchar* data, int length, qint64 line);
    bool failAt(qint64 line, const QString& fault);

    QMap<qint64, QByteArray> segments; // record address of each contiguous run of data -> its bytes
    THexRecordWriter writer;
    TFormatMode mode = FormatModeRead;
};
