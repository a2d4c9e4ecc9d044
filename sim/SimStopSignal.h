#pragma once

// SIGINT and SIGTERM end a programmer on a pseudo-terminal cleanly: the handler only writes to a pipe,
// and the serving loop polls its reading end beside the terminal.
namespace SimStopSignal {
bool install();
int readFd();
} // namespace SimStopSignal
