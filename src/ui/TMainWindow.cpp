#include "ui/TMainWindow.h"

#include "app/CApp.h"
#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TIcons.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "devices/IDevice.h"
#include "devices/TDevToolsExec.h"
#include "exec/TRunControl.h"
#include "exec/TRunCounts.h"
#include "exec/TRunJournal.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCtrlProject.h"
#include "project/TDataCfg.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "ui/TDialogAbout.h"
#include "ui/TDialogHexView.h"
#include "ui/TDialogLanguage.h"
#include "ui/TDialogSelectPrjList.h"
#include "ui/TDialogSettings.h"
#include "ui/TDockChip.h"
#include "ui/THotKeys.h"
#include "ui/TWgtCfg.h"
#include "ui/TWgtCmdList.h"
#include "ui/TWgtLogExec.h"
#include "ui/TWgtPrjList.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLabel>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>

namespace {
const int recentMax = 8;
} // namespace

// The icons live in the static core library, whose resource initialiser the linker would otherwise drop.
static void initResources() {
    Q_INIT_RESOURCE(icons);
}

TMainWindow::TMainWindow(QWidget* parent)
    : QMainWindow(parent), control(new TRunControl(this)), history(&ProjectData) {
    new TRunJournal(control, [] { return AppData.logDir; });
    initResources();
    connectRunControl();
    setWindowIcon(TIcons::getIcon(AppData.iconsSet, QStringLiteral("app")));
    splitter = new QSplitter(this);
    prjTree = new TWgtPrjList(splitter);
    cfgTabs = new QTabWidget(splitter);
    cfgTabs->setMovable(false);
    splitter->addWidget(prjTree);
    splitter->addWidget(cfgTabs);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({260, 900});
    setCentralWidget(splitter);
    statusPrj = new QLabel(this);
    statusRun = new QLabel(this);
    statusBar()->addWidget(statusPrj, 1);
    statusBar()->addPermanentWidget(statusRun);
    createActions();
    createChipPanel();
    createMenus();
    createToolBar();
    applyIconSet();
    connect(&ProjectData, &TDataPrj::signalChangeData, this, &TMainWindow::slotChangeData);
    connect(&ProjectData, &TDataPrj::signalChangePrj, this, &TMainWindow::slotChangePrj);
    connect(prjTree, &TWgtPrjList::signalOpenProject, this, &TMainWindow::openProject);
    connect(prjTree, &TWgtPrjList::signalError, this, &TMainWindow::showError);
    connect(cfgTabs, &QTabWidget::currentChanged, this, &TMainWindow::updateActions);
    cfgTabs->tabBar()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(cfgTabs->tabBar(), &QWidget::customContextMenuRequested, this, &TMainWindow::showCfgMenu);
    loadWindowSettings();
    loadSelectedPrjList();
    rebuildTabs();
    if (AppData.openLastPrj && !AppData.lastPrj.isEmpty() && QFileInfo::exists(AppData.lastPrj))
        openProject(AppData.lastPrj);
    openFirstStart();
    updateTitle();
}

TMainWindow::~TMainWindow() {
    control->stopAll();
    control->waitAll();
}

QMessageBox::StandardButton TMainWindow::ask(const QString& text, QMessageBox::StandardButtons buttons) {
    QMessageBox box(QMessageBox::Question, QString::fromLatin1(CApp::full_name), text, buttons, this);
    const QList<QPair<QMessageBox::StandardButton, QString>> names = {{QMessageBox::Yes, Lang.get(92)},
                                                                      {QMessageBox::No, Lang.get(93)},
                                                                      {QMessageBox::Cancel, Lang.get(91)},
                                                                      {QMessageBox::Save, Lang.get(116)},
                                                                      {QMessageBox::Discard, Lang.get(117)}};
    for (const auto& n : names)
        if (box.button(n.first)) box.button(n.first)->setText(n.second);
    return QMessageBox::StandardButton(box.exec());
}

void TMainWindow::showError(const QString& text) {
    QMessageBox box(QMessageBox::Warning, QString::fromLatin1(CApp::full_name), text, QMessageBox::Ok, this);
    box.button(QMessageBox::Ok)->setText(Lang.get(90));
    box.exec();
}

