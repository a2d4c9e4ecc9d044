#include "ui/TDialogHexGoTo.h"

#include "app/TLang.h"
#include "misc/THexBuffer.h"
#include "ui/TWgtHexEdit.h"

namespace {
constexpr int LangTitle = 1817, LangAddress = 1818;
}

TDialogHexGoTo::TDialogHexGoTo(TWgtHexEdit* editor, QWidget* parent)
    : TDialogHexForm(Lang.get(LangTitle), {{"address", editor->buffer()->base() + editor->cursorOffset()}},
                     editor, parent) {
    addAddress(QStringLiteral("address"), Lang.get(LangAddress));
    finish();
}

void TDialogHexGoTo::accept() {
    if (!reason().isEmpty()) return;
    edit->goTo(offsetOf(QStringLiteral("address")));
    TDialogHexForm::accept();
}
