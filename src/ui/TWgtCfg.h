#pragma once

#include <QTabWidget>

class TWgtCmdList;
class TWgtLogExec;

// One configuration's page of the main window: its command list and its execution log.
class TWgtCfg : public QTabWidget {
    Q_OBJECT
public:
    explicit TWgtCfg(int idCfg, QWidget* parent = nullptr);

    int getIdCfg() const { return idCfg; }
    // The page now stands for another configuration id; its log stays.
    void setIdCfg(int id);
    TWgtCmdList* cmdList() const { return cmds; }
    TWgtLogExec* log() const { return logExec; }
    void showLog() { setCurrentIndex(1); }

private:
    int idCfg;
    TWgtCmdList* cmds;
    TWgtLogExec* logExec;
};
