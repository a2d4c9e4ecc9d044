#include "SimServer.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

SimServer::SimServer(const SimOptions& o, SimProgrammer& p, SimPty& t, SimTrace& tr)
    : options(o), programmer(p), pty(t), trace(tr) {}

SimServer::End SimServer::pump(SimPty& pty, int stopFd,
                               const std::function<bool(const char*, int)>& onBytes) {
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
        if (!onBytes(buffer.constData(), static_cast<int>(n))) return End::Unplugged;
    }
}

SimServer::End SimServer::run(int stopFd) {
    return pump(pty, stopFd, [this](const char* bytes, int n) {
        parser.feed(bytes, n);
        SimFrame request;
        while (parser.next(request))
            if (!answer(request)) return false;
        return true;
    });
}

bool SimServer::answer(const SimFrame& request) {
    trace.write('>', request.raw);
    // The line goes with the first request after K replies: a pseudo-terminal closed right after a
    // write could take the unread reply with it.
    if (options.unplugAfter >= 0 && replies >= options.unplugAfter) {
        pty.close();
        return false;
    }
    if (options.silentAfter >= 0 && replies >= options.silentAfter) return true;
    const auto forced = options.errors.constFind(request.cmd);
    SimReply reply = request.checkOk && forced != options.errors.constEnd()
                         ? SimReply::fail(static_cast<unsigned short>(*forced))
                         : programmer.handle(request);
    // A reply cut short in a well-formed frame: the programmer's read buffer came up short.
    if (options.shortBy > 0 && !cutShort && reply.fromMemory && reply.data.size() >= options.shortBy) {
        reply.data.chop(options.shortBy);
        cutShort = true;
    }
    QByteArray frame = reply.isError ? SimFrameCodec::encodeError(reply.error)
                                     : SimFrameCodec::encode(request.cmd, reply.data);
    ++replies;
    if (options.corrupt > 0 && replies % options.corrupt == 0)
        frame[frame.size() - 1] = static_cast<char>(frame.at(frame.size() - 1) + 1);
    if (options.delayMs > 0) usleep(static_cast<useconds_t>(options.delayMs) * 1000);
    trace.write('<', frame);
    // Junk never holds the start byte, so the reader's skipping is what is exercised.
    return writeAll(pty, QByteArray(options.noise, 0x55) + frame);
}

bool SimServer::writeAll(SimPty& pty, const QByteArray& bytes) {
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
