#pragma once

#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/TDevProg.h"
#include "devices/TDevTools.h"
#include "exec/TRunner.h"
#include "project/TDataPrj.h"
#include "support/CmdText.h"
#include "support/SimFixture.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cstdio>

// Runs projects through the command-line runner against simulators, as "tarvelix --run" does, and
// gives back the printed log and the frames the simulator saw.
class WorkerFixture {
public:
    WorkerFixture() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        AppData.logShowTime = false;
        AppData.pathDevices = QStringLiteral(TARVELIX_DATA_DIR "/devices");
        AppData.progType.clear();
        AppData.progName.clear();
        AppData.progType.append("Simulator", QStringLiteral(TARVELIX_DATA_DIR "/progs/sim.cfg"));
    }

    // Registers a programmer named name on the simulator's link.
    void addProgrammer(const QString& name, const SimFixture& sim) {
        AppData.progName.append(false, name, sim.link(), "Simulator");
    }

    // Starts the simulator with the options as the programmer "Sim".
    bool startSim(SimFixture& sim, const QStringList& options = QStringList()) {
        addProgrammer("Sim", sim);
        return sim.start(options);
    }

    QString writeProject(const QByteArray& json) {
        const QString file = dir.filePath("test.prj");
        QFile f(file);
        f.open(QIODevice::WriteOnly);
        f.write(json);
        return file;
    }

    // Runs and returns the exit status; the printed log is in output.
    int run(TRunner::Options opt) {
        FILE* out = std::tmpfile();
        FILE* err = std::tmpfile();
        int status;
        {
            TRunner runner(out, err);
            status = runner.run(opt);
        }
        output = readAll(out);
        errors = readAll(err);
        return status;
    }

    // The request frames of a simulator's trace, as upper-case hex with blanks.
    static QStringList requests(const QString& traceFile) {
        QFile f(traceFile);
        f.open(QIODevice::ReadOnly | QIODevice::Text);
        QStringList frames;
        for (const QString& line : QString::fromLatin1(f.readAll()).split('\n'))
            if (line.contains(" > ")) frames << line.mid(line.indexOf(" > ") + 3);
        return frames;
    }

    QString output, errors;
    QTemporaryDir dir;

private:
    static QString readAll(FILE* f) {
        std::fflush(f);
        std::rewind(f);
        QByteArray bytes;
        char buf[4096];
        size_t n;
        while ((n = std::fread(buf, 1, sizeof buf, f)) > 0)
            bytes.append(buf, int(n));
        std::fclose(f);
        return QString::fromUtf8(bytes);
    }
};
