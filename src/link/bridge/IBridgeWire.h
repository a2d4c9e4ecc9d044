#pragma once

#include <QByteArray>
#include <QString>

// The raw byte line to programmer hardware that does not speak the frame protocol. The serial port
// offers it to its bridge; tests offer a scripted one.
class IBridgeWire {
public:
    virtual ~IBridgeWire() = default;

    virtual bool send(const QByteArray& bytes) = 0;
    // Appends up to count bytes to got, waiting at most timeOutMs for each; true when all came.
    virtual bool receive(QByteArray& got, int count, int timeOutMs) = 0;
    virtual void discardInput() = 0;
    // The line ended (cable pulled) during the last receive or send.
    virtual bool lost() const = 0;
    virtual void setDtr(bool on) = 0;
    virtual void pause(int ms) = 0;
    virtual QString portName() const = 0;
    // The description's time-out for one answer.
    virtual int answerTimeOut() const = 0;
};
