#include "devices/TDev93CExec.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "devices/TDev93C.h"
#include "link/CProtocol.h"
#include "link/TSerialPort.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagCmdParam.h"
#include "project/CTagPrj.h"

TDev93CExec::TDev93CExec(const TData& p, QObject* parent) : IDeviceExec(p, parent) {}

// Every read, write and verify, and the commands without packets yet, fail with the not-done text.
bool TDev93CExec::execute(TSerialPort& port, bool&, int&, int&) {
    namespace C = CTagCmdCode;
    using E = TDev93CExec;
    return runByTable<E>(port, TDev93C::cmdTable(),
                         {
                             {C::set_clk, &E::execSetCLK},
                             {C::erase, &E::execErase},
                             {C::test_empty, &E::execNotDone},
                             {C::lock, &E::execNotDone},
                             {C::unlock, &E::execNotDone},
                             {C::leave, &E::execLeave},
                         },
                         [&](int, RangeCmd) { return execNotDone(port); });
}

bool TDev93CExec::execReadSignature(TSerialPort&, QString&) {
    return true;
}

bool TDev93CExec::execSetCLK(TSerialPort& port) {
    const unsigned int hz = TAPP_PARAM(param, CTagCmdSetCLK::clk).toUInt();
    QByteArray data;
    TMiscDev::appendLE(data, hz, 4);
    return sendPackage(port, CProtocol::Family::SetClk, data);
}

bool TDev93CExec::execErase(TSerialPort& port) {
    if (!isOpenPort(port)) return false;
    QByteArray data;
    return sendPackage(port, CProtocol::Mw::Erase, data);
}

bool TDev93CExec::execLeave(TSerialPort& port) {
    return execNotDone(port);
}

bool TDev93CExec::execNotDone(TSerialPort&) {
    setErrorText(Lang.get(486));
    return false;
}
