#include "project/TDataPrj.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "devices/CTagDevices.h"
#include "devices/IDevice.h"
#include "devices/TDeviceList.h"
#include "devices/TSignature.h"
#include "link/TProg.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "project/TDataCfg.h"
#include "project/TDataCmd.h"

#include <QDir>
#include <QFileInfo>

TDataPrj ProjectData;

namespace {
const QString familyTools = QString::fromLatin1(CTagDevices::Tools);
const QString familyProg = QString::fromLatin1(CTagDevices::Prog);

// Where the installation's families and programmer descriptions come from.
IDevice* catalogueDevice(const QString& name, const QString& file) {
    TData param;
    QStringList desc;
    const TDeviceList::Creator creator = DeviceList.getDeviceInstance(name, file, param, &desc);
    if (!creator) return nullptr;
    IDevice* dev = creator(name, param);
    if (dev) dev->setDevDesc(desc);
    return dev;
}
TProg* registryProg(const QString& name) {
    const QString file = AppData.getProgFile(name);
    return file.isEmpty() ? nullptr : new TProg(file);
}
} // namespace

#define LOCK TLocker lock(mutex)

TDataPrj::TDataPrj(QObject* parent)
    : QObject(parent), deviceFactory(catalogueDevice), progFactory(registryProg) {
    clrPrj();
}

TDataPrj::~TDataPrj() {
    LOCK;
    clearObjects();
}

// ---- ids and positions ----

int TDataPrj::posCfgOf(int idCfg) const {
    for (int i = 0; i < cfgList.size(); ++i)
        if (cfgList.at(i)->getUIN() == idCfg) return i;
    return -1;
}

// Looked up for almost every operation: an index keeps loading and binding of large projects linear.
int TDataPrj::aposOf(int idCmd) const {
    if (!aposIndexValid) {
        aposIndex.clear();
        aposIndex.reserve(cmdList.size());
        for (int i = 0; i < cmdList.size(); ++i)
            aposIndex.insert(cmdList.at(i)->getUIN(), i);
        aposIndexValid = true;
    }
    return aposIndex.value(idCmd, -1);
}

int TDataPrj::getPosCfgFromIdCfg(int idCfg) const {
    LOCK;
    return posCfgOf(idCfg);
}

int TDataPrj::getIdCfgFromPosCfg(int pos) const {
    LOCK;
    return pos >= 0 && pos < cfgList.size() ? cfgList.at(pos)->getUIN() : -1;
}

TDataCfg* TDataPrj::getCfgObject(int idCfg) const {
    LOCK;
    const int pos = posCfgOf(idCfg);
    return pos < 0 ? nullptr : cfgList.at(pos);
}

int TDataPrj::getIdCfgFromNameCfg(const QString& name) const {
    LOCK;
    for (TDataCfg* cfg : cfgList)
        if (!cfg->isTransient() && cfg->getName() == name) return cfg->getUIN();
    return -1;
}

QString TDataPrj::getNameCfgFromIdCfg(int idCfg) const {
    LOCK;
    TDataCfg* cfg = getCfgObject(idCfg);
    return cfg ? cfg->getName() : QString();
}

QStringList TDataPrj::getCfgListName() const {
    LOCK;
    QStringList names;
    for (TDataCfg* cfg : cfgList)
        if (!cfg->isTransient()) names.append(cfg->getName());
    return names;
}

QList<TDataCfg*> TDataPrj::getCfgList() const {
    LOCK;
    QList<TDataCfg*> list;
    for (TDataCfg* cfg : cfgList)
        if (!cfg->isTransient()) list.append(cfg);
    return list;
}

bool TDataPrj::isQuiet(int idCfg) const {
    const int pos = posCfgOf(idCfg);
    return pos >= 0 && cfgList.at(pos)->isTransient();
}

QList<TDataCmd*> TDataPrj::getCmdList() const {
    LOCK;
    return cmdList;
}

int TDataPrj::getAPosCmdFromIdCmd(int idCmd) const {
    LOCK;
    return aposOf(idCmd);
}

