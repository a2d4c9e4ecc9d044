#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

// 0 reads the file (data to program or verify), 1 writes it (data read from the chip).
enum TFormatMode : int { FormatModeRead = 0, FormatModeWrite = 1 };

// A data file seen as a range of device addresses. File address addr_file holds device address
// addr_device; the range ends at last_address (inclusive); no piece is longer than chunk nor crosses a
// multiple of it.
class IFormat {
public:
    IFormat(const QString& file_name, qint64 addr_file, qint64 addr_device, qint64 last_address,
            qint64 chunk);
    virtual ~IFormat() = default;

    virtual bool open(TFormatMode mode) = 0;
    // addr: in, the device address wanted next; out, the address of the piece. Empty data: no more.
    virtual bool read(long long& addr, QByteArray& data) = 0;
    // pos is the file address of the piece.
    virtual bool write(long long pos, QByteArray data) = 0;
    virtual bool close() = 0;

    QString getErrorText() const { return error_text; }

    // Files are read only when they are regular files of at most limit bytes, so that a device or a FIFO
    // never blocks a run nor fills the memory: the text why not, naming the file, or empty.
    static QString checkReadable(const QString& name, qint64 limit);
    static const qint64 maxFileSize = qint64(256) << 20;

protected:
    // Opens the file with the texts for a missing (reading only) or unopenable file.
    bool openFile(TFormatMode mode, QIODevice::OpenMode flags);
    bool fail(const QString& text);

    QFile file;
    QString error_text;
    QString file_name;
    qint64 addr_file;
    qint64 addr_device;
    qint64 last_address;
    qint64 chunk;
    qint64 pos_file;
    qint64 pos_device;
};
