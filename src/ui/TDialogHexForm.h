#pragma once

#include "app/TTypes.h"

#include <QDialog>
#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;
class TFormCmd;
class TWgtHexEdit;

// The common frame of the hex editor's small dialogs: a form of fields, the reason of the first invalid
// one in the dialog (the field itself framed red, its text kept), and OK only while all are valid.
// Addresses are device addresses, typed as the forms take them ("0x1F00", "32768", "32K", "1M").
class TDialogHexForm : public QDialog {
    Q_OBJECT
public:
    TFormCmd* form() const { return fields; }
    // Why the dialog cannot be accepted now; empty when it can.
    QString reason() const;
    QPushButton* okButton() const { return ok; }

protected:
    TDialogHexForm(const QString& title, const TData& values, TWgtHexEdit* edit, QWidget* parent);

    // An address of the image: from its base to its last byte.
    QLineEdit* addAddress(const QString& key, const QString& caption);
    // A line of text checked by check (empty when valid), not stored in the form's record.
    QLineEdit* addLine(const QString& name, const QString& caption, const QString& text,
                       std::function<QString()> check);
    // A rule over several fields, after the fields' own.
    void setCrossCheck(std::function<QString()> check) { cross = std::move(check); }
    // Shows the reason below the fields; called by the form on every change.
    void showReason(const QString& text);
    // Adds the reason line and the buttons under the fields; the last call of a constructor.
    void finish();
    void updateState();
    qint64 number(const QString& key) const;
    // The offset in the image of an address field.
    qint64 offsetOf(const QString& key) const;

    TWgtHexEdit* edit;

private:
    TFormCmd* fields;
    QLabel* error = nullptr;
    QPushButton* ok = nullptr;
    std::function<QString()> cross;
};
