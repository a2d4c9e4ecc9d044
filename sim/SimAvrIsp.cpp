#include "SimAvrIsp.h"

#include <QStringList>

QHash<QString, SimAvrIsp> SimAvrIsp::fromParams(const QVariantMap& params) {
    QHash<QString, SimAvrIsp> out;
    for (auto it = params.begin(); it != params.end(); ++it) {
        SimAvrIsp isp;
        if (it.key().startsWith(QLatin1String("isp_")) && isp.parse(it.value().toString()))
            out.insert(it.key().mid(4), isp);
    }
    return out;
}

bool SimAvrIsp::parse(const QString& text) {
    const QStringList list = text.split(' ', Qt::SkipEmptyParts);
    if (list.size() != 32) return false;
    for (int k = 0; k < 32; ++k) {
        const QString& t = list.at(k);
        const quint32 bit = 1u << (31 - k);
        tokens[k].kind = t.at(0).toLatin1();
        tokens[k].bit = t.mid(1).toInt();
        if (t == QLatin1String("0") || t == QLatin1String("1")) {
            fixedMask |= bit;
            fixedValue |= t == QLatin1String("1") ? bit : 0;
        } else if (tokens[k].kind == 'o') {
            readBits |= bit;
        } else if (!QStringLiteral("xai").contains(tokens[k].kind)) {
            return false;
        }
    }
    // What a read shifts out is no part of what selects it.
    if (readBits) {
        fixedValue &= 0xFFFFFF00u;
        fixedMask &= 0xFFFFFF00u;
    }
    return true;
}

bool SimAvrIsp::matches(quint32 instr) const {
    return (instr & fixedMask) == fixedValue;
}

quint32 SimAvrIsp::address(quint32 instr) const {
    quint32 a = 0;
    for (int k = 0; k < 32; ++k)
        if (tokens[k].kind == 'a' && (instr >> (31 - k) & 1)) a |= 1u << tokens[k].bit;
    return a;
}

unsigned char SimAvrIsp::data(quint32 instr) const {
    unsigned v = 0;
    for (int k = 0; k < 32; ++k)
        if (tokens[k].kind == 'i' && (instr >> (31 - k) & 1)) v |= 1u << tokens[k].bit;
    return static_cast<unsigned char>(v);
}

unsigned char SimAvrIsp::dataMask() const {
    unsigned m = 0;
    for (const Token& t : tokens)
        if (t.kind == 'i' || t.kind == 'o') m |= 1u << t.bit;
    return static_cast<unsigned char>(m);
}

unsigned char SimAvrIsp::readOut(unsigned char value) const {
    unsigned out = 0;
    for (int k = 24; k < 32; ++k) {
        const Token& t = tokens[k];
        const bool one = t.kind == 'o' ? (value >> t.bit & 1) : t.kind != '0';
        out |= one ? 1u << (31 - k) : 0;
    }
    return static_cast<unsigned char>(out);
}
