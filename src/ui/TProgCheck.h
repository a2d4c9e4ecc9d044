#pragma once

#include <QString>

class TSerialPort;

// Talks to a named programmer outside any run, for the settings page: its identification text, or a
// reset pulse on the target. Each call opens the programmer's port and closes it again.
class TProgCheck {
public:
    // The text is the programmer's identification, or the reason it could not be had.
    static bool identify(const QString& name, QString& text);
    // A pulse of the description's default length; the text is the reason of a failure.
    static bool reset(const QString& name, QString& text);

private:
    static bool open(TSerialPort& port, const QString& name, int* resetDefault, QString& error);
};
