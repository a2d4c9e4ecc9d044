#pragma once

#include "link/bridge/TBridgeReply.h"

#include <QList>

#include <functional>

// The 25-series family's two SPI transactions as the native programmer serves them, for any bridge
// that can shift bytes: long addressed reads cut at the hardware's limit, write enable before each
// write and a busy wait after it.
class TBridgeSpiFlash {
public:
    // One SPI transaction: send tx, then read readCount bytes into rx.
    using Transaction = std::function<TBridgeReply(const QByteArray& tx, int readCount, QByteArray& rx)>;
    struct Shift {
        QByteArray tx;
        int readCount;
    };
    // Transactions in order, rx one answer each: hardware that can queue them takes them in one go,
    // which saves a round trip on the line for each.
    using Transactions = std::function<TBridgeReply(const QList<Shift>& shifts, QList<QByteArray>& rx)>;

    // Longest busy time of a write (a chip erase of a large part), and how long a status of all ones
    // (nothing drives the data line) may last before the chip counts as absent.
    static constexpr int busyTimeOutMs = 300000;
    static constexpr int floatingMs = 1000;

    // Packet 3: count (16-bit), then the bytes to send.
    static TBridgeReply read(const QByteArray& data, int readMax, int writeMax, const Transaction& spi);
    // Packet 4: the bytes to send. Write enable, the write and the first status read go as one group.
    static TBridgeReply write(const QByteArray& tx, int writeMax, const Transaction& spi,
                              const Transactions& group = nullptr);
    static Transactions oneByOne(const Transaction& spi);
    static TBridgeReply waitReady(const Transaction& spi);
};
