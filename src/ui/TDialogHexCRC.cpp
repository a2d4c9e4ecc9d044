#include "ui/TDialogHexCRC.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "formats/TCRC.h"
#include "formats/TCRCModels.h"
#include "misc/THexBuffer.h"
#include "misc/TNumberText.h"
#include "misc/dev_misc.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>

namespace {
constexpr int LangTitle = 1830, LangModel = 1831, LangRange = 1832, LangWhole = 1833, LangSelection = 1834;
constexpr int LangResult = 1835, LangClose = 94;

QString span(qint64 first, qint64 count) {
    return TNumberText::show(first) + QLatin1Char('-') +
           TNumberText::show(first + qMax<qint64>(count, 1) - 1);
}
} // namespace

TDialogHexCRC::TDialogHexCRC(const THexBuffer* buffer, qint64 start, qint64 count, QWidget* parent)
    : QDialog(parent), buf(buffer), selStart(start), selCount(count) {
    setWindowTitle(Lang.get(LangTitle));
    model = new QComboBox(this);
    model->setObjectName(QStringLiteral("model"));
    // The usual name of the default model leads the catalogue's names, which are the full ones.
    QStringList names = TCRCModels::names();
    if (!names.contains(TCRC::getCRCNameDef())) names.prepend(TCRC::getCRCNameDef());
    model->addItems(names);
    model->setCurrentText(TCRC::getCRCNameDef());
    range = new QComboBox(this);
    range->setObjectName(QStringLiteral("range"));
    range->addItem(Lang.get(LangWhole).arg(span(buf->base(), buf->size())));
    if (selCount > 0) {
        range->addItem(Lang.get(LangSelection).arg(span(buf->base() + selStart, selCount)));
        range->setCurrentIndex(1);
    }
    result = new QLabel(this);
    result->setObjectName(QStringLiteral("result"));
    result->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* form = new QFormLayout;
    form->addRow(Lang.get(LangModel), model);
    form->addRow(Lang.get(LangRange), range);
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(Lang.get(LangClose), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(result);
    layout->addWidget(buttons);
    connect(model, &QComboBox::currentTextChanged, this, &TDialogHexCRC::update);
    connect(range, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &TDialogHexCRC::update);
    update();
}

QString TDialogHexCRC::resultText() const {
    return result->text();
}

void TDialogHexCRC::update() {
    const bool selection = range->currentIndex() == 1;
    const qint64 offset = selection ? selStart : 0, count = selection ? selCount : buf->size();
    QString why;
    const QByteArray value = buf->crcBytes(model->currentText(), offset, count, &why);
    if (!why.isEmpty()) {
        result->setText(why);
        return;
    }
    result->setText(Lang.get(LangResult)
                        .arg(model->currentText(), span(buf->base() + offset, count),
                             QLocale(QLocale::English).toString(count),
                             TMiscDev::getHexFromByteArray(value)));
}
