#include "ui/TWgtSettingsProg.h"

#include "app/TAppData.h"
#include "app/TLang.h"
#include "ui/TProgCheck.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {
QTableWidget* makeTable(QWidget* parent, const QStringList& headers) {
    auto* t = new QTableWidget(0, headers.size(), parent);
    t->setHorizontalHeaderLabels(headers);
    t->horizontalHeader()->setStretchLastSection(true);
    t->horizontalHeader()->resizeSection(0, 200);
    t->verticalHeader()->hide();
    t->setSelectionBehavior(QAbstractItemView::SelectRows);
    return t;
}

void addRow(QTableWidget* t, const QStringList& cells) {
    const int r = t->rowCount();
    t->insertRow(r);
    for (int c = 0; c < cells.size(); ++c)
        t->setItem(r, c, new QTableWidgetItem(cells.at(c)));
}

QString cell(QTableWidget* t, int r, int c) {
    return t->item(r, c) ? t->item(r, c)->text().trimmed() : QString();
}
} // namespace

TWgtSettingsProg::TWgtSettingsProg(QWidget* parent) : QWidget(parent) {
    types = makeTable(this, {Lang.get(81), Lang.get(82)});
    for (int i = 0; i < AppData.progType.count(); ++i)
        addRow(types, {AppData.progType.getTypeFromIndex(i), AppData.progType.getFileFromIndex(i)});
    names = makeTable(this, {Lang.get(35), Lang.get(83), Lang.get(81)});
    for (int i = 0; i < AppData.progName.count(); ++i) {
        const TProgInfo info = AppData.progName.getDataFromIndex(i);
        addRow(names, {AppData.progName.getNameFromIndex(i), info.port, info.type});
    }
    names->horizontalHeader()->resizeSection(0, 150);
    names->horizontalHeader()->resizeSection(1, 240);
    QWidget* namesGroup = makeGroup(Lang.get(80), names);
    auto* identifyButton = new QPushButton(Lang.get(84), namesGroup);
    auto* resetButton = new QPushButton(Lang.get(85), namesGroup);
    connect(identifyButton, &QPushButton::clicked, this, &TWgtSettingsProg::identify);
    connect(resetButton, &QPushButton::clicked, this, &TWgtSettingsProg::reset);
    auto* row = namesGroup->findChild<QHBoxLayout*>();
    row->insertWidget(0, resetButton);
    row->insertWidget(0, identifyButton);
    result = new QLabel(this);
    result->setWordWrap(true);
    result->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(makeGroup(Lang.get(79), types));
    layout->addWidget(namesGroup);
    layout->addWidget(result);
}

void TWgtSettingsProg::identify() {
    check(true);
}

void TWgtSettingsProg::reset() {
    check(false);
}

QString TWgtSettingsProg::resultText() const {
    return result->text();
}

// The registries take the page's rows for the check and get their saved state back afterwards, so that
// Cancel still drops every edit.
void TWgtSettingsProg::check(bool ident) {
    const QString name = cell(names, names->currentRow(), 0);
    if (name.isEmpty()) return;
    const TProgType oldTypes = AppData.progType;
    const TProgName oldNames = AppData.progName;
    save();
    QString text;
    const bool ok = ident ? TProgCheck::identify(name, text) : TProgCheck::reset(name, text);
    AppData.progType = oldTypes;
    AppData.progName = oldNames;
    result->setText(!ok     ? Lang.get(134).arg(name, text)
                    : ident ? Lang.get(132).arg(name, text)
                            : Lang.get(133).arg(name));
}

QWidget* TWgtSettingsProg::makeGroup(const QString& title, QTableWidget* table) {
    auto* box = new QGroupBox(title, this);
    auto* add = new QPushButton(Lang.get(86), box);
    auto* remove = new QPushButton(Lang.get(87), box);
    connect(add, &QPushButton::clicked, this, [table] { addRow(table, QStringList()); });
    connect(remove, &QPushButton::clicked, this, [table] { table->removeRow(table->currentRow()); });
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(add);
    buttons->addWidget(remove);
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(table);
    layout->addLayout(buttons);
    return box;
}

// Rows without a name are dropped; the flag of a programmer that keeps its name is kept.
void TWgtSettingsProg::save() {
    AppData.progType.clear();
    for (int r = 0; r < types->rowCount(); ++r)
        if (!cell(types, r, 0).isEmpty()) AppData.progType.append(cell(types, r, 0), cell(types, r, 1));
    const TProgName old = AppData.progName;
    AppData.progName.clear();
    for (int r = 0; r < names->rowCount(); ++r)
        if (!cell(names, r, 0).isEmpty())
            AppData.progName.append(old.getData(cell(names, r, 0)).flag, cell(names, r, 0), cell(names, r, 1),
                                    cell(names, r, 2));
}
