#include "ui/TDialogSettings.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"
#include "ui/TWgtSettingsConfirm.h"
#include "ui/TWgtSettingsHotKeys.h"
#include "ui/TWgtSettingsInterface.h"
#include "ui/TWgtSettingsProg.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

TDialogSettings::TDialogSettings(QWidget* parent) : QDialog(parent) {
    setWindowTitle(Lang.get(51));
    pages = new QTabWidget(this);
    pageInterface = new TWgtSettingsInterface(pages);
    pageConfirm = new TWgtSettingsConfirm(pages);
    pageProg = new TWgtSettingsProg(pages);
    pageHotKeys = new TWgtSettingsHotKeys(pages);
    pages->addTab(pageInterface, Lang.get(52));
    pages->addTab(pageConfirm, Lang.get(53));
    pages->addTab(pageProg, Lang.get(54));
    pages->addTab(pageHotKeys, Lang.get(55));
    auto* buttons = TApp::createOkCancel(this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(pages);
    layout->addWidget(buttons);
    TApp::setWindowGeometryOther(this, parent, 640, 560);
}

void TDialogSettings::accept() {
    pageInterface->save();
    pageConfirm->save();
    pageProg->save();
    pageHotKeys->save();
    AppData.saveData();
    QDialog::accept();
}
