#pragma once

// Starts the programmer simulator on a link of its own in a temporary folder and stops it again.
// Header-only, so that every test area can use it with "support/SimFixture.h".

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

class SimFixture {
public:
    SimFixture() = default;
    SimFixture(const SimFixture&) = delete;
    SimFixture& operator=(const SimFixture&) = delete;
    ~SimFixture() { stop(); }

    static QString program() { return QStringLiteral(TARVELIX_BIN_DIR "/tarvelix-progsim"); }
    // Another programmer on a pseudo-terminal with the simulator's options (the simulated Nano board).
    void setProgram(const QString& file) { executable = file; }

    // Starts the simulator with the given options and waits (at most timeoutMs) until its link exists.
    bool start(const QStringList& options = QStringList(), int timeoutMs = 5000) {
        stop();
        proc.setProgram(executable);
        proc.setArguments(QStringList{"--link", link(), "--exit-with-parent"} + options);
        proc.start();
        if (!proc.waitForStarted(timeoutMs)) return false;
        const QDeadlineTimer deadline(timeoutMs);
        while (!QFileInfo(link()).isSymLink()) {
            // Waiting for the end also notices a simulator that refused to start.
            if (deadline.hasExpired() || proc.waitForFinished(5)) return false;
        }
        return true;
    }

    // A part of the shipped catalogue in the socket with the given memory image (empty: the part's
    // erased state). A running simulator is stopped first, which writes its chip back to the image.
    bool startChip(const QString& chip, const QByteArray& image, const QStringList& more = QStringList()) {
        stop();
        QFile f(imagePath());
        if (!f.open(QIODevice::WriteOnly) || f.write(image) != image.size()) return false;
        f.close();
        return start(
            QStringList{"--chip", chip, "--devices", TARVELIX_DATA_DIR "/devices", "--image", imagePath()} +
            more);
    }

    // Stops the simulator, which writes the chip's contents back to its image, and reads the image.
    QByteArray chipImage() {
        stop();
        QFile f(imagePath());
        f.open(QIODevice::ReadOnly);
        return f.readAll();
    }

    QString imagePath() const { return path("image.bin"); }

    // Sends SIGTERM (the simulator saves its image and removes its link) and waits for the end.
    void stop() {
        if (proc.state() == QProcess::NotRunning) return;
        proc.terminate();
        if (!proc.waitForFinished(5000)) {
            proc.kill();
            proc.waitForFinished(2000);
        }
    }

    bool isRunning() const { return proc.state() != QProcess::NotRunning; }
    QString link() const { return dir.filePath("programmer"); }
    // A scratch folder for images, traces and device folders of the test.
    QString path(const QString& name) const { return dir.filePath(name); }
    QString errorOutput() { return QString::fromLocal8Bit(proc.readAllStandardError()); }
    QProcess& process() { return proc; }

private:
    QTemporaryDir dir;
    QProcess proc;
    QString executable = program();
};
