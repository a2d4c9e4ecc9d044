#pragma once

#include "app/TTypes.h"
#include "ui/TPrjHistory.h"

#include <QHash>
#include <QMainWindow>
#include <QMessageBox>
#include <QSet>

#include <functional>

class QAction;
class QLabel;
class QMenu;
class QSplitter;
class QTabWidget;
class TDockChip;
class TRunControl;
class TWgtCfg;
class TWgtCmdList;
class TWgtPrjList;

// The application's main window: the project-list tree, one tab per configuration with its command list
// and log, the runs of configurations in worker threads, and the project's file handling.
class TMainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit TMainWindow(QWidget* parent = nullptr);
    ~TMainWindow() override;

    // Project handling; each returns false when it did not happen (error shown, or the user cancelled).
    bool openProject(const QString& file);
    bool newProject(const QString& file);
    bool saveProject();
    bool saveProjectAs(const QString& file);
    // Asks about unsaved changes first; stops the runs of the project.
    bool closeProject();

    // Runs: refused when the configuration already runs (or the user refuses its external programs).
    bool runThread(int idCfg);
    void runAll();
    void stopRun(int idCfg);
    void stopAll();
    void continueRun(int idCfg);
    void continueAll();
    bool isRunning(int idCfg) const;
    bool isPaused(int idCfg) const;
    int runCount() const;
    TRunControl* runControl() const { return control; }
    TDockChip* chipPanel() const { return chipDock; }
    // The chip panel's actions done become a configuration of the open project, one step of undo; the
    // buffer goes to the data file the user names when they used it. The new id, or -1.
    int saveChipAsCfg();

    int currentIdCfg() const;
    TWgtCfg* cfgView(int idCfg) const { return cfgViews.value(idCfg); }
    TWgtPrjList* prjList() const { return prjTree; }
    QTabWidget* cfgTabWidget() const { return cfgTabs; }
    QString statusText() const;
    QStringList recentProjects() const { return recent; }
    // Loads the project list chosen in the list of lists.
    void loadSelectedPrjList();

    // Editing of the open project. Each call is one step of undo and redo, refused (false, or -1 for an
    // id) while any configuration runs. Commands are inserted and pasted after the current command of
    // the current configuration, or after its last one when none is current.
    bool canEdit() const;
    TWgtCmdList* currentCmdList() const;
    // Three submenus (tools, programmer, device commands) of what may be inserted at that place.
    void fillInsertMenu(QMenu* menu);
    // A new command with its family's defaults; insertCmdForm then opens its form, and a cancelled form
    // takes the command back.
    int insertCmd(const QString& code);
    bool insertCmdForm(const QString& code);
    bool editCmd(int idCmd, const TData& param);
    bool editCmdForm(int idCmd);
    bool copyCmds();
    bool cutCmds();
    bool pasteCmds();
    bool deleteCmds();
    bool moveCurrentCmd(int delta);
    bool checkCmds(bool on);
    bool checkAllCmds(bool on);
    int addCfg(const QString& name, const QString& desc);
    bool renameCfg(int idCfg, const QString& name, const QString& desc);
    bool moveCfg(int idCfg, int delta);
    bool deleteCfg(int idCfg);
    bool undo();
    bool redo();
    bool canUndo() const { return history.canUndo(); }
    bool canRedo() const { return history.canRedo(); }

public slots:
    void slotChangeData(TCodeView code, TData data);
    void slotChangePrj(bool changed);

protected:
    void closeEvent(QCloseEvent* event) override;
    // The window's questions and messages; tests answer them in place of the user.
    virtual QMessageBox::StandardButton ask(const QString& text, QMessageBox::StandardButtons buttons);
    virtual void showError(const QString& text);
    // The forms of a command and of a configuration; false when the user cancelled. A fresh command
    // whose family has nothing to set is taken without asking.
    virtual bool askCmdParam(int idCmd, TData& param, bool fresh);
    virtual bool askCfg(int idCfg, QString& name, QString& desc);
    // The data file of a configuration made in the chip panel; false when the user cancelled.
    virtual bool askDataFile(QString& file);

private:
    void createActions();
    void createMenus();
    void createToolBar();
    void createChipPanel();
    QAction* action(const char* key, const QString& text, const char* icon, std::function<void()> fn);
    void createEditActions();
    void addActions(QMenu* menu, const QStringList& keys);
    void rebuildTabs();
    void addCfgTab(int idCfg);
    TWgtCfg* makeCfgView(int idCfg);
    void updateTab(int idCfg);
    void updateActions();
    void updateTitle();
    bool confirmProcess(int idCfg);
    // Fuse writes of the run that would lock the part out of serial programming are asked about once.
    bool confirmLockOut(int idCfg);
    void connectRunControl();
    void runStarted(int idCfg);
    void runEventText(int idCfg, TCodeExec code, const QString& text, const QString& param);
    void runEventProc(int idCfg, int percent);
    void runPaused(int idCfg);
    void runFinished(int idCfg, TCodeCfgStatus outcome);
    void addRecent(const QString& file);
    void fillRecentMenu();
    void loadWindowSettings();
    void saveWindowSettings() const;
    void applyIconSet();
    QString askFileName(bool save);

    bool beginEdit();
    void endEdit();
    bool edit(const std::function<void()>& fn);
    void afterEdit();
    int placeIdCmd() const;
    int insertPos() const;
    int insertNewCmd(const QString& code);
    void selectCmds(const QList<int>& ids);
    void addInsertMenu(QMenu* parent, const QString& title, const QStringList& codes);
    bool restoreStep(bool back);
    void restoreViews();
    void showCmdMenu(const QPoint& global);
    void showCfgMenu(const QPoint& pos);
    void actAddCfg();
    void actRenameCfg();

    void actNew();
    void actOpen();
    void actSave();
    void actSaveAs();
    void actClose();
    void actRun();
    void actRunAll();
    void actStop();
    void actContinue();
    void actSettings();
    void actLanguage();
    void actPrjLists();
    void actHexView();
    void actAbout();
    void actGettingStarted();
    void actShortcuts();
    // The first start opens the demo project and lists it, so the window is never empty at first.
    void openFirstStart();
    void reportProblems(const QString& file, const QByteArray& data);

    QSplitter* splitter;
    TWgtPrjList* prjTree;
    QTabWidget* cfgTabs;
    QLabel* statusPrj;
    QLabel* statusRun;
    QMenu* recentMenu = nullptr;
    QMenu* insertMenu = nullptr;
    QList<QAction*> actions;
    QHash<QString, QAction*> actionByKey;
    QHash<int, TWgtCfg*> cfgViews;
    TRunControl* control;
    TDockChip* chipDock = nullptr;
    QStringList recent;
    bool processConfirmed = false;
    TPrjHistory history;
    // While a snapshot is read back the views wait and are rebuilt once at its end.
    bool restoring = false;
};
