#pragma once

#include "SimFrame.h"
#include "SimOptions.h"
#include "SimProgrammer.h"
#include "SimPty.h"
#include "SimTrace.h"

#include <functional>

// Reads requests from the pseudo-terminal and answers each complete one with one reply, applying the
// fault options on the way out.
class SimServer {
public:
    SimServer(const SimOptions& options, SimProgrammer& programmer, SimPty& pty, SimTrace& trace);

    enum class End { Stopped, Unplugged, Failed };
    // Serves until stopFd becomes readable, the line is pulled or the pseudo-terminal fails.
    End run(int stopFd);
    // The loop every protocol shares: waits for bytes or the stop, and hands what came to onBytes,
    // which answers false once the line has been pulled.
    static End pump(SimPty& pty, int stopFd, const std::function<bool(const char*, int)>& onBytes);
    // Writes every byte to the terminal; false once it has gone.
    static bool writeAll(SimPty& pty, const QByteArray& bytes);

private:
    // False once the line has been pulled.
    bool answer(const SimFrame& request);

    const SimOptions& options;
    SimProgrammer& programmer;
    SimPty& pty;
    SimTrace& trace;
    SimFrameParser parser;
    int replies = 0;
    bool cutShort = false; // --short has been applied
};