int TDataPrj::getIdCmdFromAPosCmd(int apos) const {
    LOCK;
    return apos >= 0 && apos < cmdList.size() ? cmdList.at(apos)->getUIN() : -1;
}

TDataCmd* TDataPrj::getCmdObjectFromIdCmd(int idCmd) const {
    LOCK;
    const int apos = aposOf(idCmd);
    return apos < 0 ? nullptr : cmdList.at(apos);
}

TDataCmd* TDataPrj::getCmdObjectFromAPos(int apos) const {
    LOCK;
    return apos >= 0 && apos < cmdList.size() ? cmdList.at(apos) : nullptr;
}

int TDataPrj::getPosCmdFromAPosCmd(int apos) const {
    LOCK;
    if (apos < 0 || apos >= cmdList.size()) return -1;
    const int idCfg = cmdList.at(apos)->getCfgID();
    int pos = 0;
    for (int i = 0; i < apos; ++i)
        if (cmdList.at(i)->getCfgID() == idCfg) ++pos;
    return pos;
}

int TDataPrj::getIdCfgFromIdCmd(int idCmd) const {
    LOCK;
    TDataCmd* cmd = getCmdObjectFromIdCmd(idCmd);
    return cmd ? cmd->getCfgID() : -1;
}

int TDataPrj::getIdCfgFromAPosCmd(int apos) const {
    LOCK;
    TDataCmd* cmd = getCmdObjectFromAPos(apos);
    return cmd ? cmd->getCfgID() : -1;
}

int TDataPrj::getPosCfgFromIdCmd(int idCmd) const {
    LOCK;
    return posCfgOf(getIdCfgFromIdCmd(idCmd));
}

QList<TDataCmd*> TDataPrj::getCmdListCfg(int idCfg) const {
    LOCK;
    QList<TDataCmd*> list;
    for (TDataCmd* cmd : cmdList)
        if (cmd->getCfgID() == idCfg) list.append(cmd);
    return list;
}

TData TDataPrj::getCmdData(int idCmd) const {
    LOCK;
    TDataCmd* cmd = getCmdObjectFromIdCmd(idCmd);
    return cmd ? cmd->getData() : TData();
}

// ---- editing ----

void TDataPrj::emitCmd(TCodeView code, int idCmd) {
    if (TDataCmd* cmd = getCmdObjectFromIdCmd(idCmd); cmd && isQuiet(cmd->getCfgID())) return;
    TData data = getCmdData(idCmd);
    data.insert(CTagCmd::pos, aposOf(idCmd));
    emit signalChangeData(code, data);
}

int TDataPrj::newCfg(const QString& name, const QString& desc, int pos) {
    LOCK;
    setChange();
    auto* cfg = new TDataCfg(name, desc);
    if (pos < 0 || pos >= cfgList.size())
        cfgList.append(cfg);
    else
        cfgList.insert(pos, cfg);
    TData data = cfg->getData();
    data.insert(CTagCmd::id_cfg, cfg->getUIN());
    data.insert(CTagCmd::pos, cfgList.indexOf(cfg));
    emit signalChangeData(CodeViewCfgNew, data);
    return cfg->getUIN();
}

int TDataPrj::newTransientCfg(const QString& name) {
    LOCK;
    auto* cfg = new TDataCfg(name, QString());
    cfg->setTransient();
    cfgList.append(cfg);
    return cfg->getUIN();
}

int TDataPrj::newCmd(TData data, int pos, bool bind) {
    LOCK;
    const int idCfg = data.value(CTagCmd::id_cfg).toInt();
    if (!isQuiet(idCfg)) setChange();
    const bool enable = data.value(CTagCmd::status).toInt() != 0;
    const QString code = data.value(CTagCmd::cmd).toString();
    TDataCmd::removeModelKeys(data);
    auto* cmd = new TDataCmd(enable, idCfg, code, data);
    if (pos < 0 || pos >= cmdList.size()) {
        cmdList.append(cmd);
        if (aposIndexValid) aposIndex.insert(cmd->getUIN(), cmdList.size() - 1);
    } else {
        cmdList.insert(pos, cmd);
        aposIndexValid = false;
    }
    if (bind) updCmdObject(cmd->getUIN());
    emitCmd(CodeViewCmdNew, cmd->getUIN());
    return cmd->getUIN();
}

