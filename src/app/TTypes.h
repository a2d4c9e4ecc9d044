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

// Kind of an execution-log event: 0 a command starts, 2..4 messages from executors (3 information,
// 4 results), 5 the run ended well, 6 the run ended with an error.
using TCodeExec = int;

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
