#include "SimSpiBus.h"

namespace {
const unsigned char writeEnable = 0x06, writeDisable = 0x04, readStatus = 0x05;
const unsigned char latchBit = 0x02;

// Opcodes that need no write enable: write enable and disable, volatile status enable, resets, power.
bool needsWriteEnable(unsigned char op) {
    return op != writeEnable && op != writeDisable && op != 0x50 && op != 0x66 && op != 0x99 && op != 0xB9 &&
           op != 0xAB;
}

QByteArray le16(int v) {
    return QByteArray(1, char(v & 0xFF)).append(char(v >> 8 & 0xFF));
}
} // namespace

SimSpiBus::SimSpiBus(SimSocket& s) : socket(s) {
    socket.select(QByteArray());
}

QByteArray SimSpiBus::transfer(const QByteArray& tx, int readCount) {
    if (tx.isEmpty()) return QByteArray(readCount, char(0xFF));
    const unsigned char op = uchar(tx.at(0));
    if (readCount > 0) {
        const SimReply r = socket.request(3, le16(readCount) + tx);
        QByteArray data = r.isError ? QByteArray(readCount, char(0xFF)) : r.data;
        if (op == readStatus && writeEnabled)
            for (char& c : data)
                c = char(c | latchBit);
        return data;
    }
    if (op == writeEnable || op == writeDisable) {
        writeEnabled = op == writeEnable;
        return QByteArray();
    }
    if (needsWriteEnable(op) && !writeEnabled) return QByteArray();
    socket.request(4, tx);
    writeEnabled = false;
    return QByteArray();
}
