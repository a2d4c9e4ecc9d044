#include "ui/TFormCmd.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "formats/TFormat.h"
#include "formats/TFormatGuess.h"
#include "misc/TNumberText.h"
#include "misc/dev_misc.h"
#include "project/TDataPrj.h"
#include "project/TPrjText.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QToolButton>

namespace {
// The folder the last file was chosen in, for the next chooser of this session.
QString lastFolder;

QString chooseFileDefault(QWidget* parent, const QString& title, const QString& start, const QString& filter,
                          bool forSave) {
    return forSave ? QFileDialog::getSaveFileName(parent, title, start, filter)
                   : QFileDialog::getOpenFileName(parent, title, start, filter);
}
TFormCmd::FileChooser fileChooser = chooseFileDefault;

// An invalid field is framed; its text stays as typed and readable.
const QString kInvalidStyle =
    QStringLiteral("QLineEdit, QComboBox, QPlainTextEdit { border: 2px solid #C02020; border-radius: 2px; }");
} // namespace

void TFormCmd::setFileChooser(FileChooser chooser) {
    fileChooser = chooser ? chooser : chooseFileDefault;
}

void TFormCmd::resetLastFolder() {
    lastFolder.clear();
}

// The file a chooser starts at: the field's own file, else the last folder used, else the project's.
QString TFormCmd::fileStart(const QString& current) {
    const QString project = ProjectData.getPrjWorkPath();
    if (!current.trimmed().isEmpty()) return TApp::getAbsoluteFile(project, current.trimmed());
    return lastFolder.isEmpty() ? project : lastFolder;
}

// A file beside or below the project's folder is stored relative to it, so the project can move.
QString TFormCmd::fileToStore(const QString& chosen) {
    const QString project = ProjectData.getPrjWorkPath();
    const QString abs = QFileInfo(chosen).absoluteFilePath();
    if (project.isEmpty()) return abs;
    const QString rel = QDir(project).relativeFilePath(abs);
    return rel.startsWith(QLatin1String("../")) || QDir::isAbsolutePath(rel) ? abs : rel;
}

TFormCmd::TFormCmd(const TData& param, QWidget* parent) : QWidget(parent), origin(param) {
    layout = new QFormLayout(this);
    layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
}

TFormCmd::~TFormCmd() = default;

QString TFormCmd::rangeAndDefault(const QString& range, const QString& def) {
    return range + QStringLiteral(", ") + def;
}

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

// Invalid editors get a red frame and the reason as their tool tip.
void TFormCmd::mark() {
    for (const Field& f : fields) {
        const QString reason = f.check ? f.check() : QString();
        const bool invalid = !reason.isEmpty();
        if (f.editor->property(kInvalid).toBool() != invalid) {
            f.editor->setProperty(kInvalid, invalid);
            f.editor->setStyleSheet(invalid ? kInvalidStyle : QString());
        }
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
    auto* edit = new QLineEdit(TNumberText::show(origin.value(key).toLongLong()), this);
    edit->setObjectName(key);
    connect(edit, &QLineEdit::textEdited, this, &TFormCmd::changed);
    addField(
        key, caption, withHint(edit, hint, this),
        [edit] {
            bool ok = false;
            return QVariant(TNumberText::parse(edit->text(), ok));
        },
        [edit, min, max] {
            bool ok = false;
            const qint64 v = TNumberText::parse(edit->text(), ok);
            return ok && v >= min && v <= max
                       ? QString()
                       : Lang.get(kTextNumberRange).arg(TNumberText::show(min), TNumberText::show(max));
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
    connect(browse, &QToolButton::clicked, this, [this, key, edit, filter, forSave] {
        const QString file = fileChooser(this, Lang.get(495), fileStart(edit->text()), filter, forSave);
        if (file.isEmpty()) return;
        lastFolder = QFileInfo(file).absolutePath();
        edit->setText(fileToStore(file));
        emit signalFileChosen(key, QFileInfo(file).absoluteFilePath());
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

void TFormCmd::followFileFormat(const QString& fileKey, QComboBox* format, bool forSave) {
    connect(this, &TFormCmd::signalFileChosen, format, [=](const QString& key, const QString& file) {
        if (key != fileKey) return;
        // The choice lists the formats in the order of their keys.
        const QString guess = forSave ? TFormatGuess::keyOfName(file) : TFormatGuess::keyOf(file);
        const int i = TFormat::getFormatKeys().indexOf(guess);
        if (i >= 0 && i < format->count()) format->setCurrentIndex(i);
    });
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