void TDataPrj::updCmdParam(int idCmd, const TData& param) {
    LOCK;
    TDataCmd* cmd = getCmdObjectFromIdCmd(idCmd);
    if (!cmd) return;
    if (!isQuiet(cmd->getCfgID())) setChange();
    TData p = param;
    TDataCmd::removeModelKeys(p);
    cmd->setParam(p);
    updCmdObject(idCmd);
    emitCmd(CodeViewCmdUpd, idCmd);
}

void TDataPrj::delCmd(int idCmd) {
    LOCK;
    const int apos = aposOf(idCmd);
    if (apos < 0) return;
    const bool quiet = isQuiet(cmdList.at(apos)->getCfgID());
    if (!quiet) setChange();
    TData data = cmdList.at(apos)->getData();
    data.insert(CTagCmd::pos, apos);
    delete cmdList.takeAt(apos);
    aposIndexValid = false;
    if (!quiet) emit signalChangeData(CodeViewCmdDel, data);
}

void TDataPrj::delCmdCfg(int idCfg) {
    LOCK;
    if (!isQuiet(idCfg)) setChange();
    for (int i = cmdList.size() - 1; i >= 0; --i)
        if (cmdList.at(i)->getCfgID() == idCfg) delCmd(cmdList.at(i)->getUIN());
}

void TDataPrj::delCfg(int idCfg) {
    LOCK;
    const int pos = posCfgOf(idCfg);
    if (pos < 0) {
        setChange();
        return;
    }
    const bool quiet = cfgList.at(pos)->isTransient();
    if (!quiet) setChange();
    delCmdCfg(idCfg);
    TData data = cfgList.at(pos)->getData();
    data.insert(CTagCmd::id_cfg, idCfg);
    data.insert(CTagCmd::pos, pos);
    delete cfgList.takeAt(pos);
    if (!quiet) emit signalChangeData(CodeViewCfgDel, data);
}

void TDataPrj::delCmdDev(int idCmdSetDevice) {
    LOCK;
    const int apos = aposOf(idCmdSetDevice);
    if (apos < 0) return;
    setChange();
    // The device commands that the set-device command serves: those after it in its configuration, up to
    // the next command that chooses a programmer or a device.
    const int idCfg = cmdList.at(apos)->getCfgID();
    QList<int> ids;
    for (int i = apos + 1; i < cmdList.size(); ++i) {
        TDataCmd* cmd = cmdList.at(i);
        if (cmd->getCfgID() != idCfg) continue;
        const QString code = cmd->getCmdCode();
        if (code == CTagCmdCode::set_prog || code == CTagCmdCode::set_device ||
            code == CTagCmdCode::auto_detect)
            break;
        if (CmdCode.getFamily(code) == TCmdCode::FamilyDevice) ids.append(cmd->getUIN());
    }
    for (int id : ids)
        delCmd(id);
}

void TDataPrj::movCfg(int from, int to) {
    LOCK;
    setChange();
    if (from < 0 || to < 0 || from >= cfgList.size() || to >= cfgList.size()) return;
    cfgList.move(from, to);
    emit signalChangeData(CodeViewCfgMove,
                          TData{{CTagCmd::id_cfg, cfgList.at(to)->getUIN()}, {CTagCmd::pos, to}});
}

void TDataPrj::moveCmd(int idCmd, int delta) {
    LOCK;
    setChange();
    const int p = aposOf(idCmd);
    const int t = p + delta;
    if (p < 0 || t < 0 || t >= cmdList.size()) return;
    if (cmdList.at(t)->getCfgID() != cmdList.at(p)->getCfgID()) return;
    cmdList.move(p, t);
    aposIndexValid = false;
    updCmdObjectAll();
    emitCmd(CodeViewCmdMove, idCmd);
}

