#include "SimStreamServer.h"

#include <unistd.h>

SimStreamServer::SimStreamServer(const SimOptions& o, SimStreamProtocol& p, SimPty& t, SimTrace& tr)
    : options(o), protocol(p), pty(t), trace(tr) {}

SimStreamServer::End SimStreamServer::run(int stopFd) {
    return SimServer::pump(pty, stopFd, [this](const char* bytes, int n) {
        protocol.feed(bytes, n);
        QByteArray request;
        while (protocol.take(request))
            if (!answer(request)) return false;
        return true;
    });
}

bool SimStreamServer::answer(const QByteArray& request) {
    trace.write('>', request);
    if (options.unplugAfter >= 0 && replies >= options.unplugAfter) {
        pty.close();
        return false;
    }
    if (options.silentAfter >= 0 && replies >= options.silentAfter) return true;
    QByteArray reply =
        options.errors.contains(uchar(request.at(0))) ? protocol.refusal(request) : protocol.answer(request);
    ++replies;
    if (reply.isEmpty()) return true;
    if (options.corrupt > 0 && replies % options.corrupt == 0) reply[0] = char(0x55);
    if (options.delayMs > 0) usleep(static_cast<useconds_t>(options.delayMs) * 1000);
    trace.write('<', reply);
    return SimServer::writeAll(pty, reply);
}
