#include "devices/TDevProg.h"

#include "devices/TDevProgExec.h"
#include "devices/TSignature.h"
#include "link/TProg.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <cmath>

namespace {
const QString kVcc = CTagCmdProgSetVICC::vcc, kVpp = CTagCmdProgSetVIPP::vpp, kIcc = CTagCmdProgSetVICC::icc,
              kIpp = CTagCmdProgSetVIPP::ipp, kOcp = CTagCmdProgSetVICC::ocp,
              kDuration = CTagCmdProgReset::duration, kFreq = CTagCmdProgGenerator::freq,
              kDuty = CTagCmdProgGenerator::duty_cycle, kRoute = CTagCmdProgAutoDetect::route,
              kName = CTagCmdProgAutoDetect::name, kStop = CTagCmdProgAutoDetect::stop,
              kExecute = CTagCmdProgAutoDetect::execute;

QString volts(const TData& p, const QString& key) {
    return QString::number(p.value(key).toDouble(), 'f', 1);
}

// Supply and programming voltage with a current limit: both values within the programmer's ranges.
template <class VoltRange, class CurrentRange>
bool voltCurrentInRange(const TData& p, const QString& vKey, const QString& iKey, VoltRange vRange,
                        CurrentRange iRange) {
    double vmin = 0, vmax = 0, imin = 0, imax = 0;
    vRange(vmin, vmax);
    iRange(imin, imax);
    return TDevProg::isTenthsInRange(p.value(vKey), vmin, vmax) &&
           TDevProg::isTenthsInRange(p.value(iKey), imin, imax);
}

QString voltCurrentView(const TData& p, const QString& vKey, const QString& iKey) {
    return QStringLiteral("%1 V, %2 mA%3")
        .arg(volts(p, vKey), QString::number(p.value(iKey).toDouble(), 'f', 3),
             p.value(kOcp).toBool() ? QStringLiteral(", OCP") : QString());
}
} // namespace

TDevProg::TDevProg(const QString& code, const TData& param) : TCmdFamily(code, param, cmdTable()) {}

const TCmdRows& TDevProg::cmdTable() {
    using namespace CTagCmdCode;
    static const TCmdRows rows = TCmdTable::ownRows({set_device, auto_detect, separator, set_vcc, set_vpp,
                                                     set_vicc, set_vipp, separator, set_io, reset, gen});
    return rows;
}

QStringList TDevProg::getCmdList() {
    return TCmdTable::codes(cmdTable());
}

bool TDevProg::isCmdProg(const QString& code) {
    return TCmdTable::find(cmdTable(), code) != nullptr;
}

TProg* TDevProg::progOf(const TData& p) {
    TLocker lock(ProjectData.getMutex());
    TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(p.value(CTagCmd::id_cmd, -1).toInt());
    return cmd ? cmd->getProgObject() : nullptr;
}

IDevice* TDevProg::deviceOf(const TData& p) {
    TLocker lock(ProjectData.getMutex());
    TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(p.value(CTagCmd::id_cmd, -1).toInt());
    return cmd ? cmd->getDeviceObject() : nullptr;
}

bool TDevProg::isTenthsInRange(const QVariant& v, double min, double max) {
    bool ok = false;
    const double value = v.toDouble(&ok);
    if (!ok) return false;
    const long t = std::lround(value * 10);
    return t >= std::lround(min * 10) && t <= std::lround(max * 10);
}

bool TDevProg::isResetInRange(int d, int min, int max) {
    const int a = std::abs(d);
    return a <= max && (d == 0 || a >= min);
}

void TDevProg::ownDefaults(const TCmdRow& row, TData& p) {
    using namespace CTagCmdCode;
    const QString code = QLatin1String(row.code);
    TProg* prog = progOf(p);
    if (code == set_vcc)
        cmdSetVCCDefault(prog, p);
    else if (code == set_vpp)
        cmdSetVPPDefault(prog, p);
    else if (code == set_vicc)
        cmdSetVICCDefault(prog, p);
    else if (code == set_vipp)
        cmdSetVIPPDefault(prog, p);
    else if (code == set_io)
        TNormCmdParam::cmdLeaveDef(p, false);
    else if (code == reset)
        cmdResetDefault(prog, p);
    else if (code == gen)
        cmdGeneratorDefault(prog, p);
    else if (code == auto_detect)
        cmdAutoDetectDefault(p);
    else if (code == set_device) {
        p.insert(CTagCmdProgSetDevice::device, p.value(CTagCmdProgSetDevice::device).toString());
        p.insert(CTagCmdProgSetDevice::file, p.value(CTagCmdProgSetDevice::file).toString());
    }
}

