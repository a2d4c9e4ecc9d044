#include "ui/TDialogSelectPrjList.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

TDialogSelectPrjList::TDialogSelectPrjList(QWidget* parent) : QDialog(parent) {
    setWindowTitle(Lang.get(95));
    tableWgt = new QTableWidget(0, 2, this);
    tableWgt->setHorizontalHeaderLabels({Lang.get(96), Lang.get(97)});
    tableWgt->horizontalHeader()->setStretchLastSection(true);
    tableWgt->setSelectionBehavior(QAbstractItemView::SelectRows);
    tableWgt->setSelectionMode(QAbstractItemView::SingleSelection);
    auto* buttons = TApp::createOkCancel(this);
    buttons->addButton(Lang.get(86), QDialogButtonBox::ActionRole)->setObjectName("add");
    buttons->addButton(Lang.get(87), QDialogButtonBox::ActionRole)->setObjectName("remove");
    connect(buttons, &QDialogButtonBox::clicked, this, [this](QAbstractButton* b) {
        if (b->objectName() == "add") browse();
        if (b->objectName() == "remove") tableWgt->removeRow(tableWgt->currentRow());
    });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tableWgt);
    layout->addWidget(buttons);
    TApp::setWindowGeometryOther(this, parent, 600, 360);
}

void TDialogSelectPrjList::loadData(const QString& file) {
    tableWgt->setRowCount(0);
    for (const TSelectPrjListRow& r : TSelectPrjList::load(file))
        addRow(r.name, r.file);
    if (tableWgt->rowCount() > 0) tableWgt->setCurrentCell(0, 0);
}

QList<TSelectPrjListRow> TDialogSelectPrjList::rows() const {
    QList<TSelectPrjListRow> list;
    for (int r = 0; r < tableWgt->rowCount(); ++r)
        list.append({tableWgt->item(r, 0)->text(), tableWgt->item(r, 1)->text()});
    return list;
}

bool TDialogSelectPrjList::saveData(const QString& file) {
    return TSelectPrjList::save(file, rows());
}

void TDialogSelectPrjList::addRow(const QString& name, const QString& file) {
    const int r = tableWgt->rowCount();
    tableWgt->insertRow(r);
    tableWgt->setItem(r, 0, new QTableWidgetItem(name));
    tableWgt->setItem(r, 1, new QTableWidgetItem(file));
    tableWgt->setCurrentCell(r, 0);
}

QString TDialogSelectPrjList::currentFile() const {
    const int r = tableWgt->currentRow();
    return r >= 0 ? tableWgt->item(r, 1)->text() : QString();
}

// New list files are stored relative to the list of lists when they lie beside it.
void TDialogSelectPrjList::browse() {
    const QString file =
        QFileDialog::getSaveFileName(this, Lang.get(122), AppData.getPathProjectsAbs(), Lang.get(98), nullptr,
                                     QFileDialog::DontConfirmOverwrite);
    if (file.isEmpty()) return;
    const QString base = TApp::getAbsolutePath(AppData.getSelectPrjListFileAbs());
    addRow(QFileInfo(file).completeBaseName(), TApp::getPathFile(base, file));
}
