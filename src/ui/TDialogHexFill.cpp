#include "ui/TDialogHexFill.h"

#include "app/TLang.h"
#include "misc/THexBuffer.h"
#include "ui/TFormCmd.h"
#include "ui/TWgtHexEdit.h"

#include <QLineEdit>

namespace {
constexpr int LangTitle = 1819, LangAddress = 1818, LangCount = 1820, LangPattern = 1821;
const QString kAddress = QStringLiteral("address"), kCount = QStringLiteral("count");
} // namespace

TDialogHexFill::TDialogHexFill(TWgtHexEdit* editor, QWidget* parent)
    : TDialogHexForm(
          Lang.get(LangTitle),
          {{kAddress, editor->buffer()->base() + editor->targetStart()}, {kCount, editor->targetCount()}},
          editor, parent) {
    addAddress(kAddress, Lang.get(LangAddress));
    form()->addHex(kCount, Lang.get(LangCount), 1, qMax<qint64>(edit->buffer()->size(), 1));
    pattern = addLine(QStringLiteral("pattern"), Lang.get(LangPattern), QStringLiteral("FF"), [this] {
        QString why;
        THexBuffer::hexNeedle(pattern->text(), &why);
        return why;
    });
    setCrossCheck([this] { return edit->buffer()->rangeProblem(offsetOf(kAddress), number(kCount)); });
    finish();
}

void TDialogHexFill::accept() {
    if (!reason().isEmpty()) return;
    const qint64 offset = offsetOf(kAddress), count = number(kCount);
    edit->buffer()->fill(offset, count, THexBuffer::hexNeedle(pattern->text()));
    edit->setSelection(offset, count);
    TDialogHexForm::accept();
}
