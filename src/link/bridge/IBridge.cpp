#include "link/bridge/IBridge.h"

#include "app/TLang.h"
#include "link/CProtocol.h"
#include "link/bridge/CBridge.h"

IBridge::IBridge(const char* protocol, unsigned short interfaceCode,
                 std::initializer_list<unsigned short> deviceTypes)
    : name(protocol), code(interfaceCode), served(deviceTypes) {}

IBridge::~IBridge() = default;

void IBridge::restart() {
    started = false;
    selected = 0;
    forget();
}

TBridgeReply IBridge::exchange(IBridgeWire& wire, unsigned char cmd, const QByteArray& data) {
    if (!started) {
        TBridgeReply r = start(wire);
        if (!r.ok()) return r;
        identification = QString::fromLatin1(r.data);
        started = true;
    }
    if (cmd >= CBridge::famFirst && cmd <= CBridge::famLast) {
        if (selected == 0) return TBridgeReply::error(CProtocol::ErrNoDevice);
        return family(wire, cmd, data);
    }
    return own(wire, cmd, data);
}

TBridgeReply IBridge::own(IBridgeWire& wire, unsigned char cmd, const QByteArray& data) {
    switch (cmd) {
    case CProtocol::Prog::Interface: {
        const unsigned short code = interfaceCode();
        QByteArray reply;
        reply.append(char(code & 0xFF)).append(char(code >> 8));
        return TBridgeReply::done(reply);
    }
    case CProtocol::Prog::Ident:
        return TBridgeReply::done(identification.toLatin1().append('\0'));
    case CProtocol::Prog::SetDevice: {
        if (data.size() != CBridge::setDeviceSize) return TBridgeReply::error(CProtocol::ErrLength);
        const unsigned short type = uchar(data.at(0)) | uchar(data.at(1)) << 8;
        selected = 0;
        if (!serves(type)) return TBridgeReply::error(CProtocol::ErrNotSupported);
        TBridgeReply r = selectDevice(wire, type, data);
        if (r.ok()) selected = type;
        return r;
    }
    case CProtocol::Prog::Leave:
        selected = 0;
        return leave(wire);
    // Nothing to set: the LED is the hardware's own, the supply is the board's fixed one.
    case CProtocol::Prog::LED:
    case CProtocol::Prog::SetVcc:
    case CProtocol::Prog::SetVIcc:
        return TBridgeReply::done();
    case CProtocol::Prog::Reset:
    case CProtocol::Prog::Generator:
    case CProtocol::Prog::SetIO:
    case CProtocol::Prog::SetVpp:
    case CProtocol::Prog::SetVIpp:
        return TBridgeReply::error(CProtocol::ErrNotSupported);
    default:
        return TBridgeReply::error(CProtocol::ErrUnknownCommand);
    }
}

TBridgeReply IBridge::noAnswer(const IBridgeWire& wire, const QString& what, int got, int expected) const {
    if (wire.lost()) return TBridgeReply::lost(Lang.get(1505).arg(protocol(), wire.portName(), what));
    if (got == 0)
        return TBridgeReply::lost(
            Lang.get(1501).arg(protocol(), wire.portName(), what).arg(wire.answerTimeOut()));
    return TBridgeReply::lost(Lang.get(1502).arg(protocol(), wire.portName(), what).arg(got).arg(expected));
}

TBridgeReply IBridge::unexpected(const IBridgeWire& wire, const QString& what, unsigned char answer) const {
    return TBridgeReply::lost(Lang.get(1508).arg(
        protocol(), wire.portName(), what, QString::number(answer, 16).toUpper().rightJustified(2, '0')));
}

TBridgeReply IBridge::refusedBy(const IBridgeWire& wire, const QString& what) const {
    return TBridgeReply::refused(Lang.get(1504).arg(protocol(), wire.portName(), what));
}

TBridgeReply IBridge::missing(const IBridgeWire& wire, const QString& what) const {
    return TBridgeReply::refused(Lang.get(1507).arg(protocol(), wire.portName(), what));
}