QAction* TMainWindow::action(const char* key, const QString& text, const char* icon,
                             std::function<void()> fn) {
    auto* a = new QAction(text, this);
    a->setObjectName(QString::fromLatin1(key));
    if (icon) a->setProperty("iconName", QString::fromLatin1(icon));
    connect(a, &QAction::triggered, this, [fn] { fn(); });
    actions.append(a);
    actionByKey.insert(a->objectName(), a);
    return a;
}

void TMainWindow::createActions() {
    action("NewPrj", Lang.get(1), "new", [this] { actNew(); });
    action("OpenPrj", Lang.get(2), "open", [this] { actOpen(); });
    action("SavePrj", Lang.get(3), "save", [this] { actSave(); });
    action("SavePrjAs", Lang.get(4), nullptr, [this] { actSaveAs(); });
    action("ClosePrj", Lang.get(5), nullptr, [this] { actClose(); });
    action("Quit", Lang.get(7), nullptr, [this] { close(); });
    action("Run", Lang.get(9), "run", [this] { actRun(); });
    action("RunAll", Lang.get(10), "run_all", [this] { actRunAll(); });
    action("Stop", Lang.get(11), "stop", [this] { actStop(); });
    action("StopAll", Lang.get(12), "stop_all", [this] { stopAll(); });
    action("Continue", Lang.get(13), "pause", [this] { actContinue(); });
    action("ContinueAll", Lang.get(14), nullptr, [this] { continueAll(); });
    action("Settings", Lang.get(16), "settings", [this] { actSettings(); });
    action("Language", Lang.get(17), nullptr, [this] { actLanguage(); });
    action("PrjLists", Lang.get(18), nullptr, [this] { actPrjLists(); });
    action("HexView", Lang.get(19), "hex", [this] { actHexView(); });
    action("GettingStarted", Lang.get(1751), nullptr, [this] { actGettingStarted(); });
    action("Shortcuts", Lang.get(1752), nullptr, [this] { actShortcuts(); });
    action("About", Lang.get(21), nullptr, [this] { actAbout(); });
    createEditActions();
    THotKeys::apply(THotKeys::load(), actions);
}

void TMainWindow::createEditActions() {
    action("Undo", Lang.get(621), nullptr, [this] { undo(); });
    action("Redo", Lang.get(622), nullptr, [this] { redo(); });
    action("EditCmd", Lang.get(627), nullptr, [this] {
        if (TWgtCmdList* list = currentCmdList()) editCmdForm(list->currentIdCmd());
    });
    action("CutCmd", Lang.get(628), nullptr, [this] { cutCmds(); });
    action("CopyCmd", Lang.get(629), nullptr, [this] { copyCmds(); });
    action("PasteCmd", Lang.get(630), nullptr, [this] { pasteCmds(); });
    action("DeleteCmd", Lang.get(631), nullptr, [this] { deleteCmds(); });
    action("MoveCmdUp", Lang.get(632), nullptr, [this] { moveCurrentCmd(-1); });
    action("MoveCmdDown", Lang.get(633), nullptr, [this] { moveCurrentCmd(1); });
    action("CheckCmd", Lang.get(634), nullptr, [this] { checkCmds(true); });
    action("UncheckCmd", Lang.get(635), nullptr, [this] { checkCmds(false); });
    action("CheckAllCmd", Lang.get(636), nullptr, [this] { checkAllCmds(true); });
    action("UncheckAllCmd", Lang.get(637), nullptr, [this] { checkAllCmds(false); });
    action("AddCfg", Lang.get(639), nullptr, [this] { actAddCfg(); });
    action("RenameCfg", Lang.get(640), nullptr, [this] { actRenameCfg(); });
    action("MoveCfgLeft", Lang.get(641), nullptr, [this] { moveCfg(currentIdCfg(), -1); });
    action("MoveCfgRight", Lang.get(642), nullptr, [this] { moveCfg(currentIdCfg(), 1); });
    action("DeleteCfg", Lang.get(643), nullptr, [this] { deleteCfg(currentIdCfg()); });
    // The command keys act in the configuration pages only: elsewhere Del and Ctrl+C are the focused
    // widget's own.
    for (const char* k : {"CutCmd", "CopyCmd", "PasteCmd", "DeleteCmd", "MoveCmdUp", "MoveCmdDown"}) {
        actionByKey.value(k)->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        cfgTabs->addAction(actionByKey.value(k));
    }
}

