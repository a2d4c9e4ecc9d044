#include "formats/TIntelHexLine.h"

#include "app/TLang.h"

namespace {
// Language texts of the faults, in the order of TIntelHexLine::Fault from NotRecord on.
constexpr int text_not_record = 1002;
constexpr int text_bad_length = 1003;
constexpr int text_bad_checksum = 1004;
constexpr int text_bad_type = 1005;
constexpr int text_bad_address_record = 1006;

// Value of each character as a hexadecimal digit, -1 for any other; a table, as every byte of a file
// goes through it.
struct TDigits {
    signed char value[256];
    constexpr TDigits() : value() {
        for (int c = 0; c < 256; ++c)
            value[c] = c >= '0' && c <= '9'   ? c - '0'
                       : c >= 'A' && c <= 'F' ? c - 'A' + 10
                       : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                              : -1;
    }
};
constexpr TDigits hex_value;

// Data bytes an address or end record must carry.
int fixedLength(int type) {
    switch (type) {
    case TIntelHexLine::End:
        return 0;
    case TIntelHexLine::Segment:
    case TIntelHexLine::Linear:
        return 2;
    case TIntelHexLine::StartSegment:
    case TIntelHexLine::StartLinear:
        return 4;
    default:
        return -1;
    }
}
} // namespace

int TIntelHexLine::digit(char c) {
    return hex_value.value[uchar(c)];
}

TIntelHexLine::Fault TIntelHexLine::decode(const char* line, qint64 size, QByteArray& buffer,
                                           Record& record) {
    while (size > 0 && (line[size - 1] == '\n' || line[size - 1] == '\r' || line[size - 1] == ' ' ||
                        line[size - 1] == '\t'))
        --size;
    if (size == 0) return Blank;
    if (line[0] != ':' || (size - 1) % 2 != 0) return size > 1 && line[0] == ':' ? BadLength : NotRecord;
    const int n = int((size - 1) / 2);
    buffer.resize(n);
    uchar* bytes = reinterpret_cast<uchar*>(buffer.data());
    uchar sum = 0;
    for (int i = 0; i < n; ++i) {
        const int high = digit(line[1 + 2 * i]), low = digit(line[2 + 2 * i]);
        if ((high | low) < 0) return NotRecord;
        bytes[i] = uchar(high << 4 | low);
        sum += bytes[i];
    }
    if (n < 5 || bytes[0] != n - 5) return BadLength;
    if (sum != 0) return BadChecksum;
    record.type = bytes[3];
    record.offset = quint16(bytes[1] << 8 | bytes[2]);
    record.data = bytes + 4;
    record.length = bytes[0];
    if (record.type > StartLinear) return BadType;
    if (record.type != Data && record.length != fixedLength(record.type)) return BadAddressRecord;
    return Ok;
}

void TIntelHexLine::encode(QByteArray& out, int type, quint16 offset, const uchar* data, int length) {
    static const char digits[] = "0123456789ABCDEF";
    char line[1 + 2 * (4 + 255 + 1) + 2];
    char* o = line;
    *o++ = ':';
    uchar sum = 0;
    auto put = [&](uchar b) {
        *o++ = digits[b >> 4];
        *o++ = digits[b & 15];
        sum += b;
    };
    put(uchar(length));
    put(uchar(offset >> 8));
    put(uchar(offset));
    put(uchar(type));
    for (int i = 0; i < length; ++i)
        put(data[i]);
    put(uchar(-sum));
    *o++ = '\r';
    *o++ = '\n';
    out.append(line, int(o - line));
}

QString TIntelHexLine::faultText(Fault fault, int type) {
    switch (fault) {
    case BadLength:
        return Lang.get(text_bad_length);
    case BadChecksum:
        return Lang.get(text_bad_checksum);
    case BadType:
        return Lang.get(text_bad_type).arg(type);
    case BadAddressRecord:
        return Lang.get(text_bad_address_record).arg(type);
    default:
        return Lang.get(text_not_record);
    }
}
