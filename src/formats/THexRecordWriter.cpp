#include "formats/THexRecordWriter.h"

#include "formats/TIntelHexLine.h"

#include <QFile>

namespace {
constexpr int out_block = 1 << 16;
}

void THexRecordWriter::start(int addressType, qint64 startUpper) {
    address_type = addressType;
    upper = startUpper;
    buffer.clear();
    out.clear();
}

void THexRecordWriter::addressRecord() {
    const uchar bits[2] = {uchar(upper >> 8), uchar(upper)};
    TIntelHexLine::encode(out, address_type, 0, bits, 2);
}

bool THexRecordWriter::write(qint64 pos, const QByteArray& data, QFile& file) {
    const uchar* p = reinterpret_cast<const uchar*>(data.constData());
    qint64 n = data.size();
    while (n > 0) {
        if (!buffer.isEmpty() && pos != buffer_start + buffer.size() && !flush(file)) return false;
        if (buffer.isEmpty()) buffer_start = pos;
        const int take = int(qMin<qint64>(n, record_size - pos % record_size));
        buffer.append(reinterpret_cast<const char*>(p), take);
        pos += take;
        p += take;
        n -= take;
        if (pos % record_size == 0 && !flush(file)) return false;
    }
    return true;
}

bool THexRecordWriter::flush(QFile& file) {
    if (buffer.isEmpty()) return true;
    if (address_type && (buffer_start >> 16) != upper) {
        upper = buffer_start >> 16;
        addressRecord();
    }
    TIntelHexLine::encode(out, TIntelHexLine::Data, quint16(buffer_start),
                          reinterpret_cast<const uchar*>(buffer.constData()), buffer.size());
    buffer.clear();
    return out.size() < out_block || writeOut(file);
}

bool THexRecordWriter::finish(QFile& file, const QByteArray& end) {
    if (!flush(file)) return false;
    out.append(end);
    return writeOut(file) && file.flush();
}

bool THexRecordWriter::writeOut(QFile& file) {
    if (file.write(out) != out.size()) return false;
    out.clear();
    return true;
}
