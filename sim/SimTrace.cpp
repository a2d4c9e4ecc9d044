#include "SimTrace.h"

#include <QDateTime>

bool SimTrace::open(const QString& file) {
    out.setFileName(file);
    utcOffsetSecs = QDateTime::currentDateTime().offsetFromUtc();
    return out.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text);
}

void SimTrace::write(char direction, const QByteArray& frame) {
    if (!out.isOpen()) return;
    const QByteArray stamp = QDateTime::fromMSecsSinceEpoch(
                                 QDateTime::currentMSecsSinceEpoch() + utcOffsetSecs * qint64(1000), Qt::UTC)
                                 .toString("yyyy-MM-dd hh:mm:ss.zzz")
                                 .toLatin1();
    out.write(stamp + ' ' + direction + ' ' + frame.toHex(' ').toUpper() + '\n');
    out.flush();
}
