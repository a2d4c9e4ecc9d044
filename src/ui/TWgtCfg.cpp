#include "ui/TWgtCfg.h"

#include "app/TLang.h"
#include "ui/TWgtCmdList.h"
#include "ui/TWgtLogExec.h"

TWgtCfg::TWgtCfg(int id, QWidget* parent) : QTabWidget(parent), idCfg(id) {
    setTabPosition(QTabWidget::South);
    setDocumentMode(true);
    cmds = new TWgtCmdList(idCfg, this);
    logExec = new TWgtLogExec(this);
    logExec->applySettings();
    addTab(cmds, Lang.get(23));
    addTab(logExec, Lang.get(24));
}

void TWgtCfg::setIdCfg(int id) {
    idCfg = id;
    cmds->setIdCfg(id);
}
