#include "ui/TFormCmd.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "misc/dev_misc.h"
#include "project/TPrjText.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QToolButton>

namespace {
// Hex text with or without "0x"; ok is false for anything else.
qint64 parseHex(QString text, bool& ok) {
    text = text.trimmed();
    if (text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive)) text = text.mid(2);
    return text.isEmpty() ? (ok = false, 0) : text.toLongLong(&ok, 16);
}
} // namespace

TFormCmd::TFormCmd(const TData& param, QWidget* parent) : QWidget(parent), origin(param) {
    layout = new QFormLayout(this);
    layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
}

TFormCmd::~TFormCmd() = default;

QWidget* TFormCmd::withHint(QWidget* editor, const QString& hint, QWidget* parent) {
    if (hint.isEmpty()) return editor;
    auto* box = new QWidget(parent);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(editor, 1);
    row->addWidget(new QLabel(hint, box));
    return box;
}

QVariant TFormCmd::typed(const QVariant& origin, const QVariant& value) {
    if (!origin.isValid() || origin.userType() == value.userType()) return value;
    QVariant v = value;
    // A number kept as text stays text; a text that held a number takes the number's type.
    if (v.convert(origin.userType())) return v;
    return value;
}

TData TFormCmd::getParam() const {
    TData p = origin;
    for (const Field& f : fields)
        f.write(p);
    return p;
}

QString TFormCmd::getError() const {
    for (const Field& f : fields) {
        const QString reason = f.check ? f.check() : QString();
        if (!reason.isEmpty()) return f.caption.isEmpty() ? reason : f.caption + ' ' + reason;
    }
    return unsafeValue();
}

// The project file holds values verbatim, so a quote, a backslash or a control character in a value
// would make the saved file unreadable: such values are refused here, before they reach the model.
QString TFormCmd::unsafeValue() const {
    const TData p = getParam();
    for (auto it = p.cbegin(); it != p.cend(); ++it) {
        if (it.value().userType() != QMetaType::QString || TPrjText::isWritable(it.value().toString()))
            continue;
        QString caption = it.key();
        for (const Field& f : fields) {
            if (f.key == it.key() && !f.caption.isEmpty()) caption = f.caption;
        }
        return caption + ' ' + Lang.get(492);
    }
    return QString();
}

void TFormCmd::add(Field field, bool withCaption) {
    if (withCaption)
        layout->addRow(field.caption, field.editor);
    else
        layout->addRow(field.editor);
    fields.append(field);
}

void TFormCmd::addField(const QString& key, const QString& caption, QWidget* editor, Reader read,
                        Checker check) {
    Writer write = [this, key, read](TData& p) { p.insert(key, typed(origin.value(key), read())); };
    add({key, caption, editor, write, check});
}

void TFormCmd::addCompound(const QString& caption, QWidget* editor, Writer write, Checker check) {
    add({QString(), caption, editor, write, check}, !caption.isEmpty());
}

void TFormCmd::changed() {
    mark();
    emit signalChanged();
}

// Invalid editors get the error colour and the reason as their tool tip.
void TFormCmd::mark() {
    for (const Field& f : fields) {
        const QString reason = f.check ? f.check() : QString();
        QPalette pal = f.editor->palette();
        pal.setColor(QPalette::Text,
                     reason.isEmpty() ? palette().color(QPalette::Text) : TApp::getErrorColorText());
        f.editor->setPalette(pal);
        f.editor->setToolTip(reason);
    }
}

QLineEdit* TFormCmd::addInt(const QString& key, const QString& caption, qint64 min, qint64 max,
                            const QString& hint) {
    auto* edit = new QLineEdit(QString::number(origin.value(key).toLongLong()), this);
    edit->setObjectName(key);
    connect(edit, &QLineEdit::textEdited, this, &TFormCmd::changed);
    auto value = [edit] { return edit->text().trimmed().toLongLong(); };
    addField(
        key, caption, withHint(edit, hint, this), [value] { return QVariant(value()); },
        [edit, min, max] {
            bool ok = false;
            const qint64 v = edit->text().trimmed().toLongLong(&ok);
            return ok && v >= min && v <= max ? QString() : Lang.get(490).arg(min).arg(max);
        });
    return edit;
}

QLineEdit* TFormCmd::addDouble(const QString& key, const QString& caption, double min, double max,
                               const QString& hint) {
    auto* edit = new QLineEdit(QString::number(origin.value(key).toDouble()), this);
    edit->setObjectName(key);
    connect(edit, &QLineEdit::textEdited, this, &TFormCmd::changed);
    addField(
        key, caption, withHint(edit, hint, this),
        [edit] { return QVariant(edit->text().trimmed().toDouble()); },
        [edit, min, max] {
            bool ok = false;
            const double v = edit->text().trimmed().toDouble(&ok);
            return ok && v >= min && v <= max ? QString() : Lang.get(490).arg(min).arg(max);
        });
    return edit;
}

