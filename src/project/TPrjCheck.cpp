#include "project/TPrjCheck.h"

#include "app/TLang.h"
#include "devices/IDevice.h"
#include "devices/TDeviceList.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "project/TDataCfg.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {
enum LangId {
    TextWhere = 1740,
    TextNoCmd = 1741,
    TextUnknownCode = 1742,
    TextNoStatus = 1743,
    TextNotText = 1744,
    TextMissingKey = 1745,
    TextUnknownKey = 1746,
    TextUnknownDevice = 1747,
    TextWrongDevFile = 1748,
    TextBadStatus = 1749,
    TextMissingDevice = 1758,
};

QString quotedList(QStringList keys) {
    std::sort(keys.begin(), keys.end());
    return keys.join(QStringLiteral(", "));
}
} // namespace

QStringList TPrjCheck::check(const QByteArray& data, TDataPrj& prj) {
    QStringList out;
    const QJsonArray cfgs = QJsonDocument::fromJson(data).object().value(CTagPrj::configurations).toArray();
    TLocker lock(prj.getMutex());
    const QList<TDataCfg*> loaded = prj.getCfgList();
    int cfgPos = 0;
    // The loader skips elements that are not objects; so does this walk, to stay beside it.
    for (const QJsonValue& cfgValue : cfgs) {
        if (!cfgValue.isObject() || cfgPos >= loaded.size()) continue;
        TDataCfg* cfg = loaded.at(cfgPos++);
        const QList<TDataCmd*> cmds = prj.getCmdListCfg(cfg->getUIN());
        int n = 0;
        for (const QJsonValue& cmdValue : cfgValue.toObject().value(CTagCfg::commands).toArray()) {
            if (!cmdValue.isObject() || n >= cmds.size()) continue;
            const QJsonObject raw = cmdValue.toObject();
            TDataCmd* cmd = cmds.at(n++);
            for (const QString& problem : checkCmd(raw, cmd))
                out << Lang.get(TextWhere)
                           .arg(cfg->getName())
                           .arg(n)
                           .arg(raw.value(CTagCmd::cmd).toString(), problem);
        }
    }
    return out;
}

QStringList TPrjCheck::checkCmd(const QJsonObject& raw, TDataCmd* cmd) {
    if (!raw.contains(CTagCmd::cmd)) return {Lang.get(TextNoCmd)};
    const QString code = raw.value(CTagCmd::cmd).toString();
    if (code != CTagCmdCode::separator && CmdCode.getName(code).isEmpty())
        return {Lang.get(TextUnknownCode).arg(code)};
    QStringList out;
    if (!raw.contains(CTagCmd::status)) {
        out << Lang.get(TextNoStatus);
    } else {
        const QString status = raw.value(CTagCmd::status).toString();
        if (status != QLatin1String("0") && status != QLatin1String("1"))
            out << Lang.get(TextBadStatus).arg(raw.value(CTagCmd::status).toVariant().toString());
    }
    for (auto it = raw.begin(); it != raw.end(); ++it)
        if (!it.value().isString()) out << Lang.get(TextNotText).arg(it.key());
    if (code == CTagCmdCode::set_device) out << checkSetDevice(raw);
    out << checkKeys(raw, cmd);
    return out;
}

// The keys a command has are the ones its family gives a new command of its code. A "set_device" is
// left to checkSetDevice: the settings of its part differ from part to part and default when missing.
QStringList TPrjCheck::checkKeys(const QJsonObject& raw, TDataCmd* cmd) {
    IDevice* group = cmd->getGroupObject();
    if (!group || cmd->getCmdCode() == CTagCmdCode::set_device) return {};
    TData keys{{CTagCmd::cmd, cmd->getCmdCode()}};
    group->getDefaultCmdParam(keys);
    TDataCmd::removeModelKeys(keys);
    QStringList out;
    for (const QString& key : keys.keys())
        if (!raw.contains(key)) out << Lang.get(TextMissingKey).arg(key, quotedList(keys.keys()));
    for (auto it = raw.begin(); it != raw.end(); ++it)
        if (it.key() != CTagCmd::cmd && it.key() != CTagCmd::status && !keys.contains(it.key()))
            out << Lang.get(TextUnknownKey).arg(it.key(), quotedList(keys.keys()));
    return out;
}

QStringList TPrjCheck::checkSetDevice(const QJsonObject& raw) {
    const QString device = raw.value(CTagCmdProgSetDevice::device).toString();
    if (device.isEmpty()) return {Lang.get(TextMissingDevice)};
    const QHash<QString, QString> list = DeviceList.getDeviceList();
    if (!list.contains(device)) return {Lang.get(TextUnknownDevice).arg(device)};
    const QString file = raw.value(CTagCmdProgSetDevice::file).toString();
    if (file != list.value(device))
        return {Lang.get(TextWrongDevFile).arg(list.value(device), device)};
    return {};
}
