#pragma once

#include <QByteArray>

// 00 01 02 ...: bytes whose value tells their offset, so a shifted or misplaced byte shows at once.
inline QByteArray countingBytes(int n) {
    QByteArray out;
    for (int i = 0; i < n; ++i)
        out.append(char(i));
    return out;
}
