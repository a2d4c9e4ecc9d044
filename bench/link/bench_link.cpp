// Exchanges per second and MB/s through TSerialPort::sendPackage against the simulator, beside the raw
// limit of the machine (RawPtyPeer) for frames of the same sizes.
#include "RawPtyPeer.h"
#include "link/TSerialPort.h"
#include "support/SimFixture.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTextStream>

#include <functional>

namespace {
// A request of `size` data bytes and the reply the simulator gives to it: identification (two bytes)
// for an empty request, otherwise an SPI read transaction of size - 2 bytes behind its two count bytes.
unsigned char commandFor(int size) {
    return size == 0 ? 0x80 : 3;
}
int replyFor(int size) {
    return size == 0 ? 2 : size - 2;
}
QByteArray payloadFor(int size) {
    QByteArray d(size, static_cast<char>(0x5A));
    if (size >= 2) {
        d[0] = static_cast<char>(replyFor(size) & 0xFF);
        d[1] = static_cast<char>(replyFor(size) >> 8);
    }
    return d;
}
QByteArray frameFor(int size) {
    QByteArray f;
    f.append(static_cast<char>(0xC0)).append(static_cast<char>(commandFor(size)));
    f.append(static_cast<char>(size & 0xFF)).append(static_cast<char>(size >> 8)).append(payloadFor(size));
    unsigned int sum = 0;
    for (char c : f)
        sum += static_cast<unsigned char>(c);
    f.append(static_cast<char>(0x100 - (sum & 0xFF)));
    return f;
}

struct Rate {
    double perSecond = 0, mbPerSecond = 0;
};

// Repeats one exchange for a third of a second.
Rate measure(int size, const std::function<bool()>& once) {
    QElapsedTimer t;
    t.start();
    long n = 0;
    while (t.elapsed() < 330 || n < 5) {
        if (!once()) return Rate();
        ++n;
    }
    const double s = t.nsecsElapsed() / 1e9;
    return Rate{n / s, n * double(size + 5 + replyFor(size) + 5) / s / 1e6};
}

Rate viaSendPackage(const QString& link, int size) {
    TSerialPort port;
    if (!port.open(link, TSerialPort::ReadWrite)) return Rate();
    port.setBaudRate(115200);
    port.setTimeOut(2000);
    port.setProtocolParam(65535);
    QByteArray select;
    if (!port.sendPackage(0x84, select)) return Rate();
    const QByteArray payload = payloadFor(size);
    return measure(size, [&]() {
        QByteArray d = payload;
        const bool ok = port.sendPackage(commandFor(size), d) && d.size() == replyFor(size);
        if (!ok) QTextStream(stderr) << "sendPackage: " << port.getErrorText() << " " << d.size() << "\n";
        return ok;
    });
}

Rate viaRawPeer(int size) {
    RawPtyPeer peer;
    if (!peer.start(replyFor(size))) return Rate();
    const QByteArray request = frameFor(size);
    QByteArray reply;
    return measure(size,
                   [&]() { return peer.exchange(request, reply) && reply.size() == replyFor(size) + 5; });
}
} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    SimFixture sim;
    if (!sim.start()) {
        out << "cannot start " << SimFixture::program() << "\n";
        return 1;
    }
    out << "| Request bytes | Reply bytes | sendPackage exch/s | sendPackage MB/s | raw exch/s | raw MB/s | "
           "ratio |\n";
    out << "|---|---|---|---|---|---|---|\n";
    for (int size : {0, 256, 4096, 65535}) {
        // The machine is shared: the best of several interleaved rounds of each is the fairer pair.
        Rate app, raw;
        for (int round = 0; round < 5; ++round) {
            const Rate a = viaSendPackage(sim.link(), size), r = viaRawPeer(size);
            if (a.perSecond > app.perSecond) app = a;
            if (r.perSecond > raw.perSecond) raw = r;
        }
        out << QString("| %1 | %2 | %3 | %4 | %5 | %6 | %7 |\n")
                   .arg(size)
                   .arg(replyFor(size))
                   .arg(app.perSecond, 0, 'f', 0)
                   .arg(app.mbPerSecond, 0, 'f', 1)
                   .arg(raw.perSecond, 0, 'f', 0)
                   .arg(raw.mbPerSecond, 0, 'f', 1)
                   .arg(raw.perSecond > 0 ? app.perSecond / raw.perSecond : 0, 0, 'f', 2);
        out.flush();
    }
    return 0;
}
