#include "misc/TRangeReport.h"

#include "app/TLang.h"
#include "formats/TFormat.h"

#include <QFileInfo>
#include <QLocale>

namespace {
// Language texts of the result lines.
constexpr int LangWrittenFile = 1200, LangVerifiedFile = 1201, LangReadFile = 1202;
constexpr int LangWritten = 1203, LangVerified = 1204, LangRead = 1205;
constexpr int LangRange = 1206, LangMoreRanges = 1207, LangKBs = 1208, LangMBs = 1209, LangFileFormat = 1210;
// Beyond this many ranges the line names the first ones and counts the rest.
constexpr int shownRanges = 3;

QString hex6(qint64 v) {
    return QStringLiteral("%1").arg(v, 6, 16, QLatin1Char('0')).toUpper();
}

// The format as the forms show it ("HEX", "BIN"), the key itself when no form offers it.
QString formatName(const QString& key) {
    for (const QString& name : TFormat::getViewFormats())
        if (name.compare(key, Qt::CaseInsensitive) == 0) return name;
    return key;
}
} // namespace

void TRangeReport::add(qint64 addr, qint64 len) {
    if (len <= 0) return;
    total += len;
    if (!list.isEmpty() && list.last().second + 1 == addr)
        list.last().second += len;
    else
        list.append({addr, addr + len - 1});
}

QString TRangeReport::text(Kind kind, const QString& file, const QString& format) const {
    return text(kind, total, list, file, format, timer.nsecsElapsed());
}

QString TRangeReport::text(Kind kind, qint64 bytes, const QList<Range>& ranges, const QString& file,
                           const QString& format, qint64 nsecs) {
    const QString count = countText(bytes);
    const QString where = rangesText(ranges);
    const QString secs = QString::number(double(nsecs) / 1e9, 'f', 2);
    const QString rate = rateText(bytes, nsecs);
    if (file.isEmpty()) {
        const int id = kind == Written ? LangWritten : kind == Verified ? LangVerified : LangRead;
        return Lang.get(id).arg(count, where, secs, rate);
    }
    const QString source = Lang.get(LangFileFormat).arg(QFileInfo(file).fileName(), formatName(format));
    const int id = kind == Written ? LangWrittenFile : kind == Verified ? LangVerifiedFile : LangReadFile;
    return Lang.get(id).arg(count, where, source, secs, rate);
}

QString TRangeReport::rangesText(const QList<Range>& ranges) {
    QStringList parts;
    for (int i = 0; i < ranges.size() && i < shownRanges; ++i)
        parts << Lang.get(LangRange).arg(hex6(ranges.at(i).first), hex6(ranges.at(i).second));
    QString text = parts.join(QStringLiteral(", "));
    if (ranges.size() > shownRanges) text += Lang.get(LangMoreRanges).arg(ranges.size() - shownRanges);
    return text;
}

QString TRangeReport::countText(qint64 bytes) {
    return QLocale(QLocale::English).toString(bytes);
}

// Kilobytes of 1000 bytes; a transfer too short to time is shown at one microsecond.
QString TRangeReport::rateText(qint64 bytes, qint64 nsecs) {
    const double kbs = double(bytes) * 1e6 / double(qMax<qint64>(nsecs, 1000));
    if (kbs >= 10000) return Lang.get(LangMBs).arg(QString::number(kbs / 1000, 'f', 1));
    return Lang.get(LangKBs).arg(QString::number(kbs, 'f', 1));
}