void TMainWindow::addActions(QMenu* menu, const QStringList& keys) {
    for (const QString& k : keys)
        if (k.isEmpty())
            menu->addSeparator();
        else
            menu->addAction(actionByKey.value(k));
}

void TMainWindow::createMenus() {
    auto add = [this](QMenu* menu, const QStringList& keys) { addActions(menu, keys); };
    QMenu* prj = menuBar()->addMenu(Lang.get(0));
    add(prj, {"NewPrj", "OpenPrj"});
    recentMenu = prj->addMenu(Lang.get(6));
    add(prj, {"SavePrj", "SavePrjAs", "ClosePrj", "", "Quit"});
    QMenu* edit = menuBar()->addMenu(Lang.get(620));
    add(edit, {"Undo", "Redo", ""});
    insertMenu = edit->addMenu(Lang.get(623));
    connect(insertMenu, &QMenu::aboutToShow, this, [this] { fillInsertMenu(insertMenu); });
    add(edit, {"EditCmd", "", "CutCmd", "CopyCmd", "PasteCmd", "DeleteCmd", "", "MoveCmdUp", "MoveCmdDown",
               "", "CheckCmd", "UncheckCmd", "CheckAllCmd", "UncheckAllCmd"});
    add(menuBar()->addMenu(Lang.get(638)),
        {"AddCfg", "RenameCfg", "", "MoveCfgLeft", "MoveCfgRight", "", "DeleteCfg"});
    add(menuBar()->addMenu(Lang.get(8)),
        {"Run", "RunAll", "", "Stop", "StopAll", "", "Continue", "ContinueAll"});
    menuBar()->addMenu(Lang.get(1896))->addAction(chipDock->toggleViewAction());
    add(menuBar()->addMenu(Lang.get(15)), {"Settings", "Language", "PrjLists", "", "HexView"});
    add(menuBar()->addMenu(Lang.get(20)), {"GettingStarted", "Shortcuts", "", "About"});
    fillRecentMenu();
}

void TMainWindow::createToolBar() {
    QToolBar* bar = addToolBar(Lang.get(8));
    bar->setObjectName(QStringLiteral("MainToolBar"));
    bar->setMovable(false);
    for (const char* k : {"NewPrj", "OpenPrj", "SavePrj", "", "Run", "RunAll", "Stop", "StopAll", "Continue",
                          "", "Settings", "HexView"})
        if (*k)
            bar->addAction(actionByKey.value(k));
        else
            bar->addSeparator();
}

void TMainWindow::applyIconSet() {
    int toolBar, toolButton, tabHeight, listRow, menu, status, button;
    TIcons::getSize(AppData.iconsSet, toolBar, toolButton, tabHeight, listRow, menu, status, button);
    for (QAction* a : actions) {
        const QString name = a->property("iconName").toString();
        if (!name.isEmpty()) a->setIcon(TIcons::getIcon(AppData.iconsSet, name));
    }
    for (QToolBar* bar : findChildren<QToolBar*>())
        bar->setIconSize(QSize(toolButton, toolButton));
    cfgTabs->setIconSize(QSize(status, status));
    for (int id : cfgViews.keys())
        updateTab(id);
}

// ---- configuration tabs ----

void TMainWindow::rebuildTabs() {
    while (cfgTabs->count() > 0) {
        QWidget* w = cfgTabs->widget(0);
        cfgTabs->removeTab(0);
        delete w;
    }
    cfgViews.clear();
    QList<int> ids;
    {
        TLocker lock(ProjectData.getMutex());
        for (TDataCfg* cfg : ProjectData.getCfgList())
            ids.append(cfg->getUIN());
    }
    for (int id : ids)
        addCfgTab(id);
    updateActions();
}

