#include "ui/TDialogShortcuts.h"

#include "app/TLang.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

TDialogShortcuts::TDialogShortcuts(const QList<QAction*>& actions, QWidget* parent) : QDialog(parent) {
    setWindowTitle(Lang.get(1752));
    view = new QTableWidget(0, 2, this);
    view->setHorizontalHeaderLabels({Lang.get(1755), Lang.get(1756)});
    view->verticalHeader()->hide();
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    for (QAction* a : actions) {
        if (a->shortcut().isEmpty()) continue;
        const int row = view->rowCount();
        view->insertRow(row);
        view->setItem(row, 0, new QTableWidgetItem(a->text().remove(QLatin1Char('&'))));
        QStringList keys;
        for (const QKeySequence& k : a->shortcuts())
            keys << k.toString(QKeySequence::NativeText);
        view->setItem(row, 1, new QTableWidgetItem(keys.join(QStringLiteral(", "))));
    }
    view->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    view->resizeColumnToContents(1);
    auto* note = new QLabel(Lang.get(1754), this);
    note->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(Lang.get(94), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(view);
    layout->addWidget(note);
    layout->addWidget(buttons);
    resize(460, 520);
}
