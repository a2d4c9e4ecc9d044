#pragma once

#include "app/TTypes.h"
#include "devices/TCmdTable.h"
#include "devices/TMemorySpace.h"
#include "formats/IFormat.h"

#include <QObject>

#include <atomic>
#include <functional>
#include <initializer_list>

class TFormat;
class TRangeReport;
class TSerialPort;

// The executing face of a command family: made for one command, run in the worker's thread.
//
// It also holds the one range engine of the families: write, verify and read of a range, of a
// command's characters, literal data or file, over a memory space that the family describes
// (TMemorySpace), with progress, stop, verify and failure texts and the result line.
class IDeviceExec : public QObject {
    Q_OBJECT
public:
    explicit IDeviceExec(const TData& param, QObject* parent = nullptr);
    ~IDeviceExec() override;

    // Runs the command. finish, idCfg and idCmd belong to the worker: an executor may end the run or
    // redirect it (stop, counter, jamp) and the worker continues from what it finds there.
    virtual bool execute(TSerialPort& port, bool& finish, int& idCfg, int& idCmd) = 0;
    // Reads the device's identification for auto-detection.
    virtual bool execReadSignature(TSerialPort& port, QString& signature);

    QString getErrorText() const { return errorText; }
    void setErrorText(const QString& text) { errorText = text; }

    bool isOpenPort(TSerialPort& port);
    bool sendPackage(TSerialPort& port, unsigned char cmd, QByteArray& data);

signals:
    void signalEventText(TCodeExec code, QString text, QString info);
    void signalEventProc(int percent);
    // Only the commands that start other runs ("execute", "auto_detect") or wait ("pause") emit these.
    void signalExecuteFromCmd(int idCfg);
    void signalPauseFromCmd(int idCfg);

public slots:
    void slotStop() { stop = true; }
    void slotPauseReset() { pause = false; }

protected:
    // The read, write and verify commands over a range.
    enum class RangeCmd {
        WriteChar,
        VerifyChar,
        WriteData,
        VerifyData,
        ReadData,
        WriteFile,
        VerifyFile,
        ReadFile
    };
    using Source = std::function<QByteArray(qint64 addr, int len)>;
    using Sink = std::function<bool(qint64 addr, const QByteArray& data)>;

    bool isStop() const { return stop; }
    // Progress after a chunk: a changed percentage is sent, and the thread's events are processed now and
    // then, so that a stop request arrives. Returns whether the user asked to stop.
    bool processGUI(int& lastPercent, int& counter, long long done, long long total);
    // Writes one parameter of the running command back into the project (a register read, a count), so
    // that its view shows it and it is saved with the project. False when the command is gone.
    bool storeParam(const QString& key, const QVariant& value);
    // A read result: kept in the command's "data" and shown in the log.
    bool storeData(const QString& hex);
    // The catalogue parameters of the command's device and the programmer's largest payload; false when
    // the command has lost its device or its programmer.
    bool readSetup(TData& dev, int& maxData) const;
    // An open port, the device's parameters and a payload limit: where every device command starts.
    bool prepareDevice(TSerialPort& port);
    // The first byte where read differs from expected (or is missing) becomes the verify error text,
    // after a line that says what failed over which range of the command.
    bool compare(qint64 addr, const QByteArray& expected, const QByteArray& read);
    // After a packet builder failed: its text, or, when it sent nothing, the algorithm that the device
    // needs and this program does not have (the number is the device parameter algKey).
    bool failAlg(const QString& err, const char* algKey);
    // Reads the identification (execReadSignature) and compares it with the catalogue's signature; a
    // difference names the devices that have the signature read and, on a line of its own, what was
    // expected.
    bool identify(TSerialPort& port);
    // A data file's error, with the file's path on a line of its own.
    void setFileError(const TFormat& data);

    // The data file of a file command; a failure to open it becomes the error text.
    bool openFile(TFormat& data, TFormatMode mode);
    // Hands each piece of a file opened for reading to each(device address, piece), from addr on, until
    // the file has no more data for the range (the file moves the address over its gaps). A file error
    // becomes the error text; each returns false to end the loop.
    using FilePiece = std::function<bool(qint64 addr, const QByteArray& piece)>;
    bool forEachFilePiece(TFormat& data, qint64 addr, const FilePiece& each);

    // ---- the command table ----
    // One of the family's own commands: its code and the member of executor E that runs it.
    template <class E> struct OwnOp {
        const char* code;
        bool (E::*run)(TSerialPort&);
    };
    // Runs the record's command by the family's table: a read, write or verify of a range through
    // range(space, cmd) with the row's memory space, any other command through its member in own. A
    // command abandoned on the user's request is no failure: the worker sees its stop flag next and ends
    // the run as stopped.
    template <class E, class Range>
    bool runByTable(TSerialPort& port, const TCmdRows& rows, std::initializer_list<OwnOp<E>> own,
                    Range range) {
        QString code;
        const TCmdRow* row = commandRow(rows, code);
        if (!row) return false;
        bool ok = false;
        RangeCmd cmd;
        if (rangeCmdOf(*row, cmd))
            ok = range(row->space, cmd);
        else
            for (const OwnOp<E>& op : own)
                if (code == QLatin1String(op.code)) {
                    ok = (static_cast<E*>(this)->*op.run)(port);
                    break;
                }
        return ok || isStop();
    }
    // The row of the record's command (its code in code); nullptr when the table has none.
    const TCmdRow* commandRow(const TCmdRows& rows, QString& code) const;

    // ---- the range engine ----
    // The range command of a row of a family's command table; false for the kinds that are none.
    static bool rangeCmdOf(const TCmdRow& row, RangeCmd& cmd);
    // One of the commands above over the command's parameters, with its result line.
    bool runRange(const TMemorySpace& space, RangeCmd cmd);
    // Loops over [addr, end] in the space's chunks; a piece written, checked or read goes into report.
    bool writeRange(const TMemorySpace& space, qint64 addr, qint64 end, const Source& source,
                    TRangeReport* report = nullptr);
    bool verifyRange(const TMemorySpace& space, qint64 addr, qint64 end, const Source& expected,
                     TRangeReport* report = nullptr);
    bool readRange(const TMemorySpace& space, qint64 addr, qint64 end, const Sink& sink);
    // Every byte of [begin, end] must read 0xFF.
    bool testEmptyRange(const TMemorySpace& space, qint64 begin, qint64 end);
    // Shows the bytes a data read got; the families whose commands keep them store them as well.
    virtual bool showDataRead(const QString& hex) { return storeData(hex); }

    TData param;
    TData dev;       // the device's catalogue parameters, after prepareDevice
    int maxData = 0; // the programmer's largest payload, after prepareDevice
    std::atomic<bool> stop{false};
    std::atomic<bool> pause{false};
    QString errorText;

private:
    bool readPiece(const TMemorySpace& space, qint64 addr, int len, QByteArray& out);
    bool progress(const TMemorySpace& space, int& last, int& counter, qint64 done, qint64 total);
    bool charOrData(const TMemorySpace& space, RangeCmd cmd);
    bool writeFile(const TMemorySpace& space);
    bool verifyFile(const TMemorySpace& space);
    bool readFile(const TMemorySpace& space);
    // The result line of a range command (event 4).
    void report(const TRangeReport& done, int kind, const QString& file = QString(),
                const QString& format = QString());
};
