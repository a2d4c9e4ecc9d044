#pragma once

#include <QByteArray>

class QFile;

// The writing half of Intel HEX: bytes written at device positions become data records of up to 16
// bytes that follow each other and never cross a multiple of 16; before the first record of another
// 64 KiB goes the address record, and the encoded lines go to the file in blocks.
class THexRecordWriter {
public:
    static constexpr int record_size = 16;

    // addressType: the record type that carries address bits 31-16, 0 for none; upper: the bits in
    // effect at the start.
    void start(int addressType, qint64 upper);
    // An address record for the bits in effect.
    void addressRecord();
    // False when the file refuses a block (its errorString says why).
    bool write(qint64 pos, const QByteArray& data, QFile& file);
    // The record being gathered, then end (the end record as the format writes it), all to the file.
    bool finish(QFile& file, const QByteArray& end);

private:
    bool flush(QFile& file);
    bool writeOut(QFile& file);

    int address_type = 0;
    qint64 upper = 0;
    qint64 buffer_start = 0;
    QByteArray buffer;
    QByteArray out; // encoded records not yet handed to the file
};
