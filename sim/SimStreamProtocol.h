#pragma once

#include "SimProgrammer.h"

#include <QByteArray>
#include <QString>
#include <memory>

// Hardware that speaks a byte protocol of its own instead of frames (--protocol): cuts complete
// commands out of the incoming bytes and answers each, with the same chip models in its socket.
class SimStreamProtocol {
public:
    virtual ~SimStreamProtocol() = default;

    void feed(const char* bytes, int n) { buffer.append(bytes, n); }
    // Takes the next complete command off the buffer.
    virtual bool take(QByteArray& request) = 0;
    virtual QByteArray answer(const QByteArray& request) = 0;
    // What the hardware answers to a command it refuses (--error CMD:CODE picks the command).
    virtual QByteArray refusal(const QByteArray& request) = 0;

    // serprog, stk500v1, buspirate; null for another name.
    static std::unique_ptr<SimStreamProtocol> create(const QString& name, SimProgrammer& programmer);
    static bool known(const QString& name);

protected:
    QByteArray buffer;
};
