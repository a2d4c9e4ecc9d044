// The range engine of IDeviceExec: every family's write, verify and read of a range, of characters,
// literal data and files, over the memory spaces the families describe.
#include "devices/IDeviceExec.h"

#include "project/CTagPrj.h"

#include "app/TLang.h"
#include "formats/TFormat.h"
#include "formats/TSaveAside.h"
#include "misc/TRangeReport.h"
#include "misc/dev_misc.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {
// Language texts: a short reply, and what became of the file of a read that did not finish.
constexpr int LangShortReply = 484, LangPreviousKept = 1213, LangNotWritten = 1214;

QByteArray blank(qint64, int len) {
    return QByteArray(len, char(0xFF));
}
} // namespace

bool IDeviceExec::readPiece(const TMemorySpace& space, qint64 addr, int len, QByteArray& out) {
    if (!space.read(addr, len, out)) return false;
    if (out.size() == len) return true;
    setErrorText(Lang.get(LangShortReply).arg(out.size()).arg(len));
    return false;
}

// Progress counts from address 0, not from the range's start: done is the next address, deliberately.
bool IDeviceExec::progress(const TMemorySpace& space, int& last, int& counter, qint64 done, qint64 total) {
    if (space.progress == TMemorySpace::Progress::Polling) return processGUI(last, counter, done, total);
    const int percent = total == 0 ? 100 : int(qMin<qint64>(done * 100 / total, 100));
    if (percent != last) {
        last = percent;
        QCoreApplication::processEvents();
        emit signalEventProc(percent);
    }
    return isStop();
}

bool IDeviceExec::writeRange(const TMemorySpace& space, qint64 addr, qint64 end, const Source& source,
                             TRangeReport* done) {
    int last = -1, counter = 0;
    for (qint64 n; (n = TMiscDev::getSize(addr, end, space.writeChunk)) > 0; addr += n) {
        if (!space.write(addr, source(addr, int(n)))) return false;
        if (done) done->add(addr, n);
        if (progress(space, last, counter, addr + n, end)) return false;
    }
    return true;
}

bool IDeviceExec::verifyRange(const TMemorySpace& space, qint64 addr, qint64 end, const Source& expected,
                              TRangeReport* done) {
    return readRange(space, addr, end, [&](qint64 at, const QByteArray& read) {
        if (!compare(at, expected(at, read.size()), read)) return false;
        if (done) done->add(at, read.size());
        return true;
    });
}

bool IDeviceExec::readRange(const TMemorySpace& space, qint64 addr, qint64 end, const Sink& sink) {
    int last = -1, counter = 0;
    QByteArray read;
    for (qint64 n; (n = TMiscDev::getSize(addr, end, space.readChunk)) > 0; addr += n) {
        if (!readPiece(space, addr, int(n), read) || !sink(addr, read)) return false;
        if (progress(space, last, counter, addr + n, end)) return false;
    }
    return true;
}

bool IDeviceExec::testEmptyRange(const TMemorySpace& space, qint64 begin, qint64 end) {
    return verifyRange(space, begin, end, blank);
}

const TCmdRow* IDeviceExec::commandRow(const TCmdRows& rows, QString& code) const {
    code = param.value(QLatin1String(CTagCmd::cmd)).toString();
    return TCmdTable::find(rows, code);
}

bool IDeviceExec::rangeCmdOf(const TCmdRow& row, RangeCmd& cmd) {
    static const struct {
        TCmdKind kind;
        TCmdOp op;
        RangeCmd cmd;
    } map[] = {
        {TCmdKind::Char, TCmdOp::Write, RangeCmd::WriteChar},
        {TCmdKind::Char, TCmdOp::Verify, RangeCmd::VerifyChar},
        {TCmdKind::Data, TCmdOp::Write, RangeCmd::WriteData},
        {TCmdKind::Data, TCmdOp::Verify, RangeCmd::VerifyData},
        {TCmdKind::Data, TCmdOp::Read, RangeCmd::ReadData},
        {TCmdKind::File, TCmdOp::Write, RangeCmd::WriteFile},
        {TCmdKind::File, TCmdOp::Verify, RangeCmd::VerifyFile},
        {TCmdKind::File, TCmdOp::Read, RangeCmd::ReadFile},
    };
    for (const auto& m : map)
        if (m.kind == row.kind && m.op == row.op) {
            cmd = m.cmd;
            return true;
        }
    return false;
}

bool IDeviceExec::runRange(const TMemorySpace& space, RangeCmd cmd) {
    switch (cmd) {
    case RangeCmd::WriteFile:
        return writeFile(space);
    case RangeCmd::VerifyFile:
        return verifyFile(space);
    case RangeCmd::ReadFile:
        return readFile(space);
    default:
        return charOrData(space, cmd);
    }
}

