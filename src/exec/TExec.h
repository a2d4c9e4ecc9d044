#pragma once

#include "app/TTypes.h"

#include <QObject>

#include <atomic>

class IDeviceExec;
class TRunCheck;
class TSerialPort;

// Runs one configuration from top to bottom in a thread of its own: each checked command is announced,
// validated and executed by its family's executor; at the end the programmer is left, its LED set and
// the run's status reported.
class TExec : public QObject {
    Q_OBJECT
public:
    explicit TExec(int idCfg, QObject* parent = nullptr);
    ~TExec() override;

    int getIdCfg() const { return idCfg; }
    // Whether the run ended well because the user stopped it (final message 390). Read once the
    // worker's thread has ended.
    bool endedByStop() const { return stoppedEnd; }

public slots:
    void slotStart();
    void slotStop(int idCfg);
    void slotPauseReset(int idCfg);

signals:
    void signalEventText(TCodeExec code, QString text, QString param);
    void signalEventProc(int procent);
    void signalFinished();
    void signalDestroy(int idCfg);
    void signalStop();
    void signalPauseReset();
    void signalExecuteFromCmd(int idCfg);
    void signalPauseFromCmd(int idCfg);
    void signalStatusFromCmd(int idCfg, bool status);

private slots:
    // Relays of the executor's signals (they run in the worker's thread).
    void relayEventText(TCodeExec code, QString text, QString param);
    void relayEventProc(int percent);
    void relayExecute(int idCfg);
    void relayPause(int idCfg);

private:
    bool runLoop(TSerialPort& port, IDeviceExec*& exec, bool& isLeave, QString& error);
    bool leaveProgrammer(TSerialPort& port);
    bool checkCommand(TRunCheck& check, const TData& data, QString& error);
    void connectExec(IDeviceExec* exec, const QString& code);
    static QString withPort(const TSerialPort& port, const QString& error, bool timeout);

    const int idCfg;
    // Taken from the settings when the run is made, in the interface thread.
    const bool checkBeforeRun;
    std::atomic<bool> stop{false};
    bool stoppedEnd = false;
};
