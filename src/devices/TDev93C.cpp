#include "devices/TDev93C.h"

#include "devices/TDev93CExec.h"
#include "misc/TNormCmdParam.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "ui/TFormCmd.h"

using namespace CTagCmdCode;

TDev93C::TDev93C(const QString& code, const TData& param)
    : IDevice(code), cmdList(TCmdTable::codes(cmdTable())) {
    setDevParam(param);
}

// The clock and the leave are the family's own: as it stands, they show no parameters and the clock is
// not checked against the programmer.
const TCmdRows& TDev93C::cmdTable() {
    using K = TCmdKind;
    using O = TCmdOp;
    static const TCmdRows rows{
        {set_clk, K::Own, O::None, 0},        {erase, K::Plain, O::Write, 0},
        {test_empty, K::Plain, O::Verify, 0}, {lock, K::Plain, O::None, 0},
        {unlock, K::Plain, O::None, 0},       {separator, K::Separator, O::None, 0},
        {char_write, K::Char, O::Write, 0},   {char_verify, K::Char, O::Verify, 0},
        {data_read, K::Data, O::Read, 0},     {data_write, K::Data, O::Write, 0},
        {data_verify, K::Data, O::Verify, 0}, {file_read, K::File, O::Read, 0},
        {file_write, K::File, O::Write, 0},   {file_verify, K::File, O::Verify, 0},
        {leave, K::Own, O::None, 0},
    };
    return rows;
}

IDevice* TDev93C::Instance(const QString& code, const TData& param) {
    return new TDev93C(code, param);
}

bool TDev93C::supportCmd(const QString& code) const {
    return TCmdTable::find(cmdTable(), code) != nullptr;
}

QStringList TDev93C::getSupportCmdList() const {
    return cmdList;
}

void TDev93C::getDefaultCmdParam(TData& p) {
    const QString code = p.value(CTagCmd::cmd).toString();
    const TCmdRow* row = TCmdTable::find(cmdTable(), code);
    qint64 begin, size;
    TNormCmdParam::readDevData(this, begin, size);
    if (!row || TCmdTable::defaults(*row, this, p, begin, size)) return;
    if (code == set_clk) TNormCmdParam::cmdSetCLKDef(getDevConnect(), p);
    if (code == leave) TNormCmdParam::cmdLeaveDef(p, true);
}

QString TDev93C::getViewCmdName(const TData& p) const {
    return CmdCode.getName(p.value(CTagCmd::cmd).toString());
}

QString TDev93C::getViewCmdParam(const TData& p, QWidget*) const {
    const TCmdRow* row = TCmdTable::find(cmdTable(), p.value(CTagCmd::cmd).toString());
    QString text;
    if (row) TCmdTable::view(*row, p, text);
    return text;
}

QWidget* TDev93C::getFormCmdParam(const TData& p) const {
    const QString code = p.value(CTagCmd::cmd).toString();
    const TCmdRow* row = TCmdTable::find(cmdTable(), code);
    qint64 begin, size;
    TNormCmdParam::readDevData(this, begin, size);
    TFormCmd* form = nullptr;
    if (row && !TCmdTable::form(*row, this, p, begin, size, form)) {
        if (code == set_clk) form = TNormCmdParam::cmdSetCLKForm(getDevConnect(), p);
        if (code == leave) form = TNormCmdParam::cmdLeaveForm(this, p, true);
    }
    return keepForm(form);
}

TData TDev93C::getChangedParam(const TData& p) const {
    return formParam(p);
}

void TDev93C::normCmdParam(TData&) {}

bool TDev93C::checkCmdParam(const TData& p) {
    const QString code = p.value(CTagCmd::cmd).toString();
    const TCmdRow* row = TCmdTable::find(cmdTable(), code);
    if (!row) return false;
    qint64 begin, size;
    TNormCmdParam::readDevData(this, begin, size);
    bool valid = false;
    if (TCmdTable::check(*row, p, begin, size, valid)) return valid;
    return code != leave || TNormCmdParam::cmdLeaveCheck(p, true);
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
