#include "link/bridge/TBridgeStk500v1.h"

#include "app/TLang.h"
#include "link/CProtocol.h"
#include "link/bridge/CBridge.h"
#include "link/bridge/CStk500v1.h"

#include <QElapsedTimer>

namespace {
const unsigned char pollReady = 0xF0;
const unsigned char eepromWrite = 0xC0; // C0 write byte, C1 load page, C2 write page
const int defaultDelayMs = 10;
const int setDeviceBody = 20;
const int instructionSize = 5; // wait byte and four instruction bytes
const int lockBytes = 1;

int value(const TData& part, const char* key, int fallback) {
    bool ok = false;
    const int v = part.value(key).toInt(&ok);
    return ok ? v : fallback;
}

void appendBE(QByteArray& b, quint32 v, int size) {
    for (int i = size - 1; i >= 0; --i)
        b.append(char(v >> (8 * i) & 0xFF));
}

int le16(const QByteArray& d, int at) {
    return uchar(d.at(at)) | uchar(d.at(at + 1)) << 8;
}
} // namespace

TBridgeStk500v1::TBridgeStk500v1() : IBridge(protocolName, interface, {CBridge::typeAvr}) {}

void TBridgeStk500v1::describeTarget(const TData& params) {
    part = params;
}

QString TBridgeStk500v1::name(unsigned char cmd) {
    using namespace CStk500v1;
    const char* n = cmd == getSync                ? "GET_SYNC"
                    : cmd == getParameter         ? "GET_PARAMETER"
                    : cmd == setDevice            ? "SET_DEVICE"
                    : cmd == setDeviceExt         ? "SET_DEVICE_EXT"
                    : cmd == enterProgmode        ? "ENTER_PROGMODE"
                    : cmd == leaveProgmode        ? "LEAVE_PROGMODE"
                    : cmd == loadAddress          ? "LOAD_ADDRESS"
                    : cmd == CStk500v1::universal ? "UNIVERSAL"
                    : cmd == progPage             ? "PROG_PAGE"
                    : cmd == readPage             ? "READ_PAGE"
                                                  : "?";
    return QStringLiteral("%1 (0x%2)").arg(n).arg(cmd, 2, 16, QChar('0')).toUpper().replace("(0X", "(0x");
}

// The part's sizes as the sketch reads them: page size, EEPROM size and flash size, big-endian.
QByteArray TBridgeStk500v1::setDevicePacket(const TData& part, unsigned char resetPolarity) {
    using namespace CStk500v1;
    QByteArray b(1, char(setDevice));
    b.append(char(resetPolarity ? devcodeResetHigh : devcodeAvr));
    b.append('\0').append('\0').append(char(1)).append(char(1)).append(
        char(1)); // revision, prog., parallel, poll, self-timed
    b.append(char(lockBytes)).append(char(part.value("fuse_def").toString().size() / 2));
    b.append(char(0xFF)).append(char(0xFF)).append(char(0xFF)).append(char(0xFF)); // poll values
    appendBE(b, quint32(value(part, "flash_page_size", pageMax)), 2);
    appendBE(b, quint32(value(part, "eeprom_size", 0)), 2);
    appendBE(b, quint32(value(part, "flash_size", 0)), 4);
    return b.append(char(eop));
}

QByteArray TBridgeStk500v1::loadAddressPacket(int wordAddress) {
    return QByteArray(1, char(CStk500v1::loadAddress))
        .append(char(wordAddress & 0xFF))
        .append(char(wordAddress >> 8 & 0xFF))
        .append(char(CStk500v1::eop));
}

QByteArray TBridgeStk500v1::pagePacket(unsigned char cmd, char memory, int length, const QByteArray& data) {
    return QByteArray(1, char(cmd))
        .append(char(length >> 8))
        .append(char(length & 0xFF))
        .append(memory)
        .append(data)
        .append(char(CStk500v1::eop));
}

QByteArray TBridgeStk500v1::universalPacket(const QByteArray& instruction) {
    return QByteArray(1, char(CStk500v1::universal)).append(instruction).append(char(CStk500v1::eop));
}

int TBridgeStk500v1::flashPage() const {
    const int page = value(part, "flash_page_size", CStk500v1::pageMax);
    return page > 0 && page <= CStk500v1::pageMax ? page : CStk500v1::pageMax;
}

void TBridgeStk500v1::forget() {
    programming = false;
    extendedByte = 0;
    targetExt = -1;
    pendingAt = -1;
    pending.clear();
}

TBridgeReply TBridgeStk500v1::command(IBridgeWire& wire, const QByteArray& packet, int answerSize,
                                      QByteArray& answer, int timeOutMs) {
    const QString what = name(uchar(packet.at(0)));
    answer.clear();
    if (!wire.send(packet)) return noAnswer(wire, what, 0, answerSize + 2);
    return answerOf(wire, what, answerSize, answer, timeOutMs);
}

