#include "misc/TLockOut.h"

#include "app/TLang.h"
#include "misc/TFormDesc.h"

#include <QMutex>
#include <QSet>

namespace {
QMutex permission;
bool allowedAll = false;
QSet<int> allowedRuns;

QString reason(const TFormDesc::LockOutHit& hit) {
    const QString& kind = hit.lockOut.kind;
    const QString& name = hit.lockOut.name;
    if (kind == QLatin1String("spien")) return Lang.get(1101).arg(name);
    if (kind == QLatin1String("rstdisbl")) return Lang.get(1102).arg(name);
    if (kind == QLatin1String("dwen")) return Lang.get(1103).arg(name);
    return Lang.get(1104).arg(name, hit.meaning);
}
} // namespace

QStringList TLockOut::reasons(const TData& devParam, const QByteArray& fuses) {
    TFormDesc desc;
    if (!desc.parse(devParam.value(QStringLiteral("fuse_cfg")).toStringList())) return {};
    return reasons(desc, fuses);
}

QStringList TLockOut::reasons(const TFormDesc& desc, const QByteArray& fuses) {
    QStringList out;
    for (const TFormDesc::LockOutHit& hit : desc.lockOuts(fuses))
        out << reason(hit);
    return out;
}

void TLockOut::setAllowedAll(bool allowed) {
    QMutexLocker lock(&permission);
    allowedAll = allowed;
}

void TLockOut::setAllowed(int idCfg, bool allowed) {
    QMutexLocker lock(&permission);
    if (allowed)
        allowedRuns.insert(idCfg);
    else
        allowedRuns.remove(idCfg);
}

bool TLockOut::isAllowed(int idCfg) {
    QMutexLocker lock(&permission);
    return allowedAll || allowedRuns.contains(idCfg);
}
