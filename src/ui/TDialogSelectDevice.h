#pragma once

#include <QDialog>
#include <QList>
#include <QStringList>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

// Chooses a device of the catalogue: a search over name, maker and description, a family filter, and the
// chosen part's size, page size, voltage and signature.
class TDialogSelectDevice : public QDialog {
    Q_OBJECT
public:
    struct Entry {
        QString name, file, family, comment, info, signature, voltage;
        qint64 size = 0, pageSize = 0;
    };

    explicit TDialogSelectDevice(QWidget* parent = nullptr);

    // The catalogue's devices, sorted by name; a description file shared by several names is read once.
    static QList<Entry> loadEntries();
    // Any part of the name, the comment (which names the maker) or the description, in any case; an
    // empty family is every family.
    static bool matches(const Entry& e, const QString& text, const QString& family);
    // The supply range a description writes as "2.7..3.6 V"; empty when it gives none.
    static QString getVoltage(const QString& info);
    static QString getFamilyView(const QString& family);

    void setSearch(const QString& text);
    void setFamily(const QString& family);
    QStringList getVisibleNames() const;
    void select(const QString& name);
    QString getSelectedName() const;
    QString getSelectedFile() const;
    // What the dialog shows of the selected part: size, page size, voltage, signature.
    QStringList getDetails() const;

private:
    void updateList();
    void updateDetails();
    const Entry* selected() const;

    QList<Entry> entries;
    QLineEdit* search;
    QComboBox* family;
    QTreeWidget* list;
    QLabel* count;
    QLabel *size, *pageSize, *voltage, *signature, *info;
    QPushButton* ok;
};
