#pragma once

// Runs one project on a programmer process (the simulator, or the simulated Nano board with its
// firmware) as "tarvelix --run" does, with the Nano's description, and keeps what happened.

#include "support/WorkerFixture.h"

#include <QFile>

struct ChipSetup {
    explicit ChipSetup(const QString& n, const QString& d = QStringLiteral(TARVELIX_DATA_DIR "/devices"),
                       const QByteArray& i = QByteArray())
        : name(n), devices(d), image(i) {}
    QString name;
    QString devices;
    QByteArray image;    // empty: the part as it leaves the factory
    QStringList options; // for both programmers (address pins)
};

struct BoardRun {
    int status = -1;
    QString output;
    QStringList frames; // "> hex" and "< hex", in order
    QByteArray image;

    static constexpr const char* nanoType = "Arduino Nano";
    static constexpr const char* nanoInterface = "2576";

    // A set_prog of the Nano programmer and the given commands.
    static QByteArray projectOf(const QStringList& cmds) {
        const QString setProg =
            R"({"status": "1", "cmd": "set_prog", "prog": "Nano", "alt_enabled": "false", "alt_port": ""})";
        return project({{"Main", QStringList{setProg} + cmds}});
    }

    static BoardRun on(const QString& program, const QStringList& extra, const ChipSetup& chip,
                       const QStringList& cmds) {
        WorkerFixture w;
        AppData.pathDevices = chip.devices;
        AppData.progType.append(nanoType, QStringLiteral(TARVELIX_DATA_DIR "/progs/arduino-nano.cfg"));
        SimFixture sim;
        sim.setProgram(program);
        const QString image = sim.path("image.bin");
        if (!chip.image.isEmpty()) {
            QFile f(image);
            f.open(QIODevice::WriteOnly);
            f.write(chip.image);
        }
        BoardRun r;
        if (!sim.start(QStringList{"--chip", chip.name, "--devices", chip.devices, "--trace",
                                   sim.path("trace"), "--image", image} +
                       chip.options + extra)) {
            r.output = sim.errorOutput();
            return r;
        }
        AppData.progName.append(false, "Nano", sim.link(), nanoType);
        TRunner::Options o;
        o.project = w.writeProject(projectOf(cmds));
        r.status = w.run(o);
        r.output = w.output;
        sim.stop();
        r.frames = traceFrames(sim.path("trace"));
        QFile f(image);
        if (f.open(QIODevice::ReadOnly)) r.image = f.readAll();
        return r;
    }

    // Both directions of a trace without the time stamps.
    static QStringList traceFrames(const QString& traceFile) {
        QFile f(traceFile);
        f.open(QIODevice::ReadOnly | QIODevice::Text);
        QStringList out;
        for (const QString& line : QString::fromLatin1(f.readAll()).split('\n'))
            if (line.size() > 24) out << line.mid(24);
        return out;
    }

    static QString board() { return QStringLiteral(TARVELIX_AVR_BOARD); }
};
