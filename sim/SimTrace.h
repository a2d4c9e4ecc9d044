#pragma once

#include <QFile>

// One line per frame: time stamp, direction (">" request, "<" reply) and the frame in hex.
class SimTrace {
public:
    bool open(const QString& file);
    void write(char direction, const QByteArray& frame);

private:
    QFile out;
};
