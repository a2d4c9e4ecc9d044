#pragma once

// Times a family's commands through the in-process runner against the simulator, and beside each
// figure the machine's own limit: the very same exchanges (count and frame sizes, taken from a traced
// run of the same commands) on a bare pseudo-terminal (RawPtyPeer), and replayed through the link
// alone (TSerialPort against the simulator) to tell the family's share from the link's.
// Header-only, shared by the memory benchmarks of every family.

#include "RawPtyPeer.h"
#include "link/TSerialPort.h"
#include "support/WorkerFixture.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMap>
#include <QPair>
#include <QTextStream>
#include <QVector>

#include <algorithm>

namespace FamilyBench {

struct Exchange {
    unsigned char cmd;
    QByteArray payload;
    int replyLen;
};

// The exchanges a trace holds from byte offset from on: each request line paired with its reply.
inline QVector<Exchange> readTrace(const QString& file, qint64 from) {
    QVector<Exchange> out;
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly) || !f.seek(from)) return out;
    while (!f.atEnd()) {
        const QByteArray line = f.readLine();
        const int at = line.indexOf(" > ") >= 0 ? line.indexOf(" > ") : line.indexOf(" < ");
        if (at < 0) continue;
        const QByteArray frame = QByteArray::fromHex(line.mid(at + 3));
        if (frame.size() < 5) continue;
        const int len = uchar(frame.at(2)) | uchar(frame.at(3)) << 8;
        if (line.at(at + 1) == '>')
            out.append({uchar(frame.at(1)), frame.mid(4, len), 0});
        else if (!out.isEmpty())
            out.last().replyLen = len;
    }
    return out;
}

inline qint64 payloadBytes(const QVector<Exchange>& ex) {
    qint64 n = 0;
    for (const Exchange& e : ex)
        n += e.payload.size() + e.replyLen;
    return n;
}

// Seconds the bare pseudo-terminal needs for the same exchanges: one peer per reply size, each frame
// size sent as often as the run sent it. Starting the peers is not timed.
inline double rawSeconds(const QVector<Exchange>& ex) {
    QMap<QPair<int, int>, long> groups; // (request size, reply size) -> count
    for (const Exchange& e : ex)
        ++groups[qMakePair(e.payload.size(), e.replyLen)];
    double seconds = 0;
    for (auto g = groups.constBegin(); g != groups.constEnd(); ++g) {
        RawPtyPeer peer;
        if (!peer.start(g.key().second)) return -1;
        const int size = g.key().first;
        QByteArray request(size + 5, static_cast<char>(0x5A));
        request[0] = static_cast<char>(0xC0);
        request[2] = static_cast<char>(size & 0xFF);
        request[3] = static_cast<char>(size >> 8);
        QByteArray reply;
        // A fresh peer's first answer pays for its start (page faults, first wake-up); not timed.
        if (!peer.exchange(request, reply)) return -1;
        QElapsedTimer t;
        t.start();
        for (long i = 0; i < g.value(); ++i)
            if (!peer.exchange(request, reply)) return -1;
        seconds += t.nsecsElapsed() / 1e9;
    }
    return seconds;
}

// Seconds TSerialPort::sendPackage needs to send the same requests to the simulator, without the
// family, the worker or the runner around it.
inline double linkSeconds(const QString& link, const QVector<Exchange>& ex) {
    TSerialPort port;
    if (!port.open(link, TSerialPort::ReadWrite)) return -1;
    port.setBaudRate(115200);
    port.setTimeOut(2000);
    port.setProtocolParam(65535);
    QElapsedTimer t;
    t.start();
    int failed = 0;
    for (const Exchange& e : ex) {
        QByteArray d = e.payload;
        if (!port.sendPackage(e.cmd, d) || d.size() != e.replyLen) ++failed;
    }
    const double seconds = t.nsecsElapsed() / 1e9;
    if (failed)
        QTextStream(stderr) << "link replay: " << failed << " of " << ex.size() << " exchanges failed\n";
    return seconds;
}

// One simulator with a catalogue part in the socket, and projects run on it through the runner.
class Rig {
public:
    Rig(const QString& chip, const QString& deviceFile) : chip(chip), deviceFile(deviceFile) {}

    bool start(bool traced) {
        QStringList opt{"--chip", chip, "--devices", QStringLiteral(TARVELIX_DATA_DIR "/devices")};
        if (traced) opt << "--trace" << trace();
        if (!sim.start(opt)) return false;
        worker.addProgrammer("Sim", sim);
        return true;
    }

