#pragma once

#include <QByteArray>
#include <QObject>

// One CRC model or checksum. A fresh object is made for every computation: getResult() finalises the
// register in place, so it is called once.
class ICRC : public QObject {
    Q_OBJECT
public:
    // Feeds bytes into the running register and returns its raw value (low 64 bits for wider models).
    virtual quint64 calc(char const* data, long long length) = 0;
    // The check value, most significant byte first, ceil(width / 8) bytes.
    virtual QByteArray getResult() = 0;
};
