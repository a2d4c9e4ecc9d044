#include "ui/TDialogHexForm.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "misc/THexBuffer.h"
#include "ui/TFormCmd.h"
#include "ui/TWgtHexEdit.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int LangEmpty = 1836;
}

TDialogHexForm::TDialogHexForm(const QString& title, const TData& values, TWgtHexEdit* editor,
                               QWidget* parent)
    : QDialog(parent), edit(editor) {
    setWindowTitle(title);
    fields = new TFormCmd(values, this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(fields);
    connect(fields, &TFormCmd::signalChanged, this, &TDialogHexForm::updateState);
}

void TDialogHexForm::finish() {
    error = TApp::createErrorLabel(this);
    layout()->addWidget(error);
    layout()->addWidget(TApp::createOkCancel(this, &ok));
    fields->changed();
    updateState();
}

QLineEdit* TDialogHexForm::addAddress(const QString& key, const QString& caption) {
    const THexBuffer* buf = edit->buffer();
    const qint64 first = buf->base();
    return fields->addHex(key, caption, first, first + qMax<qint64>(buf->size(), 1) - 1);
}

QLineEdit* TDialogHexForm::addLine(const QString& name, const QString& caption, const QString& text,
                                   std::function<QString()> check) {
    auto* line = new QLineEdit(text, this);
    line->setObjectName(name);
    connect(line, &QLineEdit::textEdited, fields, &TFormCmd::changed);
    fields->addCompound(
        caption, line, [](TData&) {},
        [line, check] { return line->text().trimmed().isEmpty() ? Lang.get(LangEmpty) : check(); });
    return line;
}

QString TDialogHexForm::reason() const {
    const QString own = fields->getError();
    return own.isEmpty() && cross ? cross() : own;
}

void TDialogHexForm::showReason(const QString& text) {
    error->setText(text);
    error->setVisible(!text.isEmpty());
    TApp::growToContents(this);
}

void TDialogHexForm::updateState() {
    if (!ok) return;
    const QString why = reason();
    showReason(why);
    ok->setEnabled(why.isEmpty());
}

qint64 TDialogHexForm::number(const QString& key) const {
    return fields->getParam().value(key).toLongLong();
}

qint64 TDialogHexForm::offsetOf(const QString& key) const {
    return number(key) - edit->buffer()->base();
}
