#pragma once

#include "app/TTypes.h"

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
class QThread;
class TExec;
class TWgtCfg;
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
    bool isRunning(int idCfg) const { return runs.contains(idCfg); }
    bool isPaused(int idCfg) const { return paused.contains(idCfg); }
    int runCount() const { return runs.size(); }

    int currentIdCfg() const;
    TWgtCfg* cfgView(int idCfg) const { return cfgViews.value(idCfg); }
    TWgtPrjList* prjList() const { return prjTree; }
    QTabWidget* cfgTabWidget() const { return cfgTabs; }
    QString statusText() const;
    QStringList recentProjects() const { return recent; }
    // Loads the project list chosen in the list of lists.
    void loadSelectedPrjList();

signals:
    void signalStop(int idCfg);
    void signalPauseReset(int idCfg);

public slots:
    void slotExecuteFromCmd(int idCfg);
    void slotPauseFromCmd(int idCfg);
    void slotStatusFromCmd(int idCfg, bool status);
    void slotExecFinished(int idCfg);
    void slotChangeData(TCodeView code, TData data);
    void slotChangePrj(bool changed);

protected:
    void closeEvent(QCloseEvent* event) override;
    // The window's questions and messages; tests answer them in place of the user.
    virtual QMessageBox::StandardButton ask(const QString& text, QMessageBox::StandardButtons buttons);
    virtual void showError(const QString& text);

private:
    void createActions();
    void createMenus();
    void createToolBar();
    QAction* action(const char* key, const QString& text, const char* icon, std::function<void()> fn);
    void rebuildTabs();
    void addCfgTab(int idCfg);
    void updateTab(int idCfg);
    void updateActions();
    void updateTitle();
    bool confirmProcess(int idCfg);
    void startThread(int idCfg);
    void runFinished(QThread* thread, TExec* exec);
    void waitRuns();
    void addRecent(const QString& file);
    void fillRecentMenu();
    void loadWindowSettings();
    void saveWindowSettings() const;
    void applyIconSet();
    QString askFileName(bool save);

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

    QSplitter* splitter;
    TWgtPrjList* prjTree;
    QTabWidget* cfgTabs;
    QLabel* statusPrj;
    QLabel* statusRun;
    QMenu* recentMenu = nullptr;
    QList<QAction*> actions;
    QHash<QString, QAction*> actionByKey;
    QHash<int, TWgtCfg*> cfgViews;
    QHash<int, QThread*> runs;
    QSet<int> paused;
    QStringList recent;
    bool processConfirmed = false;
};
