#include "project/TDataCmd.h"

#include "devices/IDevice.h"
#include "project/CTagPrj.h"
#include "project/TPrjText.h"

#include <atomic>

namespace {
std::atomic<int> uinCounter{0};
}

TDataCmd::TDataCmd(bool en, int cfg, const QString& code, const TData& p)
    : uin(uinCounter++), cfgId(cfg), enable(en), cmdCode(code), param(p) {
    removeModelKeys(param);
}

void TDataCmd::resetUINCounter() {
    uinCounter = 0;
}

void TDataCmd::removeModelKeys(TData& data) {
    for (const char* key : {CTagCmd::id_cmd, CTagCmd::id_cfg, CTagCmd::status, CTagCmd::cmd,
                            CTagCmd::valid_dev, CTagCmd::valid_param})
        data.remove(key);
}

#define LOCKED(expr)                                                                                         \
    TLocker lock(mutex);                                                                               \
    expr

void TDataCmd::setEnable(bool on) {
    LOCKED(enable = on;)
}
bool TDataCmd::getEnable() const {
    LOCKED(return enable;)
}
void TDataCmd::setValidDev(bool on) {
    LOCKED(validDev = on;)
}
bool TDataCmd::getValidDev() const {
    LOCKED(return validDev;)
}
void TDataCmd::setValidParam(bool on) {
    LOCKED(validParam = on;)
}
bool TDataCmd::getValidParam() const {
    LOCKED(return validParam;)
}
void TDataCmd::setCfgID(int id) {
    LOCKED(cfgId = id;)
}
int TDataCmd::getCfgID() const {
    LOCKED(return cfgId;)
}
QString TDataCmd::getCmdCode() const {
    LOCKED(return cmdCode;)
}
TData TDataCmd::getParam() const {
    LOCKED(return param;)
}
void TDataCmd::clearParam() {
    LOCKED(param.clear();)
}
void TDataCmd::setGroupObject(IDevice* obj) {
    LOCKED(groupObject = obj;)
}
IDevice* TDataCmd::getGroupObject() const {
    LOCKED(return groupObject;)
}
void TDataCmd::setDeviceObject(IDevice* obj) {
    LOCKED(deviceObject = obj;)
}
IDevice* TDataCmd::getDeviceObject() const {
    LOCKED(return deviceObject;)
}
void TDataCmd::setProgObject(TProg* obj) {
    LOCKED(progObject = obj;)
}
TProg* TDataCmd::getProgObject() const {
    LOCKED(return progObject;)
}

void TDataCmd::setParam(const TData& p) {
    TLocker lock(mutex);
    param = p;
    param.remove(CTagCmd::id_cmd);
}

TData TDataCmd::getData() const {
    TLocker lock(mutex);
    TData data = param;
    data.insert(CTagCmd::id_cmd, uin);
    data.insert(CTagCmd::id_cfg, cfgId);
    data.insert(CTagCmd::status, enable ? 1 : 0);
    data.insert(CTagCmd::cmd, cmdCode);
    data.insert(CTagCmd::valid_dev, validDev);
    data.insert(CTagCmd::valid_param, validParam);
    return data;
}

void TDataCmd::setData(const TData& data) {
    TLocker lock(mutex);
    enable = data.value(CTagCmd::status).toInt() != 0;
    cfgId = data.value(CTagCmd::id_cfg).toInt();
    cmdCode = data.value(CTagCmd::cmd).toString();
    param = data;
    removeModelKeys(param);
}

void TDataCmd::normParam() {
    TLocker lock(mutex);
    if (!groupObject) return;
    const TData before = getData();
    TData after = before;
    groupObject->normCmdParam(after);
    if (after != before) setData(after);
}

bool TDataCmd::checkParam() {
    TLocker lock(mutex);
    // A value the project file cannot keep would turn into other commands at the next save.
    const bool ok = groupObject && groupObject->checkCmdParam(getData()) &&
                    TPrjText::findUnwritableKey(param).isEmpty();
    validParam = ok;
    return ok;
}
