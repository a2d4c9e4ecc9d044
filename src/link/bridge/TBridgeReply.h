#pragma once

#include <QByteArray>
#include <QString>

// What a bridge makes of one frame: the reply's data, a programmer error code as the native
// programmer would answer, or a failure of the hardware or the line with its own message.
struct TBridgeReply {
    enum class Kind {
        Ok,
        Error,   // programmer error code, as in an error reply
        Lost,    // no, short or garbled answer, or the line went away: the link failed
        Refused, // the hardware answered and said no
    };
    Kind kind = Kind::Ok;
    unsigned short code = 0;
    QByteArray data;
    QString text;

    bool ok() const { return kind == Kind::Ok; }
    static TBridgeReply done(const QByteArray& d = QByteArray()) { return {Kind::Ok, 0, d, QString()}; }
    static TBridgeReply error(unsigned short c) { return {Kind::Error, c, QByteArray(), QString()}; }
    static TBridgeReply lost(const QString& t) { return {Kind::Lost, 0, QByteArray(), t}; }
    static TBridgeReply refused(const QString& t) { return {Kind::Refused, 0, QByteArray(), t}; }
};
