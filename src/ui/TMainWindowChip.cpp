// The main window's side of the chip panel: the dock, and its actions made a configuration.
#include "app/TLang.h"
#include "project/TDataPrj.h"
#include "ui/TDialogCfg.h"
#include "ui/TDockChip.h"
#include "ui/TMainWindow.h"
#include "ui/TWgtCfg.h"

#include <QAction>
#include <QFileDialog>
#include <QTabWidget>

namespace {
enum LangId {
    TextNothingDone = 1889,
    TextDataFile = 1890,
    TextOpenProject = 1894,
};
} // namespace

void TMainWindow::createChipPanel() {
    chipDock = new TDockChip(control, this);
    chipDock->toggleViewAction()->setText(Lang.get(1867));
    addDockWidget(Qt::RightDockWidgetArea, chipDock);
    connect(chipDock, &TDockChip::signalSaveAsCfg, this, &TMainWindow::saveChipAsCfg);
}

bool TMainWindow::askDataFile(QString& file) {
    const QString dir = ProjectData.getPrjWorkPath();
    file = QFileDialog::getSaveFileName(this, Lang.get(TextDataFile), dir,
                                        QStringLiteral("Intel HEX (*.hex *.ihx);;BIN (*.bin)"));
    return !file.isEmpty();
}

int TMainWindow::saveChipAsCfg() {
    TChipSession* chip = chipDock->session();
    if (ProjectData.getPrjFileName().isEmpty()) {
        showError(Lang.get(TextOpenProject));
        return -1;
    }
    if (chip->done().isEmpty()) {
        showError(Lang.get(TextNothingDone));
        return -1;
    }
    QString name = chip->chip(), desc, file;
    if (!askCfg(-1, name, desc)) return -1;
    if (const QString reason = TDialogCfg::checkName(-1, name); !reason.isEmpty()) {
        showError(reason);
        return -1;
    }
    if (chip->doneWithBuffer()) {
        if (!askDataFile(file)) return -1;
        if (!chip->saveData(chipDock->buffer(), file)) {
            showError(chip->error());
            return -1;
        }
    }
    int id = -1;
    if (!edit([&] { id = chip->saveAsConfiguration(ProjectData, name.trimmed(), file); })) return -1;
    ProjectData.setCfgDesc(id, desc.trimmed());
    chip->clearDone();
    if (TWgtCfg* view = cfgView(id)) cfgTabWidget()->setCurrentWidget(view);
    return id;
}
