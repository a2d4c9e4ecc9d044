#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QPair>
#include <QString>

// The result line of a command that wrote, verified or read a range: how many bytes, where, from or to
// which file, how long and how fast. Pieces are added as they go to or come from the chip; touching
// pieces join into one address range, so a file with gaps shows each range it filled.
class TRangeReport {
public:
    enum Kind { Written, Verified, Read };
    using Range = QPair<qint64, qint64>; // first and last address

    TRangeReport() { timer.start(); }

    void add(qint64 addr, qint64 len);
    qint64 bytes() const { return total; }
    const QList<Range>& ranges() const { return list; }

    // file empty: a command without a file (characters, literal data).
    QString text(Kind kind, const QString& file, const QString& format) const;
    static QString text(Kind kind, qint64 bytes, const QList<Range>& ranges, const QString& file,
                        const QString& format, qint64 nsecs);
    // A byte count as every result shows it: "1,048,576".
    static QString countText(qint64 bytes);

private:
    static QString rangesText(const QList<Range>& ranges);
    static QString rateText(qint64 bytes, qint64 nsecs);

    QElapsedTimer timer;
    QList<Range> list;
    qint64 total = 0;
};
