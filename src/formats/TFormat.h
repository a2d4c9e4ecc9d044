#pragma once

#include "formats/IFormat.h"

#include <QStringList>
#include <memory>

// The data file of a read, write or verify command, in the format its key names: "bin", "bin+" or
// Intel HEX for "hex" and for any other key.
class TFormat {
public:
    TFormat(QString format, QString file, long long addr_file, long long addr_device, long long last_address,
            long long chunk);
    ~TFormat();

    bool open(TFormatMode mode);
    bool read(long long& addr, QByteArray& data);
    bool write(long long pos, QByteArray data);
    bool close();
    QString getErrorText() const;

    static QStringList getViewFormats();
    static QString getMaskFormats();

private:
    std::unique_ptr<IFormat> format;
};
