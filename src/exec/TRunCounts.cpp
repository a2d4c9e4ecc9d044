#include "exec/TRunCounts.h"

#include "app/TSettings.h"

#include <QStringList>
#include <QUrl>

namespace {
// A file path's slashes would make groups of the settings: the key is percent-encoded whole.
QString key(const QString& prjFile, const QString& cfgName) {
    return QStringLiteral("RunCounts/") +
           QString::fromLatin1(QUrl::toPercentEncoding(prjFile + QLatin1Char('\n') + cfgName));
}
} // namespace

TRunControl::Tally TRunCounts::load(const QString& prjFile, const QString& cfgName) {
    const QStringList v = TSettings().value(key(prjFile, cfgName)).toString().split(QLatin1Char(','));
    TRunControl::Tally t;
    if (v.size() != 3) return t;
    t.passed = qMax(0, v.at(0).toInt());
    t.failed = qMax(0, v.at(1).toInt());
    t.stopped = qMax(0, v.at(2).toInt());
    return t;
}

void TRunCounts::save(const QString& prjFile, const QString& cfgName, const TRunControl::Tally& t) {
    TSettings s;
    s.setValue(key(prjFile, cfgName), QStringLiteral("%1,%2,%3").arg(t.passed).arg(t.failed).arg(t.stopped));
    s.sync();
}
