#include "project/TPrjText.h"

#include "app/TLang.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "project/TDataCfg.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

bool TPrjText::isWritable(const QString& text) {
    for (const QChar c : text)
        if (c == QLatin1Char('"') || c == QLatin1Char('\\') || c.category() == QChar::Other_Control)
            return false;
    return true;
}

QString TPrjText::findUnwritableKey(const TData& record) {
    for (auto it = record.constBegin(); it != record.constEnd(); ++it)
        if (!isWritable(it.key()) || !isWritable(it.value().toString())) return it.key();
    return QString();
}

QString TPrjText::getInvalidParamText(const QString& name, const TData& record) {
    const QString key = findUnwritableKey(record);
    return key.isEmpty() ? Lang.get(388).arg(name) : Lang.get(1400).arg(name, key);
}

QString TPrjText::checkProject(TDataPrj* prj) {
    TLocker lock(prj->getMutex());
    for (TDataCfg* cfg : prj->getCfgList()) {
        if (!isWritable(cfg->getName()) || !isWritable(cfg->getDesc()))
            return Lang.get(1401).arg(cfg->getName());
        const QList<TDataCmd*> cmds = prj->getCmdListCfg(cfg->getUIN());
        for (int i = 0; i < cmds.size(); ++i) {
            const QString code = cmds.at(i)->getCmdCode();
            TData record = cmds.at(i)->getParam();
            record.insert(CTagCmd::cmd, code);
            const QString key = findUnwritableKey(record);
            if (key.isEmpty()) continue;
            const QString name = CmdCode.getName(code);
            return Lang.get(1402).arg(cfg->getName()).arg(i + 1).arg(name.isEmpty() ? code : name, key);
        }
    }
    return QString();
}
