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

// Every tools command keeps its own parameters; none depends on the device object or the row.
using Dev = const TCmdFamily&;
using Row = const TCmdRow&;

// ---- delay ----
const TCmdOwn delayOwn{[](Dev, Row, TData& p) { p.insert(CTagCmdToolsDelay::value, TDevTools::delayDef); },
                       [](Dev, Row, const TData& p) {
                           return QStringLiteral("%1 ms").arg(p.value(CTagCmdToolsDelay::value).toLongLong());
                       },
                       ownFormOf<TDevTools::cmdDelayForm>,
                       [](Dev, Row, const TData& p) {
                           bool ok = false;
                           const qint64 v = p.value(CTagCmdToolsDelay::value).toLongLong(&ok);
                           return ok && v >= 0 && v < (qint64(1) << 31);
                       }};

// ---- counter ----
void counterDefaults(Dev, Row, TData& p) {
    p.insert(CTagCmdToolsCounter::value, 0);
    p.insert(CTagCmdToolsCounter::limit, 0);
    p.insert(CTagCmdToolsCounter::delta, 1);
}

QString counterView(Dev, Row, const TData& p) {
    return QStringLiteral("Value: %1, Limit: %2, Delta: %3")
        .arg(p.value(CTagCmdToolsCounter::value).toLongLong())
        .arg(p.value(CTagCmdToolsCounter::limit).toLongLong())
        .arg(p.value(CTagCmdToolsCounter::delta).toLongLong());
}

bool counterCheck(Dev, Row, const TData& p) {
    return fitsInt32(p.value(CTagCmdToolsCounter::value)) && fitsInt32(p.value(CTagCmdToolsCounter::limit)) &&
           fitsInt32(p.value(CTagCmdToolsCounter::delta));
}

const TCmdOwn counterOwn{counterDefaults, counterView, ownFormOf<TDevTools::cmdCounterForm>, counterCheck};

// ---- jump to a command ----
QString jampView(Dev, Row, const TData& p) {
    TLocker lock(ProjectData.getMutex());
    const int target = p.value(CTagCmdToolsJamp::to_cmd, -1).toInt();
    const int apos = ProjectData.getAPosCmdFromIdCmd(target);
    if (apos < 0) return QStringLiteral("?");
    const TData t = ProjectData.getCmdData(target);
    return QStringLiteral("%1: %2. %3")
        .arg(ProjectData.getNameCfgFromIdCfg(t.value(CTagCmd::id_cfg).toInt()))
        .arg(ProjectData.getPosCmdFromAPosCmd(apos) + 1)
        .arg(CmdCode.getName(t.value(CTagCmd::cmd).toString()));
}

bool jampCheck(Dev, Row, const TData& p) {
    const int target = p.value(CTagCmdToolsJamp::to_cmd, -1).toInt();
    return target >= 0 && ProjectData.getAPosCmdFromIdCmd(target) >= 0;
}

const TCmdOwn jampOwn{
    [](Dev, Row, TData& p) { p.insert(CTagCmdToolsJamp::to_cmd, TDevTools::cmdJampDefault(p)); }, jampView,
    ownFormOf<TDevTools::cmdJampForm>, jampCheck};

// ---- external process and another configuration ----
const TCmdOwn processOwn{
    [](Dev, Row, TData& p) { p.insert(CTagCmdToolsProcess::file, QString()); },
    [](Dev, Row, const TData& p) { return p.value(CTagCmdToolsProcess::file).toString(); },
    ownFormOf<TDevTools::cmdProcessForm>,
    [](Dev, Row, const TData& p) {
        return !p.value(CTagCmdToolsProcess::file).toString().trimmed().isEmpty();
    }};

const TCmdOwn executeOwn{
    [](Dev, Row, TData& p) { p.insert(CTagCmdToolsExecute::cfg, -1); },
    [](Dev, Row, const TData& p) {
        return ProjectData.getNameCfgFromIdCfg(p.value(CTagCmdToolsExecute::cfg, -1).toInt());
    },
    ownFormOf<TDevTools::cmdExecuteForm>,
    [](Dev, Row, const TData& p) {
        return ProjectData.getPosCfgFromIdCfg(p.value(CTagCmdToolsExecute::cfg, -1).toInt()) >= 0;
    }};

