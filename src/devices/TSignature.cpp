#include "devices/TSignature.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"

#include <QFile>
#include <QTextStream>

namespace {
QString devicesFile(const QString& name) {
    return TApp::getAbsoluteFile(AppData.getPathDevicesAbs(), name);
}
} // namespace

TPairStringList TSignature::readPairFile(const QString& path) {
    TPairStringList list;
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) return list;
    QTextStream in(&f);
    in.setCodec("UTF-8");
    QString line;
    while (in.readLineInto(&line)) {
        line = line.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) continue;
        const int eq = line.indexOf(QLatin1Char('='));
        if (eq < 0) continue;
        list.append(qMakePair(line.left(eq), line.mid(eq + 1)));
    }
    return list;
}

QVector<TFamilyRecord> TSignature::getAutoData() {
    QVector<TFamilyRecord> records;
    for (const auto& pair : readPairFile(devicesFile(QStringLiteral("auto.lst")))) {
        const QStringList parts = pair.second.split(QLatin1Char('|'), Qt::SkipEmptyParts);
        if (parts.size() != 2) continue;
        records.append(TFamilyRecord{pair.first, parts.at(0), parts.at(1)});
    }
    return records;
}

QStringList TSignature::getAutoFamilyList() {
    QStringList names;
    for (const TFamilyRecord& r : getAutoData())
        names.append(r.family);
    return names;
}

QString TSignature::getAutoDevFile(const QString& family) {
    for (const TFamilyRecord& r : getAutoData())
        if (r.family == family) return r.devFile;
    return QString();
}

QString TSignature::getAutoSignFile(const QString& family) {
    for (const TFamilyRecord& r : getAutoData())
        if (r.family == family) return r.signFile;
    return QString();
}

TPairStringList TSignature::getSignatureListFromFile(const QString& path) {
    return readPairFile(path);
}

TPairStringList TSignature::getSignatureListFromName(const QString& family) {
    return getSignatureListFromFile(devicesFile(getAutoSignFile(family)));
}

QString TSignature::getSignatureDeviceName(const QString& folder, const QString& signature) {
    for (const auto& pair : readPairFile(TApp::getAbsoluteFile(folder, QStringLiteral("signature.lst"))))
        if (pair.first == signature) return pair.second;
    return Lang.get(400);
}

TPairStringList TSignature::getAutoRouteTable(const QString& text) {
    TPairStringList list;
    for (const QString& part : text.split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
        const QString p = part.trimmed();
        const int eq = p.indexOf(QLatin1Char('='));
        if (eq < 0) continue;
        list.append(qMakePair(p.left(eq), p.mid(eq + 1)));
    }
    return list;
}