TBridgeReply TBridgeStk500v1::answerOf(IBridgeWire& wire, const QString& what, int answerSize,
                                       QByteArray& answer, int timeOutMs) {
    const int wait = timeOutMs > 0 ? timeOutMs : wire.answerTimeOut();
    answer.clear();
    QByteArray status;
    if (!wire.receive(status, 1, wait)) return noAnswer(wire, what, 0, answerSize + 2);
    if (uchar(status.at(0)) != CStk500v1::inSync) return unexpected(wire, what, uchar(status.at(0)));
    if (answerSize > 0 && !wire.receive(answer, answerSize, wait))
        return noAnswer(wire, what, answer.size() + 1, answerSize + 2);
    status.clear();
    if (!wire.receive(status, 1, wait)) return noAnswer(wire, what, answerSize + 1, answerSize + 2);
    if (uchar(status.at(0)) == CStk500v1::failed) return refusedBy(wire, what);
    if (uchar(status.at(0)) != CStk500v1::ok) return unexpected(wire, what, uchar(status.at(0)));
    return TBridgeReply::done();
}

// The sketch answers LOAD_ADDRESS and UNIVERSAL at once, so the page command can follow them without
// waiting: nothing is sent while it writes a page. Every answer is read, so that a refusal leaves the
// line in step. The part's extended address register holds word-address bits 23-16.
TBridgeReply TBridgeStk500v1::addressed(IBridgeWire& wire, bool flash, qint64 byteAddress,
                                        const QByteArray& pageCommand, int answerSize, QByteArray& answer) {
    const int extended = int(byteAddress >> 17);
    const bool setExtended = flash && extended != targetExt;
    QByteArray ahead;
    if (setExtended)
        ahead += universalPacket(QByteArray(1, char(CProtocol::Avr::InExtendedAddress))
                                     .append('\0')
                                     .append(char(extended))
                                     .append('\0'));
    ahead += loadAddressPacket(int(byteAddress >> 1)) + pageCommand;
    answer.clear();
    if (!wire.send(ahead)) return noAnswer(wire, name(uchar(ahead.at(0))), 0, 2);
    QByteArray ignored;
    TBridgeReply first = TBridgeReply::done();
    if (setExtended) {
        first = answerOf(wire, name(CStk500v1::universal), 1, ignored, 0);
        if (first.ok()) targetExt = extended;
        if (first.kind == TBridgeReply::Kind::Lost) return first;
    }
    for (const bool page : {false, true}) {
        const TBridgeReply r = answerOf(wire, name(uchar(page ? pageCommand.at(0) : CStk500v1::loadAddress)),
                                        page ? answerSize : 0, page ? answer : ignored, 0);
        if (r.kind == TBridgeReply::Kind::Lost) return r;
        if (first.ok()) first = r;
    }
    return first;
}

// As avrdude: the board resets when the line opens; GET_SYNC until the sketch answers.
TBridgeReply TBridgeStk500v1::start(IBridgeWire& wire) {
    forget();
    wire.setDtr(false);
    wire.pause(resetPulseMs);
    wire.setDtr(true);
    const QByteArray sync = QByteArray(1, char(CStk500v1::getSync)).append(char(CStk500v1::eop));
    // The window follows the description's time-out: a second of it is about the sketch's start.
    const int window = qMax(syncAttemptMs, syncWindowFactor * wire.answerTimeOut());
    QElapsedTimer t;
    t.start();
    QByteArray a;
    TBridgeReply r = TBridgeReply::done();
    do {
        wire.discardInput();
        r = command(wire, sync, 0, a, qMin(syncAttemptMs, wire.answerTimeOut()));
        if (wire.lost()) return r;
    } while (!r.ok() && t.elapsed() < window);
    if (!r.ok())
        return TBridgeReply::lost(Lang.get(1503).arg(protocol(), wire.portName(), name(CStk500v1::getSync)));
    QString version;
    for (unsigned char p : {CStk500v1::parmHwVersion, CStk500v1::parmSwMajor, CStk500v1::parmSwMinor}) {
        const QByteArray q =
            QByteArray(1, char(CStk500v1::getParameter)).append(char(p)).append(char(CStk500v1::eop));
        if (!(r = command(wire, q, 1, a)).ok()) return r;
        version += QString::number(uchar(a.at(0))) + (p == CStk500v1::parmSwMajor ? "." : " ");
    }
    const QStringList v = version.trimmed().split(' ');
    return TBridgeReply::done(QStringLiteral("ArduinoISP (STK500 v1), hardware %1, firmware %2")
                                  .arg(v.value(0), v.value(1))
                                  .toLatin1());
}

