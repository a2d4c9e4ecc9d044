#pragma once

#include "misc/TFormDesc.h"

#include <QByteArray>
#include <QVector>
#include <QWidget>

class TFormCmd;

// The bytes of a register edited field by field after its form description: headings, check boxes
// (inverted ones checked when the bit reads 0), choices with named options and hex fields. Each editor is
// named after its field's caption. Bits no editable field covers keep the value they came with.
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
    static TWgtRegisterForm* addToForm(TFormCmd* form, const QString& key, const QStringList& lines,
                                       bool readOnly, bool asNumber = false);

signals:
    void signalChanged();

private:
    QWidget* makeEditor(const TFormDesc::Item& item, const QVariant& value, bool readOnly);
    QVector<QVariant> getFields() const;

    TFormDesc desc;
    QByteArray base;
    QVector<QWidget*> editors; // one per item, nullptr for headings
};
