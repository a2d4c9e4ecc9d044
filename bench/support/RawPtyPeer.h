#pragma once

// The machine's own limit for the exchange: a minimal POSIX client and an answering peer (a child
// process) on a pseudo-terminal, passing frames of the same sizes as the simulator does. No framing
// checks, no copies beyond the kernel's.

#include <QByteArray>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

class RawPtyPeer {
public:
    // The peer answers every request frame with a frame of replyLen data bytes.
    bool start(int replyLen) {
        master = posix_openpt(O_RDWR | O_NOCTTY);
        if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) return false;
        client = ::open(ptsname(master), O_RDWR | O_NOCTTY);
        termios t{};
        if (client < 0 || tcgetattr(client, &t) != 0) return false;
        cfmakeraw(&t);
        tcsetattr(client, TCSANOW, &t);
        child = fork();
        if (child == 0) serve(replyLen);
        return child > 0;
    }
    ~RawPtyPeer() {
        if (child > 0) {
            kill(child, SIGTERM);
            waitpid(child, nullptr, 0);
        }
        if (client >= 0) ::close(client);
        if (master >= 0) ::close(master);
    }
    // One exchange from the client side.
    bool exchange(const QByteArray& request, QByteArray& reply) {
        if (!writeAll(client, request)) return false;
        reply.resize(4);
        if (!readAll(client, reply.data(), 4)) return false;
        const int len = static_cast<unsigned char>(reply.at(2)) | static_cast<unsigned char>(reply.at(3))
                                                                      << 8;
        reply.resize(len + 5);
        return readAll(client, reply.data() + 4, len + 1);
    }

private:
    [[noreturn]] void serve(int replyLen) {
        QByteArray reply(replyLen + 5, static_cast<char>(0xFF));
        reply[0] = static_cast<char>(0xC0);
        reply[1] = 3;
        reply[2] = static_cast<char>(replyLen & 0xFF);
        reply[3] = static_cast<char>(replyLen >> 8);
        QByteArray request(65540, '\0');
        for (;;) {
            if (!readAll(master, request.data(), 4)) _exit(0);
            const int len =
                static_cast<unsigned char>(request.at(2)) | static_cast<unsigned char>(request.at(3)) << 8;
            if (!readAll(master, request.data() + 4, len + 1) || !writeAll(master, reply)) _exit(0);
        }
    }
    static bool readAll(int fd, char* to, int count) {
        while (count > 0) {
            pollfd p{fd, POLLIN, 0};
            if (poll(&p, 1, 2000) <= 0) return false;
            const ssize_t n = ::read(fd, to, static_cast<size_t>(count));
            if (n <= 0) return false;
            to += n;
            count -= static_cast<int>(n);
        }
        return true;
    }
    static bool writeAll(int fd, const QByteArray& bytes) {
        for (int done = 0; done < bytes.size();) {
            const ssize_t n = ::write(fd, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
            if (n <= 0) return false;
            done += static_cast<int>(n);
        }
        return true;
    }

    int master = -1, client = -1;
    pid_t child = -1;
};
