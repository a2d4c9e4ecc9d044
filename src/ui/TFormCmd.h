#pragma once

#include "app/TTypes.h"

#include <QList>
#include <QWidget>

#include <functional>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;

// The editing form of one command: a column of captioned fields, each bound to one key of the command's
// record. getParam() gives the record as edited (keys without a field keep their value), getError() the
// reason the values cannot be taken yet. A field writes its value back in the type the record held, so a
// form opened and closed without edits gives back an equal record.
class TFormCmd : public QWidget {
    Q_OBJECT
public:
    explicit TFormCmd(const TData& param, QWidget* parent = nullptr);
    ~TFormCmd() override;

    const TData& getOrigin() const { return origin; }
    TData getParam() const;
    // Empty when every field holds a valid value; otherwise "caption reason" of the first that does not.
    QString getError() const;

    // Decimal integer in [min, max]; hint is shown beside the editor ("%1..%2 ms", "Default: %1 V").
    QLineEdit* addInt(const QString& key, const QString& caption, qint64 min, qint64 max,
                      const QString& hint = QString());
    // Decimal number with a point, in [min, max].
    QLineEdit* addDouble(const QString& key, const QString& caption, double min, double max,
                         const QString& hint = QString());
    // Address, count or byte value in [min, max]: typed as "0x1F00", "32768", "32K" or "1M", shown as "0x"
    // hexadecimal.
    QLineEdit* addHex(const QString& key, const QString& caption, qint64 min, qint64 max,
                      const QString& hint = QString());
    // One of texts; the record stores the matching entry of values (the texts themselves when empty),
    // spelled as the record spelled it (matched ignoring case when caseless). A stored value that is not
    // offered stays selected, so an unedited form gives it back, and is marked as invalid.
    QComboBox* addChoice(const QString& key, const QString& caption, QStringList texts,
                         QVariantList values = QVariantList(), bool caseless = false);
    QCheckBox* addCheck(const QString& key, const QString& caption);
    // Free text; required makes an empty text invalid.
    QLineEdit* addText(const QString& key, const QString& caption, bool required = false);
    // A file name with a chooser button; filter as in QFileDialog ("*.bin *.hex"). The chooser starts at
    // the field's file, else in the folder last chosen from, else in the project's folder; a file beside
    // or below the project's folder is stored relative to it. signalFileChosen tells which was chosen.
    QLineEdit* addFile(const QString& key, const QString& caption, const QString& filter, bool forSave);
    // Hexadecimal bytes, blanks and line breaks allowed; empty allowed unless required.
    QPlainTextEdit* addHexData(const QString& key, const QString& caption, bool required = false);
    // A file chosen for fileKey sets the format choice from the file's contents (for saving: its name).
    void followFileFormat(const QString& fileKey, QComboBox* format, bool forSave);
    // A line of text without a field (a size, a note).
    QLabel* addNote(const QString& caption, const QString& text);

    // A field of the family's own making: the widget, how to read its value and how to judge it.
    using Reader = std::function<QVariant()>;
    using Checker = std::function<QString()>; // empty when valid
    void addField(const QString& key, const QString& caption, QWidget* editor, Reader read,
                  Checker check = Checker());
    // A field covering several keys at once (register bytes and their companions).
    using Writer = std::function<void(TData&)>;
    void addCompound(const QString& caption, QWidget* editor, Writer write, Checker check = Checker());

    // Tells the form a field changed: errors are re-marked and signalChanged is sent.
    void changed();

    // An editor with its hint ("%1..%2 ms") to the right, as one row of a form.
    static QWidget* withHint(QWidget* editor, const QString& hint, QWidget* parent);
    // A range hint followed by the default, as one hint.
    static QString rangeAndDefault(const QString& range, const QString& def);

    // The record's value in the type of the original: a number stays a number, a text a text.
    static QVariant typed(const QVariant& origin, const QVariant& value);

    // The file dialog of the choosers (tests put their own in; an empty function restores the dialog).
    using FileChooser = std::function<QString(QWidget* parent, const QString& title, const QString& start,
                                              const QString& filter, bool forSave)>;
    static void setFileChooser(FileChooser chooser);
    static void resetLastFolder();
    static QString fileStart(const QString& current);
    static QString fileToStore(const QString& chosen);

    // The dynamic property an invalid field's editor carries while it is marked.
    static constexpr const char* kInvalid = "invalid";

signals:
    void signalChanged();
    void signalFileChosen(const QString& key, const QString& absoluteFile);

private:
    struct Field {
        QString key;
        QString caption;
        QWidget* editor = nullptr;
        Writer write;
        Checker check;
    };
    void add(Field field, bool withCaption = true);
    QString unsafeValue() const;
    void mark();

    static constexpr int kTextNumberRange = 1720;

    TData origin;
    QFormLayout* layout;
    QList<Field> fields;
};
