#include "ui/TWgtCmdList.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TIcons.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "project/CTagPrj.h"
#include "project/TCmdProblem.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QHeaderView>
#include <QKeyEvent>

TWgtCmdList::TWgtCmdList(int id, QWidget* parent) : QTreeWidget(parent), idCfg(id) {
    setColumnCount(2);
    setHeaderLabels({Lang.get(49), Lang.get(50)});
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    header()->setStretchLastSection(true);
    header()->resizeSection(0, 260);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QTreeWidget::itemChanged, this, &TWgtCmdList::slotItemChanged);
    connect(this, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem* item) { emit signalEditCmd(item->data(0, Qt::UserRole).toInt()); });
    refresh();
}

void TWgtCmdList::setIdCfg(int id) {
    idCfg = id;
    // The rows' ids are another project's: nothing of them is current or selected any more.
    filling = true;
    clear();
    filling = false;
    refresh();
}

QTreeWidgetItem* TWgtCmdList::itemOf(int idCmd) const {
    for (int i = 0; i < topLevelItemCount(); ++i)
        if (topLevelItem(i)->data(0, Qt::UserRole).toInt() == idCmd) return topLevelItem(i);
    return nullptr;
}

void TWgtCmdList::setCurrentIdCmd(int idCmd) {
    if (QTreeWidgetItem* item = itemOf(idCmd)) setCurrentItem(item);
}

QList<int> TWgtCmdList::selectedIdCmds() const {
    QList<int> ids;
    for (int i = 0; i < topLevelItemCount(); ++i)
        if (topLevelItem(i)->isSelected()) ids.append(topLevelItem(i)->data(0, Qt::UserRole).toInt());
    if (ids.isEmpty() && currentIdCmd() >= 0) ids.append(currentIdCmd());
    return ids;
}

void TWgtCmdList::selectIdCmds(const QList<int>& ids) {
    clearSelection();
    for (int id : ids)
        if (QTreeWidgetItem* item = itemOf(id)) item->setSelected(true);
    if (!ids.isEmpty())
        if (QTreeWidgetItem* item = itemOf(ids.last()))
            setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
}

void TWgtCmdList::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentIdCmd() >= 0) {
        emit signalEditCmd(currentIdCmd());
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

int TWgtCmdList::currentIdCmd() const {
    const QTreeWidgetItem* item = currentItem();
    return item ? item->data(0, Qt::UserRole).toInt() : -1;
}

void TWgtCmdList::fillItem(QTreeWidgetItem* item, TDataCmd* cmd) {
    const TData data = cmd->getData();
    IDevice* group = cmd->getGroupObject();
    const QString name = group ? group->getViewCmdName(data) : QString();
    const QString shown = name.isEmpty() ? cmd->getCmdCode() : name;
    item->setData(0, Qt::UserRole, cmd->getUIN());
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    item->setCheckState(0, cmd->getEnable() ? Qt::Checked : Qt::Unchecked);
    item->setText(0, shown);
    item->setText(1, group ? group->getViewCmdParam(data, nullptr) : QString());
    const QString reason = TCmdProblem::get(shown, data, group);
    for (int c = 0; c < 2; ++c) {
        item->setToolTip(c, reason);
        item->setForeground(c, reason.isEmpty() ? QBrush() : QBrush(TApp::getErrorColorText()));
    }
    item->setIcon(0, reason.isEmpty() ? QIcon() : TIcons::getIcon(AppData.iconsSet, QStringLiteral("error")));
}

void TWgtCmdList::refresh() {
    const int current = currentIdCmd();
    const QList<int> selected = selectedIdCmds();
    filling = true;
    clear();
    {
        TLocker lock(ProjectData.getMutex());
        for (TDataCmd* cmd : ProjectData.getCmdListCfg(idCfg)) {
            auto* item = new QTreeWidgetItem(this);
            fillItem(item, cmd);
            if (cmd->getUIN() == current) setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
            item->setSelected(selected.contains(cmd->getUIN()));
        }
    }
    filling = false;
}

void TWgtCmdList::slotItemChanged(QTreeWidgetItem* item, int column) {
    if (filling || column != 0) return;
    const int idCmd = item->data(0, Qt::UserRole).toInt();
    const bool on = item->checkState(0) == Qt::Checked;
    if (ProjectData.getCmdData(idCmd).value(CTagCmd::status).toInt() != int(on))
        emit signalCheckCmd(idCmd, on);
}