    // Runs set_prog, set_device and commands as one project; the seconds taken, or -1 on failure.
    double run(const QStringList& commands) {
        const QString setProg =
            R"({"status": "1", "cmd": "set_prog", "prog": "Sim", "alt_enabled": "false", "alt_port": ""})";
        const QString setDevice =
            QStringLiteral(R"({"status": "1", "cmd": "set_device", "device": "%1", "file": "%2"})")
                .arg(chip, deviceFile);
        TRunner::Options o;
        o.project = worker.writeProject(project({{"Main", QStringList{setProg, setDevice} + commands}}));
        QElapsedTimer t;
        t.start();
        const int status = worker.run(o);
        const double seconds = t.nsecsElapsed() / 1e9;
        if (status == 0) return seconds;
        QTextStream(stderr) << worker.output << worker.errors;
        return -1;
    }

    qint64 traceSize() const { return QFileInfo(trace()).size(); }
    QString trace() const { return sim.path("trace.txt"); }
    QString link() const { return sim.link(); }

private:
    QString chip, deviceFile;
    SimFixture sim;
    WorkerFixture worker;
};

inline QString fileCmd(const QString& code, const QString& file, qint64 count) {
    return QStringLiteral(R"({"status": "1", "cmd": "%1", "file": "%2", "format": "bin", "addr_file": "0", )"
                          R"("addr_device": "0", "count": "%3"})")
        .arg(code, file)
        .arg(count);
}

inline QString cmd(const QString& code) {
    return QStringLiteral(R"({"status": "1", "cmd": "%1"})").arg(code);
}

// Bytes that vary from page to page, so that a verify against the wrong page would fail.
inline QByteArray pattern(int n) {
    QByteArray b(n, 0);
    for (int i = 0; i < n; ++i)
        b[i] = char((i * 7 + (i >> 8) * 13 + (i >> 16)) & 0xFF);
    return b;
}

struct Phase {
    QString name;
    QStringList commands;
    qint64 bytes; // the part's bytes the phase moves
};

struct Result {
    double app = -1, link = -1, raw = -1; // the best of the rounds
    QVector<double> appRounds, rawRounds;
    long exchanges = 0;
};

// Takes each phase's exchanges from a traced run on a simulator of its own (the trace slows the
// simulator, so nothing is timed there). Then, in each round on a fresh untraced simulator, times each
// phase through the runner, its exchanges through the link alone and on the bare pseudo-terminal; the
// machine is shared, so the best of the rounds counts.
inline QVector<Result> measure(const QString& chip, const QString& deviceFile, const QVector<Phase>& phases,
                               int rounds) {
    QVector<QVector<Exchange>> profiles;
    {
        Rig traced(chip, deviceFile);
        if (!traced.start(true)) return {};
        for (const Phase& p : phases) {
            const qint64 from = traced.traceSize();
            if (traced.run(p.commands) < 0) return {};
            profiles.append(readTrace(traced.trace(), from));
        }
    }
    QVector<Result> res(phases.size());
    const auto best = [](double& have, double now) {
        if (have < 0 || now < have) have = now;
    };
    for (int r = 0; r < rounds; ++r) {
        Rig rig(chip, deviceFile);
        if (!rig.start(false)) return {};
        for (int i = 0; i < phases.size(); ++i) {
            const double a = rig.run(phases.at(i).commands), l = linkSeconds(rig.link(), profiles.at(i)),
                         w = rawSeconds(profiles.at(i));
            if (a < 0 || l < 0 || w < 0) return {};
            best(res[i].app, a);
            best(res[i].link, l);
            best(res[i].raw, w);
            res[i].appRounds << a;
            res[i].rawRounds << w;
            res[i].exchanges = profiles.at(i).size();
        }
    }
    return res;
}

inline QString mbPerSecond(qint64 bytes, double seconds) {
    return bytes > 0 ? QString::number(bytes / 1048576.0 / seconds, 'f', 1) : QString("-");
}