QString TDevProg::ownView(const TCmdRow& row, const TData& p) const {
    using namespace CTagCmdCode;
    const QString code = QLatin1String(row.code);
    if (code == set_vcc) return cmdSetVCCView(p);
    if (code == set_vpp) return cmdSetVPPView(p);
    if (code == set_vicc) return cmdSetVICCView(p);
    if (code == set_vipp) return cmdSetVIPPView(p);
    if (code == set_io) return TNormCmdParam::cmdLeaveView(p, false);
    if (code == reset) return cmdResetView(p);
    if (code == gen) return cmdGeneratorView(p);
    if (code == set_device) return p.value(CTagCmdProgSetDevice::device).toString();
    if (code == auto_detect) return cmdAutoDetectView(p);
    return QString();
}

bool TDevProg::ownCheck(const TCmdRow& row, const TData& p) const {
    using namespace CTagCmdCode;
    const QString code = QLatin1String(row.code);
    if (code == set_device || code == auto_detect)
        return code == auto_detect ? cmdAutoDetectCheck(p)
                                   : !p.value(CTagCmdProgSetDevice::device).toString().isEmpty();
    if (code == set_io) return TNormCmdParam::cmdLeaveCheck(p, false);
    TProg* prog = progOf(p);
    if (code == set_vcc) return cmdSetVCCCheck(prog, p);
    if (code == set_vpp) return cmdSetVPPCheck(prog, p);
    if (code == set_vicc) return cmdSetVICCCheck(prog, p);
    if (code == set_vipp) return cmdSetVIPPCheck(prog, p);
    if (code == reset) return cmdResetCheck(prog, p);
    if (code == gen) return cmdGeneratorCheck(prog, p);
    return false;
}

IDeviceExec* TDevProg::createExecObject(const TData& param) {
    return new TDevProgExec(param);
}

// ---- supplies ----

void TDevProg::cmdSetVCCDefault(TProg* prog, TData& p) {
    p.insert(kVcc, prog ? prog->getVccDef() : 0.0);
}

bool TDevProg::cmdSetVCCCheck(TProg* prog, const TData& p) {
    double min = 0, max = 0;
    if (!prog) return false;
    prog->getVccRange(min, max);
    return isTenthsInRange(p.value(kVcc), min, max);
}

QString TDevProg::cmdSetVCCView(const TData& p) {
    return QStringLiteral("%1 V").arg(volts(p, kVcc));
}

void TDevProg::cmdSetVPPDefault(TProg* prog, TData& p) {
    p.insert(kVpp, prog ? prog->getVppDef() : 0.0);
}

bool TDevProg::cmdSetVPPCheck(TProg* prog, const TData& p) {
    double min = 0, max = 0;
    if (!prog) return false;
    prog->getVppRange(min, max);
    return isTenthsInRange(p.value(kVpp), min, max);
}

QString TDevProg::cmdSetVPPView(const TData& p) {
    return QStringLiteral("%1 V").arg(volts(p, kVpp));
}

void TDevProg::cmdSetVICCDefault(TProg* prog, TData& p) {
    p.insert(kVcc, prog ? prog->getVccDef() : 0.0);
    p.insert(kIcc, prog ? prog->getIccDef() : 0.0);
    p.insert(kOcp, false);
}

bool TDevProg::cmdSetVICCCheck(TProg* prog, const TData& p) {
    return prog && voltCurrentInRange(
                       p, kVcc, kIcc, [prog](double& a, double& b) { prog->getVccRange(a, b); },
                       [prog](double& a, double& b) { prog->getIccRange(a, b); });
}