// ---- CRC of a file ----
void calcCrcDefaults(Dev, Row, TData& p) {
    p.insert(CTagCmdToolsCalcCRC::crc_name, TCRC::getCRCNameDef());
    p.insert(CTagCmdToolsCalcCRC::file, QString());
    p.insert(CTagCmdToolsCalcCRC::format, TCRC::getFormatDef());
    p.insert(CTagCmdToolsCalcCRC::addr, 0);
    p.insert(CTagCmdToolsCalcCRC::count, 0);
    p.insert(CTagCmdToolsCalcCRC::fill, 255);
}

QString calcCrcView(Dev, Row, const TData& p) {
    return QStringLiteral("%1: %2 (%3)")
        .arg(p.value(CTagCmdToolsCalcCRC::crc_name).toString(), p.value(CTagCmdToolsCalcCRC::file).toString(),
             TFormat::getViewFormat(p.value(CTagCmdToolsCalcCRC::format).toString()));
}

bool calcCrcCheck(Dev, Row, const TData& p) {
    std::unique_ptr<ICRC> crc(TCRC::createCRCObject(p.value(CTagCmdToolsCalcCRC::crc_name).toString()));
    bool okA = false, okC = false, okF = false;
    const qint64 addr = p.value(CTagCmdToolsCalcCRC::addr).toLongLong(&okA),
                 count = p.value(CTagCmdToolsCalcCRC::count).toLongLong(&okC);
    const int fill = p.value(CTagCmdToolsCalcCRC::fill).toInt(&okF);
    // The range may lie anywhere in a file, but its end must stay within 64 bits.
    return crc && !p.value(CTagCmdToolsCalcCRC::file).toString().isEmpty() && okA && okC && okF &&
           TMiscDev::isRangeInside(addr, count, 0, LLONG_MAX) && fill >= 0 && fill <= 255;
}

const TCmdOwn calcCrcOwn{calcCrcDefaults, calcCrcView, ownFormOf<TDevTools::cmdCalcCRCForm>, calcCrcCheck};

// ---- choice of the programmer ----
void setProgDefaults(Dev, Row, TData& p) {
    p.insert(CTagCmdToolsSetProg::prog, AppData.progName.getNameFromIndex(AppData.progDefault));
    p.insert(CTagCmdToolsSetProg::alt_enabled, false);
    p.insert(CTagCmdToolsSetProg::alt_port, QString());
}

QString setProgView(Dev, Row, const TData& p) {
    QString view = p.value(CTagCmdToolsSetProg::prog).toString();
    if (p.value(CTagCmdToolsSetProg::alt_enabled).toBool())
        view += QStringLiteral(", Port %1: %2")
                    .arg(QStringLiteral("alt"), p.value(CTagCmdToolsSetProg::alt_port).toString());
    return view;
}

bool setProgCheck(Dev, Row, const TData& p) {
    TLocker lock(ProjectData.getMutex());
    TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(p.value(CTagCmd::id_cmd, -1).toInt());
    return cmd && cmd->getProgObject();
}

const TCmdOwn setProgOwn{setProgDefaults, setProgView, ownFormOf<TDevTools::cmdSetProgForm>, setProgCheck};
} // namespace

TDevTools::TDevTools(const QString& code, const TData& param) : TCmdFamily(code, param, cmdTable()) {}

// Pause and stop take no parameters.
const TCmdRows& TDevTools::cmdTable() {
    using namespace CTagCmdCode;
    static const TCmdRows rows = TCmdTable::ownRows({{set_prog, &setProgOwn},
                                                     {separator, nullptr},
                                                     {delay, &delayOwn},
                                                     {pause, nullptr},
                                                     {stop, nullptr},
                                                     {separator, nullptr},
                                                     {jamp, &jampOwn},
                                                     {counter, &counterOwn},
                                                     {execute, &executeOwn},
                                                     {separator, nullptr},
                                                     {calc_crc, &calcCrcOwn},
                                                     {process, &processOwn}});
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

IDeviceExec* TDevTools::createExecObject(const TData& param) {
    return new TDevToolsExec(param);
}