void TDataPrj::enbCmd(int idCmd, bool on) {
    LOCK;
    setChange();
    if (TDataCmd* cmd = getCmdObjectFromIdCmd(idCmd)) {
        cmd->setEnable(on);
        emitCmd(CodeViewCmdUpd, idCmd);
    }
}

void TDataPrj::enbCmdCfg(int idCfg, bool on) {
    LOCK;
    setChange();
    for (TDataCmd* cmd : cmdList)
        if (cmd->getCfgID() == idCfg) {
            cmd->setEnable(on);
            emitCmd(CodeViewCmdUpd, cmd->getUIN());
        }
}

void TDataPrj::setCfgName(int idCfg, const QString& name) {
    LOCK;
    if (TDataCfg* cfg = getCfgObject(idCfg)) {
        setChange();
        cfg->setName(name);
        emit signalChangeData(CodeViewCfgUpd, TData{{CTagCmd::id_cfg, idCfg}, {CTagCfg::name, name}});
    }
}

void TDataPrj::setCfgDesc(int idCfg, const QString& desc) {
    LOCK;
    if (TDataCfg* cfg = getCfgObject(idCfg)) {
        setChange();
        cfg->setDesc(desc);
        emit signalChangeData(CodeViewCfgUpd, TData{{CTagCmd::id_cfg, idCfg}, {CTagCfg::description, desc}});
    }
}

void TDataPrj::setCfgStatus(int idCfg, TCodeCfgStatus status) {
    LOCK;
    if (TDataCfg* cfg = getCfgObject(idCfg)) {
        cfg->setStatus(status);
        if (!cfg->isTransient())
            emit signalChangeData(CodeViewCfgUpd,
                                  TData{{CTagCmd::id_cfg, idCfg}, {CTagCfg::cfg_status, status}});
    }
}

TCodeCfgStatus TDataPrj::getCfgStatus(int idCfg) const {
    LOCK;
    TDataCfg* cfg = getCfgObject(idCfg);
    return cfg ? cfg->getStatus() : CfgStatusNone;
}

bool TDataPrj::existCmdErrorCfg(int idCfg) const {
    LOCK;
    for (TDataCmd* cmd : cmdList)
        if (cmd->getCfgID() == idCfg && (!cmd->getValidDev() || !cmd->getValidParam())) return true;
    return false;
}

bool TDataPrj::existCmdSelectCfg(int idCfg) const {
    LOCK;
    for (TDataCmd* cmd : cmdList)
        if (cmd->getCfgID() == idCfg && cmd->getEnable()) return true;
    return false;
}

bool TDataPrj::existCmdDeviceCfg(int idCfg) const {
    LOCK;
    for (TDataCmd* cmd : cmdList)
        if (cmd->getCfgID() == idCfg && CmdCode.getFamily(cmd->getCmdCode()) == TCmdCode::FamilyDevice)
            return true;
    return false;
}

// ---- project ----

void TDataPrj::setPrjFileName(const QString& file) {
    LOCK;
    prjFileName = file;
}

QString TDataPrj::getPrjFileName() const {
    LOCK;
    return prjFileName;
}

void TDataPrj::setPrjName(const QString& name) {
    LOCK;
    prjName = name;
}

QString TDataPrj::getPrjName() const {
    LOCK;
    return prjName;
}

QString TDataPrj::getPrjWorkPath() const {
    LOCK;
    return workPath;
}

void TDataPrj::updPrjParam(const TData& param) {
    LOCK;
    prjFileName = param.value(CTagPrj::prj_file).toString();
    workPath = param.value(CTagPrj::work_path).toString();
    prjName = QFileInfo(prjFileName).completeBaseName();
    emit signalChangeData(CodeViewPrj, getPrjParam());
}

TData TDataPrj::getPrjParam() const {
    LOCK;
    return TData{{CTagPrj::prj_file, prjFileName}, {CTagPrj::work_path, workPath}};
}

