#include "devices/TDev93C.h"

#include "devices/TDev93CExec.h"
#include "misc/TNormCmdParam.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"

using namespace CTagCmdCode;

namespace {
enum class Kind { Char, Data, File, Other };

Kind kindOf(const QString& code) {
    if (code == char_write || code == char_verify) return Kind::Char;
    if (code == data_read || code == data_write || code == data_verify) return Kind::Data;
    if (code == file_read || code == file_write || code == file_verify) return Kind::File;
    return Kind::Other;
}
} // namespace

TDev93C::TDev93C(const QString& code, const TData& param)
    : IDevice(code), cmdList{set_clk,     erase,      test_empty,  lock,        unlock,
                             separator,   char_write, char_verify, data_read,   data_write,
                             data_verify, file_read,  file_write,  file_verify, leave} {
    setDevParam(param);
}

IDevice* TDev93C::Instance(const QString& code, const TData& param) {
    return new TDev93C(code, param);
}

bool TDev93C::supportCmd(const QString& code) const {
    return code != separator && cmdList.contains(code);
}

QStringList TDev93C::getSupportCmdList() const {
    return cmdList;
}

void TDev93C::getDefaultCmdParam(TData& p) {
    const QString code = p.value(CTagCmd::cmd).toString();
    const Kind kind = kindOf(code);
    if (kind == Kind::Char) TNormCmdParam::cmdRWVCharDef(this, p);
    if (kind == Kind::Data) TNormCmdParam::cmdRWVDataDef(this, p);
    if (kind == Kind::File) TNormCmdParam::cmdRWVFileDef(this, p);
    if (code == set_clk) TNormCmdParam::cmdSetCLKDef(getDevConnect(), p);
    if (code == leave) TNormCmdParam::cmdLeaveDef(p, true);
}

QString TDev93C::getViewCmdName(const TData& p) const {
    return CmdCode.getName(p.value(CTagCmd::cmd).toString());
}

QString TDev93C::getViewCmdParam(const TData& p, QWidget*) const {
    switch (kindOf(p.value(CTagCmd::cmd).toString())) {
    case Kind::Char:
        return TNormCmdParam::cmdRWVCharView(p);
    case Kind::Data:
        return TNormCmdParam::cmdRWVDataView(p);
    case Kind::File:
        return TNormCmdParam::cmdRWVFileView(p);
    default:
        return QString();
    }
}

QWidget* TDev93C::getFormCmdParam(const TData& p) const {
    const QString code = p.value(CTagCmd::cmd).toString();
    switch (kindOf(code)) {
    case Kind::Char:
        return keepForm(TNormCmdParam::cmdRWVCharForm(this, p));
    case Kind::Data:
        return keepForm(TNormCmdParam::cmdRWVDataForm(this, p));
    case Kind::File:
        return keepForm(TNormCmdParam::cmdRWVFileForm(this, p));
    default:
        break;
    }
    if (code == set_clk) return keepForm(TNormCmdParam::cmdSetCLKForm(getDevConnect(), p));
    if (code == leave) return keepForm(TNormCmdParam::cmdLeaveForm(this, p, true));
    return keepForm(nullptr);
}

TData TDev93C::getChangedParam(const TData& p) const {
    return formParam(p);
}

void TDev93C::normCmdParam(TData&) {}

bool TDev93C::checkCmdParam(const TData& p) {
    switch (kindOf(p.value(CTagCmd::cmd).toString())) {
    case Kind::Char:
        return TNormCmdParam::cmdRWVCharCheck(this, p);
    case Kind::Data:
        return TNormCmdParam::cmdRWVDataCheck(this, p);
    case Kind::File:
        return TNormCmdParam::cmdRWVFileCheck(this, p);
    default:
        if (p.value(CTagCmd::cmd).toString() == leave) return TNormCmdParam::cmdLeaveCheck(p, true);
        return supportCmd(p.value(CTagCmd::cmd).toString());
    }
}

bool TDev93C::checkCmdSetDeviceParam(const TData&) {
    return true;
}

void TDev93C::getDefaultParamCmdSetDevice(TData&) {}

QWidget* TDev93C::getWgtCmdSetDeviceParam(const TData&) {
    return nullptr;
}

QByteArray TDev93C::getCmdSetDeviceExec(const TData&) {
    return QByteArray();
}

IDeviceExec* TDev93C::createExecObject(const TData& p) {
    return new TDev93CExec(p);
}
