#include "SimTrace.h"

#include <QDateTime>

bool SimTrace::open(const QString& file) {
    out.setFileName(file);
    return out.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text);
}

void SimTrace::write(char direction, const QByteArray& frame) {
    if (!out.isOpen()) return;
    const QByteArray stamp = QDateTime::currentDateTime().toString("yyyy-MM-dd hh:mm:ss.zzz").toLatin1();
    out.write(stamp + ' ' + direction + ' ' + frame.toHex(' ').toUpper() + '\n');
    out.flush();
}
