#pragma once

#include "formats/IFormat.h"

// Raw binary. "bin" writes a fresh file; "bin+" writes into the existing file and keeps every byte
// outside the written range.
class TFormatBIN : public IFormat {
public:
    TFormatBIN(const QString& format, const QString& file_name, qint64 addr_file, qint64 addr_device,
               qint64 last_address, qint64 chunk);

    bool open(TFormatMode mode) override;
    bool read(long long& addr, QByteArray& data) override;
    bool write(long long pos, QByteArray data) override;
    bool close() override;

private:
    QString format;
};
