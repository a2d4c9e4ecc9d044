#include "ui/TWgtRegisterForm.h"

#include "app/TLang.h"
#include "misc/dev_misc.h"
#include "ui/TFormCmd.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>

#include <limits>

using Kind = TFormDesc::Kind;

namespace {
bool validHex(const QString& text, int digits) {
    static const QRegularExpression hex(QStringLiteral("^[0-9A-Fa-f]*$"));
    return text.size() == digits && hex.match(text).hasMatch();
}

QByteArray bytesOfNumber(quint64 value, int count) {
    QByteArray bytes;
    TMiscDev::appendLE(bytes, value, qBound(1, count, 8));
    return bytes;
}

quint64 numberOfBytes(const QByteArray& bytes) {
    quint64 value = 0;
    for (int i = 0; i < bytes.size() && i < 8; ++i)
        value |= quint64(quint8(bytes.at(i))) << (8 * i);
    return value;
}
} // namespace

TWgtRegisterForm::TWgtRegisterForm(const TFormDesc& description, const QByteArray& bytes, bool readOnly,
                                   QWidget* parent)
    : QWidget(parent), desc(description), base(bytes) {
    auto* layout = new QFormLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    const QVector<QVariant> values = desc.toFields(bytes);
    for (int i = 0; i < desc.getItems().size(); ++i) {
        const TFormDesc::Item& item = desc.getItems().at(i);
        QWidget* editor = makeEditor(item, values.at(i), readOnly || item.readOnly);
        editors << editor;
        if (item.kind == Kind::Caption) {
            auto* heading = new QLabel(QStringLiteral("<b>%1</b>").arg(item.caption.toHtmlEscaped()), this);
            layout->addRow(heading);
        } else if (item.kind == Kind::Check) {
            layout->addRow(editor);
        } else {
            layout->addRow(item.caption, editor);
        }
    }
}

QWidget* TWgtRegisterForm::makeEditor(const TFormDesc::Item& item, const QVariant& value, bool readOnly) {
    QWidget* editor = nullptr;
    if (item.kind == Kind::Check) {
        auto* box = new QCheckBox(item.caption, this);
        box->setChecked(value.toBool());
        connect(box, &QCheckBox::toggled, this, &TWgtRegisterForm::signalChanged);
        editor = box;
    } else if (item.kind == Kind::Choice) {
        auto* box = new QComboBox(this);
        for (const auto& option : item.options)
            box->addItem(option.second);
        // Bits that match no option show no choice and stay as they are.
        box->setCurrentIndex(value.toInt());
        connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                &TWgtRegisterForm::signalChanged);
        editor = box;
    } else if (item.kind == Kind::Edit) {
        auto* edit = new QLineEdit(value.toString(), this);
        edit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        edit->setReadOnly(readOnly);
        connect(edit, &QLineEdit::textEdited, this, &TWgtRegisterForm::signalChanged);
        edit->setObjectName(item.caption);
        return edit;
    } else {
        return nullptr;
    }
    editor->setObjectName(item.caption);
    editor->setEnabled(!readOnly);
    return editor;
}

QVector<QVariant> TWgtRegisterForm::getFields() const {
    QVector<QVariant> fields;
    for (const QWidget* editor : editors) {
        if (auto* box = qobject_cast<const QCheckBox*>(editor))
            fields << box->isChecked();
        else if (auto* box = qobject_cast<const QComboBox*>(editor))
            fields << box->currentIndex();
        else if (auto* edit = qobject_cast<const QLineEdit*>(editor))
            fields << edit->text().trimmed();
        else
            fields << QVariant();
    }
    return fields;
}

QByteArray TWgtRegisterForm::getBytes() const {
    return desc.toBytes(getFields(), base);
}

QString TWgtRegisterForm::getError() const {
    for (int i = 0; i < editors.size(); ++i) {
        const TFormDesc::Item& item = desc.getItems().at(i);
        auto* edit = qobject_cast<const QLineEdit*>(editors.at(i));
        const int digits = 2 * item.mask.size();
        if (edit && !item.readOnly && !validHex(edit->text().trimmed(), digits))
            return item.caption + ' ' + Lang.get(584).arg(digits);
    }
    return QString();
}

TWgtRegisterForm* TWgtRegisterForm::addToForm(TFormCmd* form, const QString& key, const QStringList& lines,
                                              bool readOnly, bool asNumber) {
    TFormDesc desc;
    if (!desc.parse(lines)) {
        form->addNote(QString(), Lang.get(593).arg(desc.getErrorText()));
        if (asNumber)
            form->addHex(key, Lang.get(594), 0, std::numeric_limits<qint64>::max());
        else
            form->addHexData(key, Lang.get(594), true);
        return nullptr;
    }
    const QVariant origin = form->getOrigin().value(key);
    const QByteArray bytes = asNumber ? bytesOfNumber(origin.toULongLong(), desc.getByteCount())
                                      : TMiscDev::getByteArrayFromHex(origin.toString());
    auto* wgt = new TWgtRegisterForm(desc, bytes, readOnly, form);
    connect(wgt, &TWgtRegisterForm::signalChanged, form, &TFormCmd::changed);
    const QByteArray start = wgt->getBytes();
    form->addCompound(
        QString(), wgt,
        [wgt, key, origin, start, asNumber](TData& r) {
            const QByteArray now = wgt->getBytes();
            if (now == start) return;
            const QVariant value =
                asNumber ? QVariant(numberOfBytes(now)) : QVariant(TMiscDev::getHexFromByteArray(now));
            r.insert(key, TFormCmd::typed(origin, value));
        },
        [wgt] { return wgt->getError(); });
    return wgt;
}
