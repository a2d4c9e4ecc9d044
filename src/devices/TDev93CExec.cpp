#include "devices/TDev93CExec.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "link/CProtocol.h"
#include "link/TSerialPort.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"

TDev93CExec::TDev93CExec(const TData& p, QObject* parent) : IDeviceExec(p, parent) {}

bool TDev93CExec::execute(TSerialPort& port, bool&, int&, int&) {
    using Op = bool (TDev93CExec::*)(TSerialPort&);
    static const QHash<QString, Op> ops{
        {CTagCmdCode::set_clk, &TDev93CExec::execSetCLK},
        {CTagCmdCode::erase, &TDev93CExec::execErase},
        {CTagCmdCode::test_empty, &TDev93CExec::execNotDone},
        {CTagCmdCode::char_write, &TDev93CExec::execNotDone},
        {CTagCmdCode::char_verify, &TDev93CExec::execNotDone},
        {CTagCmdCode::data_write, &TDev93CExec::execNotDone},
        {CTagCmdCode::data_read, &TDev93CExec::execNotDone},
        {CTagCmdCode::data_verify, &TDev93CExec::execNotDone},
        {CTagCmdCode::file_write, &TDev93CExec::execNotDone},
        {CTagCmdCode::file_read, &TDev93CExec::execNotDone},
        {CTagCmdCode::file_verify, &TDev93CExec::execNotDone},
        {CTagCmdCode::leave, &TDev93CExec::execLeave},
    };
    const Op op = ops.value(TAPP_PARAM(param, CTagCmd::cmd).toString(), nullptr);
    if (op) return (this->*op)(port);
    setErrorText(Lang.get(486));
    return false;
}

bool TDev93CExec::execReadSignature(TSerialPort&, QString&) {
    return true;
}

bool TDev93CExec::execSetCLK(TSerialPort& port) {
    const unsigned int hz = TAPP_PARAM(param, "clk").toUInt();
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
