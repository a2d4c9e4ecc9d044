// Editing of the open project: commands and configurations, the clipboard, undo and redo.
#include "ui/TMainWindow.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "exec/TRunControl.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "project/TCtrlProject.h"
#include "project/TDataCfg.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "project/TPrjBuilder.h"
#include "ui/TDialogCfg.h"
#include "ui/TDialogCmdParam.h"
#include "ui/THotKeys.h"
#include "ui/TWgtCfg.h"
#include "ui/TWgtCmdList.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMenuBar>
#include <QMimeData>
#include <QTabBar>
#include <QTabWidget>

namespace {
const QString mimeCmds = QStringLiteral("application/x-tarvelix-commands");

// A command as the clipboard holds it: check mark, code and parameters, every value as text as in the
// project file. Ids and validity belong to the project it came from and stay behind.
QJsonObject clipRecord(const TData& data) {
    QJsonObject rec;
    for (auto it = data.constBegin(); it != data.constEnd(); ++it)
        rec.insert(it.key(), it.value().toString());
    for (const char* key : {CTagCmd::id_cmd, CTagCmd::id_cfg, CTagCmd::valid_dev, CTagCmd::valid_param})
        rec.remove(QLatin1String(key));
    rec.insert(CTagCmd::status,
               data.value(CTagCmd::status).toBool() ? QStringLiteral("1") : QStringLiteral("0"));
    return rec;
}

// The records of a clipboard text; none when it is not wholly a list of known commands.
QList<TData> clipCommands(const QByteArray& text) {
    const QJsonDocument doc = QJsonDocument::fromJson(text);
    QList<TData> records;
    for (const QJsonValue& value : doc.array()) {
        TData rec;
        const QJsonObject obj = value.toObject();
        for (auto it = obj.constBegin(); it != obj.constEnd(); ++it)
            rec.insert(it.key(), it.value().toString());
        if (CmdCode.getFamily(rec.value(CTagCmd::cmd).toString()) == TCmdCode::FamilyNone) return {};
        records.append(rec);
    }
    return records;
}

QList<TData> clipboardCommands() {
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    if (!mime) return {};
    return clipCommands(mime->hasFormat(mimeCmds) ? mime->data(mimeCmds) : mime->text().toUtf8());
}
} // namespace

bool TMainWindow::canEdit() const {
    return control->count() == 0 && ProjectData.isOpenPrj();
}

TWgtCmdList* TMainWindow::currentCmdList() const {
    TWgtCfg* view = cfgViews.value(currentIdCfg());
    return view ? view->cmdList() : nullptr;
}

// A run reads the model while it works: the project stays as it is until every run has ended.
bool TMainWindow::beginEdit() {
    if (!control->count() == 0) {
        showError(Lang.get(645));
        return false;
    }
    if (!ProjectData.isOpenPrj()) return false;
    history.begin();
    return true;
}

void TMainWindow::endEdit() {
    history.commit();
    afterEdit();
}

bool TMainWindow::edit(const std::function<void()>& fn) {
    if (!beginEdit()) return false;
    fn();
    endEdit();
    return true;
}

// An edit can change the binding and so the marks of commands anywhere, e.g. an "execute" whose
// configuration was deleted.
void TMainWindow::afterEdit() {
    for (int id : cfgViews.keys()) {
        cfgViews.value(id)->cmdList()->refresh();
        updateTab(id);
    }
    updateTitle();
    updateActions();
}

// The command after which new commands go: the current one, else the configuration's last.
int TMainWindow::placeIdCmd() const {
    const TWgtCmdList* list = currentCmdList();
    if (!list) return -1;
    if (list->currentIdCmd() >= 0) return list->currentIdCmd();
    TLocker lock(ProjectData.getMutex());
    const QList<TDataCmd*> cmds = ProjectData.getCmdListCfg(currentIdCfg());
    return cmds.isEmpty() ? -1 : cmds.last()->getUIN();
}

// An empty configuration gets its first command at the end of the project-wide list.
int TMainWindow::insertPos() const {
    const int idCmd = placeIdCmd();
    return idCmd < 0 ? -1 : ProjectData.getAPosCmdFromIdCmd(idCmd) + 1;
}