inline void printTable(QTextStream& out, const QVector<Phase>& phases, const QVector<Result>& res) {
    out << "| Phase | Exchanges | Family s | Family MB/s | Link alone s | Raw pty s | Raw MB/s | "
           "Family / raw | Link / raw | us per exchange: family / link / raw |\n";
    out << "|---|---|---|---|---|---|---|---|---|---|\n";
    for (int i = 0; i < phases.size(); ++i) {
        const Result& r = res.at(i);
        const double us = 1e6 / r.exchanges;
        out << QString("| %1 | %2 | %3 | %4 | %5 | %6 | %7 | %8 | %9 | %10 / %11 / %12 |\n")
                   .arg(phases.at(i).name)
                   .arg(r.exchanges)
                   .arg(r.app, 0, 'f', 3)
                   .arg(mbPerSecond(phases.at(i).bytes, r.app))
                   .arg(r.link, 0, 'f', 3)
                   .arg(r.raw, 0, 'f', 3)
                   .arg(mbPerSecond(phases.at(i).bytes, r.raw))
                   .arg(r.app / r.raw, 0, 'f', 2)
                   .arg(r.link / r.raw, 0, 'f', 2)
                   .arg(r.app * us, 0, 'f', 1)
                   .arg(r.link * us, 0, 'f', 1)
                   .arg(r.raw * us, 0, 'f', 1);
    }
    out.flush();
}

// Two phases together (the target concerns e.g. program and verify): the best-of figures, and as the
// figure less exposed to other load on the machine, each round's family time over the raw time of the
// same round (median of the rounds). The set-up is paid once per run, so once per phase here.
inline void printPair(QTextStream& out, const QString& label, const QVector<Result>& res, int a, int b,
                      qint64 bytes) {
    const double app = res.at(a).app + res.at(b).app, raw = res.at(a).raw + res.at(b).raw;
    QVector<double> ratios;
    for (int r = 0; r < res.at(a).appRounds.size(); ++r)
        ratios << (res.at(a).appRounds.at(r) + res.at(b).appRounds.at(r)) /
                      (res.at(a).rawRounds.at(r) + res.at(b).rawRounds.at(r));
    std::sort(ratios.begin(), ratios.end());
    out << QString("\n%1: %2 s, %3 MB/s; raw %4 s; family / raw %5 (best of each), %6 "
                   "(median of the rounds)\n")
               .arg(label)
               .arg(app, 0, 'f', 4)
               .arg(mbPerSecond(bytes, app))
               .arg(raw, 0, 'f', 4)
               .arg(app / raw, 0, 'f', 2)
               .arg(ratios.at(ratios.size() / 2), 0, 'f', 2);
    out.flush();
}

// What one memory benchmark measures: a whole memory written, verified and read back through the file
// commands of its family, optionally after a chip erase.
struct MemoryBench {
    MemoryBench(const QString& chip, const QString& deviceFile, int size, int rounds, bool erase)
        : chip(chip), deviceFile(deviceFile), size(size), rounds(rounds), erase(erase) {}
    // The file commands of a memory whose codes start with prefix ("flash_").
    void commandsOf(const QString& prefix) {
        write = prefix + write, verify = prefix + verify, read = prefix + read;
    }

    QString chip, deviceFile;
    int size = 0;
    int rounds = 5;
    bool erase = false; // a chip erase before the write
    QString write = "file_write", verify = "file_verify", read = "file_read";
    QString writeLabel = "write";
};

// Runs the phases, checks that the read-back equals what was written and prints the tables; the exit
// code of the benchmark program.
inline int runMemoryBench(const MemoryBench& b) {
    QTextStream out(stdout);
    QTemporaryDir dir;
    const QString in = dir.filePath("in.bin"), back = dir.filePath("out.bin");
    QFile f(in);
    if (!f.open(QIODevice::WriteOnly) || f.write(pattern(b.size)) != b.size) return 1;
    f.close();
    // The first phase is the fixed cost of every run: project, catalogue, programmer and device set-up.
    QVector<Phase> phases{{"set-up only", {}, 0}};
    if (b.erase) phases.append({"chip erase", {cmd("erase")}, b.size});
    const int first = phases.size();
    phases.append({b.writeLabel, {fileCmd(b.write, in, b.size)}, b.size});
    phases.append({"verify", {fileCmd(b.verify, in, b.size)}, b.size});
    phases.append({"read", {fileCmd(b.read, back, b.size)}, b.size});
    const QVector<Result> res = measure(b.chip, b.deviceFile, phases, b.rounds);
    if (res.isEmpty()) {
        out << "the run against the simulator failed\n";
        return 1;
    }
    QFile r(back);
    if (!r.open(QIODevice::ReadOnly) || r.readAll() != pattern(b.size)) {
        out << "the read-back differs from what was written\n";
        return 1;
    }
    printTable(out, phases, res);
    printPair(out, b.writeLabel + " + verify", res, first, first + 1, 2 * qint64(b.size));
    return 0;
}

// The whole program of a memory benchmark.
inline int memoryBenchMain(int& argc, char* argv[], const MemoryBench& b) {
    QCoreApplication app(argc, argv);
    Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
    return runMemoryBench(b);
}

} // namespace FamilyBench
