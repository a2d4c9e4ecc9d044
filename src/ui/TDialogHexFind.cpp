#include "ui/TDialogHexFind.h"

#include "app/TLang.h"
#include "misc/THexBuffer.h"
#include "misc/TNumberText.h"
#include "ui/TFormCmd.h"
#include "ui/TWgtHexEdit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

namespace {
constexpr int LangTitle = 1822, LangFind = 1823, LangLookFor = 1824, LangHex = 1825, LangText = 1826;
constexpr int LangBackwards = 1827, LangNotFoundForward = 1828, LangNotFoundBack = 1829;
const QString kHex = QStringLiteral("hex"), kMode = QStringLiteral("mode"),
              kBack = QStringLiteral("backwards");

// The last search of this session, as typed.
struct Search {
    QString text;
    bool hex = true;
    bool backwards = false;
};
Search last;

QByteArray needleOf(const QString& text, bool hex) {
    return hex ? THexBuffer::hexNeedle(text) : THexBuffer::textNeedle(text);
}

// Forward from just after the selection's start (the cursor without a selection), back from just before.
bool search(TWgtHexEdit* edit, const Search& s, QString& message) {
    const THexBuffer* buf = edit->buffer();
    const QByteArray needle = needleOf(s.text, s.hex);
    const qint64 from =
        s.backwards ? edit->targetStart() - 1 : edit->targetStart() + (edit->selectionCount() > 0 ? 1 : 0);
    const qint64 at = needle.isEmpty() ? -1 : buf->find(needle, from, s.backwards);
    if (at >= 0) {
        edit->setSelection(at, needle.size());
        return true;
    }
    const QString where = TNumberText::show(buf->base() + qMax<qint64>(from, 0));
    message = Lang.get(s.backwards ? LangNotFoundBack : LangNotFoundForward).arg(s.text.trimmed(), where);
    return false;
}
} // namespace

TDialogHexFind::TDialogHexFind(TWgtHexEdit* editor, QWidget* parent)
    : TDialogHexForm(Lang.get(LangTitle),
                     {{kMode, last.hex ? kHex : QStringLiteral("text")}, {kBack, last.backwards}}, editor,
                     parent) {
    text = addLine(QStringLiteral("find"), Lang.get(LangFind), last.text, [this] {
        QString why;
        if (mode->currentIndex() == 0) THexBuffer::hexNeedle(text->text(), &why);
        return why;
    });
    mode = form()->addChoice(kMode, Lang.get(LangLookFor), {Lang.get(LangHex), Lang.get(LangText)},
                             {kHex, QStringLiteral("text")});
    backwards = form()->addCheck(kBack, Lang.get(LangBackwards));
    finish();
}

void TDialogHexFind::accept() {
    if (!reason().isEmpty()) return;
    last = {text->text(), mode->currentIndex() == 0, backwards->isChecked()};
    QString message;
    if (search(edit, last, message))
        TDialogHexForm::accept();
    else
        showReason(message);
}

bool TDialogHexFind::findAgain(TWgtHexEdit* edit, bool back, QString& message) {
    if (last.text.isEmpty()) return false;
    Search s = last;
    s.backwards = back;
    return search(edit, s, message);
}
