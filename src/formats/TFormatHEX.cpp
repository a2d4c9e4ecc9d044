#include "formats/TFormatHEX.h"

#include "app/TLang.h"
#include "formats/TIntelHexLine.h"
#include "misc/dev_misc.h"

#include <climits>

namespace {
constexpr int max_line = 1024;

} // namespace

TFormatHEX::TFormatHEX(const QString& file_name, qint64 addr_file, qint64 addr_device, qint64 last_address,
                       qint64 chunk)
    : IFormat(file_name, addr_file, addr_device, last_address, chunk) {}

bool TFormatHEX::open(TFormatMode open_mode) {
    mode = open_mode;
    upper = 0;
    ended = false;
    if (mode == FormatModeRead) return openFile(mode, QIODevice::ReadOnly);
    if (!openFile(mode, QIODevice::WriteOnly | QIODevice::Truncate)) return false;
    // The kind of address record follows from the end of the range. Type 02 carries the upper 16 address
    // bits just like type 04, not a segment; the reader takes it the same way.
    const qint64 last_record = addr_file + (last_address - addr_device);
    const int address_type = last_record > 0xFFFFF ? 4 : last_record > 0xFFFF ? 2 : 0;
    writer.start(address_type, address_type ? addr_file >> 16 : 0);
    if (address_type) writer.addressRecord();
    return true;
}

int TFormatHEX::readString(QByteArray& record) {
    char line[max_line + 1];
    const qint64 n = file.readLine(line, sizeof line);
    if (n <= 0) {
        if (n == 0 || file.atEnd()) return RecordEnd;
        fail(Lang.get(420).arg(file.errorString()));
        return RecordError;
    }
    qint64 end = n;
    while (end > 0 && (line[end - 1] == '\n' || line[end - 1] == '\r' || line[end - 1] == ' '))
        --end;
    if (end < 11 || line[0] != ':' || (end - 1) % 2 != 0) return RecordEnd;
    record.resize(int((end - 1) / 2));
    uchar* rec = reinterpret_cast<uchar*>(record.data());
    const uchar* digits = reinterpret_cast<const uchar*>(line + 1);
    uchar sum = 0;
    for (int i = 0; i < record.size(); ++i) {
        const int high = TIntelHexLine::digit(char(digits[2 * i]));
        const int low = TIntelHexLine::digit(char(digits[2 * i + 1]));
        if ((high | low) < 0) return RecordEnd;
        rec[i] = uchar(high << 4 | low);
        sum += rec[i];
    }
    if (sum != 0 || rec[0] != record.size() - 5) return RecordEnd;
    return uchar(record[3]);
}

namespace {
// Ranges come from project files: a sum past 64 bits is held at the limit, which lies beyond every address
// a HEX file can hold, instead of wrapping round to a small one.
qint64 clampedSum(__int128 a, __int128 b, __int128 c) {
    const __int128 sum = a + b + c;
    return sum > LLONG_MAX ? LLONG_MAX : sum < LLONG_MIN ? LLONG_MIN : qint64(sum);
}
} // namespace

// A damaged line ends the data as if the file ended there; no error is reported for it.
bool TFormatHEX::read(long long& addr, QByteArray& data) {
    data.clear();
    const qint64 start = clampedSum(addr, -__int128(addr_device), addr_file);
    const qint64 last = clampedSum(addr_file, last_address, -__int128(addr_device));
    qint64 begin = -1, limit = 0;
    QByteArray record;
    while (!ended) {
        const qint64 line_pos = file.pos();
        const int type = readString(record);
        if (type == RecordError) return false;
        if (type == RecordEnd || type == 1) {
            ended = true;
            break;
        }
        const uchar* rec = reinterpret_cast<const uchar*>(record.constData());
        if ((type == 2 || type == 4) && rec[0] == 2) upper = rec[4] << 8 | rec[5];
        if (type != 0) continue;
        qint64 a = (upper << 16) + (rec[1] << 8 | rec[2]);
        qint64 n = rec[0];
        const qint64 skip = qMax<qint64>(0, start - a);
        if (skip >= n) continue;
        a += skip;
        n -= skip;
        const bool continues = begin < 0 || a == begin + data.size();
        if (a > last || !continues) {
            file.seek(line_pos); // this record begins the next piece
            break;
        }
        if (begin < 0) {
            begin = a;
            limit = TMiscDev::getSize(a - addr_file + addr_device, last_address, chunk);
            data.reserve(int(qMin<qint64>(limit, 1 << 20)));
        }
        const qint64 take = qMin(qMin(n, limit - data.size()), last - a + 1);
        data.append(record.constData() + 4 + skip, int(take));
        if (take < n) file.seek(line_pos);
        if (take < n || data.size() >= limit) break;
    }
    if (begin >= 0) addr = begin - addr_file + addr_device;
    return true;
}

bool TFormatHEX::write(long long pos, QByteArray data) {
    return writer.write(pos, data, file) || fail(file.errorString());
}

bool TFormatHEX::close() {
    if (!file.isOpen()) return true;
    bool ok = true;
    if (mode == FormatModeWrite) {
        // The thirteen bare line feeds after the end record are kept so that files stay byte for byte
        // the same as those written by earlier versions.
        ok = writer.finish(file, ":00000001FF" + QByteArray(13, '\n')) || fail(file.errorString());
    }
    file.close();
    return ok;
}
