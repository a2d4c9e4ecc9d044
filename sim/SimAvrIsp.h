#pragma once

#include <QHash>
#include <QString>
#include <QVariantMap>

// One serial programming instruction of an AVR part as its description gives it ("isp_<name>" keys):
// 32 tokens, first bit sent first: 0/1 fixed, x don't care, aN address bit N, iN data bit N written,
// oN data bit N shifted out in that position.
class SimAvrIsp {
public:
    // The instructions of the part's description, by name ("chip_erase", "lfuse_write", ...).
    static QHash<QString, SimAvrIsp> fromParams(const QVariantMap& params);

    bool parse(const QString& tokens);
    // Whether the four bytes are this instruction; a read's fourth byte is not the sender's.
    bool matches(quint32 instr) const;
    bool isRead() const { return readBits != 0; }
    quint32 address(quint32 instr) const;
    unsigned char data(quint32 instr) const;
    // The data bits the instruction carries.
    unsigned char dataMask() const;
    // The fourth byte a read shifts out for value; bits the part leaves undefined read as 1.
    unsigned char readOut(unsigned char value) const;

private:
    struct Token {
        char kind = 'x';
        int bit = 0;
    };
    Token tokens[32];
    quint32 fixedMask = 0, fixedValue = 0, readBits = 0;
};