QLineEdit* TFormCmd::addHex(const QString& key, const QString& caption, qint64 min, qint64 max,
                            const QString& hint) {
    auto* edit = new QLineEdit(TMiscDev::getHexFromInt(origin.value(key).toLongLong()), this);
    edit->setObjectName(key);
    connect(edit, &QLineEdit::textEdited, this, &TFormCmd::changed);
    addField(
        key, caption, withHint(edit, hint, this),
        [edit] {
            bool ok = false;
            return QVariant(parseHex(edit->text(), ok));
        },
        [edit, min, max] {
            bool ok = false;
            const qint64 v = parseHex(edit->text(), ok);
            return ok && v >= min && v <= max
                       ? QString()
                       : Lang.get(491).arg(TMiscDev::getHexFromInt(min)).arg(TMiscDev::getHexFromInt(max));
        });
    return edit;
}

QComboBox* TFormCmd::addChoice(const QString& key, const QString& caption, QStringList texts,
                               QVariantList values, bool caseless) {
    if (values.isEmpty()) values = QVariantList(texts.begin(), texts.end());
    const QVariant current = origin.value(key);
    const Qt::CaseSensitivity cs = caseless ? Qt::CaseInsensitive : Qt::CaseSensitive;
    int index = -1;
    for (int i = 0; i < values.size() && index < 0; ++i) {
        if (QString::compare(values[i].toString(), current.toString(), cs) == 0) index = i;
    }
    int unknown = -1;
    if (index >= 0) {
        values[index] = current;
    } else if (current.isValid()) {
        index = unknown = values.size();
        texts.append(current.toString().isEmpty() ? QStringLiteral("?") : current.toString());
        values.append(current);
    }
    auto* box = new QComboBox(this);
    box->setObjectName(key);
    box->addItems(texts);
    box->setCurrentIndex(qMax(index, 0));
    connect(box, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &TFormCmd::changed);
    addField(
        key, caption, box,
        [box, values] {
            const int i = box->currentIndex();
            return i >= 0 && i < values.size() ? values[i] : QVariant();
        },
        [box, unknown] {
            return unknown >= 0 && box->currentIndex() == unknown ? Lang.get(515) : QString();
        });
    return box;
}

QCheckBox* TFormCmd::addCheck(const QString& key, const QString& caption) {
    auto* box = new QCheckBox(caption, this);
    box->setObjectName(key);
    box->setChecked(origin.value(key).toBool());
    connect(box, &QCheckBox::toggled, this, &TFormCmd::changed);
    Writer write = [this, key, box](TData& p) { p.insert(key, typed(origin.value(key), box->isChecked())); };
    add({key, QString(), box, write, Checker()}, false);
    return box;
}

QLineEdit* TFormCmd::addText(const QString& key, const QString& caption, bool required) {
    auto* edit = new QLineEdit(origin.value(key).toString(), this);
    edit->setObjectName(key);
    connect(edit, &QLineEdit::textEdited, this, &TFormCmd::changed);
    addField(
        key, caption, edit, [edit] { return QVariant(edit->text()); },
        [edit, required] {
            return required && edit->text().trimmed().isEmpty() ? Lang.get(494) : QString();
        });
    return edit;
}

QLineEdit* TFormCmd::addFile(const QString& key, const QString& caption, const QString& filter,
                             bool forSave) {
    auto* edit = new QLineEdit(origin.value(key).toString(), this);
    edit->setObjectName(key);
    auto* browse = new QToolButton(this);
    browse->setText(Lang.get(496));
    browse->setToolTip(Lang.get(495));
    connect(edit, &QLineEdit::textEdited, this, &TFormCmd::changed);
    connect(browse, &QToolButton::clicked, this, [this, edit, filter, forSave] {
        const QString start = edit->text().isEmpty() ? QString() : edit->text();
        const QString file = forSave ? QFileDialog::getSaveFileName(this, Lang.get(495), start, filter)
                                     : QFileDialog::getOpenFileName(this, Lang.get(495), start, filter);
        if (file.isEmpty()) return;
        edit->setText(file);
        changed();
    });
    auto* box = new QWidget(this);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(edit, 1);
    row->addWidget(browse);
    addField(
        key, caption, box, [edit] { return QVariant(edit->text()); },
        [edit] { return edit->text().trimmed().isEmpty() ? Lang.get(494) : QString(); });
    return edit;
}

QPlainTextEdit* TFormCmd::addHexData(const QString& key, const QString& caption, bool required) {
    auto* edit = new QPlainTextEdit(origin.value(key).toString(), this);
    edit->setObjectName(key);
    edit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    connect(edit, &QPlainTextEdit::textChanged, this, &TFormCmd::changed);
    addField(
        key, caption, edit,
        [edit] {
            // Line breaks are for reading only; the record keeps the bytes on one line.
            static const QRegularExpression breaks(QStringLiteral("[\\r\\n\\t\\f\\v]"));
            return QVariant(edit->toPlainText().replace(breaks, QStringLiteral(" ")));
        },
        [edit, required] {
            static const QRegularExpression hex(QStringLiteral("^([0-9A-Fa-f]{2})*$"));
            QString text = edit->toPlainText();
            text.remove(QRegularExpression(QStringLiteral("\\s")));
            if (required && text.isEmpty()) return Lang.get(494);
            return hex.match(text).hasMatch() ? QString() : Lang.get(493);
        });
    return edit;
}

QLabel* TFormCmd::addNote(const QString& caption, const QString& text) {
    auto* label = new QLabel(text, this);
    label->setWordWrap(true);
    if (caption.isEmpty())
        layout->addRow(label);
    else
        layout->addRow(caption, label);
    return label;
}
