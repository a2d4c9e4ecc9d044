#include "devices/TDev24.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "devices/TDev24CDevParam.h"
#include "devices/TDev24Exec.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "ui/TFormCmd.h"

using namespace CTagCmdCode;

TDev24::TDev24(const QString& code, const TData& param)
    : IDevice(code), cmdList{set_clk,    set_addr,    separator,   erase,      test_empty,
                             char_write, char_verify, data_read,   data_write, data_verify,
                             file_read,  file_write,  file_verify, leave} {
    setDevParam(param);
}

IDevice* TDev24::Instance(const QString& code, const TData& param) {
    return new TDev24(code, param);
}

bool TDev24::supportCmd(const QString& code) const {
    return code != separator && cmdList.contains(code);
}

QStringList TDev24::getSupportCmdList() const {
    return cmdList;
}

void TDev24::getDefaultCmdParam(TData& p) {
    const QString code = p.value(CTagCmd::cmd).toString();
    if (code == set_clk) TNormCmdParam::cmdSetCLKDef(getDevConnect(), p);
    if (code == set_addr) TDev24CDevParam::def(p);
    if (TMiscDev::isOneOf(code, {char_write, char_verify})) TNormCmdParam::cmdRWVCharDef(this, p);
    if (TMiscDev::isOneOf(code, {data_read, data_write, data_verify})) TNormCmdParam::cmdRWVDataDef(this, p);
    if (TMiscDev::isOneOf(code, {file_read, file_write, file_verify})) TNormCmdParam::cmdRWVFileDef(this, p);
    if (code == leave) TNormCmdParam::cmdLeaveDef(p, true);
}

QString TDev24::getViewCmdName(const TData& p) const {
    return CmdCode.getName(p.value(CTagCmd::cmd).toString());
}

QString TDev24::getViewSetAddress(const TData& p) const {
    const unsigned mask = TAPP_PARAM(devParam, "addr_mask").toUInt();
    const unsigned addr = p.value(TDev24CDevParam::addr).toUInt();
    QStringList pins;
    for (int bit = 2; bit >= 0; --bit)
        pins << (mask >> bit & 1 ? QString::number(addr >> bit & 1) : QStringLiteral("-"));
    return Lang.get(482).arg(pins.at(0), pins.at(1), pins.at(2));
}

QString TDev24::getViewCmdParam(const TData& p, QWidget*) const {
    const QString code = p.value(CTagCmd::cmd).toString();
    if (code == set_clk) return TMiscDev::getViewFreqValue(int(TMiscDev::getCLK(p)));
    if (code == set_addr) return getViewSetAddress(p);
    if (TMiscDev::isOneOf(code, {char_write, char_verify})) return TNormCmdParam::cmdRWVCharView(p);
    if (TMiscDev::isOneOf(code, {data_read, data_write, data_verify}))
        return TNormCmdParam::cmdRWVDataView(p);
    if (TMiscDev::isOneOf(code, {file_read, file_write, file_verify}))
        return TNormCmdParam::cmdRWVFileView(p);
    if (code == leave) return TNormCmdParam::cmdLeaveView(p, true);
    return QString();
}

QWidget* TDev24::getFormCmdParam(const TData& p) const {
    const QString code = p.value(CTagCmd::cmd).toString();
    if (code == set_clk) return keepForm(TNormCmdParam::cmdSetCLKForm(getDevConnect(), p));
    if (code == set_addr) return keepForm(TDev24CDevParam::form(this, p));
    if (TMiscDev::isOneOf(code, {char_write, char_verify}))
        return keepForm(TNormCmdParam::cmdRWVCharForm(this, p));
    if (TMiscDev::isOneOf(code, {data_read, data_write, data_verify}))
        return keepForm(TNormCmdParam::cmdRWVDataForm(this, p));
    if (TMiscDev::isOneOf(code, {file_read, file_write, file_verify}))
        return keepForm(TNormCmdParam::cmdRWVFileForm(this, p));
    if (code == leave) return keepForm(TNormCmdParam::cmdLeaveForm(this, p, true));
    return keepForm(nullptr);
}

TData TDev24::getChangedParam(const TData& p) const {
    return formParam(p);
}

void TDev24::normCmdParam(TData&) {}

bool TDev24::checkCmdParam(const TData& p) {
    const QString code = p.value(CTagCmd::cmd).toString();
    if (code == set_clk) return TNormCmdParam::cmdSetCLKCheck(p);
    if (code == set_addr) return TDev24CDevParam::check(p);
    if (TMiscDev::isOneOf(code, {erase, test_empty})) return true;
    if (TMiscDev::isOneOf(code, {char_write, char_verify})) return TNormCmdParam::cmdRWVCharCheck(this, p);
    if (TMiscDev::isOneOf(code, {data_read, data_write, data_verify}))
        return TNormCmdParam::cmdRWVDataCheck(this, p);
    if (TMiscDev::isOneOf(code, {file_read, file_write, file_verify}))
        return TNormCmdParam::cmdRWVFileCheck(this, p);
    if (code == leave) return TNormCmdParam::cmdLeaveCheck(p, true);
    return false;
}

bool TDev24::checkCmdSetDeviceParam(const TData& p) {
    return TDev24CDevParam::check(p);
}

void TDev24::getDefaultParamCmdSetDevice(TData& p) {
    TDev24CDevParam::def(p);
}

QWidget* TDev24::getWgtCmdSetDeviceParam(const TData& p) {
    return TDev24CDevParam::form(this, p);
}

QByteArray TDev24::getCmdSetDeviceExec(const TData& p) {
    return TDev24CDevParam::payload(this, p);
}

IDeviceExec* TDev24::createExecObject(const TData& p) {
    return new TDev24CExec(p);
}