void TMainWindow::selectCmds(const QList<int>& ids) {
    if (TWgtCmdList* list = currentCmdList()) list->selectIdCmds(ids);
    updateActions();
}

void TMainWindow::addInsertMenu(QMenu* parent, const QString& title, const QStringList& codes) {
    QMenu* menu = parent->addMenu(title);
    for (const QString& code : codes) {
        if (code == QLatin1String(CTagCmdCode::separator)) {
            menu->addSeparator();
            continue;
        }
        QAction* a = menu->addAction(CmdCode.getName(code), this, [this, code] { insertCmdForm(code); });
        a->setData(code);
    }
    menu->menuAction()->setEnabled(canEdit() && currentIdCfg() >= 0 && !menu->isEmpty());
}

void TMainWindow::fillInsertMenu(QMenu* menu) {
    for (QMenu* sub : menu->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly))
        sub->deleteLater();
    menu->clear();
    const int idCmd = placeIdCmd();
    addInsertMenu(menu, Lang.get(624), ProjectData.getSupportToolsCmdList());
    addInsertMenu(menu, Lang.get(625), ProjectData.getSupportProgCmdList(idCmd));
    addInsertMenu(menu, Lang.get(626), ProjectData.getSupportDeviceCmdList(idCmd));
}

int TMainWindow::insertNewCmd(const QString& code) {
    return TPrjBuilder::addCmd(ProjectData, currentIdCfg(), code, TData(), insertPos());
}

int TMainWindow::insertCmd(const QString& code) {
    if (currentIdCfg() < 0 || !beginEdit()) return -1;
    const int id = insertNewCmd(code);
    endEdit();
    selectCmds({id});
    return id;
}

bool TMainWindow::insertCmdForm(const QString& code) {
    if (currentIdCfg() < 0 || !beginEdit()) return false;
    const int id = insertNewCmd(code);
    afterEdit();
    selectCmds({id});
    TData param = ProjectData.getCmdData(id);
    if (!askCmdParam(id, param, true)) {
        ProjectData.delCmd(id);
        ProjectData.updCmdObjectAll();
        history.cancel();
        afterEdit();
        return false;
    }
    ProjectData.updCmdParam(id, param);
    ProjectData.updCmdObjectAll();
    endEdit();
    selectCmds({id});
    return true;
}

bool TMainWindow::askCmdParam(int idCmd, TData& param, bool fresh) {
    IDevice* group = nullptr;
    {
        TLocker lock(ProjectData.getMutex());
        if (TDataCmd* cmd = ProjectData.getCmdObjectFromIdCmd(idCmd)) group = cmd->getGroupObject();
    }
    TDialogCmdParam dlg(group, param, this);
    if (fresh && !dlg.hasForm()) return true;
    if (dlg.exec() != QDialog::Accepted) return false;
    param = dlg.getParam();
    return true;
}

bool TMainWindow::editCmd(int idCmd, const TData& param) {
    if (ProjectData.getCmdData(idCmd).isEmpty()) return false;
    return edit([idCmd, param] {
        ProjectData.updCmdParam(idCmd, param);
        ProjectData.updCmdObjectAll();
    });
}

bool TMainWindow::editCmdForm(int idCmd) {
    if (!control->count() == 0) {
        showError(Lang.get(645));
        return false;
    }
    TData param = ProjectData.getCmdData(idCmd);
    if (param.isEmpty() || !askCmdParam(idCmd, param, false)) return false;
    return editCmd(idCmd, param);
}

bool TMainWindow::copyCmds() {
    const TWgtCmdList* list = currentCmdList();
    const QList<int> ids = list ? list->selectedIdCmds() : QList<int>();
    if (ids.isEmpty()) return false;
    QJsonArray records;
    for (int id : ids)
        records.append(clipRecord(ProjectData.getCmdData(id)));
    const QByteArray text = QJsonDocument(records).toJson(QJsonDocument::Compact);
    auto* mime = new QMimeData;
    mime->setData(mimeCmds, text);
    mime->setText(QString::fromUtf8(text));
    QApplication::clipboard()->setMimeData(mime);
    updateActions();
    return true;
}

bool TMainWindow::cutCmds() {
    return canEdit() && copyCmds() && deleteCmds();
}

