#include "devices/TDev93C.h"

#include "devices/TDev93CExec.h"
#include "misc/TNormCmdParam.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "ui/TFormCmd.h"

using namespace CTagCmdCode;

TDev93C::TDev93C(const QString& code, const TData& param) : TCmdFamily(code, param, cmdTable()) {}

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

void TDev93C::ownDefaults(const TCmdRow& row, TData& p) {
    if (row.code == QLatin1String(set_clk)) TNormCmdParam::cmdSetCLKDef(getDevConnect(), p);
    if (row.code == QLatin1String(leave)) TNormCmdParam::cmdLeaveDef(p, true);
}

TFormCmd* TDev93C::ownForm(const TCmdRow& row, const TData& p) const {
    if (row.code == QLatin1String(set_clk)) return TNormCmdParam::cmdSetCLKForm(getDevConnect(), p);
    if (row.code == QLatin1String(leave)) return TNormCmdParam::cmdLeaveForm(this, p, true);
    return nullptr;
}

bool TDev93C::ownCheck(const TCmdRow& row, const TData& p) const {
    return row.code != QLatin1String(leave) || TNormCmdParam::cmdLeaveCheck(p, true);
}

IDeviceExec* TDev93C::createExecObject(const TData& p) {
    return new TDev93CExec(p);
}
