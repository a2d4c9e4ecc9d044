#pragma once

#include <QDialog>
#include <QList>

class QAction;
class QTableWidget;

// The keys of the window's actions as they are set now (the hot-key settings change them), in a table.
class TDialogShortcuts : public QDialog {
    Q_OBJECT
public:
    TDialogShortcuts(const QList<QAction*>& actions, QWidget* parent = nullptr);
    QTableWidget* table() const { return view; }

private:
    QTableWidget* view;
};
