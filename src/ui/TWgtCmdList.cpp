#include "ui/TWgtCmdList.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TIcons.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "project/CTagPrj.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QHeaderView>

TWgtCmdList::TWgtCmdList(int id, QWidget* parent) : QTreeWidget(parent), idCfg(id) {
    setColumnCount(2);
    setHeaderLabels({Lang.get(49), Lang.get(50)});
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    header()->setStretchLastSection(true);
    header()->resizeSection(0, 260);
    connect(this, &QTreeWidget::itemChanged, this, &TWgtCmdList::slotItemChanged);
    refresh();
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
    QString reason;
    if (!cmd->getValidDev())
        reason = Lang.get(387).arg(shown);
    else if (!cmd->getValidParam())
        reason = Lang.get(388).arg(shown);
    for (int c = 0; c < 2; ++c) {
        item->setToolTip(c, reason);
        item->setForeground(c, reason.isEmpty() ? QBrush() : QBrush(TApp::getErrorColorText()));
    }
    item->setIcon(0, reason.isEmpty() ? QIcon() : TIcons::getIcon(AppData.iconsSet, QStringLiteral("error")));
}

void TWgtCmdList::refresh() {
    const int current = currentIdCmd();
    filling = true;
    clear();
    {
        TLocker lock(ProjectData.getMutex());
        for (TDataCmd* cmd : ProjectData.getCmdListCfg(idCfg)) {
            auto* item = new QTreeWidgetItem(this);
            fillItem(item, cmd);
            if (cmd->getUIN() == current) setCurrentItem(item);
        }
    }
    filling = false;
}

void TWgtCmdList::slotItemChanged(QTreeWidgetItem* item, int column) {
    if (filling || column != 0) return;
    const int idCmd = item->data(0, Qt::UserRole).toInt();
    const bool on = item->checkState(0) == Qt::Checked;
    if (ProjectData.getCmdData(idCmd).value(CTagCmd::status).toInt() != int(on))
        ProjectData.enbCmd(idCmd, on);
}
