#pragma once

#include "misc/TFormDesc.h"

#include <QByteArray>
#include <QVector>
#include <QWidget>

class TFormCmd;

// The bytes of a register edited field by field after its form description: headings, check boxes
// (inverted ones checked when the bit reads 0), choices with named options and hex fields. Each editor is
// named after its field's caption, or after the short name a caption ends with in parentheses
// ("Serial program downloading (SPI) enabled (SPIEN)" is "SPIEN"). Bits no editable field covers keep
// the value they came with. Beside each heading the whole byte it introduces is shown in hex, in step
// with the fields; values that lock the part out of serial programming are named in red underneath.
class TWgtRegisterForm : public QWidget {
    Q_OBJECT
public:
    TWgtRegisterForm(const TFormDesc& desc, const QByteArray& bytes, bool readOnly,
                     QWidget* parent = nullptr);

    QByteArray getBytes() const;
    // Empty when every hex field holds its number of digits; otherwise "caption reason" of the first.
    QString getError() const;

    // A register form over key of a command form. The key holds the bytes as hex text, or, asNumber, as an
    // unsigned number whose least significant byte is register byte 0. The key is written only when the
    // bytes change, so the record keeps its own spelling. A description that cannot be read is named and
    // a plain field takes its place (nullptr is returned then).
    // factory, when given, is one click away on a button.
    static TWgtRegisterForm* addToForm(TFormCmd* form, const QString& key, const QStringList& lines,
                                       bool readOnly, bool asNumber = false,
                                       const QByteArray& factory = QByteArray());

    void setBytes(const QByteArray& bytes);

signals:
    void signalChanged();

private:
    QWidget* makeEditor(const TFormDesc::Item& item, const QVariant& value, bool readOnly);
    QVector<QVariant> getFields() const;
    // The register byte the fields after heading n edit; -1 when none follow it.
    int headingByte(int n) const;
    void byteEdited(int byte, const QString& text);
    void showFields(const QByteArray& bytes);
    void showState();

    TFormDesc desc;
    QByteArray base;
    QVector<QWidget*> editors;          // one per item, nullptr for headings
    QHash<int, class QLineEdit*> bytes; // the hex of each byte that has a heading
    class QLabel* lockOut = nullptr;
};