bool TMainWindow::pasteCmds() {
    const int idCfg = currentIdCfg();
    if (idCfg < 0) return false;
    const QList<TData> records = clipboardCommands();
    if (records.isEmpty()) {
        showError(Lang.get(652));
        return false;
    }
    QList<int> ids;
    const bool done = edit([&] {
        const int pos = insertPos();
        for (TData rec : records) {
            rec.insert(CTagCmd::id_cfg, idCfg);
            ids.append(ProjectData.newCmd(rec, pos < 0 ? -1 : pos + ids.size()));
        }
        ProjectData.updCmdObjectAll();
    });
    if (done) selectCmds(ids);
    return done;
}

bool TMainWindow::deleteCmds() {
    TWgtCmdList* list = currentCmdList();
    const QList<int> ids = list ? list->selectedIdCmds() : QList<int>();
    if (ids.isEmpty()) return false;
    const int row = list->indexOfTopLevelItem(list->currentItem());
    const bool done = edit([&ids] {
        for (int id : ids)
            ProjectData.delCmd(id);
        ProjectData.updCmdObjectAll();
    });
    if (done && list->topLevelItemCount() > 0)
        list->setCurrentItem(list->topLevelItem(qBound(0, row, list->topLevelItemCount() - 1)));
    return done;
}

bool TMainWindow::moveCurrentCmd(int delta) {
    const TWgtCmdList* list = currentCmdList();
    const int id = list ? list->currentIdCmd() : -1;
    if (id < 0) return false;
    const bool done = edit([id, delta] { ProjectData.moveCmd(id, delta); });
    if (done) selectCmds({id});
    return done;
}

bool TMainWindow::checkCmds(bool on) {
    const TWgtCmdList* list = currentCmdList();
    const QList<int> ids = list ? list->selectedIdCmds() : QList<int>();
    if (ids.isEmpty()) return false;
    return edit([&ids, on] {
        for (int id : ids)
            ProjectData.enbCmd(id, on);
    });
}

bool TMainWindow::checkAllCmds(bool on) {
    const int idCfg = currentIdCfg();
    return idCfg >= 0 && edit([idCfg, on] { ProjectData.enbCmdCfg(idCfg, on); });
}

int TMainWindow::addCfg(const QString& name, const QString& desc) {
    QString reason = TDialogCfg::checkName(-1, name);
    if (reason.isEmpty()) reason = TDialogCfg::checkText(desc);
    if (!reason.isEmpty()) {
        showError(reason);
        return -1;
    }
    const int pos = cfgTabs->currentIndex() < 0 ? -1 : cfgTabs->currentIndex() + 1;
    int id = -1;
    if (!edit([&] { id = ProjectData.newCfg(name.trimmed(), desc.trimmed(), pos); })) return -1;
    if (TWgtCfg* view = cfgViews.value(id)) cfgTabs->setCurrentWidget(view);
    return id;
}

bool TMainWindow::renameCfg(int idCfg, const QString& name, const QString& desc) {
    if (!ProjectData.getCfgObject(idCfg)) return false;
    QString reason = TDialogCfg::checkName(idCfg, name);
    if (reason.isEmpty()) reason = TDialogCfg::checkText(desc);
    if (!reason.isEmpty()) {
        showError(reason);
        return false;
    }
    return edit([&] {
        ProjectData.setCfgName(idCfg, name.trimmed());
        ProjectData.setCfgDesc(idCfg, desc.trimmed());
    });
}

bool TMainWindow::moveCfg(int idCfg, int delta) {
    const int from = ProjectData.getPosCfgFromIdCfg(idCfg);
    const int to = from + delta;
    if (from < 0 || to < 0 || to >= ProjectData.getCfgList().size()) return false;
    const bool done = edit([from, to] { ProjectData.movCfg(from, to); });
    if (done) cfgTabs->setCurrentWidget(cfgViews.value(idCfg));
    return done;
}

