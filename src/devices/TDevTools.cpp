#include "devices/TDevTools.h"

#include "app/TAppData.h"
#include "devices/TDevToolsExec.h"
#include "formats/ICRC.h"
#include "formats/TCRC.h"
#include "formats/TFormat.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <climits>
#include <limits>
#include <memory>

namespace {
bool fitsInt32(const QVariant& v) {
    bool ok = false;
    const qint64 n = v.toLongLong(&ok);
    return ok && n >= std::numeric_limits<qint32>::min() && n <= std::numeric_limits<qint32>::max();
}
} // namespace

TDevTools::TDevTools(const QString& code, const TData& param) : TCmdFamily(code, param, cmdTable()) {}

const TCmdRows& TDevTools::cmdTable() {
    using namespace CTagCmdCode;
    static const TCmdRows rows = TCmdTable::ownRows({set_prog, separator, delay, pause, stop, separator, jamp,
                                                     counter, execute, separator, calc_crc, process});
    return rows;
}

QStringList TDevTools::getCmdList() {
    return TCmdTable::codes(cmdTable());
}

bool TDevTools::isCmdTools(const QString& code) {
    return TCmdTable::find(cmdTable(), code) != nullptr;
}

int TDevTools::cmdJampDefault(const TData& p) {
    TLocker lock(ProjectData.getMutex());
    const QList<TDataCmd*> cmds = ProjectData.getCmdListCfg(p.value(CTagCmd::id_cfg, -1).toInt());
    return cmds.isEmpty() ? -1 : cmds.first()->getUIN();
}

void TDevTools::ownDefaults(const TCmdRow& row, TData& p) {
    using namespace CTagCmdCode;
    const QString code = QLatin1String(row.code);
    if (code == delay) {
        p.insert("value", delayDef);
    } else if (code == counter) {
        p.insert("value", 0);
        p.insert("limit", 0);
        p.insert("delta", 1);
    } else if (code == jamp) {
        p.insert("to_cmd", cmdJampDefault(p));
    } else if (code == process) {
        p.insert("file", QString());
    } else if (code == execute) {
        p.insert("cfg", -1);
    } else if (code == calc_crc) {
        p.insert("crc_name", TCRC::getCRCNameDef());
        p.insert("file", QString());
        p.insert("format", TCRC::getFormatDef());
        p.insert("addr", 0);
        p.insert("count", 0);
        p.insert("fill", 255);
    } else if (code == set_prog) {
        p.insert("prog", AppData.progName.getNameFromIndex(AppData.progDefault));
        p.insert("alt_enabled", false);
        p.insert("alt_port", QString());
    }
}

QString TDevTools::ownView(const TCmdRow& row, const TData& p) const {
    using namespace CTagCmdCode;
    const QString code = QLatin1String(row.code);
    if (code == delay) return QStringLiteral("%1 ms").arg(p.value("value").toLongLong());
    if (code == counter)
        return QStringLiteral("Value: %1, Limit: %2, Delta: %3")
            .arg(p.value("value").toLongLong())
            .arg(p.value("limit").toLongLong())
            .arg(p.value("delta").toLongLong());
    if (code == jamp) {
        TLocker lock(ProjectData.getMutex());
        const int target = p.value("to_cmd", -1).toInt();
        const int apos = ProjectData.getAPosCmdFromIdCmd(target);
        if (apos < 0) return QStringLiteral("?");
        const TData t = ProjectData.getCmdData(target);
        return QStringLiteral("%1: %2. %3")
            .arg(ProjectData.getNameCfgFromIdCfg(t.value(CTagCmd::id_cfg).toInt()))
            .arg(ProjectData.getPosCmdFromAPosCmd(apos) + 1)
            .arg(CmdCode.getName(t.value(CTagCmd::cmd).toString()));
    }
    if (code == process) return p.value("file").toString();
    if (code == execute) return ProjectData.getNameCfgFromIdCfg(p.value("cfg", -1).toInt());
    if (code == calc_crc)
        return QStringLiteral("%1: %2 (%3)")
            .arg(p.value("crc_name").toString(), p.value("file").toString(),
                 TFormat::getViewFormat(p.value("format").toString()));
    if (code == set_prog) {
        QString view = p.value("prog").toString();
        if (p.value("alt_enabled").toBool())
            view +=
                QStringLiteral(", Port %1: %2").arg(QStringLiteral("alt"), p.value("alt_port").toString());
        return view;
    }
    return QString();
}

bool TDevTools::ownCheck(const TCmdRow& row, const TData& p) const {
    using namespace CTagCmdCode;
    const QString code = QLatin1String(row.code);
    if (code == counter)
        return fitsInt32(p.value("value")) && fitsInt32(p.value("limit")) && fitsInt32(p.value("delta"));
    if (code == delay) {
        bool ok = false;
        const qint64 v = p.value("value").toLongLong(&ok);
        return ok && v >= 0 && v < (qint64(1) << 31);
    }
    if (code == execute) return ProjectData.getPosCfgFromIdCfg(p.value("cfg", -1).toInt()) >= 0;
    if (code == jamp) {
        const int target = p.value("to_cmd", -1).toInt();
        return target >= 0 && ProjectData.getAPosCmdFromIdCmd(target) >= 0;
    }
    if (code == set_prog) {
        TLocker lock(ProjectData.getMutex());
        TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(p.value(CTagCmd::id_cmd, -1).toInt());
        return cmd && cmd->getProgObject();
    }
    if (code == process) return !p.value("file").toString().trimmed().isEmpty();
    if (code == calc_crc) {
        std::unique_ptr<ICRC> crc(TCRC::createCRCObject(p.value("crc_name").toString()));
        bool okA = false, okC = false, okF = false;
        const qint64 addr = p.value("addr").toLongLong(&okA), count = p.value("count").toLongLong(&okC);
        const int fill = p.value("fill").toInt(&okF);
        // The range may lie anywhere in a file, but its end must stay within 64 bits.
        return crc && !p.value("file").toString().isEmpty() && okA && okC && okF &&
               TMiscDev::isRangeInside(addr, count, 0, LLONG_MAX) && fill >= 0 && fill <= 255;
    }
    return code == pause || code == stop;
}

IDeviceExec* TDevTools::createExecObject(const TData& param) {
    return new TDevToolsExec(param);
}
