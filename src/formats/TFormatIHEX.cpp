#include "formats/TFormatIHEX.h"

#include "app/TLang.h"
#include "misc/dev_misc.h"

namespace {
constexpr int max_line = 4096;
constexpr qint64 address_limit = qint64(1) << 32;

constexpr int text_at_line = 1000;
constexpr int text_no_end = 1001;
constexpr int text_after_end = 1007;
constexpr int text_conflict = 1008;
constexpr int text_beyond_4g = 1009;
} // namespace

TFormatIHEX::TFormatIHEX(const QString& file_name, qint64 addr_file, qint64 addr_device, qint64 last_address,
                         qint64 chunk)
    : IFormat(file_name, addr_file, addr_device, last_address, chunk) {}

bool TFormatIHEX::open(TFormatMode open_mode) {
    mode = open_mode;
    writer.start(TIntelHexLine::Linear, 0);
    segments.clear();
    if (mode == FormatModeWrite) return openFile(mode, QIODevice::WriteOnly | QIODevice::Truncate);
    if (!openFile(mode, QIODevice::ReadOnly)) return false;
    const bool ok = load();
    file.close();
    if (!ok) segments.clear();
    return ok;
}

bool TFormatIHEX::failAt(qint64 line, const QString& fault) {
    return fail(Lang.get(text_at_line).arg(file_name).arg(line).arg(fault));
}

bool TFormatIHEX::load() {
    char line[max_line];
    QByteArray bytes;
    TIntelHexLine::Record record;
    qint64 base = 0, number = 0, end_line = 0;
    for (;;) {
        const qint64 n = file.readLine(line, sizeof line);
        if (n < 0 && !file.atEnd()) return fail(Lang.get(420).arg(file.errorString()));
        if (n <= 0) break;
        ++number;
        // A line that fills the buffer without its end is longer than any record can be.
        const bool whole = line[n - 1] == '\n' || file.atEnd();
        const TIntelHexLine::Fault fault =
            whole ? TIntelHexLine::decode(line, n, bytes, record) : TIntelHexLine::BadLength;
        if (fault == TIntelHexLine::Blank) continue;
        if (end_line) return failAt(number, Lang.get(text_after_end).arg(end_line));
        if (fault != TIntelHexLine::Ok) return failAt(number, TIntelHexLine::faultText(fault, record.type));
        switch (record.type) {
        case TIntelHexLine::Data:
            if (!addData(base + record.offset, record.data, record.length, number)) return false;
            break;
        case TIntelHexLine::End:
            end_line = number;
            break;
        case TIntelHexLine::Segment:
            base = TIntelHexLine::addressValue(record) << 4;
            break;
        case TIntelHexLine::Linear:
            base = TIntelHexLine::addressValue(record) << 16;
            break;
        default: // start addresses mean nothing to a programmer
            break;
        }
    }
    if (!end_line) return failAt(number, Lang.get(text_no_end));
    return true;
}

// Records may come in any order and may repeat bytes, but never give one address two values.
bool TFormatIHEX::addData(qint64 addr, const uchar* data, int length, qint64 line) {
    if (length == 0) return true;
    const qint64 end = addr + length;
    auto it = segments.upperBound(addr);
    if (it != segments.begin()) {
        auto prev = std::prev(it);
        if (prev.key() + prev.value().size() >= addr) it = prev;
    }
    // The usual case: the record continues the run before it and nothing follows.
    if (it != segments.end() && it.key() + it.value().size() == addr && std::next(it) == segments.end()) {
        it.value().append(reinterpret_cast<const char*>(data), length);
        return true;
    }
    qint64 first = addr, last = end;
    auto stop = it;
    for (; stop != segments.end() && stop.key() <= end; ++stop) {
        const qint64 from = qMax(addr, stop.key()), to = qMin(end, stop.key() + stop.value().size());
        for (qint64 a = from; a < to; ++a)
            if (uchar(stop.value().at(int(a - stop.key()))) != data[a - addr])
                return failAt(line, Lang.get(text_conflict).arg(TMiscDev::getHexFromInt(a)));
        first = qMin(first, stop.key());
        last = qMax(last, stop.key() + stop.value().size());
    }
    QByteArray merged(int(last - first), '\0');
    for (auto s = it; s != stop; ++s)
        merged.replace(int(s.key() - first), s.value().size(), s.value());
    merged.replace(int(addr - first), length, reinterpret_cast<const char*>(data), length);
    while (it != stop)
        it = segments.erase(it);
    segments.insert(first, merged);
    return true;
}

bool TFormatIHEX::read(long long& addr, QByteArray& data) {
    data.clear();
    const qint64 start = addr - addr_device + addr_file;
    const qint64 last = addr_file + (last_address - addr_device);
    auto it = segments.upperBound(start);
    if (it != segments.begin()) {
        auto prev = std::prev(it);
        if (prev.key() + prev.value().size() > start) it = prev;
    }
    if (it == segments.end()) return true;
    const qint64 at = qMax(start, it.key());
    if (at > last) return true;
    const qint64 device = at - addr_file + addr_device;
    const qint64 n = qMin(TMiscDev::getSize(device, last_address, chunk), it.key() + it.value().size() - at);
    data = it.value().mid(int(at - it.key()), int(n));
    addr = device;
    return true;
}

bool TFormatIHEX::write(long long pos, QByteArray data) {
    if (pos < 0 || pos + data.size() > address_limit)
        return fail(Lang.get(text_beyond_4g).arg(TMiscDev::getHexFromInt(qint64(pos))));
    return writer.write(pos, data, file) || fail(file.errorString());
}

bool TFormatIHEX::close() {
    if (!file.isOpen()) return true;
    bool ok = true;
    if (mode == FormatModeWrite) {
        QByteArray end;
        TIntelHexLine::encode(end, TIntelHexLine::End, 0, nullptr, 0);
        ok = writer.finish(file, end) || fail(file.errorString());
    }
    file.close();
    return ok;
}
