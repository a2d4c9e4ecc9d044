#include "formats/TDataFileCheck.h"

#include "app/TLang.h"
#include "formats/TFormat.h"
#include "formats/TIntelHexLine.h"
#include "misc/dev_misc.h"

#include <QFile>

namespace {
constexpr int max_line = 4096;
// The HEX dialect writes type 02 records only for ranges below 1 MiB, so their value (the upper address
// bits) never exceeds 0x000F; larger values are segments written by another tool.
constexpr int largest_own_upper = 0x000F;

constexpr int text_at_line = 1000;
constexpr int text_no_end = 1001;
constexpr int text_after_end = 1007;
constexpr int text_file = 1011;
constexpr int text_no_byte = 1012;
constexpr int text_segment = 1013;
} // namespace

bool TDataFileCheck::check(const QString& key, const QString& file, qint64 addr_file, qint64 addr_device,
                           qint64 last_address, QString& error) {
    if (TFormat::getKey(key) == "hex" && QFile::exists(file) && !scanHex(file, error)) return false;
    TFormat data(key, file, addr_file, addr_device, last_address, max_line);
    if (!data.open(FormatModeRead)) {
        // The Intel HEX reader names the file itself; the others give the fault alone.
        error = data.getErrorText().startsWith(file) ? data.getErrorText()
                                                     : Lang.get(text_file).arg(file, data.getErrorText());
        return false;
    }
    long long at = addr_device;
    QByteArray piece;
    const bool read = data.read(at, piece);
    data.close();
    if (!read) {
        error = Lang.get(text_file).arg(file, data.getErrorText());
        return false;
    }
    if (piece.isEmpty()) {
        error = Lang.get(text_no_byte)
                    .arg(file, TMiscDev::getHexFromInt(addr_device), TMiscDev::getHexFromInt(last_address),
                         TMiscDev::getHexFromInt(addr_file));
        return false;
    }
    return true;
}

bool TDataFileCheck::scanHex(const QString& file, QString& error) {
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly)) return true; // opening again reports it with the format's text
    auto at = [&](qint64 line, const QString& fault) {
        error = Lang.get(text_at_line).arg(file).arg(line).arg(fault);
        return false;
    };
    char line[max_line];
    QByteArray bytes;
    TIntelHexLine::Record record;
    qint64 number = 0, end_line = 0;
    for (;;) {
        const qint64 n = in.readLine(line, sizeof line);
        if (n < 0 && !in.atEnd()) {
            error = Lang.get(text_file).arg(file, Lang.get(420).arg(in.errorString()));
            return false;
        }
        if (n <= 0) break;
        ++number;
        const bool whole = line[n - 1] == '\n' || in.atEnd();
        const TIntelHexLine::Fault fault =
            whole ? TIntelHexLine::decode(line, n, bytes, record) : TIntelHexLine::BadLength;
        if (fault == TIntelHexLine::Blank) continue;
        if (end_line) return at(number, Lang.get(text_after_end).arg(end_line));
        if (fault != TIntelHexLine::Ok) return at(number, TIntelHexLine::faultText(fault, record.type));
        if (record.type == TIntelHexLine::End) end_line = number;
        if (record.type == TIntelHexLine::Segment && TIntelHexLine::addressValue(record) > largest_own_upper)
            return at(
                number,
                Lang.get(text_segment).arg(TMiscDev::getHexFromInt(TIntelHexLine::addressValue(record))));
    }
    if (!end_line) return at(number, Lang.get(text_no_end));
    return true;
}