bool TMainWindow::deleteCfg(int idCfg) {
    if (!ProjectData.getCfgObject(idCfg)) return false;
    const int count = ProjectData.getCmdListCfg(idCfg).size();
    if (count > 0 && ask(Lang.get(644).arg(ProjectData.getNameCfgFromIdCfg(idCfg)).arg(count),
                         QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
        return false;
    return edit([idCfg] { ProjectData.delCfg(idCfg); });
}

bool TMainWindow::askCfg(int idCfg, QString& name, QString& desc) {
    TDialogCfg dlg(idCfg, name, desc, this);
    if (dlg.exec() != QDialog::Accepted) return false;
    name = dlg.getName();
    desc = dlg.getDesc();
    return true;
}

void TMainWindow::actAddCfg() {
    if (!canEdit()) return;
    int n = ProjectData.getCfgList().size() + 1;
    while (ProjectData.getIdCfgFromNameCfg(Lang.get(653).arg(n)) >= 0)
        ++n;
    QString name = Lang.get(653).arg(n), desc;
    if (askCfg(-1, name, desc)) addCfg(name, desc);
}

void TMainWindow::actRenameCfg() {
    const int idCfg = currentIdCfg();
    TDataCfg* cfg = ProjectData.getCfgObject(idCfg);
    if (!cfg || !canEdit()) return;
    QString name = cfg->getName(), desc = cfg->getDesc();
    if (askCfg(idCfg, name, desc)) renameCfg(idCfg, name, desc);
}

bool TMainWindow::undo() {
    return restoreStep(true);
}

bool TMainWindow::redo() {
    return restoreStep(false);
}

bool TMainWindow::restoreStep(bool back) {
    if (!control->count() == 0) {
        showError(Lang.get(645));
        return false;
    }
    const int tab = cfgTabs->currentIndex();
    const TWgtCmdList* list = currentCmdList();
    const int row = list ? list->indexOfTopLevelItem(list->currentItem()) : -1;
    restoring = true;
    const bool done = back ? history.undo() : history.redo();
    restoring = false;
    if (!done) return false;
    restoreViews();
    cfgTabs->setCurrentIndex(qMin(tab, cfgTabs->count() - 1));
    if (TWgtCmdList* now = currentCmdList())
        if (row >= 0 && now->topLevelItemCount() > 0)
            now->setCurrentItem(now->topLevelItem(qMin(row, now->topLevelItemCount() - 1)));
    afterEdit();
    return true;
}

// The project was read back with fresh ids. A page whose configuration name is still there keeps its
// log; the others go.
void TMainWindow::restoreViews() {
    QMultiHash<QString, TWgtCfg*> old;
    for (TWgtCfg* view : cfgViews)
        old.insert(cfgTabs->tabText(cfgTabs->indexOf(view)), view);
    while (cfgTabs->count() > 0)
        cfgTabs->removeTab(0);
    cfgViews.clear();
    QList<QPair<int, QString>> cfgs;
    {
        TLocker lock(ProjectData.getMutex());
        for (TDataCfg* cfg : ProjectData.getCfgList())
            cfgs.append({cfg->getUIN(), cfg->getName()});
    }
    for (const auto& cfg : cfgs) {
        TWgtCfg* view = old.take(cfg.second);
        if (view)
            view->setIdCfg(cfg.first);
        else
            view = makeCfgView(cfg.first);
        cfgViews.insert(cfg.first, view);
        cfgTabs->addTab(view, QString());
        updateTab(cfg.first);
    }
    qDeleteAll(old);
}

void TMainWindow::showCmdMenu(const QPoint& global) {
    updateActions();
    QMenu menu(this);
    fillInsertMenu(&menu);
    menu.addSeparator();
    addActions(&menu, {"EditCmd", "", "CutCmd", "CopyCmd", "PasteCmd", "DeleteCmd", "", "MoveCmdUp",
                       "MoveCmdDown", "", "CheckCmd", "UncheckCmd", "CheckAllCmd", "UncheckAllCmd"});
    menu.exec(global);
}

void TMainWindow::showCfgMenu(const QPoint& pos) {
    const int index = cfgTabs->tabBar()->tabAt(pos);
    if (index >= 0) cfgTabs->setCurrentIndex(index);
    updateActions();
    QMenu menu(this);
    addActions(&menu, {"AddCfg", "RenameCfg", "", "MoveCfgLeft", "MoveCfgRight", "", "DeleteCfg"});
    menu.exec(cfgTabs->tabBar()->mapToGlobal(pos));
}
