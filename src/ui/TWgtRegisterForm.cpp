#include "ui/TWgtRegisterForm.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "misc/TLockOut.h"
#include "misc/dev_misc.h"
#include "ui/TFormCmd.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalBlocker>

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

// "Caption (NAME)" is named NAME.
QString editorName(const QString& caption) {
    static const QRegularExpression shortName(QStringLiteral("\\(([A-Z][A-Z0-9_]*)\\)$"));
    const QRegularExpressionMatch m = shortName.match(caption);
    return m.hasMatch() ? m.captured(1) : caption;
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
            const int byte = headingByte(i);
            if (byte < 0 || this->bytes.contains(byte)) {
                layout->addRow(heading);
                continue;
            }
            auto* hex = new QLineEdit(this);
            hex->setObjectName(QStringLiteral("byte%1").arg(byte));
            hex->setToolTip(Lang.get(1108));
            hex->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
            hex->setMaxLength(2);
            hex->setMaximumWidth(hex->fontMetrics().horizontalAdvance(QStringLiteral("0000")));
            hex->setReadOnly(readOnly);
            connect(hex, &QLineEdit::textEdited, this,
                    [this, byte](const QString& t) { byteEdited(byte, t); });
            this->bytes.insert(byte, hex);
            layout->addRow(heading, hex);
        } else if (item.kind == Kind::Check) {
            layout->addRow(editor);
        } else {
            layout->addRow(item.caption, editor);
        }
    }
    const bool guarded = std::any_of(desc.getItems().begin(), desc.getItems().end(),
                                     [](const TFormDesc::Item& item) { return !item.lockOuts.isEmpty(); });
    if (guarded) {
        lockOut = new QLabel(this);
        lockOut->setObjectName(QStringLiteral("lockOut"));
        lockOut->setWordWrap(true);
        QPalette pal = lockOut->palette();
        pal.setColor(QPalette::WindowText, TApp::getErrorColorText());
        lockOut->setPalette(pal);
        layout->addRow(lockOut);
    }
    connect(this, &TWgtRegisterForm::signalChanged, this, &TWgtRegisterForm::showState);
    showState();
}

int TWgtRegisterForm::headingByte(int n) const {
    const QVector<TFormDesc::Item>& items = desc.getItems();
    for (int i = n + 1; i < items.size() && items.at(i).kind != Kind::Caption; ++i)
        if (items.at(i).mask.size() == 1) return items.at(i).byte;
    return -1;
}

// A whole byte typed in hex: the fields follow it.
void TWgtRegisterForm::byteEdited(int byte, const QString& text) {
    static const QRegularExpression hex(QStringLiteral("^[0-9A-Fa-f]{2}$"));
    if (!hex.match(text).hasMatch()) return;
    QByteArray now = getBytes();
    if (byte >= now.size()) return;
    now[byte] = char(text.toUInt(nullptr, 16));
    showFields(now);
    emit signalChanged();
}

void TWgtRegisterForm::setBytes(const QByteArray& value) {
    showFields(value);
    emit signalChanged();
}

void TWgtRegisterForm::showFields(const QByteArray& value) {
    base = value;
    const QVector<QVariant> fields = desc.toFields(value);
    for (int i = 0; i < editors.size(); ++i) {
        QWidget* editor = editors.at(i);
        if (!editor) continue;
        const QSignalBlocker block(editor);
        if (auto* box = qobject_cast<QCheckBox*>(editor))
            box->setChecked(fields.at(i).toBool());
        else if (auto* box = qobject_cast<QComboBox*>(editor))
            box->setCurrentIndex(fields.at(i).toInt());
        else if (auto* edit = qobject_cast<QLineEdit*>(editor))
            edit->setText(fields.at(i).toString());
    }
}

// The hex of each byte and the lock-out warning follow the fields.
void TWgtRegisterForm::showState() {
    const QByteArray now = getBytes();
    for (auto it = bytes.begin(); it != bytes.end(); ++it) {
        const QString hex =
            it.key() < now.size() ? QString::fromLatin1(now.mid(it.key(), 1).toHex().toUpper()) : QString();
        if (!it.value()->hasFocus() || it.value()->text().size() == 2) it.value()->setText(hex);
    }
    if (lockOut) {
        const QStringList reasons = TLockOut::reasons(desc, now);
        lockOut->setText(reasons.join(QLatin1Char('\n')));
        lockOut->setVisible(!reasons.isEmpty());
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
        edit->setObjectName(editorName(item.caption));
        return edit;
    } else {
        return nullptr;
    }
    editor->setObjectName(editorName(item.caption));
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
                                              bool readOnly, bool asNumber, const QByteArray& factory) {
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
    if (!factory.isEmpty() && !readOnly) {
        auto* button = new QPushButton(Lang.get(1107), form);
        button->setObjectName(QStringLiteral("factory"));
        connect(button, &QPushButton::clicked, wgt, [wgt, factory] { wgt->setBytes(factory); });
        form->addCompound(
            QString(), button, [](TData&) {}, [] { return QString(); });
    }
    return wgt;
}
