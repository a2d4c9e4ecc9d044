#include "SimStreamServer.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

SimStreamServer::SimStreamServer(const SimOptions& o, SimStreamProtocol& p, SimPty& t, SimTrace& tr)
    : options(o), protocol(p), pty(t), trace(tr) {}

SimStreamServer::End SimStreamServer::run(int stopFd) {
    QByteArray buffer(65536, '\0');
    for (;;) {
        pollfd fds[2] = {{pty.master(), POLLIN, 0}, {stopFd, POLLIN, 0}};
        if (poll(fds, 2, -1) < 0) {
            if (errno == EINTR) continue;
            return End::Failed;
        }
        if (fds[1].revents) return End::Stopped;
        if (!(fds[0].revents & POLLIN)) continue;
        const ssize_t n = read(pty.master(), buffer.data(), static_cast<size_t>(buffer.size()));
        if (n < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (n <= 0) return End::Failed;
        protocol.feed(buffer.constData(), static_cast<int>(n));
        QByteArray request;
        while (protocol.take(request))
            if (!answer(request)) return End::Unplugged;
    }
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
    return writeAll(reply);
}

bool SimStreamServer::writeAll(const QByteArray& bytes) {
    qint64 done = 0;
    while (done < bytes.size()) {
        const ssize_t n =
            write(pty.master(), bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (n < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (n <= 0) return false;
        done += n;
    }
    return true;
}
