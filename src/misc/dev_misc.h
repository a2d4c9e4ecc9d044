#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

// Helpers shared by the executors and the one-line views of every device family: chunking of transfers,
// hexadecimal texts, the verify failure message, and the texts of sizes and frequencies.
class TMiscDev {
public:
    // Length of the next chunk from addr: up to the next multiple of page, never past end (inclusive).
    static qint64 getSize(qint64 addr, qint64 end, qint64 page);

    static QString getHexFromInt(int value);
    static QString getHexFromInt(qint64 value);
    static int getIntFromHex(const QString& text);
    static qint64 getInt64FromHex(const QString& text);
    static QByteArray getByteArrayFromHex(const QString& text);
    static QString getHexFromByteArray(const QByteArray& data);

    static QString getMsgVerifyError(qint64 addr, qint64 expected, qint64 read);

    static QString getViewDeviceSize(qint64 size);
    static QString getViewFreqValue(int hz);
    static QString getViewFreqAndDutyCycleValue(int hz, int duty);
};
