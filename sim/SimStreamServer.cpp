#include "SimStreamServer.h"

#include <unistd.h>

SimStreamServer::SimStreamServer(const SimOptions& o, SimStreamProtocol& p, SimPty& t, SimTrace& tr)
    : options(o), protocol(p), pty(t), trace(tr) {}

SimStreamServer::End SimStreamServer::run(int stopFd) {
    // Commands that came together are answered together, as hardware on USB packs its answers: one
    // write, and one wake-up of the host, for a host that sends commands ahead of their answers.
    return SimServer::pump(pty, stopFd, [this](const char* bytes, int n) {
        protocol.feed(bytes, n);
        QByteArray request, replies;
        bool up = true;
        while (up && protocol.take(request))
            up = answer(request, replies);
        if (!replies.isEmpty() && !SimServer::writeAll(pty, replies)) return false;
        if (!up) pty.close();
        return up;
    });
}

bool SimStreamServer::answer(const QByteArray& request, QByteArray& replies) {
    trace.write('>', request);
    if (options.unplugAfter >= 0 && answered >= options.unplugAfter) return false;
    if (options.silentAfter >= 0 && answered >= options.silentAfter) return true;
    QByteArray reply =
        options.errors.contains(uchar(request.at(0))) ? protocol.refusal(request) : protocol.answer(request);
    ++answered;
    if (reply.isEmpty()) return true;
    if (options.corrupt > 0 && answered % options.corrupt == 0) reply[0] = char(0x55);
    if (options.delayMs > 0) usleep(static_cast<useconds_t>(options.delayMs) * 1000);
    trace.write('<', reply);
    replies += reply;
    return true;
}
