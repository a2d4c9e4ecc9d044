#pragma once

#include "ui/THotKeys.h"

#include <QWidget>

class QTableWidget;

// Settings page of the main window's hot keys.
class TWgtSettingsHotKeys : public QWidget {
    Q_OBJECT
public:
    explicit TWgtSettingsHotKeys(QWidget* parent = nullptr);
    void setKey(int row, const QKeySequence& key);
    void save();
    QTableWidget* table() const { return keys; }

private:
    QTableWidget* keys;
    QList<THotKeys::Entry> entries;
};
