#include "ui/TWgtSettingsHotKeys.h"

#include "app/TLang.h"

#include <QHeaderView>
#include <QKeySequenceEdit>
#include <QTableWidget>
#include <QVBoxLayout>

TWgtSettingsHotKeys::TWgtSettingsHotKeys(QWidget* parent) : QWidget(parent), entries(THotKeys::load()) {
    keys = new QTableWidget(entries.size(), 2, this);
    keys->setHorizontalHeaderLabels({Lang.get(88), Lang.get(89)});
    keys->horizontalHeader()->setStretchLastSection(true);
    keys->horizontalHeader()->resizeSection(0, 260);
    keys->verticalHeader()->hide();
    for (int r = 0; r < entries.size(); ++r) {
        auto* item = new QTableWidgetItem(QString(entries.at(r).text).remove(QLatin1Char('&')));
        item->setFlags(Qt::ItemIsEnabled);
        keys->setItem(r, 0, item);
        auto* edit = new QKeySequenceEdit(entries.at(r).sequence, keys);
        connect(edit, &QKeySequenceEdit::keySequenceChanged, this,
                [this, r](const QKeySequence& k) { entries[r].sequence = k; });
        keys->setCellWidget(r, 1, edit);
    }
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(keys);
}

void TWgtSettingsHotKeys::setKey(int row, const QKeySequence& key) {
    static_cast<QKeySequenceEdit*>(keys->cellWidget(row, 1))->setKeySequence(key);
    entries[row].sequence = key;
}

void TWgtSettingsHotKeys::save() {
    THotKeys::save(entries);
}
