#pragma once

#include <QByteArray>

#include <functional>

// How one memory space of a chip is reached (a 24-series array, SPI flash, its security registers, AVR
// flash or EEPROM): the family's piece reader and writer and the chunks they take. The range engine of
// IDeviceExec cuts every range into these chunks and drives the loops, the files and the result line.
struct TMemorySpace {
    // Both set the executor's error text when they fail. A reader may return fewer bytes than asked;
    // the engine calls that a failure of its own.
    using Reader = std::function<bool(qint64 addr, int len, QByteArray& out)>;
    using Writer = std::function<bool(qint64 addr, const QByteArray& data)>;

    // How progress goes to the window after each chunk.
    enum class Progress {
        Polling,  // a changed percentage is sent, and events are processed every 16 chunks in between
        OnChange, // only a changed percentage is sent (with the events processed then)
    };

    Reader read;
    Writer write;
    int readChunk = 0;
    int writeChunk = 0;
    Progress progress = Progress::Polling;
};