// SET_DEVICE and SET_DEVICE_EXT from the part, then programming mode; the sketch has one fixed clock.
TBridgeReply TBridgeStk500v1::selectDevice(IBridgeWire& wire, unsigned short, const QByteArray& payload) {
    QByteArray a;
    TBridgeReply r = leaveProgramming(wire);
    if (!r.ok()) return r;
    if (!(r = command(wire, setDevicePacket(part, uchar(payload.at(3))), 0, a)).ok()) return r;
    QByteArray ext(1, char(CStk500v1::setDeviceExt));
    ext.append(char(5))
        .append(char(value(part, "eeprom_page_size", 4)))
        .append(3, '\0')
        .append(char(CStk500v1::eop));
    if (!(r = command(wire, ext, 0, a)).ok()) return r;
    if (!(r = command(wire, QByteArray(1, char(CStk500v1::enterProgmode)).append(char(CStk500v1::eop)), 0, a))
             .ok())
        return r;
    programming = true;
    targetExt = -1;
    extendedByte = 0;
    return TBridgeReply::done();
}

TBridgeReply TBridgeStk500v1::leaveProgramming(IBridgeWire& wire) {
    pending.clear();
    pendingAt = -1;
    if (!programming) return TBridgeReply::done();
    programming = false;
    QByteArray a;
    return command(wire, QByteArray(1, char(CStk500v1::leaveProgmode)).append(char(CStk500v1::eop)), 0, a);
}

TBridgeReply TBridgeStk500v1::leave(IBridgeWire& wire) {
    TBridgeReply r = flushPage(wire);
    TBridgeReply l = leaveProgramming(wire);
    return r.ok() ? l : r;
}

TBridgeReply TBridgeStk500v1::family(IBridgeWire& wire, unsigned char cmd, const QByteArray& data) {
    const bool commit = cmd == CProtocol::Avr::Instr && data.size() == instructionSize &&
                        uchar(data.at(1)) == CProtocol::Avr::InWritePage;
    // A page load stays on the host until its commit; anything else first writes what is kept.
    if (cmd != CProtocol::Avr::WriteFlash && !commit) {
        TBridgeReply r = flushPage(wire);
        if (!r.ok()) return r;
    }
    switch (cmd) {
    case CProtocol::Family::Leave:
        return leaveProgramming(wire);
    case CProtocol::Family::SetClk:
        return TBridgeReply::done();
    case CProtocol::Avr::ReadFlash:
    case CProtocol::Avr::ReadEeprom:
        if (data.size() != 4) return TBridgeReply::error(CProtocol::ErrLength);
        return readMemory(wire, cmd == CProtocol::Avr::ReadFlash ? CStk500v1::memFlash : CStk500v1::memEeprom,
                          (cmd == CProtocol::Avr::ReadFlash ? qint64(extendedByte) << 16 : 0) | le16(data, 0),
                          le16(data, 2));
    case CProtocol::Avr::WriteFlash: {
        if (data.size() < 4 || data.size() % 2) return TBridgeReply::error(CProtocol::ErrLength);
        const qint64 at = qint64(extendedByte) << 16 | le16(data, 0);
        if (pendingAt >= 0 && (at != pendingAt + pending.size() || at % flashPage() == 0)) {
            TBridgeReply r = flushPage(wire);
            if (!r.ok()) return r;
        }
        if (pendingAt < 0) pendingAt = at;
        pending += data.mid(2);
        return TBridgeReply::done();
    }
    case CProtocol::Avr::WriteEeprom:
        if (data.size() < 3) return TBridgeReply::error(CProtocol::ErrLength);
        return writeEeprom(wire, le16(data, 0), data.mid(2));
    case CProtocol::Avr::Instr:
        return instruction(wire, data);
    default:
        return TBridgeReply::error(CProtocol::ErrUnknownCommand);
    }
}

TBridgeReply TBridgeStk500v1::universal(IBridgeWire& wire, unsigned char a, unsigned char b, unsigned char c,
                                        unsigned char d, unsigned char& result) {
    QByteArray answer;
    const QByteArray i = QByteArray(1, char(a)).append(char(b)).append(char(c)).append(char(d));
    TBridgeReply r = command(wire, universalPacket(i), 1, answer);
    if (r.ok()) result = uchar(answer.at(0));
    return r;
}

// Replies as the native programmer: r1 and r2 echo the first two bytes, r3 is what the part shifted
// out last.
TBridgeReply TBridgeStk500v1::instruction(IBridgeWire& wire, const QByteArray& data) {
    if (data.size() != instructionSize) return TBridgeReply::error(CProtocol::ErrLength);
    const unsigned char w = uchar(data.at(0)), a = uchar(data.at(1)), b = uchar(data.at(2)),
                        c = uchar(data.at(3));
    unsigned char result = c;
    TBridgeReply r = TBridgeReply::done();
    if (a == CProtocol::Avr::InExtendedAddress) {
        extendedByte = c; // the part gets it with the next page or read
    } else if (a == CProtocol::Avr::InWritePage) {
        r = flushPage(wire);
    } else {
        r = universal(wire, a, b, c, uchar(data.at(4)), result);
    }
    if (r.ok() && a != CProtocol::Avr::InExtendedAddress) r = wait(wire, w, a, b);
    if (!r.ok()) return r;
    return TBridgeReply::done(QByteArray(1, '\0').append(char(a)).append(char(b)).append(char(result)));
}

