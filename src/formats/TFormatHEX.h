#pragma once

#include "formats/IFormat.h"
#include "formats/THexRecordWriter.h"

// Intel HEX. Record addresses are file addresses: device address d is stored at d - addr_device + addr_file.
class TFormatHEX : public IFormat {
public:
    TFormatHEX(const QString& file_name, qint64 addr_file, qint64 addr_device, qint64 last_address,
               qint64 chunk);

    bool open(TFormatMode mode) override;
    bool read(long long& addr, QByteArray& data) override;
    bool write(long long pos, QByteArray data) override;
    bool close() override;

private:
    enum { RecordEnd = -1, RecordError = -2 };

    // The next line as record bytes; its type, RecordEnd for anything undecodable, RecordError on failure.
    int readString(QByteArray& record);

    qint64 upper = 0; // address bits 31-16 last read
    THexRecordWriter writer;
    bool ended = false; // an end record or a damaged line was met: no data follows
    TFormatMode mode = FormatModeRead;
};
