#pragma once

#include "exec/TChipSession.h"

#include <QDockWidget>
#include <QHash>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class THexBuffer;
class TRunControl;
class TWgtHexEdit;
class TWgtLogExec;

// The chip panel: a programmer and a chip chosen once, then the actions on one of the chip's memories,
// each run through the given run controller, with the run's log and progress and a buffer of the
// chip's contents. The work itself is TChipSession's; the panel only shows it.
class TDockChip : public QDockWidget {
    Q_OBJECT
public:
    explicit TDockChip(TRunControl* control, QWidget* parent = nullptr);

    TChipSession* session() const { return chip; }
    // The programmers of the settings, the default first chosen; after the settings changed.
    void loadProgs();
    // A part of the catalogue; false for an unknown one.
    bool selectChip(const QString& name);
    bool selectMemory(const QString& memory);
    void setValue(const QString& value);
    QString value() const;

    // Starts an action with the buffer and the value shown; false (the reason in the status line)
    // when nothing was started.
    bool start(TChipSession::Action action);
    bool isBusy() const { return chip->isBusy(); }

    // The buffer of the chip's contents, shown in the hex editor.
    void setBuffer(const QByteArray& data);
    QByteArray buffer() const;
    THexBuffer* hexBuffer() const { return buf; }
    TWgtHexEdit* hexEditor() const { return hexEdit; }
    // A data file into the buffer, the buffer into one (the format from the name, else the contents),
    // and the differences between a file and the buffer, listed in the status line and marked in the
    // editor; false with the reason in the status line.
    bool loadBuffer(const QString& file);
    bool saveBuffer(const QString& file);
    bool compareWithFile(const QString& file);
    // The status line: the last action's result or why it did not start.
    QString statusText() const;
    TWgtLogExec* log() const { return logView; }
    QPushButton* button(TChipSession::Action action) const { return buttons.value(action); }

signals:
    // "Save as configuration" was asked for; the window adds the configuration to its project.
    void signalSaveAsCfg();

private:
    QWidget* makeChooser();
    QWidget* makeActions();
    void chooseChip();
    void fillMemories();
    void updateButtons();
    void showStatus(const QString& text, bool error);
    void finished(int action, bool ok);
    void showDiffs(int header, const QByteArray& other);
    // The file dialogs behind the buttons.
    void askLoad();
    void askSave();
    void askCompare();
    void showDetected(bool ok);

    TChipSession* chip;
    QComboBox *progs, *chips, *memories;
    QLineEdit* valueEdit;
    QHash<int, QPushButton*> buttons;
    QPushButton *stopButton, *saveButton, *compareFileButton;
    QLabel* status;
    THexBuffer* buf;
    TWgtHexEdit* hexEdit;
    TWgtLogExec* logView;
};