TWgtCfg* TMainWindow::makeCfgView(int idCfg) {
    auto* view = new TWgtCfg(idCfg);
    TWgtCmdList* list = view->cmdList();
    connect(list, &TWgtCmdList::signalEditCmd, this, &TMainWindow::editCmdForm);
    // Queued: the check box that asks is rebuilt by the edit.
    connect(
        list, &TWgtCmdList::signalCheckCmd, this,
        [this, list](int idCmd, bool on) {
            if (!edit([idCmd, on] { ProjectData.enbCmd(idCmd, on); })) list->refresh();
        },
        Qt::QueuedConnection);
    connect(list, &QWidget::customContextMenuRequested, this,
            [this, list](const QPoint& pos) { showCmdMenu(list->viewport()->mapToGlobal(pos)); });
    connect(list, &QTreeWidget::currentItemChanged, this, &TMainWindow::updateActions);
    return view;
}

void TMainWindow::addCfgTab(int idCfg) {
    TWgtCfg* view = makeCfgView(idCfg);
    cfgViews.insert(idCfg, view);
    cfgTabs->insertTab(ProjectData.getPosCfgFromIdCfg(idCfg), view, QString());
    updateTab(idCfg);
}

void TMainWindow::updateTab(int idCfg) {
    TWgtCfg* view = cfgViews.value(idCfg);
    if (!view) return;
    const int index = cfgTabs->indexOf(view);
    const TCodeCfgStatus state = ProjectData.getCfgStatus(idCfg);
    const char* icon = control->isPaused(idCfg)    ? "pause"
                       : state == CfgStatusRun     ? "run"
                       : state == CfgStatusOk      ? "ok"
                       : state == CfgStatusError   ? "error"
                       : state == CfgStatusStopped ? "stopped"
                                                   : nullptr;
    // The runs' outcomes count on the tab once a run has passed or failed: passed / failed; the tool
    // tip adds the stopped ones.
    const TRunControl::Tally t = control->tally(idCfg);
    const bool counted = t.passed + t.failed + t.stopped > 0;
    const QString name = ProjectData.getNameCfgFromIdCfg(idCfg);
    cfgTabs->setTabText(index, t.passed + t.failed > 0 ? Lang.get(1307).arg(name).arg(t.passed).arg(t.failed)
                                                       : name);
    cfgTabs->setTabIcon(index, icon ? TIcons::getIcon(AppData.iconsSet, icon) : QIcon());
    TDataCfg* cfg = ProjectData.getCfgObject(idCfg);
    const QString desc = cfg ? cfg->getDesc() : QString();
    cfgTabs->setTabToolTip(
        index,
        counted ? Lang.get(1308).arg(desc).arg(t.passed).arg(t.failed).arg(t.stopped).trimmed() : desc);
}

int TMainWindow::currentIdCfg() const {
    auto* view = qobject_cast<TWgtCfg*>(cfgTabs->currentWidget());
    return view ? view->getIdCfg() : -1;
}

void TMainWindow::slotChangeData(TCodeView code, TData data) {
    if (restoring) return;
    const int idCfg = data.value(QStringLiteral("id_cfg"), -1).toInt();
    switch (code) {
    case CodeViewPrj:
        if (cfgViews.size() != ProjectData.getCfgList().size()) rebuildTabs();
        updateTitle();
        break;
    case CodeViewCfgNew:
        addCfgTab(idCfg);
        break;
    case CodeViewCfgDel:
        delete cfgViews.take(idCfg);
        break;
    case CodeViewCfgMove:
        if (TWgtCfg* view = cfgViews.value(idCfg))
            cfgTabs->tabBar()->moveTab(cfgTabs->indexOf(view), data.value(QStringLiteral("pos")).toInt());
        break;
    case CodeViewCfgUpd:
        updateTab(idCfg);
        break;
    default:
        // Command changes may change the validity of other commands of the configuration too.
        if (TWgtCfg* view = cfgViews.value(idCfg)) view->cmdList()->refresh();
        break;
    }
    updateActions();
}

void TMainWindow::slotChangePrj(bool) {
    updateTitle();
    updateActions();
}

void TMainWindow::updateTitle() {
    const QString file = ProjectData.getPrjFileName();
    QString title = QString::fromLatin1(CApp::full_name);
    if (!file.isEmpty())
        title = QStringLiteral("%1%2 - %3")
                    .arg(QFileInfo(file).fileName(), ProjectData.isChange() ? "*" : "", title);
    setWindowTitle(title);
    statusPrj->setText(file.isEmpty() ? Lang.get(25) : Lang.get(26).arg(QDir::toNativeSeparators(file)));
}

