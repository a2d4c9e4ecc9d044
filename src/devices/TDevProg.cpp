#include "devices/TDevProg.h"

#include "devices/TDevProgExec.h"
#include "devices/TProgSupply.h"
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
const QString kDuration = CTagCmdProgReset::duration, kFreq = CTagCmdProgGenerator::freq,
              kDuty = CTagCmdProgGenerator::duty_cycle, kRoute = CTagCmdProgAutoDetect::route,
              kName = CTagCmdProgAutoDetect::name, kStop = CTagCmdProgAutoDetect::stop,
              kExecute = CTagCmdProgAutoDetect::execute;

// The handling of a command whose ranges and defaults come from the programmer's description: the
// record's command names the programmer (none without one).
template <void (*F)(TProg*, TData&)> void progDefaults(const TCmdFamily&, const TCmdRow&, TData& p) {
    F(TDevProg::progOf(p), p);
}

template <TFormCmd* (*F)(TProg*, const TData&)>
TFormCmd* progForm(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return F(TDevProg::progOf(p), p);
}

template <bool (*F)(TProg*, const TData&)> bool progCheck(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return F(TDevProg::progOf(p), p);
}

// The four supply commands differ only in what TProgSupply describes.
template <const TProgSupply& S> void supplyDefaults(const TCmdFamily&, const TCmdRow&, TData& p) {
    S.defaults(TDevProg::progOf(p), p);
}

template <const TProgSupply& S> QString supplyView(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return S.view(p);
}

template <const TProgSupply& S> TFormCmd* supplyForm(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return S.form(TDevProg::progOf(p), p);
}

template <const TProgSupply& S> bool supplyCheck(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return S.check(TDevProg::progOf(p), p);
}

template <const TProgSupply& S>
const TCmdOwn supply{supplyDefaults<S>, supplyView<S>, supplyForm<S>, supplyCheck<S>};
const TCmdOwn resetOwn{progDefaults<TDevProg::cmdResetDefault>, ownViewOf<TDevProg::cmdResetView>,
                       progForm<TDevProg::cmdResetForm>, progCheck<TDevProg::cmdResetCheck>};
const TCmdOwn generator{progDefaults<TDevProg::cmdGeneratorDefault>, ownViewOf<TDevProg::cmdGeneratorView>,
                        progForm<TDevProg::cmdGeneratorForm>, progCheck<TDevProg::cmdGeneratorCheck>};

// The pin states of set_io are those of a leave, without its duration.
constexpr bool ioWithDuration = false;
const TCmdOwn setIo{
    [](const TCmdFamily&, const TCmdRow&, TData& p) { TNormCmdParam::cmdLeaveDef(p, ioWithDuration); },
    [](const TCmdFamily&, const TCmdRow&, const TData& p) {
        return TNormCmdParam::cmdLeaveView(p, ioWithDuration);
    },
    progForm<TDevProg::cmdSetIOForm>,
    [](const TCmdFamily&, const TCmdRow&, const TData& p) {
        return TNormCmdParam::cmdLeaveCheck(p, ioWithDuration);
    }};

QString deviceName(const TData& p) {
    return p.value(CTagCmdProgSetDevice::device).toString();
}

void setDeviceDefaults(TData& p) {
    p.insert(CTagCmdProgSetDevice::device, deviceName(p));
    p.insert(CTagCmdProgSetDevice::file, p.value(CTagCmdProgSetDevice::file).toString());
}

bool setDeviceCheck(const TData& p) {
    return !deviceName(p).isEmpty();
}

const TCmdOwn setDevice{ownDefaultsOf<setDeviceDefaults>, ownViewOf<deviceName>,
                        ownFormOf<TDevProg::cmdSetDeviceForm>, ownCheckOf<setDeviceCheck>};

const TCmdOwn autoDetect{ownDefaultsOf<TDevProg::cmdAutoDetectDefault>,
                         ownViewOf<TDevProg::cmdAutoDetectView>, ownFormOf<TDevProg::cmdAutoDetectForm>,
                         ownCheckOf<TDevProg::cmdAutoDetectCheck>};
} // namespace

TDevProg::TDevProg(const QString& code, const TData& param) : TCmdFamily(code, param, cmdTable()) {}

const TCmdRows& TDevProg::cmdTable() {
    using namespace CTagCmdCode;
    static const TCmdRows rows = TCmdTable::ownRows({{set_device, &setDevice},
                                                     {auto_detect, &autoDetect},
                                                     {separator, nullptr},
                                                     {set_vcc, &supply<TProgSupply::vcc>},
                                                     {set_vpp, &supply<TProgSupply::vpp>},
                                                     {set_vicc, &supply<TProgSupply::vicc>},
                                                     {set_vipp, &supply<TProgSupply::vipp>},
                                                     {separator, nullptr},
                                                     {set_io, &setIo},
                                                     {reset, &resetOwn},
                                                     {gen, &generator}});
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

IDeviceExec* TDevProg::createExecObject(const TData& param) {
    return new TDevProgExec(param);
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
