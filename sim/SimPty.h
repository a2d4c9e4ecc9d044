#pragma once

#include <QString>

// A pseudo-terminal in raw mode with a symbolic link to its slave side. The simulator keeps a slave
// descriptor of its own open, so the master does not see a hang-up between clients.
class SimPty {
public:
    ~SimPty();
    bool open(const QString& link, QString& error);
    // As when a cable is pulled: the line goes away and the link with it.
    void close();
    int master() const { return masterFd; }
    QString slaveName() const { return slave; }

private:
    int masterFd = -1;
    int slaveFd = -1;
    QString slave;
    QString linkPath;
};
