#include "ui/TDialogCmdParam.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "devices/IDevice.h"
#include "ui/TFormCmd.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

TDialogCmdParam::TDialogCmdParam(IDevice* dev, const TData& p, QWidget* parent)
    : QDialog(parent), group(dev), param(p) {
    setWindowTitle(Lang.get(497).arg(group ? group->getViewCmdName(param) : QString()));
    auto* layout = new QVBoxLayout(this);
    form = group ? qobject_cast<TFormCmd*>(group->getFormCmdParam(param)) : nullptr;
    if (form) {
        form->setParent(this);
        layout->addWidget(form);
        connect(form, &TFormCmd::signalChanged, this, &TDialogCmdParam::updateState);
    } else {
        layout->addWidget(new QLabel(Lang.get(498), this));
    }
    error = TApp::createErrorLabel(this);
    layout->addWidget(error);
    layout->addWidget(TApp::createOkCancel(this, &ok));
    if (form) form->changed();
    updateState();
}

TData TDialogCmdParam::getParam() const {
    return form ? group->getChangedParam(param) : param;
}

QString TDialogCmdParam::getError() const {
    return form ? form->getError() : QString();
}

void TDialogCmdParam::updateState() {
    const QString reason = getError();
    error->setText(reason);
    error->setVisible(!reason.isEmpty());
    ok->setEnabled(reason.isEmpty());
    TApp::growToContents(this);
}
