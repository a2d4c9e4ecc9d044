// Main window: the help menu, the first start and the report on a hand-written project.
#include "ui/TMainWindow.h"

#include "app/CApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "project/TDataPrj.h"
#include "project/TPrjCheck.h"
#include "ui/TDialogShortcuts.h"
#include "ui/TWgtPrjList.h"

#include <QAbstractButton>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>

namespace {
const QString kFirstStartDone = QStringLiteral("/Main/FirstStartDone");
const QString kDemo = QStringLiteral("demo.prj");
} // namespace

void TMainWindow::openFirstStart() {
    TSettings settings;
    if (settings.value(kFirstStartDone, false).toBool()) return;
    settings.setValue(kFirstStartDone, true);
    const QString demo = QDir(AppData.getPathProjectsAbs()).filePath(kDemo);
    if (!ProjectData.getPrjFileName().isEmpty() || !QFileInfo::exists(demo)) return;
    if (prjTree->topLevelItemCount() == 0) prjTree->addProject(demo, Lang.get(1757));
    openProject(demo);
}

void TMainWindow::actGettingStarted() {
    const QString text =
        Lang.get(1753).arg(QDir::toNativeSeparators(QDir(AppData.getPathProjectsAbs()).filePath(kDemo)),
                           QDir::toNativeSeparators(AppData.getPathProjectsAbs()),
                           QDir::toNativeSeparators(TSettings().fileName()),
                           QDir::toNativeSeparators(AppData.getPathDevicesAbs()));
    QMessageBox box(QMessageBox::Information, Lang.get(1751), text, QMessageBox::Ok, this);
    box.setObjectName(QStringLiteral("gettingStarted"));
    box.button(QMessageBox::Ok)->setText(Lang.get(94));
    box.exec();
}

void TMainWindow::actShortcuts() {
    TDialogShortcuts dialog(actions, this);
    dialog.exec();
}

// Shown without holding the window: the project is open and usable, the lines say what to fix.
void TMainWindow::reportProblems(const QString& file, const QByteArray& data) {
    const QStringList problems = TPrjCheck::check(data, ProjectData);
    if (problems.isEmpty()) return;
    auto* box = new QMessageBox(QMessageBox::Warning, QString::fromLatin1(CApp::full_name),
                                Lang.get(1750).arg(QDir::toNativeSeparators(file)), QMessageBox::Ok, this);
    box->setObjectName(QStringLiteral("projectProblems"));
    box->setDetailedText(problems.join(QLatin1Char('\n')));
    box->setInformativeText(problems.mid(0, 5).join(QLatin1Char('\n')));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(false);
    box->show();
}