void IDeviceExec::report(const TRangeReport& done, int kind, const QString& file, const QString& format) {
    emit signalEventText(ExecResult, done.text(TRangeReport::Kind(kind), file, format), QString());
}

bool IDeviceExec::charOrData(const TMemorySpace& space, RangeCmd cmd) {
    int id;
    qint64 addr, end;
    QByteArray data;
    QString text;
    Source source;
    if (cmd == RangeCmd::WriteChar || cmd == RangeCmd::VerifyChar) {
        uchar fill;
        TMiscDev::getCmdParamRWVChar(param, id, addr, end, fill);
        source = [fill](qint64, int n) { return QByteArray(n, char(fill)); };
    } else {
        TMiscDev::getCmdParamRWVData(param, id, addr, end, data, text);
        const qint64 start = addr;
        source = [&data, start](qint64 at, int n) { return data.mid(int(at - start), n); };
    }
    TRangeReport done;
    if (cmd == RangeCmd::WriteChar || cmd == RangeCmd::WriteData) {
        if (!writeRange(space, addr, end, source, &done)) return false;
        report(done, TRangeReport::Written);
        return true;
    }
    if (cmd != RangeCmd::ReadData) {
        if (!verifyRange(space, addr, end, source, &done)) return false;
        report(done, TRangeReport::Verified);
        return true;
    }
    QByteArray read;
    if (!readRange(space, addr, end, [&](qint64 at, const QByteArray& piece) {
            read += piece;
            done.add(at, piece.size());
            return true;
        }))
        return false;
    if (!showDataRead(TMiscDev::getHexFromByteArrayMask(text, read))) return false;
    report(done, TRangeReport::Read);
    return true;
}

// ---- files ----

bool IDeviceExec::writeFile(const TMemorySpace& space) {
    int id;
    qint64 addrFile, addr, end;
    QString file, format;
    TMiscDev::getCmdParamRWVFile(param, id, addrFile, addr, end, file, format);
    TFormat data(format, file, addrFile, addr, end, space.writeChunk);
    if (!openFile(data, FormatModeRead)) return false;
    TRangeReport done;
    int last = -1, counter = 0;
    const bool ok = forEachFilePiece(data, addr, [&](qint64 at, const QByteArray& piece) {
        if (!space.write(at, piece)) return false;
        done.add(at, piece.size());
        return !progress(space, last, counter, at + piece.size(), end);
    });
    if (!ok) return false;
    if (!data.close()) return setFileError(data), false;
    report(done, TRangeReport::Written, file, format);
    return true;
}

bool IDeviceExec::verifyFile(const TMemorySpace& space) {
    int id;
    qint64 addrFile, addr, end;
    QString file, format;
    TMiscDev::getCmdParamRWVFile(param, id, addrFile, addr, end, file, format);
    TFormat data(format, file, addrFile, addr, end, space.readChunk);
    if (!openFile(data, FormatModeRead)) return false;
    TRangeReport done;
    int last = -1, counter = 0;
    QByteArray got;
    const bool ok = forEachFilePiece(data, addr, [&](qint64 at, const QByteArray& piece) {
        if (!readPiece(space, at, piece.size(), got) || !compare(at, piece, got)) return false;
        done.add(at, piece.size());
        return !progress(space, last, counter, at + piece.size(), end);
    });
    if (!ok) return false;
    if (!data.close()) return setFileError(data), false;
    report(done, TRangeReport::Verified, file, format);
    return true;
}

// The file is written aside and replaces the previous one only when the whole range is in it: a read
// that fails or is stopped half-way must not cost the user a good copy.
bool IDeviceExec::readFile(const TMemorySpace& space) {
    int id;
    qint64 addrFile, addr, end;
    QString file, format;
    TMiscDev::getCmdParamRWVFile(param, id, addrFile, addr, end, file, format);
    TSaveAside aside(file);
    if (!aside.begin(format == QLatin1String("bin+"))) return setErrorText(aside.getErrorText()), false;
    TFormat data(format, aside.path(), addrFile, addr, end, space.readChunk);
    TRangeReport done;
    const qint64 start = addr;
    bool ok = openFile(data, FormatModeWrite) &&
              readRange(space, addr, end, [&](qint64 at, const QByteArray& piece) {
                  if (!data.write(addrFile + at - start, piece)) return setFileError(data), false;
                  done.add(at, piece.size());
                  return true;
              });
    const bool closed = data.close();
    if (ok && !closed) setFileError(data);
    ok = ok && closed;
    if (ok && !aside.commit()) ok = (setErrorText(aside.getErrorText()), false);
    if (!ok) {
        aside.discard();
        const QString name = QFileInfo(file).fileName();
        emit signalEventText(ExecInfo,
                             Lang.get(aside.targetExisted() ? LangPreviousKept : LangNotWritten).arg(name),
                             QString());
        return false;
    }
    report(done, TRangeReport::Read, file, format);
    return true;
}
