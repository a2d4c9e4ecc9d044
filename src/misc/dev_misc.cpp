#include "misc/dev_misc.h"

#include "app/TLang.h"

#include <QRegularExpression>
#include <QVector>

qint64 TMiscDev::getSize(qint64 addr, qint64 end, qint64 page) {
    if (addr > end)
        return 0;
    const qint64 rest = end - addr + 1;
    if (page <= 0)
        return rest;
    const qint64 n = page - addr % page;
    return n > rest ? rest : n;
}

QString TMiscDev::getHexFromInt(int value) { return QString("%1").arg(value, 2, 16, QChar('0')).toUpper(); }

QString TMiscDev::getHexFromInt(qint64 value) {
    return QString("%1").arg(value, 2, 16, QChar('0')).toUpper();
}

int TMiscDev::getIntFromHex(const QString& text) { return text.trimmed().toInt(nullptr, 16); }

qint64 TMiscDev::getInt64FromHex(const QString& text) { return text.trimmed().toLongLong(nullptr, 16); }

QByteArray TMiscDev::getByteArrayFromHex(const QString& text) {
    static const QRegularExpression blank("\\s");
    return QByteArray::fromHex(QString(text).remove(blank).toLatin1());
}

QString TMiscDev::getHexFromByteArray(const QByteArray& data) {
    return QString::fromLatin1(data.toHex().toUpper());
}

QString TMiscDev::getMsgVerifyError(qint64 addr, qint64 expected, qint64 read) {
    return Lang.get(422).arg(getHexFromInt(addr), getHexFromInt(expected), getHexFromInt(read));
}

namespace {
struct TNamedSize {
    qint64 size;
    int number;
    int lang_id;
};

// Only these sizes get a unit; every other size is shown in bytes, even an even multiple such as 3 Mbyte.
QVector<TNamedSize> namedSizes() {
    QVector<TNamedSize> list;
    for (int exp = 10; exp <= 49; ++exp)
        list.append({qint64(1) << exp, 1 << ((exp - 10) % 10), 424 + (exp - 10) / 10});
    list.append({192 * 1024, 192, 424});
    list.append({384 * 1024, 384, 424});
    list.append({768 * 1024, 768, 424});
    return list;
}
} // namespace

QString TMiscDev::getViewDeviceSize(qint64 size) {
    static const QVector<TNamedSize> list = namedSizes();
    for (const TNamedSize& named : list)
        if (named.size == size)
            return Lang.get(named.lang_id).arg(named.number);
    return Lang.get(423).arg(size);
}

QString TMiscDev::getViewFreqValue(int hz) {
    // Unit symbols are the same in every language, so they are not in the language table.
    double value = hz;
    QString unit;
    if (hz < 1000) {
        unit = "Hz";
    } else if (hz < 1000000) {
        value /= 1e3;
        unit = "KHz";
    } else if (hz < 1000000000) {
        value /= 1e6;
        unit = "MHz";
    }
    return QString("%1 %2").arg(QString::number(value, 'g', 10), unit);
}

QString TMiscDev::getViewFreqAndDutyCycleValue(int hz, int duty) {
    return QString("%1, %2 %").arg(getViewFreqValue(hz)).arg(duty);
}
