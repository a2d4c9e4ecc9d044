#include "SimPty.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

SimPty::~SimPty() {
    close();
}

bool SimPty::open(const QString& link, QString& error) {
    masterFd = posix_openpt(O_RDWR | O_NOCTTY);
    if (masterFd < 0 || grantpt(masterFd) != 0 || unlockpt(masterFd) != 0) {
        error = QStringLiteral("cannot open a pseudo-terminal: %1").arg(strerror(errno));
        return false;
    }
    slave = QString::fromLocal8Bit(ptsname(masterFd));
    slaveFd = ::open(slave.toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
    termios t{};
    if (slaveFd < 0 || tcgetattr(slaveFd, &t) != 0) {
        error = QStringLiteral("cannot open %1: %2").arg(slave, strerror(errno));
        return false;
    }
    cfmakeraw(&t);
    tcsetattr(slaveFd, TCSANOW, &t);
    QFile::remove(link);
    if (symlink(slave.toLocal8Bit().constData(), link.toLocal8Bit().constData()) != 0) {
        error = QStringLiteral("cannot make the link %1: %2").arg(link, strerror(errno));
        return false;
    }
    linkPath = link;
    return true;
}

void SimPty::close() {
    if (!linkPath.isEmpty()) QFile::remove(linkPath);
    linkPath.clear();
    if (slaveFd >= 0) ::close(slaveFd);
    if (masterFd >= 0) ::close(masterFd);
    slaveFd = masterFd = -1;
}
