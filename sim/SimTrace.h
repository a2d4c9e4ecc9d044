#pragma once

#include <QFile>

// One line per frame: time stamp, direction (">" request, "<" reply) and the frame in hex.
class SimTrace {
public:
    bool open(const QString& file);
    void write(char direction, const QByteArray& frame);

private:
    QFile out;
    // Local time's offset from UTC, taken once: asking for local time on every line costs a look at
    // the time zone file each time, which showed as most of the simulator's time per operation.
    int utcOffsetSecs = 0;
};
