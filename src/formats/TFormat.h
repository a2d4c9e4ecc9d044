#pragma once

#include "formats/IFormat.h"

#include <QStringList>
#include <memory>

// The data file of a read, write or verify command, in the format its key names: "bin", "bin+",
// "ihex" (Intel HEX as other tools write it) or this program's own HEX dialect for "hex" and for any
// other key.
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

    // Display names, in the order of getFormatKeys().
    static QStringList getViewFormats();
    static QStringList getFormatKeys();
    // The display name of a key (any case); an unknown key is shown as it is, in upper case.
    static QString getViewFormat(const QString& key);
    static bool isFormat(const QString& key);
    // The key of the format that reads key: "bin", "bin+", "ihex", or "hex" for any other text.
    static QString getKey(const QString& key);
    static QString getMaskFormats();
    // Why a file of this format written up to file address lastAddress may mislead other tools (the HEX
    // dialect's type 02 records below 1 MiB), or empty.
    static QString getWarning(const QString& key, qint64 lastAddress);

private:
    std::unique_ptr<IFormat> format;
};
