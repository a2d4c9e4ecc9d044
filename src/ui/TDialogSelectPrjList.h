#pragma once

#include "project/TPrjList.h"

#include <QDialog>

class QTableWidget;

// The list of project lists ("sp.lpl"): a table of names and "*.lst" files, the chosen row being the
// list the main window shows.
class TDialogSelectPrjList : public QDialog {
    Q_OBJECT
public:
    explicit TDialogSelectPrjList(QWidget* parent = nullptr);

    void loadData(const QString& file);
    bool saveData(const QString& file);
    QList<TSelectPrjListRow> rows() const;
    void addRow(const QString& name, const QString& file);
    QString currentFile() const;
    QTableWidget* table() const { return tableWgt; }

private:
    void browse();

    QTableWidget* tableWgt;
};
