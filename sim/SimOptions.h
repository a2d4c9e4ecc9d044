#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

// The simulator's command line.
struct SimOptions {
    QString link = "/tmp/tarvelix-sim";
    QString chip;
    QString devices;
    QString bus = "spi"; // the bus of an empty socket
    QString image;
    QString trace;
    unsigned short interfaceCode = 2561;
    int noise = 0;        // junk bytes before each reply
    int corrupt = 0;      // every K-th reply gets a wrong check byte
    int silentAfter = -1; // no reply after K replies
    int delayMs = 0;
    int unplugAfter = -1;        // the line goes away with the first request after K replies
    int shortBy = 0;             // the first reply of a memory read comes N bytes short
    QHash<int, int> errors;      // command byte to error code
    bool exitWithParent = false; // tests: a crashed test leaves no simulator behind
    int pins = 0;                // address pins strapped on the chip (two-wire parts)
    bool timing = false;         // chip models take their write times
    int writeCycleMs = 5;        // two-wire EEPROM write cycle, with timing on
    QString protocol = "native"; // or the byte protocol of other hardware (SimStreamProtocol)

    // Reads the arguments (program name first); false with a message on a bad option.
    bool parse(const QStringList& args, QString& error);
    static QString usage();
};
