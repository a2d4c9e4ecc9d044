#pragma once

#include "SimOptions.h"
#include "SimPty.h"
#include "SimServer.h"
#include "SimStreamProtocol.h"
#include "SimTrace.h"

// SimServer for hardware with a byte protocol of its own: the same loop and the faults that make
// sense without frames (silent, delay, unplug, a wrong first byte on every K-th answer, a refusal of
// every command with byte CMD).
class SimStreamServer {
public:
    SimStreamServer(const SimOptions& options, SimStreamProtocol& protocol, SimPty& pty, SimTrace& trace);

    using End = SimServer::End;
    End run(int stopFd);

private:
    // Adds the answer to request to replies; false when the line is to go.
    bool answer(const QByteArray& request, QByteArray& replies);

    const SimOptions& options;
    SimStreamProtocol& protocol;
    SimPty& pty;
    SimTrace& trace;
    int answered = 0;
};
