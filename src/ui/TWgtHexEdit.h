#pragma once

#include "misc/THexBuffer.h"
#include "ui/TWgtHexView.h"

#include <QPointer>

// The hex and text view of a chip image that the user edits in place: a cursor in the hex or the text
// column, typing overwrites (two hex digits or one character per byte), a selection by mouse or with
// Shift and the cursor keys, copy and paste as hex text, undo and redo. Bytes that differ from the image
// as read or last saved show in another colour; marked runs (a comparison's) get a background of their
// own. Every edit goes through the buffer, which holds the undo history.
class TWgtHexEdit : public TWgtHexView {
    Q_OBJECT
public:
    explicit TWgtHexEdit(QWidget* parent = nullptr);

    void setBuffer(THexBuffer* buffer);
    THexBuffer* buffer() const { return buf; }

    qint64 cursorOffset() const { return cursor; }
    bool cursorInText() const { return inText; }
    // The selection; without one the cursor's offset and 0.
    qint64 selectionStart() const;
    qint64 selectionCount() const;
    void setSelection(qint64 offset, qint64 count);
    // The selection, or the cursor's byte when nothing is selected.
    qint64 targetStart() const { return selectionStart(); }
    qint64 targetCount() const { return qMax<qint64>(selectionCount(), imageSize() > 0 ? 1 : 0); }
    // Puts the cursor on offset and scrolls it into sight; the selection is dropped.
    void goTo(qint64 offset);
    void markDiffs(const QList<THexBuffer::Diff>& diffs);
    const QList<THexBuffer::Diff>& diffs() const { return marks; }

    // "DE AD BE EF": the selected bytes (the cursor's byte without a selection) as the clipboard gets them.
    QString selectedHex() const;
    void copy();
    // Hex text from the clipboard (characters, in the text column, when it is not hex) overwrites from
    // the selection or the cursor on.
    void paste();
    void selectAll();
    // The dialogs, modal, on this editor (Ctrl+G, Ctrl+F, F3 and Shift+F3 for the last search again).
    void openGoTo();
    void openFind();
    void openFill();
    void openCRC();
    // Not found is told through message().
    void findAgain(bool backwards);
    // Where a byte's hex digits (or its character) lie in the viewport.
    QRect cellRect(qint64 offset, bool text) const;

signals:
    void cursorMoved(qint64 offset);
    void selectionChanged();
    // Something the user should read (a paste that is not hex): the panel shows it.
    void message(const QString& text);

protected:
    bool event(QEvent* event) override;
    const QByteArray& viewData() const override;
    void paintRow(QPainter& painter, int row, int x, int y) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    enum KeyAction {
        KeyNone,
        KeyCopy,
        KeyPaste,
        KeySelectAll,
        KeyUndo,
        KeyRedo,
        KeyGoTo,
        KeyFind,
        KeyFindNext,
        KeyFindPrevious,
        KeyColumn
    };
    static KeyAction keyAction(QKeyEvent* event);
    qint64 imageSize() const { return buf ? buf->size() : 0; }
    bool shortcut(QKeyEvent* event);
    bool moveKey(QKeyEvent* event);
    bool typeKey(QKeyEvent* event);
    void moveTo(qint64 offset, bool extend);
    void ensureVisible(qint64 offset);
    // The byte under a point of the viewport and whether it lies in the text column; -1 off the data.
    qint64 offsetAt(const QPoint& pos, bool& text) const;
    bool isMarked(qint64 offset) const;
    bool isChanged(qint64 offset) const;
    void bufferReset();
    void bufferModified(bool modified);

    QPointer<THexBuffer> buf;
    // What the buffer held when it was read, loaded or last saved: bytes differing from it are changed.
    QByteArray baseline;
    QList<THexBuffer::Diff> marks;
    qint64 cursor = 0;
    qint64 anchor = -1; // the other end of the selection, -1 without one
    bool inText = false;
    bool lowNibble = false;
};