// Wait byte 0xFF: poll the part until it is ready; another value: that many milliseconds. A part
// that answers the poll with all ones does not know it: then it gets the delay its description
// gives for the instruction, as avrdude gives the sketch.
TBridgeReply TBridgeStk500v1::wait(IBridgeWire& wire, unsigned char waitByte, unsigned char a,
                                   unsigned char b) {
    if (waitByte != CProtocol::Avr::WaitPoll) {
        if (waitByte > 0) wire.pause(waitByte);
        return TBridgeReply::done();
    }
    QElapsedTimer t;
    t.start();
    for (;;) {
        unsigned char busy = 0;
        TBridgeReply r = universal(wire, pollReady, 0, 0, 0, busy);
        if (!r.ok()) return r;
        if (busy == 0xFF) {
            wire.pause(delayOf(a, b));
            return TBridgeReply::done();
        }
        if (!(busy & 1)) return TBridgeReply::done();
        if (t.elapsed() > busyTimeOutMs) return TBridgeReply::error(CProtocol::ErrBusy);
    }
}

int TBridgeStk500v1::delayOf(unsigned char a, unsigned char b) const {
    const char* key = a == CProtocol::Avr::InWritePage                                     ? "flash_delay"
                      : a == CProtocol::Avr::InProgram && b == CProtocol::Avr::InChipErase ? "erase_delay"
                      : a == CProtocol::Avr::InProgram                                     ? "fuse_delay"
                      : (a & 0xF0) == eepromWrite                                          ? "eeprom_delay"
                                                                                           : nullptr;
    return key ? value(part, key, defaultDelayMs) : defaultDelayMs;
}

TBridgeReply TBridgeStk500v1::flushPage(IBridgeWire& wire) {
    if (pendingAt < 0) return TBridgeReply::done();
    const qint64 at = pendingAt;
    const QByteArray data = pending;
    pendingAt = -1;
    pending.clear();
    QByteArray a;
    // One PROG_PAGE per page of the part: the sketch commits each at its end.
    for (int done = 0, n = 0; done < data.size(); done += n) {
        const qint64 byte = at + done;
        n = int(qMin<qint64>(data.size() - done, flashPage() - byte % flashPage()));
        const QByteArray piece = data.mid(done, n);
        const TBridgeReply r =
            addressed(wire, true, byte,
                      pagePacket(CStk500v1::progPage, CStk500v1::memFlash, piece.size(), piece), 0, a);
        if (!r.ok()) return r;
    }
    return TBridgeReply::done();
}

// Addresses go as words; an odd start reads from the byte before and drops it.
TBridgeReply TBridgeStk500v1::readMemory(IBridgeWire& wire, char memory, qint64 byteAddress, int length) {
    const qint64 start = byteAddress & ~qint64(1);
    const int skip = int(byteAddress - start);
    const int total = (skip + length + 1) & ~1;
    QByteArray all, a;
    while (all.size() < total) {
        const qint64 at = start + all.size();
        const int n = qMin(CStk500v1::pageMax, total - all.size());
        const TBridgeReply r = addressed(wire, memory == CStk500v1::memFlash, at,
                                         pagePacket(CStk500v1::readPage, memory, n, QByteArray()), n, a);
        if (!r.ok()) return r;
        all += a;
    }
    return TBridgeReply::done(all.mid(skip, length));
}

// The sketch writes the EEPROM from a word address: an odd start takes the byte before along.
TBridgeReply TBridgeStk500v1::writeEeprom(IBridgeWire& wire, int byteAddress, QByteArray data) {
    if (byteAddress % 2) {
        TBridgeReply before = readMemory(wire, CStk500v1::memEeprom, byteAddress - 1, 1);
        if (!before.ok()) return before;
        data.prepend(before.data);
        --byteAddress;
    }
    QByteArray a;
    for (int done = 0; done < data.size(); done += CStk500v1::pageMax) {
        const QByteArray piece = data.mid(done, CStk500v1::pageMax);
        const TBridgeReply r =
            addressed(wire, false, byteAddress + done,
                      pagePacket(CStk500v1::progPage, CStk500v1::memEeprom, piece.size(), piece), 0, a);
        if (!r.ok()) return r;
    }
    return TBridgeReply::done();
}
