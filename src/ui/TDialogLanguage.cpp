#include "ui/TDialogLanguage.h"

#include "app/CApp.h"
#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

TDialogLanguage::TDialogLanguage(QWidget* parent) : QDialog(parent) {
    setWindowTitle(Lang.get(99));
    files = new QListWidget(this);
    const QStringList names =
        QDir(AppData.getPathLanguageAbs())
            .entryList({QString::fromLatin1(CApp::mask_ext_lng)}, QDir::Files, QDir::Name);
    files->addItems(names);
    const QList<QListWidgetItem*> current = files->findItems(AppData.language, Qt::MatchExactly);
    if (!current.isEmpty()) files->setCurrentItem(current.first());
    auto* buttons = TApp::createOkCancel(this);
    connect(files, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(files);
    layout->addWidget(buttons);
}

void TDialogLanguage::accept() {
    if (!files->currentItem()) return;
    AppData.language = files->currentItem()->text();
    AppData.saveData();
    QDialog::accept();
}
