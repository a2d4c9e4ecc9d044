#pragma once

// A simulator in one of its hardware protocols with a chip and an image, and the two ways to drive
// it: an external client (flashrom, avrdude) or a Tarvelix project through the bridge.

#include "support/WorkerFixture.h"

#include <QFile>
#include <QProcess>

struct ClientRun {
    int status = -1;
    QString output;
};

class BridgeRig {
public:
    // Starts the simulator; image may be empty (the chip starts erased).
    bool start(const QString& protocol, const QString& chip, const QByteArray& image,
               const QStringList& faults = {}) {
        if (!image.isEmpty()) write(sim.path("image.bin"), image);
        return sim.start(QStringList{"--protocol", protocol, "--chip", chip, "--devices",
                                     QStringLiteral(TARVELIX_DATA_DIR "/devices"), "--image",
                                     sim.path("image.bin"), "--trace", sim.path("trace.txt")} +
                         faults);
    }
    // Stops the simulator and gives the chip's contents as it saved them.
    QByteArray stop() {
        sim.stop();
        return read(sim.path("image.bin"));
    }

    ClientRun client(const QString& program, const QStringList& args, int timeOutMs = 120000) {
        QProcess p;
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(program, args);
        ClientRun r;
        if (!p.waitForStarted(5000)) {
            r.output = program + " is not installed: run tools/deps.sh";
            return r;
        }
        if (!p.waitForFinished(timeOutMs)) p.kill();
        p.waitForFinished(2000);
        r.output = QString::fromLocal8Bit(p.readAll());
        r.status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
        return r;
    }

    // Runs a project on a programmer of the description file cfg on the simulator's link.
    ClientRun project(const QString& cfg, const QStringList& commands) {
        WorkerFixture w;
        AppData.progType.append("Bridge", cfg);
        AppData.progName.append(false, "Board", sim.link(), "Bridge");
        const QString setProg =
            R"({"status": "1", "cmd": "set_prog", "prog": "Board", "alt_enabled": "false", "alt_port": ""})";
        TRunner::Options o;
        o.project = w.writeProject(::project({{"Main", QStringList{setProg} + commands}}));
        ClientRun r;
        r.status = w.run(o);
        r.output = w.output;
        return r;
    }

    // A copy of a description with a shorter answer time-out, for the tests of silence.
    QString describe(const QString& cfg, int timeOutMs) {
        QByteArray text = read(QStringLiteral(TARVELIX_DATA_DIR "/progs/") + cfg);
        text.replace("TimeOut=1000", "TimeOut=" + QByteArray::number(timeOutMs));
        write(sim.path(cfg), text);
        return sim.path(cfg);
    }

    static QString cmd(const QString& code, const QString& params = QString()) {
        return QStringLiteral(R"({"status": "1", "cmd": "%1"%2})")
            .arg(code, params.isEmpty() ? QString() : ", " + params);
    }
    static QString setDevice(const QString& name, const QString& folder) {
        return cmd("set_device", QStringLiteral(R"("device": "%1", "file": "%2/%1.dev")").arg(name, folder));
    }
    static QString fileCmd(const QString& code, const QString& file, qint64 addr, qint64 count) {
        return cmd(code,
                   QStringLiteral(R"("file": "%1", "format": "bin", "addr_file": "%2", "addr_device": "%2", )"
                                  R"("count": "%3")")
                       .arg(file)
                       .arg(addr)
                       .arg(count));
    }

    static void write(const QString& name, const QByteArray& bytes) {
        QFile f(name);
        if (f.open(QIODevice::WriteOnly)) f.write(bytes);
    }
    static QByteArray read(const QString& name) {
        QFile f(name);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    // Bytes that no simple pattern of the programmer could fake.
    static QByteArray noise(int n, quint32 seed) {
        QByteArray b(n, 0);
        for (int i = 0; i < n; ++i) {
            seed = seed * 1664525u + 1013904223u;
            b[i] = char(seed >> 24);
        }
        return b;
    }

    SimFixture sim;
};
