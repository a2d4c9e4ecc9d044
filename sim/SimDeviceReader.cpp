#include "SimDeviceReader.h"

#include <QFile>
#include <QTextStream>

namespace {
bool readLines(const QString& file, QStringList& lines) {
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) return false;
    QTextStream in(&f);
    in.setCodec("UTF-8");
    while (!in.atEnd())
        lines << in.readLine();
    return true;
}

QString findFile(const QStringList& catalogue, const QString& name) {
    QString file;
    for (const QString& raw : catalogue) {
        const QString line = raw.trimmed();
        const int eq = line.indexOf('=');
        if (line.isEmpty() || line.startsWith('#') || eq < 0) continue;
        if (line.left(eq) == name) file = line.mid(eq + 1);
    }
    return file;
}

QVariant convert(QChar type, const QString& v) {
    bool ok = true;
    switch (type.unicode()) {
    case 's':
        return v;
    case 'd':
        return v.toInt(&ok);
    case 'D':
        return v.toLongLong(&ok);
    case 'u':
        return v.toUInt(&ok);
    case 'U':
        return v.toULongLong(&ok);
    case 'x':
        return v.toUInt(&ok, 16);
    case 'X':
        return v.toULongLong(&ok, 16);
    case 'b':
        return v.toUInt(&ok, 2);
    case 'B':
        return v.toULongLong(&ok, 2);
    case 'o':
        return v.toUInt(&ok, 8);
    case 'O':
        return v.toULongLong(&ok, 8);
    case 'f':
        return v.toFloat(&ok);
    case 'F':
        return v.toDouble(&ok);
    default:
        return QVariant();
    }
}
} // namespace

namespace SimDeviceReader {

QVariantMap parseLines(const QStringList& lines) {
    QVariantMap params;
    QString listKey;
    QStringList list;
    auto flush = [&]() {
        if (!listKey.isEmpty()) params.insert(listKey, list);
        listKey.clear();
        list.clear();
    };
    for (const QString& line : lines) {
        const int eq = line.indexOf('=');
        const int bar = eq < 0 ? -1 : line.indexOf('|', eq + 1);
        if (line.isEmpty() || line.startsWith('#') || bar < 0) continue;
        const QString key = line.left(eq).trimmed();
        const QString type = line.mid(eq + 1, bar - eq - 1).trimmed();
        const QString value = line.mid(bar + 1);
        if (key != listKey) flush();
        if (type == "l") {
            listKey = key;
            list << value;
            continue;
        }
        const QVariant v = type.size() == 1 ? convert(type.at(0), value) : QVariant();
        if (v.isValid()) params.insert(key, v);
    }
    flush();
    return params;
}

bool readChip(const QString& dir, const QString& name, QVariantMap& params, QString& error) {
    QStringList catalogue, lines;
    if (!readLines(dir + "/devices.lst", catalogue)) {
        error = QStringLiteral("cannot read %1/devices.lst").arg(dir);
        return false;
    }
    const QString file = findFile(catalogue, name);
    if (file.isEmpty()) {
        error = QStringLiteral("chip %1 is not in %2/devices.lst").arg(name, dir);
        return false;
    }
    if (!readLines(dir + "/" + file, lines)) {
        error = QStringLiteral("cannot read the description %1/%2").arg(dir, file);
        return false;
    }
    params = parseLines(lines);
    return true;
}

} // namespace SimDeviceReader
