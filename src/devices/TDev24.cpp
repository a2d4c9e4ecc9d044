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

namespace {
// set_addr, the family's one command of its own, has the set-device command's address pins.
void setAddrDefaults(const TCmdFamily&, const TCmdRow&, TData& p) {
    TDev24CDevParam::def(p);
}

QString setAddrView(const TCmdFamily& dev, const TCmdRow&, const TData& p) {
    return static_cast<const TDev24&>(dev).getViewSetAddress(p);
}

TFormCmd* setAddrForm(const TCmdFamily& dev, const TCmdRow&, const TData& p) {
    return TDev24CDevParam::form(&dev, p);
}

bool setAddrCheck(const TCmdFamily&, const TCmdRow&, const TData& p) {
    return TDev24CDevParam::check(p);
}

const TCmdOwn setAddr{setAddrDefaults, setAddrView, setAddrForm, setAddrCheck};
} // namespace

// The address pins go out as the set-device payload's family byte.
TDev24::TDev24(const QString& code, const TData& param) : TDevFamily(code, param, cmdTable()) {
    familyByteKey = TDev24CDevParam::addr;
}

const TCmdRows& TDev24::cmdTable() {
    using K = TCmdKind;
    using O = TCmdOp;
    static const TCmdRows rows{
        {set_clk, K::Clock, O::None, 0},       {set_addr, K::Own, O::None, 0, &setAddr},
        {separator, K::Separator, O::None, 0}, {erase, K::Plain, O::Write, 0},
        {test_empty, K::Plain, O::Verify, 0},  {char_write, K::Char, O::Write, 0},
        {char_verify, K::Char, O::Verify, 0},  {data_read, K::Data, O::Read, 0},
        {data_write, K::Data, O::Write, 0},    {data_verify, K::Data, O::Verify, 0},
        {file_read, K::File, O::Read, 0},      {file_write, K::File, O::Write, 0},
        {file_verify, K::File, O::Verify, 0},  {leave, K::Leave, O::None, 0},
    };
    return rows;
}

QString TDev24::getViewSetAddress(const TData& p) const {
    const unsigned mask = TAPP_PARAM(devParam, "addr_mask").toUInt();
    const unsigned addr = p.value(TDev24CDevParam::addr).toUInt();
    QStringList pins;
    for (int bit = 2; bit >= 0; --bit)
        pins << (mask >> bit & 1 ? QString::number(addr >> bit & 1) : QStringLiteral("-"));
    return Lang.get(482).arg(pins.at(0), pins.at(1), pins.at(2));
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

IDeviceExec* TDev24::createExecObject(const TData& p) {
    return new TDev24CExec(p);
}
