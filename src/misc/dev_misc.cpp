#include "misc/dev_misc.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "formats/TFormat.h"
#include "link/TProg.h"
#include "project/CTagPrj.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QRegularExpression>
#include <QVector>

#include <climits>

qint64 TMiscDev::getSize(qint64 addr, qint64 end, qint64 page) {
    if (addr > end) return 0;
    const qint64 rest = end - addr + 1;
    if (page <= 0) return rest;
    const qint64 n = page - addr % page;
    return n > rest ? rest : n;
}

QString TMiscDev::getHexFromInt(int value) {
    return QString("%1").arg(value, 2, 16, QChar('0')).toUpper();
}

QString TMiscDev::getHexFromInt(qint64 value) {
    return QString("%1").arg(value, 2, 16, QChar('0')).toUpper();
}

int TMiscDev::getIntFromHex(const QString& text) {
    return text.trimmed().toInt(nullptr, 16);
}

qint64 TMiscDev::getInt64FromHex(const QString& text) {
    return text.trimmed().toLongLong(nullptr, 16);
}

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
        if (named.size == size) return Lang.get(named.lang_id).arg(named.number);
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

bool TMiscDev::isRangeInside(qint64 addr, qint64 count, qint64 begin, qint64 size) {
    qint64 deviceEnd = 0, end = 0;
    if (count < 0 || __builtin_add_overflow(begin, size, &deviceEnd) ||
        __builtin_add_overflow(addr, count, &end))
        return false;
    return addr >= begin && addr < deviceEnd && end <= deviceEnd;
}

qint64 TMiscDev::getLastAddr(qint64 addr, qint64 count) {
    qint64 end = 0;
    if (__builtin_add_overflow(addr, count, &end)) return count > 0 ? LLONG_MAX : LLONG_MIN;
    return end == LLONG_MIN ? end : end - 1;
}

qint64 TMiscDev::getProduct(qint64 a, qint64 b) {
    qint64 product = 0;
    if (__builtin_mul_overflow(a, b, &product)) return (a < 0) != (b < 0) ? LLONG_MIN : LLONG_MAX;
    return product;
}

void TMiscDev::getCmdParamRWVChar(const TData& p, int& id_cmd, qint64& addr_begin, qint64& addr_end,
                                  uchar& fill) {
    id_cmd = TAPP_PARAM(p, CTagCmd::id_cmd).toInt();
    addr_begin = TAPP_PARAM(p, "addr_device").toLongLong();
    addr_end = getLastAddr(addr_begin, TAPP_PARAM(p, "count").toLongLong());
    fill = uchar(TAPP_PARAM(p, "fill_char").toInt());
}

void TMiscDev::getCmdParamRWVData(const TData& p, int& id_cmd, qint64& addr_begin, qint64& addr_end,
                                  QByteArray& data, QString& text) {
    id_cmd = TAPP_PARAM(p, CTagCmd::id_cmd).toInt();
    addr_begin = TAPP_PARAM(p, "addr_device").toLongLong();
    text = TAPP_PARAM(p, "data").toString();
    data = getByteArrayFromHex(text);
    addr_end = addr_begin + data.size() - 1;
}

void TMiscDev::getCmdParamRWVFile(const TData& p, int& id_cmd, qint64& addr_file, qint64& addr_begin,
                                  qint64& addr_end, QString& file, QString& format) {
    id_cmd = TAPP_PARAM(p, CTagCmd::id_cmd).toInt();
    addr_file = TAPP_PARAM(p, "addr_file").toLongLong();
    addr_begin = TAPP_PARAM(p, "addr_device").toLongLong();
    addr_end = getLastAddr(addr_begin, TAPP_PARAM(p, "count").toLongLong());
    file = TApp::getAbsoluteFile(ProjectData.getPrjWorkPath(), TAPP_PARAM(p, "file").toString());
    format = TAPP_PARAM(p, "format").toString().toLower();
}

QString TMiscDev::getHexFromByteArrayMask(const QString& mask, const QByteArray& data) {
    static const QRegularExpression pair("[0-9A-Fa-f]{2}");
    QString out = mask;
    int next = 0;
    for (auto it = pair.globalMatch(mask); it.hasNext() && next < data.size();) {
        const auto m = it.next();
        out.replace(m.capturedStart(), 2, getHexFromInt(int(uchar(data.at(next++)))));
    }
    // Bytes beyond the mask are appended, so nothing read is hidden.
    if (next < data.size()) out += getHexFromByteArray(data.mid(next));
    return out;
}

QString TMiscDev::getViewParamRWVChar(qint64 addr, qint64 count, int fill) {
    return QStringLiteral("0x%1..0x%2 :0x%3")
        .arg(getHexFromInt(addr), getHexFromInt(getLastAddr(addr, count)), getHexFromInt(fill));
}

QString TMiscDev::getViewParamRWVData(qint64 addr, const QString& text) {
    const qint64 count = getByteArrayFromHex(text).size();
    return QStringLiteral("0x%1..0x%2 :0x%3")
        .arg(getHexFromInt(addr), getHexFromInt(getLastAddr(addr, qMax<qint64>(count, 1))),
             getHexFromInt(count));
}

QString TMiscDev::getViewParamRWVFile(const QString& file, const QString& format) {
    return QStringLiteral("%1 (%2)").arg(file, TFormat::getViewFormat(format));
}

unsigned int TMiscDev::getCLK(const TData& p) {
    TLocker lock(ProjectData.getMutex());
    TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(TAPP_PARAM(p, CTagCmd::id_cmd).toInt());
    IDevice* dev = cmd ? cmd->getDeviceObject() : nullptr;
    TProg* prog = cmd ? cmd->getProgObject() : nullptr;
    if (!dev || !prog) return 0;
    return prog->getCLKValue(dev->getDevConnect(), TAPP_PARAM(p, "clk").toUInt());
}

bool TMiscDev::isOneOf(const QString& code, std::initializer_list<const char*> codes) {
    for (const char* c : codes)
        if (code == QLatin1String(c)) return true;
    return false;
}

void TMiscDev::appendLE(QByteArray& out, quint64 value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out.append(char((value >> (8 * i)) & 0xFF));
}