bool TDataPrj::isOpenPrj() const {
    LOCK;
    return !prjFileName.isEmpty() || !cfgList.isEmpty();
}

bool TDataPrj::isChange() const {
    LOCK;
    return change;
}

void TDataPrj::setChange() {
    LOCK;
    change = true;
    emit signalChangePrj(true);
}

void TDataPrj::resetChange() {
    LOCK;
    change = false;
    emit signalChangePrj(false);
}

void TDataPrj::normPrjParam() {
    LOCK;
    for (TDataCmd* cmd : cmdList)
        cmd->normParam();
}

void TDataPrj::checkPrjParam() {
    LOCK;
    for (TDataCmd* cmd : cmdList)
        cmd->checkParam();
}

void TDataPrj::updPrgDevList() {
    LOCK;
    // The programmer or device lists changed: forget what was made from them and bind again.
    for (TDataCmd* cmd : cmdList) {
        cmd->setGroupObject(nullptr);
        cmd->setDeviceObject(nullptr);
        cmd->setProgObject(nullptr);
    }
    qDeleteAll(deviceCache);
    deviceCache.clear();
    qDeleteAll(progCache);
    progCache.clear();
    updCmdObjectAll();
}

void TDataPrj::clearObjects() {
    qDeleteAll(cmdList);
    cmdList.clear();
    aposIndexValid = false;
    qDeleteAll(cfgList);
    cfgList.clear();
    qDeleteAll(deviceCache);
    deviceCache.clear();
    qDeleteAll(progCache);
    progCache.clear();
}

void TDataPrj::clrPrj() {
    LOCK;
    clearObjects();
    prjFileName.clear();
    prjName.clear();
    workPath.clear();
    TDataCfg::resetUINCounter();
    TDataCmd::resetUINCounter();
    emit signalChangeData(CodeViewPrj, TData());
}

// ---- support lists ----

QStringList TDataPrj::getSupportToolsCmdList() {
    LOCK;
    IDevice* tools = createDevice(familyTools, QString());
    return tools ? tools->getSupportCmdList() : QStringList();
}

namespace {
QStringList filterByProg(const QStringList& codes, TProg* prog) {
    QStringList out;
    for (const QString& code : codes)
        if (code == CTagCmdCode::separator || (prog && prog->supportCmd(code))) out.append(code);
    return out;
}
} // namespace

QStringList TDataPrj::getSupportProgCmdList(int idCmd) {
    LOCK;
    const int apos = aposOf(idCmd);
    if (apos < 0) return QStringList();
    const QString progName = getProgName(getIdCfgFromAPosCmd(apos), apos);
    IDevice* prog = createDevice(familyProg, QString());
    if (progName.isEmpty() || !prog) return QStringList();
    return filterByProg(prog->getSupportCmdList(), createProg(progName));
}

QStringList TDataPrj::getSupportDeviceCmdList(int idCmd) {
    LOCK;
    const int apos = aposOf(idCmd);
    if (apos < 0) return QStringList();
    const int idCfg = getIdCfgFromAPosCmd(apos);
    const QString progName = getProgName(idCfg, apos);
    const QString devName = getDeviceName(idCfg, apos);
    IDevice* dev = devName.isEmpty() ? nullptr : deviceCache.value(devName);
    if (progName.isEmpty() || !dev) return QStringList();
    return filterByProg(dev->getSupportCmdList(), createProg(progName));
}

// ---- execution support ----

TDataCmd* TDataPrj::getNextCmd(int idCfg, int idCmdPrev) const {
    LOCK;
    int start = 0;
    if (idCmdPrev >= 0) {
        const int prev = aposOf(idCmdPrev);
        if (prev < 0) return nullptr;
        start = prev + 1;
    }
    for (int i = start; i < cmdList.size(); ++i) {
        TDataCmd* cmd = cmdList.at(i);
        if (cmd->getCfgID() == idCfg && cmd->getEnable()) return cmd;
    }
    return nullptr;
}

