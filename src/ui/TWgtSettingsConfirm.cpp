#include "ui/TWgtSettingsConfirm.h"

#include "app/TAppData.h"
#include "app/TLang.h"

#include <QCheckBox>
#include <QVBoxLayout>

TWgtSettingsConfirm::TWgtSettingsConfirm(QWidget* parent) : QWidget(parent) {
    auto make = [this](const QString& text, bool on) {
        auto* box = new QCheckBox(text, this);
        box->setChecked(on);
        return box;
    };
    openLastPrj = make(Lang.get(75), AppData.openLastPrj);
    quit = make(Lang.get(76), AppData.confirmQuit);
    savePrj = make(Lang.get(77), AppData.confirmSavePrj);
    process = make(Lang.get(78), AppData.confirmProcess);
    checkBeforeRun = make(Lang.get(1015), AppData.checkBeforeRun);
    checkBeforeRun->setObjectName(QStringLiteral("checkBeforeRun"));
    checkBeforeRun->setToolTip(Lang.get(1018));
    auto* layout = new QVBoxLayout(this);
    for (QCheckBox* box : {openLastPrj, quit, savePrj, process, checkBeforeRun})
        layout->addWidget(box);
    layout->addStretch(1);
}

void TWgtSettingsConfirm::save() {
    AppData.openLastPrj = openLastPrj->isChecked();
    AppData.confirmQuit = quit->isChecked();
    AppData.confirmSavePrj = savePrj->isChecked();
    AppData.confirmProcess = process->isChecked();
    AppData.checkBeforeRun = checkBeforeRun->isChecked();
}
