#pragma once

#include "app/TTypes.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <initializer_list>

// Helpers shared by the executors and the one-line views of every device family: chunking of transfers,
// hexadecimal texts, the verify failure message, and the texts of sizes and frequencies.
class TMiscDev {
public:
    // Length of the next chunk from addr: up to the next multiple of page, never past end (inclusive).
    static qint64 getSize(qint64 addr, qint64 end, qint64 page);

    // Range arithmetic that never wraps, for values straight from a project file.
    // Whether [addr, addr + count) lies inside [begin, begin + size); a sum past 64 bits never does.
    static bool isRangeInside(qint64 addr, qint64 count, qint64 begin, qint64 size);
    // addr + count - 1 and a * b, held at the 64-bit limits instead of wrapping (for views of bad values).
    static qint64 getLastAddr(qint64 addr, qint64 count);
    static qint64 getProduct(qint64 a, qint64 b);

    static QString getHexFromInt(int value);
    static QString getHexFromInt(qint64 value);
    static int getIntFromHex(const QString& text);
    static qint64 getInt64FromHex(const QString& text);
    static QByteArray getByteArrayFromHex(const QString& text);
    static QString getHexFromByteArray(const QByteArray& data);

    // Whether a command code is one of codes.
    static bool isOneOf(const QString& code, std::initializer_list<const char*> codes);
    // The low `bytes` bytes of value, least significant first, as every packet carries numbers.
    static void appendLE(QByteArray& out, quint64 value, int bytes);

    static QString getMsgVerifyError(qint64 addr, qint64 expected, qint64 read);

    static QString getViewDeviceSize(qint64 size);

    // A command's parameters unpacked for execution. Ends are inclusive; a file name comes back absolute
    // against the project's work folder and its format in lower case.
    static void getCmdParamRWVChar(const TData& p, int& id_cmd, qint64& addr_begin, qint64& addr_end,
                                   uchar& fill);
    static void getCmdParamRWVData(const TData& p, int& id_cmd, qint64& addr_begin, qint64& addr_end,
                                   QByteArray& data, QString& text);
    static void getCmdParamRWVFile(const TData& p, int& id_cmd, qint64& addr_file, qint64& addr_begin,
                                   qint64& addr_end, QString& file, QString& format);
    // The clock value to send for a clock command: the programmer's value for the device's pin section.
    static unsigned int getCLK(const TData& p);

    // Hex text of the bytes laid over a data text: the text's own layout (blanks, line breaks) is kept and
    // each pair of hex digits in it is replaced by the next byte.
    static QString getHexFromByteArrayMask(const QString& mask, const QByteArray& data);

    // One-line views of the read, write and verify commands.
    static QString getViewParamRWVChar(qint64 addr, qint64 count, int fill);
    static QString getViewParamRWVData(qint64 addr, const QString& text);
    static QString getViewParamRWVFile(const QString& file, const QString& format);
    static QString getViewFreqValue(int hz);
    static QString getViewFreqAndDutyCycleValue(int hz, int duty);
};
