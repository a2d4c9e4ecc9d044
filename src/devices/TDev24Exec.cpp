#include "devices/TDev24Exec.h"

#include "app/TApp.h"
#include "devices/TDev24.h"
#include "devices/TDev24CAlg.h"
#include "devices/TDev24CDevParam.h"
#include "link/CProtocol.h"
#include "link/TSerialPort.h"
#include "misc/TNormCmdParam.h"
#include "misc/dev_misc.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"

TDev24CExec::TDev24CExec(const TData& p, QObject* parent) : IDeviceExec(p, parent) {}

bool TDev24CExec::execute(TSerialPort& port, bool&, int&, int&) {
    namespace C = CTagCmdCode;
    using E = TDev24CExec;
    return runByTable<E>(port, TDev24::cmdTable(),
                         {
                             {C::set_addr, &E::setAddress},
                             {C::set_clk, &E::setCLK},
                             {C::erase, &E::erase},
                             {C::test_empty, &E::testEmpty},
                             {C::leave, &E::leave},
                         },
                         [&](int, RangeCmd cmd) { return prepare(port) && runRange(memory(port), cmd); });
}

bool TDev24CExec::execReadSignature(TSerialPort&, QString&) {
    return true;
}

bool TDev24CExec::showDataRead(const QString& hex) {
    emit signalEventText(ExecResult, hex, QString());
    return true;
}

// ---- shared steps ----

bool TDev24CExec::prepare(TSerialPort& port) {
    if (!prepareDevice(port)) return false;
    page = TAPP_PARAM(dev, "page_size").toInt();
    addrSize = static_cast<unsigned char>(TAPP_PARAM(dev, "addr_size").toUInt());
    return page > 0;
}

TMemorySpace TDev24CExec::memory(TSerialPort& port) {
    TMemorySpace s;
    s.read = [this, &port](qint64 addr, int len, QByteArray& out) {
        QString err;
        return TDev24CAlg::read(TAPP_PARAM(dev, "alg_read").toInt(), port, addr, addrSize,
                                static_cast<unsigned short>(len), out, err) ||
               failAlg(err, "alg_read");
    };
    s.write = [this, &port](qint64 addr, const QByteArray& data) {
        QString err;
        return TDev24CAlg::write(TAPP_PARAM(dev, "alg_write").toInt(), port, addr, addrSize, data, err) ||
               failAlg(err, "alg_write");
    };
    s.readChunk = qMin(maxData, CProtocol::MaxPayload);
    s.writeChunk = page;
    s.progress = TMemorySpace::Progress::OnChange;
    return s;
}

// ---- commands ----

bool TDev24CExec::setAddress(TSerialPort& port) {
    if (!prepare(port)) return false;
    const unsigned masked =
        TAPP_PARAM(param, TDev24CDevParam::addr).toUInt() & TAPP_PARAM(dev, "addr_mask").toUInt();
    QString err;
    if (TDev24CAlg::setAddress(port, static_cast<unsigned char>(masked << 1), err)) return true;
    setErrorText(err);
    return false;
}

bool TDev24CExec::setCLK(TSerialPort& port) {
    if (!isOpenPort(port)) return false;
    QString err;
    if (TDev24CAlg::setClk(port, TMiscDev::getCLK(param), err)) return true;
    setErrorText(err);
    return false;
}

bool TDev24CExec::leave(TSerialPort& port) {
    if (!isOpenPort(port)) return false;
    const QByteArray payload = TNormCmdParam::cmdLeaveExec(TAPP_PARAM(param, CTagCmd::id_cmd).toInt(), true);
    QString err;
    if (TDev24CAlg::leave(port, payload, err)) return true;
    setErrorText(err);
    return false;
}

// The chip has no erase of its own: the whole array is written with 0xFF.
bool TDev24CExec::erase(TSerialPort& port) {
    if (!prepare(port)) return false;
    const qint64 begin = TAPP_PARAM(dev, "addr_begin").toLongLong();
    const qint64 end = begin + TAPP_PARAM(dev, "size").toLongLong() - 1;
    return writeRange(memory(port), begin, end, [](qint64, int n) { return QByteArray(n, char(0xFF)); });
}

bool TDev24CExec::testEmpty(TSerialPort& port) {
    if (!prepare(port)) return false;
    const qint64 begin = TAPP_PARAM(dev, "addr_begin").toLongLong();
    return testEmptyRange(memory(port), begin, begin + TAPP_PARAM(dev, "size").toLongLong() - 1);
}
