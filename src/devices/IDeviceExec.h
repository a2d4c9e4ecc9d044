#pragma once

#include "app/TTypes.h"
#include "formats/IFormat.h"

#include <QObject>

#include <atomic>
#include <functional>

class TFormat;
class TSerialPort;

// The executing face of a command family: made for one command, run in the worker's thread.
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
    // The first byte where read differs from expected (or is missing) becomes the verify error text,
    // after a line that says what failed over which range of the command.
    bool compare(qint64 addr, const QByteArray& expected, const QByteArray& read);
    // The identification read against the device's "signature": on a difference the error names the
    // parts that answer so and, on a line of its own, what was expected.
    bool checkSignature(const TData& dev, const QString& read);
    // A data file's error, with the file's path on a line of its own.
    void setFileError(const TFormat& data);

    // The data file of a file command; a failure to open it becomes the error text.
    bool openFile(TFormat& data, TFormatMode mode);
    // Hands each piece of a file opened for reading to each(device address, piece), from addr on, until
    // the file has no more data for the range (the file moves the address over its gaps). A file error
    // becomes the error text; each returns false to end the loop.
    using FilePiece = std::function<bool(qint64 addr, const QByteArray& piece)>;
    bool forEachFilePiece(TFormat& data, qint64 addr, const FilePiece& each);

    // The file commands (write, verify, read) over the command's file and device range, with progress
    // through processGUI. The family gives the piece size the file works in and how a piece goes to the
    // chip, comes from it, or how a range is read.
    using PieceReader = std::function<bool(qint64 addr, int len, QByteArray& out)>;
    using RangeReader = std::function<bool(qint64 addr, qint64 end, const FilePiece& sink)>;
    bool writeFileRange(qint64 chunk, const FilePiece& write);
    bool verifyFileRange(qint64 chunk, const PieceReader& read);
    bool readFileRange(qint64 chunk, const RangeReader& read);

    TData param;
    std::atomic<bool> stop{false};
    std::atomic<bool> pause{false};
    QString errorText;
};
