#pragma once

#include "SimFrame.h"
#include "SimOptions.h"
#include "SimProgrammer.h"
#include "SimPty.h"
#include "SimTrace.h"

// Reads requests from the pseudo-terminal and answers each complete one with one reply, applying the
// fault options on the way out.
class SimServer {
public:
    SimServer(const SimOptions& options, SimProgrammer& programmer, SimPty& pty, SimTrace& trace);

    enum class End { Stopped, Unplugged, Failed };
    // Serves until stopFd becomes readable, the line is pulled or the pseudo-terminal fails.
    End run(int stopFd);

private:
    // False once the line has been pulled.
    bool answer(const SimFrame& request);
    bool writeAll(const QByteArray& bytes);

    const SimOptions& options;
    SimProgrammer& programmer;
    SimPty& pty;
    SimTrace& trace;
    SimFrameParser parser;
    int replies = 0;
};