bool TDataPrj::getNextCmdData(int idCfg, int idCmdPrev, TData& data) const {
    LOCK;
    TDataCmd* cmd = getNextCmd(idCfg, idCmdPrev);
    data = cmd ? cmd->getData() : TData();
    return cmd != nullptr;
}

// ---- binding ----

int TDataPrj::walkBack(int idCfg, int apos, const std::function<int(TDataCmd*)>& visit) const {
    // visit returns 1 to stop with this command, -1 to stop with nothing, 0 to go on.
    if (apos < 0 || apos >= cmdList.size()) apos = cmdList.size() - 1;
    for (int i = apos; i >= 0; --i) {
        TDataCmd* cmd = cmdList.at(i);
        if (cmd->getCfgID() != idCfg) return -1;
        const int r = visit(cmd);
        if (r > 0) return i;
        if (r < 0) return -1;
    }
    return -1;
}

QString TDataPrj::getProgName(int idCfg, int apos) const {
    LOCK;
    const int found = walkBack(idCfg, apos, [](TDataCmd* cmd) {
        return cmd->getCmdCode() == CTagCmdCode::set_prog ? (cmd->getValidDev() ? 1 : -1) : 0;
    });
    return found < 0 ? QString() : cmdList.at(found)->getParam().value(CTagCmdToolsSetProg::prog).toString();
}

QString TDataPrj::getDeviceName(int idCfg, int apos) const {
    LOCK;
    const int found = walkBack(idCfg, apos, [](TDataCmd* cmd) {
        const QString code = cmd->getCmdCode();
        if (code == CTagCmdCode::set_prog) return -1; // a new programmer forgets the device
        if (code == CTagCmdCode::set_device || code == CTagCmdCode::auto_detect)
            return cmd->getValidDev() ? 1 : -1;
        return 0;
    });
    if (found < 0) return QString();
    const TDataCmd* cmd = cmdList.at(found);
    const char* key = cmd->getCmdCode() == CTagCmdCode::auto_detect ? CTagCmdProgAutoDetect::name
                                                                    : CTagCmdProgSetDevice::device;
    return cmd->getParam().value(key).toString();
}

QString TDataPrj::getGroupName(int idCfg, int apos, const QString& code) const {
    LOCK;
    switch (CmdCode.getFamily(code)) {
    case TCmdCode::FamilyTools:
        return familyTools;
    case TCmdCode::FamilyProg:
        return familyProg;
    default:
        return getDeviceName(idCfg, apos);
    }
}

int TDataPrj::getAPosCmdSetProg(int idCmd) const {
    LOCK;
    const int apos = aposOf(idCmd);
    if (apos < 0) return -1;
    const int idCfg = cmdList.at(apos)->getCfgID();
    return walkBack(idCfg, apos,
                    [](TDataCmd* cmd) { return cmd->getCmdCode() == CTagCmdCode::set_prog ? 1 : 0; });
}

int TDataPrj::getAPosCmdSetDevice(int idCmd) const {
    LOCK;
    const int apos = aposOf(idCmd);
    if (apos < 0) return -1;
    const int idCfg = cmdList.at(apos)->getCfgID();
    return walkBack(idCfg, apos,
                    [](TDataCmd* cmd) { return cmd->getCmdCode() == CTagCmdCode::set_device ? 1 : 0; });
}

void TDataPrj::updCmdObject(int idCmd) {
    LOCK;
    const int apos = aposOf(idCmd);
    if (apos < 0) return;
    TDataCmd* cmd = cmdList.at(apos);
    const int idCfg = cmd->getCfgID();
    bindCmd(cmd, getProgName(idCfg, apos), getDeviceName(idCfg, apos));
}