QString TDevProg::cmdSetVICCView(const TData& p) {
    return voltCurrentView(p, kVcc, kIcc);
}

void TDevProg::cmdSetVIPPDefault(TProg* prog, TData& p) {
    p.insert(kVpp, prog ? prog->getVppDef() : 0.0);
    p.insert(kIpp, prog ? prog->getIppDef() : 0.0);
    p.insert(kOcp, false);
}

bool TDevProg::cmdSetVIPPCheck(TProg* prog, const TData& p) {
    return prog && voltCurrentInRange(
                       p, kVpp, kIpp, [prog](double& a, double& b) { prog->getVppRange(a, b); },
                       [prog](double& a, double& b) { prog->getIppRange(a, b); });
}

QString TDevProg::cmdSetVIPPView(const TData& p) {
    return voltCurrentView(p, kVpp, kIpp);
}

// ---- reset and generator ----

void TDevProg::cmdResetDefault(TProg* prog, TData& p) {
    p.insert(kDuration, prog ? prog->getResetDef() : -400);
}

bool TDevProg::cmdResetCheck(TProg* prog, const TData& p) {
    bool ok = false;
    const int d = p.value(kDuration).toInt(&ok);
    if (!prog || !ok) return false;
    int min = 0, max = 0;
    prog->getReset(min, max);
    return isResetInRange(d, min, max);
}

QString TDevProg::cmdResetView(const TData& p) {
    return QStringLiteral("%1 ms").arg(p.value(kDuration).toInt());
}

void TDevProg::cmdGeneratorDefault(TProg* prog, TData& p) {
    int fq = 0, dt = 0;
    if (prog) prog->getFreqDef(fq, dt);
    p.insert(kFreq, fq);
    p.insert(kDuty, dt);
}

bool TDevProg::cmdGeneratorCheck(TProg* prog, const TData& p) {
    if (!prog) return false;
    bool fqList = false, dtShow = false, dtList = false;
    int fqMin = 0, fqMax = 0, dtMin = 0, dtMax = 0;
    QVector<int> fqValues, dtValues;
    prog->getFreq(fqList, fqMin, fqMax, fqValues, dtShow, dtList, dtMin, dtMax, dtValues);
    bool ok1 = false, ok2 = false;
    const qint64 fq = p.value(kFreq).toLongLong(&ok1);
    const qint64 dt = p.value(kDuty).toLongLong(&ok2);
    if (!ok1 || !ok2 || fq < fqMin || fq > fqMax || (fqList && !fqValues.contains(int(fq)))) return false;
    // A duty that the programmer does not offer is not checked: its range keys are then absent.
    if (!dtShow) return true;
    return dt >= dtMin && dt <= dtMax && (!dtList || dtValues.contains(int(dt)));
}

QString TDevProg::cmdGeneratorView(const TData& p) {
    return TMiscDev::getViewFreqAndDutyCycleValue(p.value(kFreq).toInt(), p.value(kDuty).toInt());
}

// ---- auto-detection ----

void TDevProg::cmdAutoDetectDefault(TData& p) {
    const QStringList families = TSignature::getAutoFamilyList();
    p.insert(kName, families.isEmpty() ? QString() : families.first());
    p.insert(kRoute, QString());
    p.insert(kStop, true);
    p.insert(kExecute, true);
}

bool TDevProg::cmdAutoDetectCheck(const TData& p) {
    if (!TSignature::getAutoFamilyList().contains(p.value(kName).toString())) return false;
    for (const auto& pair : TSignature::getAutoRouteTable(p.value(kRoute).toString())) {
        bool ok = false;
        pair.second.toInt(&ok);
        if (!ok) return false;
    }
    return true;
}

QString TDevProg::cmdAutoDetectView(const TData& p) {
    QStringList routes;
    for (const auto& pair : TSignature::getAutoRouteTable(p.value(kRoute).toString()))
        routes.append(
            QStringLiteral("%1 >- %2").arg(pair.first, ProjectData.getNameCfgFromIdCfg(pair.second.toInt())));
    const QString name = p.value(kName).toString();
    return routes.isEmpty() ? name : QStringLiteral("%1: %2").arg(name, routes.join(QStringLiteral(", ")));
}
