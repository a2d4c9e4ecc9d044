#include "devices/TDev93C.h"

#include "devices/TDev93CExec.h"
#include "misc/TNormCmdParam.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "ui/TFormCmd.h"

using namespace CTagCmdCode;

namespace {
constexpr bool leaveWithDuration = true;

void clockDefaults(const TCmdFamily& dev, const TCmdRow&, TData& p) {
    TNormCmdParam::cmdSetCLKDef(dev.getDevConnect(), p);
}

TFormCmd* clockForm(const TCmdFamily& dev, const TCmdRow&, const TData& p) {
    return TNormCmdParam::cmdSetCLKForm(dev.getDevConnect(), p);
}

const TCmdOwn clockOwn{clockDefaults, nullptr, clockForm, nullptr};

void leaveDefaults(const TCmdFamily&, const TCmdRow&, TData& p) {
    TNormCmdParam::cmdLeaveDef(p, leaveWithDuration);
}

TFormCmd* leaveForm(const TCmdFamily& dev, const TCmdRow&, const TData& p) {
    return TNormCmdParam::cmdLeaveForm(&dev, p, leaveWithDuration);
}

bool leaveCheck(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return TNormCmdParam::cmdLeaveCheck(p, leaveWithDuration);
}

const TCmdOwn leaveOwn{leaveDefaults, nullptr, leaveForm, leaveCheck};
} // namespace

TDev93C::TDev93C(const QString& code, const TData& param) : TCmdFamily(code, param, cmdTable()) {}

// The clock and the leave are the family's own: as it stands, they show no parameters and the clock is
// not checked against the programmer.
const TCmdRows& TDev93C::cmdTable() {
    using K = TCmdKind;
    using O = TCmdOp;
    static const TCmdRows rows{
        {set_clk, K::Own, O::None, 0, &clockOwn}, {erase, K::Plain, O::Write, 0},
        {test_empty, K::Plain, O::Verify, 0},     {lock, K::Plain, O::None, 0},
        {unlock, K::Plain, O::None, 0},           {separator, K::Separator, O::None, 0},
        {char_write, K::Char, O::Write, 0},       {char_verify, K::Char, O::Verify, 0},
        {data_read, K::Data, O::Read, 0},         {data_write, K::Data, O::Write, 0},
        {data_verify, K::Data, O::Verify, 0},     {file_read, K::File, O::Read, 0},
        {file_write, K::File, O::Write, 0},       {file_verify, K::File, O::Verify, 0},
        {leave, K::Own, O::None, 0, &leaveOwn},
    };
    return rows;
}

IDeviceExec* TDev93C::createExecObject(const TData& p) {
    return new TDev93CExec(p);
}
