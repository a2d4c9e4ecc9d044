#pragma once

#include <QMainWindow>

// The application's main window.
class TMainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit TMainWindow(QWidget* parent = nullptr);
};