QString TMainWindow::statusText() const {
    return statusPrj->text() + QLatin1Char('|') + statusRun->text();
}

void TMainWindow::updateActions() {
    const bool open = !ProjectData.getPrjFileName().isEmpty();
    const int id = currentIdCfg();
    actionByKey.value("SavePrj")->setEnabled(open);
    actionByKey.value("SavePrjAs")->setEnabled(open);
    actionByKey.value("ClosePrj")->setEnabled(open);
    actionByKey.value("Run")->setEnabled(id >= 0 && !control->isRunning(id));
    actionByKey.value("RunAll")->setEnabled(!cfgViews.isEmpty());
    actionByKey.value("Stop")->setEnabled(control->isRunning(id));
    actionByKey.value("StopAll")->setEnabled(control->count() > 0);
    actionByKey.value("Continue")->setEnabled(control->isPaused(id));
    actionByKey.value("ContinueAll")->setEnabled(!control->pausedRuns().isEmpty());
    statusRun->setText(control->count() == 0 ? Lang.get(114) : Lang.get(27).arg(control->count()));
    const bool editable = canEdit();
    const bool cfg = editable && id >= 0;
    const TWgtCmdList* list = currentCmdList();
    const bool cmd = list && list->currentIdCmd() >= 0;
    const int pos = ProjectData.getPosCfgFromIdCfg(id);
    actionByKey.value("Undo")->setEnabled(editable && history.canUndo());
    actionByKey.value("Redo")->setEnabled(editable && history.canRedo());
    insertMenu->menuAction()->setEnabled(cfg);
    for (const char* k :
         {"EditCmd", "CutCmd", "DeleteCmd", "MoveCmdUp", "MoveCmdDown", "CheckCmd", "UncheckCmd"})
        actionByKey.value(k)->setEnabled(cfg && cmd);
    actionByKey.value("CopyCmd")->setEnabled(cmd);
    for (const char* k : {"PasteCmd", "CheckAllCmd", "UncheckAllCmd", "RenameCfg", "DeleteCfg"})
        actionByKey.value(k)->setEnabled(cfg);
    actionByKey.value("AddCfg")->setEnabled(editable);
    actionByKey.value("MoveCfgLeft")->setEnabled(cfg && pos > 0);
    actionByKey.value("MoveCfgRight")->setEnabled(cfg && pos + 1 < cfgViews.size());
}

// ---- project handling ----

// A damaged file is found before the current project is dropped, so a failed open changes nothing.
bool TMainWindow::openProject(const QString& file) {
    const QString abs = TApp::getAbsoluteFile(file);
    TCtrlProject ctrl;
    QByteArray data;
    if (!ctrl.file_to_data(abs, data)) {
        showError(Lang.get(39).arg(abs, ctrl.getErrorText()));
        return false;
    }
    QJsonParseError err{};
    if (!data.trimmed().isEmpty() && !QJsonDocument::fromJson(data, &err).isObject()) {
        showError(Lang.get(39).arg(abs, Lang.get(45).arg(err.errorString())));
        return false;
    }
    if (!closeProject()) return false;
    if (ctrl.load(abs, &ProjectData) != TCtrlProject::Loaded) {
        showError(Lang.get(39).arg(abs, ctrl.getErrorText()));
        ProjectData.clrPrj();
        return false;
    }
    ProjectData.resetChange();
    history.markSaved();
    processConfirmed = false;
    addRecent(abs);
    for (const QString& name : ProjectData.getCfgListName())
        control->setTally(ProjectData.getIdCfgFromNameCfg(name), TRunCounts::load(abs, name));
    rebuildTabs();
    updateTitle();
    reportProblems(abs, data);
    return true;
}

bool TMainWindow::newProject(const QString& file) {
    if (!closeProject()) return false;
    TCtrlProject ctrl;
    ctrl.create_empty_project(&ProjectData);
    const QFileInfo info(TApp::getAbsoluteFile(file));
    ProjectData.updPrjParam(TData{{QStringLiteral("prj_file"), info.absoluteFilePath()},
                                  {QStringLiteral("work_path"), info.absolutePath()}});
    rebuildTabs();
    return saveProject();
}

