#pragma once

#include <QByteArray>

// One line of an Intel HEX file: decoding with the fault found, and encoding of a record.
class TIntelHexLine {
public:
    enum Type { Data = 0, End = 1, Segment = 2, StartSegment = 3, Linear = 4, StartLinear = 5 };
    // What is wrong with a line; each has its text in the language table.
    enum Fault { Ok, Blank, NotRecord, BadLength, BadChecksum, BadType, BadAddressRecord };

    struct Record {
        int type = 0;
        quint16 offset = 0;
        const uchar* data = nullptr; // points into the caller's buffer
        int length = 0;
    };

    // Decodes line (its end of line and trailing blanks are ignored) into record; record.data points
    // into buffer. Blank for an empty line.
    static Fault decode(const char* line, qint64 size, QByteArray& buffer, Record& record);
    // The value of a type 02 or 04 record that decode accepted: its two data bytes, high byte first.
    static qint64 addressValue(const Record& record) { return qint64(record.data[0]) << 8 | record.data[1]; }
    // Appends ":LLAAAATT<data>CC" and CR LF to out, in upper-case digits.
    static void encode(QByteArray& out, int type, quint16 offset, const uchar* data, int length);
    // The value of c as a hexadecimal digit, -1 for any other character.
    static int digit(char c);
    // The language text of a fault, with the record type where it matters.
    static QString faultText(Fault fault, int type);
};
