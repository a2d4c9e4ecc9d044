#pragma once

#include <QWidget>

class QTableWidget;

// Settings page of the programmer types (name and description file) and the named programmers (name,
// port, type).
class TWgtSettingsProg : public QWidget {
    Q_OBJECT
public:
    explicit TWgtSettingsProg(QWidget* parent = nullptr);
    void save();
    QTableWidget* types;
    QTableWidget* names;

private:
    QWidget* makeGroup(int titleId, QTableWidget* table);
};