// One pass from the top: each command's programmer and device follow from the commands before it in its
// configuration, as getProgName and getDeviceName find them looking back, without looking back.
void TDataPrj::updCmdObjectAll() {
    LOCK;
    QString prog, device;
    for (int apos = 0; apos < cmdList.size(); ++apos) {
        TDataCmd* cmd = cmdList.at(apos);
        if (apos > 0 && cmdList.at(apos - 1)->getCfgID() != cmd->getCfgID()) prog = device = QString();
        bindCmd(cmd, prog, device);
        const QString code = cmd->getCmdCode();
        const TData param = cmd->getParam();
        if (code == CTagCmdCode::set_prog) {
            prog = cmd->getValidDev() ? param.value(CTagCmdToolsSetProg::prog).toString() : QString();
            device = QString();
        } else if (code == CTagCmdCode::set_device) {
            device = cmd->getValidDev() ? param.value(CTagCmdProgSetDevice::device).toString() : QString();
        } else if (code == CTagCmdCode::auto_detect) {
            device = cmd->getValidDev() ? param.value(CTagCmdProgAutoDetect::name).toString() : QString();
        }
    }
}

void TDataPrj::bindCmd(TDataCmd* cmd, const QString& progName, const QString& devName) {
    const QString code = cmd->getCmdCode();
    const TCmdCode::Family family = CmdCode.getFamily(code);
    const TData param = cmd->getParam();
    IDevice* group = nullptr;
    IDevice* device = nullptr;
    TProg* prog = nullptr;

    if (code == CTagCmdCode::set_prog) {
        group = createDevice(familyTools, QString());
        prog = createProg(param.value(CTagCmdToolsSetProg::prog).toString());
    } else if (code == CTagCmdCode::set_device) {
        group = createDevice(familyProg, QString());
        device = createDevice(param.value(CTagCmdProgSetDevice::device).toString(),
                              param.value(CTagCmdProgSetDevice::file).toString());
        prog = createProg(progName);
    } else if (code == CTagCmdCode::auto_detect) {
        const QString family = param.value(CTagCmdProgAutoDetect::name).toString();
        group = createDevice(familyProg, QString());
        device = createDevice(family, TSignature::getAutoDevFile(family));
        prog = createProg(progName);
    } else {
        const QString groupName = family == TCmdCode::FamilyTools  ? familyTools
                                  : family == TCmdCode::FamilyProg ? familyProg
                                                                   : devName;
        group = groupName.isEmpty() ? nullptr : deviceCache.value(groupName);
        if (!group && (groupName == familyTools || groupName == familyProg))
            group = createDevice(groupName, QString());
        device = devName.isEmpty() ? nullptr : deviceCache.value(devName);
        prog = createProg(progName);
    }
    cmd->setGroupObject(group);
    cmd->setDeviceObject(device);
    cmd->setProgObject(prog);

    bool valid = group && group->supportCmd(code);
    if (code == CTagCmdCode::set_prog)
        valid = valid && prog;
    else if (family != TCmdCode::FamilyTools)
        valid = valid && prog && prog->supportCmd(code);
    if (code == CTagCmdCode::set_device || code == CTagCmdCode::auto_detect) valid = valid && device;
    cmd->setValidDev(valid);
    cmd->checkParam();
}

// ---- objects ----

IDevice* TDataPrj::createDevice(const QString& name, const QString& file) {
    LOCK;
    if (name.isEmpty()) return nullptr;
    if (IDevice* dev = deviceCache.value(name)) return dev;
    IDevice* dev = deviceFactory ? deviceFactory(name, file) : nullptr;
    if (dev) deviceCache.insert(name, dev);
    return dev;
}

TProg* TDataPrj::createProg(const QString& name) {
    LOCK;
    if (name.isEmpty()) return nullptr;
    if (TProg* prog = progCache.value(name)) return prog;
    TProg* prog = progFactory ? progFactory(name) : nullptr;
    if (prog) progCache.insert(name, prog);
    return prog;
}

void TDataPrj::setDeviceFactory(DeviceFactory f) {
    LOCK;
    deviceFactory = f ? std::move(f) : DeviceFactory(catalogueDevice);
}

void TDataPrj::setProgFactory(ProgFactory f) {
    LOCK;
    progFactory = f ? std::move(f) : ProgFactory(registryProg);
}
