#pragma once

#include <QDialog>

// Name, version and date of the application.
class TDialogAbout : public QDialog {
    Q_OBJECT
public:
    explicit TDialogAbout(QWidget* parent = nullptr);
    QString text() const;

private:
    class QLabel* label;
};
