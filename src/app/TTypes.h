#pragma once

#include <QMetaType>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <mutex>

// The one parameter record of the system: command parameters, configuration data and project parameters.
// A key-ordered map keeps the saved project files stable from one save to the next.
using TData = QVariantMap;

// The model's locks are standard recursive mutexes: the thread sanitizer sees them, so it can check the
// model's use from the worker threads.
using TMutex = std::recursive_mutex;
using TLocker = std::lock_guard<std::recursive_mutex>;

// Kind of a change of the project model, sent with TDataPrj::signalChangeData.
enum TCodeView : int {
    CodeViewPrj = 0,     // project opened, cleared or its parameters changed
    CodeViewCfgNew = 1,  // configuration added
    CodeViewCfgUpd = 2,  // configuration renamed, described or its state changed
    CodeViewCfgDel = 3,  // configuration removed
    CodeViewCfgMove = 4, // configuration moved
    CodeViewCmdNew = 5,  // command added
    CodeViewCmdUpd = 6,  // command parameters, check mark or validity changed
    CodeViewCmdDel = 7,  // command removed
    CodeViewCmdMove = 8, // command moved
};

// Kind of an execution-log event. It stays a plain integer: the log ignores kinds it does not know.
using TCodeExec = int;
enum : TCodeExec {
    ExecCmdStart = 0, // a command starts: its name and its parameter text
    ExecText = 1,     // a line of its own with a time stamp
    ExecMessage = 2,  // a message from an executor, indented
    ExecInfo = 3,     // information from an executor
    ExecResult = 4,   // a command's result
    ExecSuccess = 5,  // the run ended well
    ExecFailed = 6,   // the run ended with an error
};

// Run state of a configuration: 0 at creation, 1 while running, then the outcome of the last run.
enum TCodeCfgStatus : int {
    CfgStatusNone = 0,
    CfgStatusRun = 1,
    CfgStatusOk = 2,
    CfgStatusError = 3,
    CfgStatusStopped = 4,
};

Q_DECLARE_METATYPE(TCodeView)
Q_DECLARE_METATYPE(TCodeCfgStatus)
