#pragma once

#include <QByteArray>
#include <QObject>
#include <QSerialPort>
#include <QString>
#include <QStringList>

#include "link/bridge/IBridgeWire.h"

#include <memory>

// The one path to the programmer: a strictly synchronous, half-duplex request/reply exchange of frames
// C0, command, length (16-bit, low byte first), data, check byte. Used only by the thread that made it;
// waiting is done with the port's blocking calls, so no event loop is needed.
//
// A programmer description may name another protocol; a bridge then serves each frame on the host by
// the hardware's own commands, over the same port (the port is its wire).
class TProg;
class IBridge;
struct TBridgeReply;

class TSerialPort : public QObject, public IBridgeWire {
    Q_OBJECT
public:
    enum OpenMode { NotOpen = 0, ReadOnly = 1, WriteOnly = 2, ReadWrite = 3 };
    enum Parity {
        NoParity = QSerialPort::NoParity,
        EvenParity = QSerialPort::EvenParity,
        OddParity = QSerialPort::OddParity,
        SpaceParity = QSerialPort::SpaceParity,
        MarkParity = QSerialPort::MarkParity,
        UnknownParity = QSerialPort::UnknownParity
    };
    enum StopBits {
        OneStop = QSerialPort::OneStop,
        OneAndHalfStop = QSerialPort::OneAndHalfStop,
        TwoStop = QSerialPort::TwoStop,
        UnknownStopBits = QSerialPort::UnknownStopBits
    };
    enum FlowControl {
        NoFlowControl = QSerialPort::NoFlowControl,
        HardwareControl = QSerialPort::HardwareControl,
        SoftwareControl = QSerialPort::SoftwareControl,
        UnknownFlowControl = QSerialPort::UnknownFlowControl
    };

    TSerialPort();
    ~TSerialPort() override;

    // Sends data as the payload of cmd; on success data holds the reply's payload.
    bool sendPackage(unsigned char cmd, QByteArray& data);
    bool isTimeOut() const { return timeOutFlag; }
    QString getErrorText() const;
    // The language id of a programmer error code.
    static int LangErrorCode(unsigned int code);

    static unsigned char getCRC(const QByteArray& bytes, unsigned short count);
    bool writeData(const QByteArray& bytes);
    bool readByte(unsigned char& b);
    bool purge(bool input, bool output);

    bool open(OpenMode mode);
    bool open(const QString& name, OpenMode mode);
    void close();
    bool isOpen() const;
    void setPortName(const QString& name);
    // Who uses the port (a configuration's name), told to a run that finds it taken.
    void setOwnerName(const QString& name) { ownerName = name; }
    QString getPortName() const;

    bool setBaudRate(unsigned int baud);
    unsigned int getBaudRate() const;
    bool setDataBits(unsigned char index);
    int getDataBits() const;
    bool setParity(Parity p);
    bool setParity(unsigned char index);
    bool setParity(const QString& text);
    int getParity() const;
    bool setStopBits(StopBits s);
    bool setStopBits(unsigned char index);
    bool setStopBits(const QString& text);
    int getStopBits() const;
    bool setFlowControl(FlowControl f);
    bool setFlowControl(unsigned char index);
    bool setFlowControl(const QString& text);
    int getFlowControl() const;
    bool setTimeOut(int ms);
    // The port and protocol settings of a programmer description, in the order the set-up takes them.
    void applySettings(const TProg& prog);
    void setProtocolParam(unsigned short maxData);
    // "native" or a protocol of the bridge table; another name fails every exchange with a message.
    void setProtocol(const QString& protocol);
    // The selected part's description, for a bridge whose hardware wants it (SET_DEVICE of STK500).
    void describeTarget(const QVariantMap& params);

    // The wire a bridge talks on.
    bool send(const QByteArray& bytes) override;
    bool receive(QByteArray& got, int count, int timeOutMs) override;
    void discardInput() override;
    bool lost() const override { return lineLost; }
    void setDtr(bool on) override;
    void pause(int ms) override;
    QString portName() const override { return getPortName(); }
    int answerTimeOut() const override { return timeOut; }

    bool setRTS(bool on);
    bool getRTS() const;
    bool setDTR(bool on);
    bool getDTR() const;
    // The modem-status lines are deliberately not read.
    bool getCTS() const { return true; }
    bool getDSR() const { return true; }
    bool getRLSD() const { return true; }

    static QStringList getListBaudRate();
    static QStringList getListDataBits();
    static QStringList getListParity();
    static QStringList getListStopBits();
    static QStringList getListFlowControl();
    static QStringList getListPortName();
    static QString getPortNameFromFullName(const QString& full);
    static QString getPortFullName(const QString& name, const QString& manufacturer,
                                   const QString& description);

private:
    static unsigned char checkByte(const QByteArray& bytes, int count);
    void buildRequest(unsigned char cmd, const QByteArray& data);
    bool receive(QByteArray& reply);
    bool readBlock(QByteArray& reply, int count);
    bool fail();
    bool bridgeExchange(unsigned char cmd, QByteArray& data);
    bool takeBridgeReply(const TBridgeReply& reply, QByteArray& data);

    QSerialPort* port;
    // Until the programmer's description configures the port, these are the description defaults.
    int timeOut = 1000;
    unsigned short maxData = 64;
    bool timeOutFlag = false;
    bool lineLost = false; // the last exchange saw the line end
    QString errorText;
    QString ownerName;
    QByteArray txFrame, rxFrame;
    QByteArray readAhead; // what a bridge's wire read beyond the answer it asked for
    std::unique_ptr<IBridge> bridge;
    QString unknownProtocol; // set when the description names a protocol no bridge serves
};
