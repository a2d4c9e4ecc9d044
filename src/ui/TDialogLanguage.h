#pragma once

#include <QDialog>

class QListWidget;

// Chooses the language file among the "*.lng" files of the language folder; takes effect at the next
// start, when the table is loaded.
class TDialogLanguage : public QDialog {
    Q_OBJECT
public:
    explicit TDialogLanguage(QWidget* parent = nullptr);
    QListWidget* list() const { return files; }
    void accept() override;

private:
    QListWidget* files;
};
