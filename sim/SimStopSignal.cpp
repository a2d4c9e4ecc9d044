#include "SimStopSignal.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {
int stopPipe[2] = {-1, -1};

void onSignal(int) {
    const char c = 's';
    (void)!write(stopPipe[1], &c, 1);
}
} // namespace

namespace SimStopSignal {
bool install() {
    if (pipe2(stopPipe, O_CLOEXEC) != 0) return false;
    struct sigaction sa {};
    sa.sa_handler = onSignal;
    sigemptyset(&sa.sa_mask);
    return sigaction(SIGINT, &sa, nullptr) == 0 && sigaction(SIGTERM, &sa, nullptr) == 0;
}

int readFd() {
    return stopPipe[0];
}
} // namespace SimStopSignal
