#pragma once

#include <QByteArray>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

// The model of a register form ("fuse_cfg", "status_reg_cfg", ...): which bits of the register bytes
// each field shows, and the mapping between the bytes and the field values both ways. No widgets: the
// forms are built from this model.
class TFormDesc {
public:
    enum class Kind { Caption, Edit, Check, Choice };

    struct Item {
        Kind kind = Kind::Caption;
        QString caption;
        int byte = 0;    // first register byte the field covers
        QByteArray mask; // bits covered: one byte for check boxes and choices, one per byte for edits
        bool readOnly = false;
        bool inverted = false;                          // check box: checked when the bit reads 0
        QVector<QPair<unsigned char, QString>> options; // choice: bit values in place, with captions
        // Bit values (in place) after which the part no longer answers serial programming, with the
        // kind of lock-out ("spien", "rstdisbl", "dwen", "clock") and the field's short name.
        struct LockOut {
            unsigned char value;
            QString kind, name;
        };
        QVector<LockOut> lockOuts;
    };
    // A field whose bits hold one of its lock-out values.
    struct LockOutHit {
        int item;
        Item::LockOut lockOut;
        QString meaning; // the chosen option's caption; empty for a check box
    };

    bool parse(const QStringList& lines);
    QString getErrorText() const { return errorText; }
    const QVector<Item>& getItems() const { return items; }
    // Number of register bytes the fields reach.
    int getByteCount() const;

    // Edit: upper-case hex text of the covered bits; Check: bool; Choice: option index, -1 when the bits
    // match no option; Caption: an invalid variant.
    QVector<QVariant> toFields(const QByteArray& bytes) const;
    // Editable fields written over base; bits no editable field covers keep their value from base.
    QByteArray toBytes(const QVector<QVariant>& fields, const QByteArray& base) const;
    QVector<LockOutHit> lockOuts(const QByteArray& bytes) const;

private:
    bool parseLine(const QString& line, int number);
    bool fail(int id, int number, const QString& arg = QString());
    bool parseMask(const QString& text, int bytes, QByteArray& mask, int number);
    bool parseByte(const QString& text, Item& item, int number);
    bool parseAccess(const QString& text, Item& item, int number);

    QVector<Item> items;
    QString errorText;
};