bool TMainWindow::saveProject() {
    const QString file = ProjectData.getPrjFileName();
    if (file.isEmpty()) return false;
    TCtrlProject ctrl;
    if (!ctrl.save(file, &ProjectData)) {
        showError(Lang.get(40).arg(file, ctrl.getErrorText()));
        return false;
    }
    ProjectData.resetChange();
    history.markSaved();
    addRecent(file);
    updateTitle();
    updateActions();
    return true;
}

bool TMainWindow::saveProjectAs(const QString& file) {
    const QFileInfo info(TApp::getAbsoluteFile(file));
    ProjectData.updPrjParam(TData{{QStringLiteral("prj_file"), info.absoluteFilePath()},
                                  {QStringLiteral("work_path"), info.absolutePath()}});
    return saveProject();
}

bool TMainWindow::closeProject() {
    if (!ProjectData.getPrjFileName().isEmpty() && ProjectData.isChange() && AppData.confirmSavePrj) {
        const auto answer = ask(Lang.get(41), QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
        if (answer == QMessageBox::Cancel) return false;
        if (answer == QMessageBox::Save && !saveProject()) return false;
    }
    control->stopAll();
    control->waitAll();
    control->clearTallies();
    ProjectData.clrPrj();
    ProjectData.resetChange();
    history.reset();
    rebuildTabs();
    updateTitle();
    return true;
}

QString TMainWindow::askFileName(bool save) {
    const QString dir =
        ProjectData.getPrjFileName().isEmpty() ? AppData.getPathProjectsAbs() : ProjectData.getPrjWorkPath();
    QString file = save ? QFileDialog::getSaveFileName(this, Lang.get(38), dir, Lang.get(36))
                        : QFileDialog::getOpenFileName(this, Lang.get(37), dir, Lang.get(36));
    if (save && !file.isEmpty() && QFileInfo(file).suffix().isEmpty())
        file += QLatin1Char('.') + QString::fromLatin1(CApp::ext_prj);
    return file;
}

void TMainWindow::actNew() {
    const QString file = askFileName(true);
    if (!file.isEmpty()) newProject(file);
}
void TMainWindow::actOpen() {
    const QString file = askFileName(false);
    if (!file.isEmpty()) openProject(file);
}
void TMainWindow::actSave() {
    saveProject();
}
void TMainWindow::actSaveAs() {
    const QString file = askFileName(true);
    if (!file.isEmpty()) saveProjectAs(file);
}
void TMainWindow::actClose() {
    closeProject();
}

void TMainWindow::addRecent(const QString& file) {
    recent.removeAll(file);
    recent.prepend(file);
    while (recent.size() > recentMax)
        recent.removeLast();
    AppData.lastPrj = file;
    fillRecentMenu();
}

void TMainWindow::fillRecentMenu() {
    if (!recentMenu) return;
    recentMenu->clear();
    for (const QString& file : recent)
        recentMenu->addAction(QDir::toNativeSeparators(file), this, [this, file] { openProject(file); });
    recentMenu->setEnabled(!recent.isEmpty());
}

// ---- runs ----

// A project can come from anyone and "process" starts whatever it names: the first run of a project
// that holds such commands shows their command lines and asks.
bool TMainWindow::confirmProcess(int) {
    if (processConfirmed || !AppData.confirmProcess) {
        TDevToolsExec::setProcessAllowed(true);
        return true;
    }
    QStringList lines;
    {
        TLocker lock(ProjectData.getMutex());
        for (TDataCmd* cmd : ProjectData.getCmdList())
            if (cmd->getEnable() && cmd->getCmdCode() == QLatin1String(CTagCmdCode::process))
                lines << cmd->getParam().value(QStringLiteral("file")).toString().trimmed();
    }
    // An empty command line starts nothing: its command fails its check before it runs.
    lines.removeAll(QString());
    if (lines.isEmpty()) return true;
    lines.removeDuplicates();
    if (ask(Lang.get(47).arg(lines.join(QLatin1Char('\n'))), QMessageBox::Yes | QMessageBox::No) !=
        QMessageBox::Yes)
        return false;
    processConfirmed = true;
    TDevToolsExec::setProcessAllowed(true);
    return true;
}

bool TMainWindow::isRunning(int idCfg) const {
    return control->isRunning(idCfg);
}
bool TMainWindow::isPaused(int idCfg) const {
    return control->isPaused(idCfg);
}
int TMainWindow::runCount() const {
    return control->count();
}

void TMainWindow::connectRunControl() {
    control->setStartGate([this](int idCfg) {
        // The chip panel's runs are outside the project and start no programs; their fuse writes are
        // asked about like any other.
        const TDataCfg* cfg = ProjectData.getCfgObject(idCfg);
        if (cfg && cfg->isTransient()) return confirmLockOut(idCfg);
        return cfgViews.contains(idCfg) && confirmProcess(idCfg) && confirmLockOut(idCfg);
    });
    control->setShowDurations([] { return AppData.logShowTime; });
    connect(control, &TRunControl::signalStarted, this, &TMainWindow::runStarted);
    connect(control, &TRunControl::signalEventText, this, &TMainWindow::runEventText);
    connect(control, &TRunControl::signalEventProc, this, &TMainWindow::runEventProc);
    connect(control, &TRunControl::signalPaused, this, &TMainWindow::runPaused);
    connect(control, &TRunControl::signalResumed, this, [this](int idCfg) {
        statusBar()->clearMessage();
        updateTab(idCfg);
        updateActions();
    });
    connect(control, &TRunControl::signalFinished, this, &TMainWindow::runFinished);
}

bool TMainWindow::runThread(int idCfg) {
    return control->start(idCfg);
}

void TMainWindow::runStarted(int idCfg) {
    TWgtCfg* view = cfgViews.value(idCfg);
    if (!view) { // a run of the chip panel, which shows its own log
        updateActions();
        return;
    }
    if (AppData.logClearBeforeRun) view->log()->clear();
    view->log()->blockLogText(true);
    view->showLog();
    updateTab(idCfg);
    updateActions();
}

void TMainWindow::runEventText(int idCfg, TCodeExec code, const QString& text, const QString& param) {
    if (TWgtCfg* view = cfgViews.value(idCfg)) view->log()->slotExecEventText(code, text, param);
}

void TMainWindow::runEventProc(int idCfg, int percent) {
    if (TWgtCfg* view = cfgViews.value(idCfg)) view->log()->slotExecEventProc(percent);
}

void TMainWindow::runPaused(int idCfg) {
    statusBar()->showMessage(Lang.get(48).arg(ProjectData.getNameCfgFromIdCfg(idCfg)));
    updateTab(idCfg);
    updateActions();
}

void TMainWindow::runFinished(int idCfg, TCodeCfgStatus outcome) {
    if (TWgtCfg* view = cfgViews.value(idCfg)) {
        view->log()->blockLogText(false);
        const QString file = ProjectData.getPrjFileName();
        if (!file.isEmpty())
            TRunCounts::save(file, ProjectData.getNameCfgFromIdCfg(idCfg), control->tally(idCfg));
    }
    if (outcome == CfgStatusStopped)
        statusBar()->showMessage(Lang.get(1306).arg(ProjectData.getNameCfgFromIdCfg(idCfg)));
    else if (!control->isPaused(idCfg) && control->pausedRuns().isEmpty())
        statusBar()->clearMessage();
    updateTab(idCfg);
    updateActions();
}

void TMainWindow::runAll() {
    for (int id : cfgViews.keys())
        if (!control->isRunning(id)) runThread(id);
}

void TMainWindow::stopRun(int idCfg) {
    control->stop(idCfg);
}

void TMainWindow::stopAll() {
    control->stopAll();
}

void TMainWindow::continueRun(int idCfg) {
    control->resume(idCfg);
}

void TMainWindow::continueAll() {
    control->resumeAll();
}

void TMainWindow::actRun() {
    runThread(currentIdCfg());
}
void TMainWindow::actRunAll() {
    runAll();
}
void TMainWindow::actStop() {
    stopRun(currentIdCfg());
}
void TMainWindow::actContinue() {
    continueRun(currentIdCfg());
}

// ---- window ----

void TMainWindow::closeEvent(QCloseEvent* event) {
    if (AppData.confirmQuit && ask(Lang.get(42), QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes) {
        event->ignore();
        return;
    }
    const QString last = ProjectData.getPrjFileName();
    if (!closeProject()) {
        event->ignore();
        return;
    }
    if (!last.isEmpty()) AppData.lastPrj = last;
    saveWindowSettings();
    AppData.saveData();
    event->accept();
}

void TMainWindow::loadWindowSettings() {
    TSettings s;
    TApp::setWindowGeometryMain(
        this, s.value("/WindowMain/Left", 0).toInt(), s.value("/WindowMain/Top", 0).toInt(),
        s.value("/WindowMain/Width", 0).toInt(), s.value("/WindowMain/Height", 0).toInt());
    if (s.value("/WindowMain/Maximized", false).toBool()) setWindowState(windowState() | Qt::WindowMaximized);
    const int tree = s.value("/WindowMain/TreeWidth", 0).toInt();
    if (tree > 0) splitter->setSizes({tree, qMax(200, width() - tree)});
    recent = s.value("/Main/RecentPrj").toStringList();
    fillRecentMenu();
    // The docks' places and whether they are shown.
    restoreState(s.value("/WindowMain/State").toByteArray());
}

void TMainWindow::saveWindowSettings() const {
    TSettings s;
    const QRect g = normalGeometry().isValid() ? normalGeometry() : geometry();
    s.setValue("/WindowMain/Left", g.left());
    s.setValue("/WindowMain/Top", g.top());
    s.setValue("/WindowMain/Width", g.width());
    s.setValue("/WindowMain/Height", g.height());
    s.setValue("/WindowMain/Maximized", isMaximized());
    s.setValue("/WindowMain/TreeWidth", splitter->sizes().value(0));
    s.setValue("/Main/RecentPrj", recent);
    s.setValue("/WindowMain/State", saveState());
    s.sync();
}

// The list of lists names the project lists; the chosen one is remembered by its file.
void TMainWindow::loadSelectedPrjList() {
    const QString lpl = AppData.getSelectPrjListFileAbs();
    QList<TSelectPrjListRow> rows = TSelectPrjList::load(lpl);
    const QString chosen = TSettings().value("/Main/PrjListCurrent").toString();
    TSelectPrjListRow row =
        rows.isEmpty() ? TSelectPrjListRow{Lang.get(22), QStringLiteral("projects.lst")} : rows.first();
    for (const TSelectPrjListRow& r : rows)
        if (r.file == chosen) row = r;
    prjTree->loadPrjList(TApp::getAbsoluteFile(TApp::getAbsolutePath(lpl), row.file), row.name,
                         ProjectData.getPrjFileName());
}

void TMainWindow::actSettings() {
    TDialogSettings dlg(this);
    if (dlg.exec() != QDialog::Accepted) return;
    THotKeys::apply(THotKeys::load(), actions);
    applyIconSet();
    for (TWgtCfg* view : cfgViews)
        view->log()->applySettings();
    chipDock->loadProgs();
    chipDock->log()->applySettings();
}

void TMainWindow::actLanguage() {
    TDialogLanguage dlg(this);
    if (dlg.exec() == QDialog::Accepted) showError(Lang.get(131));
}

void TMainWindow::actPrjLists() {
    TDialogSelectPrjList dlg(this);
    dlg.loadData(AppData.getSelectPrjListFileAbs());
    if (dlg.exec() != QDialog::Accepted) return;
    dlg.saveData(AppData.getSelectPrjListFileAbs());
    TSettings s;
    s.setValue("/Main/PrjListCurrent", dlg.currentFile());
    s.sync();
    loadSelectedPrjList();
}

void TMainWindow::actHexView() {
    const QString file =
        QFileDialog::getOpenFileName(this, Lang.get(121), ProjectData.getPrjWorkPath(), Lang.get(104));
    if (file.isEmpty()) return;
    auto* dlg = new TDialogHexView(this);
    dlg->setAttribute(Qt::WA_DeleteOnClose);
    if (!dlg->loadFile(file)) {
        showError(dlg->getErrorText());
        delete dlg;
        return;
    }
    dlg->show();
}

void TMainWindow::actAbout() {
    TDialogAbout dlg(this);
    dlg.exec();
}
