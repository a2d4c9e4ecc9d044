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
    // Identify or reset the programmer of the current row, as the page shows it now; the outcome goes
    // to the page's result line.
    void identify();
    void reset();
    QString resultText() const;
    QTableWidget* types;
    QTableWidget* names;

private:
    QWidget* makeGroup(const QString& title, QTableWidget* table);
    void check(bool identify);

    class QLabel* result;
};
