#pragma once

#include "app/TTypes.h"
#include "link/bridge/IBridgeWire.h"
#include "link/bridge/TBridgeReply.h"

#include <QString>
#include <QVector>

#include <initializer_list>

// The native programmer's firmware, run on the host for hardware that speaks another protocol: takes
// each frame a family sends and answers it as the native programmer would, by commands of the
// hardware's own protocol on the wire. The shared part here answers the programmer's own commands
// and keeps the selected device type; a protocol supplies the hardware side.
class IBridge {
public:
    virtual ~IBridge();

    // The port was opened again: the hardware is in an unknown state.
    void restart();
    TBridgeReply exchange(IBridgeWire& wire, unsigned char cmd, const QByteArray& data);

    // The name the programmer descriptions give the protocol ("/Main/Protocol").
    QString protocol() const { return QLatin1String(name); }
    // What the bridge answers to the interface query; the descriptions name the same number.
    unsigned short interfaceCode() const { return code; }
    // The description of the selected part, for hardware whose firmware wants to know it; the native
    // programmer does not.
    virtual void describeTarget(const TData&) {}

protected:
    // protocol: its name; interfaceCode: its answer to the interface query; deviceTypes: the device
    // types (CBridge) whose families it serves.
    IBridge(const char* protocol, unsigned short interfaceCode,
            std::initializer_list<unsigned short> deviceTypes);

    // Synchronise with the hardware and learn what it offers; the identification text on success.
    virtual TBridgeReply start(IBridgeWire& wire) = 0;
    virtual TBridgeReply selectDevice(IBridgeWire& wire, unsigned short type, const QByteArray& payload) = 0;
    // Family packets 1 to 7 for the selected device type.
    virtual TBridgeReply family(IBridgeWire& wire, unsigned char cmd, const QByteArray& data) = 0;
    virtual TBridgeReply leave(IBridgeWire& wire) = 0;
    virtual void forget() {}

    unsigned short selectedType() const { return selected; }
    // The message of a missing or short answer to what (a protocol command named for the user).
    TBridgeReply noAnswer(const IBridgeWire& wire, const QString& what, int got, int expected) const;
    TBridgeReply unexpected(const IBridgeWire& wire, const QString& what, unsigned char answer) const;
    TBridgeReply refusedBy(const IBridgeWire& wire, const QString& what) const;
    TBridgeReply missing(const IBridgeWire& wire, const QString& what) const;

private:
    TBridgeReply own(IBridgeWire& wire, unsigned char cmd, const QByteArray& data);
    bool serves(unsigned short deviceType) const { return served.contains(deviceType); }

    const char* const name;
    const unsigned short code;
    const QVector<unsigned short> served;

    bool started = false;
    QString identification;
    unsigned short selected = 0;
};
