#include "ui/TDialogCfg.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "project/TDataPrj.h"
#include "project/TPrjText.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

TDialogCfg::TDialogCfg(int id, const QString& name, const QString& desc, QWidget* parent)
    : QDialog(parent), idCfg(id) {
    setWindowTitle(Lang.get(646));
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    nameEdit = new QLineEdit(name, this);
    descEdit = new QLineEdit(desc, this);
    descEdit->setMinimumWidth(360);
    form->addRow(Lang.get(647), nameEdit);
    form->addRow(Lang.get(648), descEdit);
    layout->addLayout(form);
    error = TApp::createErrorLabel(this);
    layout->addWidget(error);
    layout->addWidget(TApp::createOkCancel(this, &ok));
    connect(nameEdit, &QLineEdit::textChanged, this, &TDialogCfg::updateState);
    connect(descEdit, &QLineEdit::textChanged, this, &TDialogCfg::updateState);
    nameEdit->selectAll();
    updateState();
}

QString TDialogCfg::getName() const {
    return nameEdit->text().trimmed();
}

QString TDialogCfg::getDesc() const {
    return descEdit->text().trimmed();
}

QString TDialogCfg::checkText(const QString& text) {
    return TPrjText::isWritable(text) ? QString() : Lang.get(651);
}

QString TDialogCfg::checkName(int idCfg, const QString& name) {
    if (name.trimmed().isEmpty()) return Lang.get(649);
    const int other = ProjectData.getIdCfgFromNameCfg(name.trimmed());
    if (other >= 0 && other != idCfg) return Lang.get(650).arg(name.trimmed());
    return checkText(name);
}

QString TDialogCfg::getError() const {
    const QString reason = checkName(idCfg, getName());
    return reason.isEmpty() ? checkText(getDesc()) : reason;
}

void TDialogCfg::updateState() {
    const QString reason = getError();
    error->setText(reason);
    error->setVisible(!reason.isEmpty());
    ok->setEnabled(reason.isEmpty());
}
