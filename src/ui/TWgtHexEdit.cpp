#include "ui/TWgtHexEdit.h"

#include "app/TLang.h"
#include "ui/TDialogHexCRC.h"
#include "ui/TDialogHexFill.h"
#include "ui/TDialogHexFind.h"
#include "ui/TDialogHexGoTo.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace {
constexpr int LangUndo = 1810, LangRedo = 1811, LangCopy = 1812, LangPaste = 1813, LangSelectAll = 1814;
constexpr int LangPasteNotHex = 1815, LangPasteCut = 1816;
constexpr int LangGoTo = 1837, LangFind = 1838, LangFindNext = 1839, LangFindPrevious = 1840, LangFill = 1841;
constexpr int LangCRC = 1842;

const QKeySequence kGoTo(Qt::CTRL + Qt::Key_G), kFindNext(Qt::Key_F3), kFindPrevious(Qt::SHIFT + Qt::Key_F3);

const QColor kChanged(0xC0, 0x20, 0x20);
const QColor kMarked(0xFF, 0xD8, 0xA0);
} // namespace

TWgtHexEdit::TWgtHexEdit(QWidget* parent) : TWgtHexView(parent) {
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setCursor(Qt::IBeamCursor);
}

void TWgtHexEdit::setBuffer(THexBuffer* buffer) {
    if (buf) disconnect(buf, nullptr, this, nullptr);
    buf = buffer;
    if (buf) {
        connect(buf, &THexBuffer::reset, this, &TWgtHexEdit::bufferReset);
        connect(buf, &THexBuffer::changed, this, [this] { viewport()->update(); });
        connect(buf, &THexBuffer::modifiedChanged, this, &TWgtHexEdit::bufferModified);
    }
    bufferReset();
}

const QByteArray& TWgtHexEdit::viewData() const {
    static const QByteArray none;
    return buf ? buf->data() : none;
}

void TWgtHexEdit::bufferReset() {
    baseline = buf ? buf->data() : QByteArray();
    setAddressBase(buf ? buf->base() : 0);
    marks.clear();
    cursor = 0;
    anchor = -1;
    lowNibble = false;
    verticalScrollBar()->setValue(0);
    updateScrollBar();
    viewport()->update();
    emit cursorMoved(cursor);
    emit selectionChanged();
}

// Saved or written to the chip: what the buffer holds now is the new reference.
void TWgtHexEdit::bufferModified(bool modified) {
    if (modified || !buf) return;
    baseline = buf->data();
    viewport()->update();
}

qint64 TWgtHexEdit::selectionStart() const {
    return anchor < 0 ? cursor : qMin(anchor, cursor);
}

qint64 TWgtHexEdit::selectionCount() const {
    return anchor < 0 ? 0 : qAbs(cursor - anchor) + 1;
}

void TWgtHexEdit::setSelection(qint64 offset, qint64 count) {
    if (imageSize() == 0) return;
    offset = qBound<qint64>(0, offset, imageSize() - 1);
    count = qBound<qint64>(0, count, imageSize() - offset);
    anchor = count > 0 ? offset : -1;
    cursor = count > 0 ? offset + count - 1 : offset;
    lowNibble = false;
    ensureVisible(cursor);
    viewport()->update();
    emit cursorMoved(cursor);
    emit selectionChanged();
}

void TWgtHexEdit::goTo(qint64 offset) {
    setSelection(offset, 0);
}

void TWgtHexEdit::selectAll() {
    setSelection(0, imageSize());
}

void TWgtHexEdit::markDiffs(const QList<THexBuffer::Diff>& diffs) {
    marks = diffs;
    std::sort(marks.begin(), marks.end(),
              [](const THexBuffer::Diff& a, const THexBuffer::Diff& b) { return a.offset < b.offset; });
    viewport()->update();
}

bool TWgtHexEdit::isMarked(qint64 offset) const {
    auto it = std::upper_bound(marks.begin(), marks.end(), offset,
                               [](qint64 at, const THexBuffer::Diff& d) { return at < d.offset; });
    if (it == marks.begin()) return false;
    --it;
    return offset < it->offset + it->count;
}

bool TWgtHexEdit::isChanged(qint64 offset) const {
    return offset >= baseline.size() || baseline.at(int(offset)) != viewData().at(int(offset));
}

void TWgtHexEdit::ensureVisible(qint64 offset) {
    const int row = int(offset / bytesPerRow);
    const int first = firstVisibleRow(), rows = visibleRows();
    if (row < first)
        verticalScrollBar()->setValue(row);
    else if (row >= first + rows)
        verticalScrollBar()->setValue(row - rows + 1);
}

void TWgtHexEdit::moveTo(qint64 offset, bool extend) {
    if (imageSize() == 0) return;
    offset = qBound<qint64>(0, offset, imageSize() - 1);
    const bool hadSelection = anchor >= 0;
    if (extend && anchor < 0) anchor = cursor;
    if (!extend) anchor = -1;
    cursor = offset;
    lowNibble = false;
    ensureVisible(cursor);
    viewport()->update();
    emit cursorMoved(cursor);
    if (extend || hadSelection) emit selectionChanged();
}

QString TWgtHexEdit::selectedHex() const {
    const QByteArray part = viewData().mid(int(targetStart()), int(targetCount()));
    return QString::fromLatin1(part.toHex(' ').toUpper());
}

void TWgtHexEdit::copy() {
    if (imageSize() > 0) QApplication::clipboard()->setText(selectedHex());
}

void TWgtHexEdit::paste() {
    if (!buf || imageSize() == 0) return;
    const QString text = QApplication::clipboard()->text();
    QByteArray bytes = THexBuffer::hexNeedle(text);
    if (bytes.isEmpty() && inText) bytes = THexBuffer::textNeedle(text);
    if (bytes.isEmpty()) {
        emit message(Lang.get(LangPasteNotHex));
        return;
    }
    const qint64 at = targetStart();
    const qint64 taken = buf->paste(at, bytes);
    if (taken < bytes.size()) emit message(Lang.get(LangPasteCut).arg(taken).arg(bytes.size()));
    setSelection(at, taken);
}

void TWgtHexEdit::keyPressEvent(QKeyEvent* event) {
    if (shortcut(event) || moveKey(event) || typeKey(event)) {
        event->accept();
        return;
    }
    TWgtHexView::keyPressEvent(event);
}

bool TWgtHexEdit::shortcut(QKeyEvent* event) {
    switch (keyAction(event)) {
    case KeyCopy:
        copy();
        break;
    case KeyPaste:
        paste();
        break;
    case KeySelectAll:
        selectAll();
        break;
    case KeyUndo:
        if (buf) buf->undo();
        break;
    case KeyRedo:
        if (buf) buf->redo();
        break;
    case KeyGoTo:
        openGoTo();
        break;
    case KeyFind:
        openFind();
        break;
    case KeyFindNext:
        findAgain(false);
        break;
    case KeyFindPrevious:
        findAgain(true);
        break;
    case KeyColumn:
        inText = !inText;
        lowNibble = false;
        viewport()->update();
        break;
    default:
        return false;
    }
    return true;
}

TWgtHexEdit::KeyAction TWgtHexEdit::keyAction(QKeyEvent* event) {
    const QKeySequence typed(int(event->modifiers()) | event->key());
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    if (event->matches(QKeySequence::Copy)) return KeyCopy;
    if (event->matches(QKeySequence::Paste)) return KeyPaste;
    if (event->matches(QKeySequence::SelectAll)) return KeySelectAll;
    if (ctrl && (event->key() == Qt::Key_Y || (shift && event->key() == Qt::Key_Z))) return KeyRedo;
    if (event->matches(QKeySequence::Undo)) return KeyUndo;
    if (typed == kGoTo) return KeyGoTo;
    if (event->matches(QKeySequence::Find)) return KeyFind;
    if (typed == kFindNext) return KeyFindNext;
    if (typed == kFindPrevious) return KeyFindPrevious;
    if (event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab) return KeyColumn;
    return KeyNone;
}

// The window's own shortcuts (its undo, its copy of commands) must not take the keys the editor uses
// while it has the focus.
bool TWgtHexEdit::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        const bool plain = !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
        if (keyAction(key) != KeyNone || (plain && !key->text().isEmpty() && key->text().at(0).isPrint())) {
            event->accept();
            return true;
        }
    }
    return TWgtHexView::event(event);
}

void TWgtHexEdit::openGoTo() {
    if (imageSize() == 0) return;
    TDialogHexGoTo dlg(this, this);
    dlg.exec();
}

void TWgtHexEdit::openFind() {
    if (imageSize() == 0) return;
    TDialogHexFind dlg(this, this);
    dlg.exec();
}

void TWgtHexEdit::openFill() {
    if (imageSize() == 0) return;
    TDialogHexFill dlg(this, this);
    dlg.exec();
}

void TWgtHexEdit::openCRC() {
    if (!buf) return;
    TDialogHexCRC dlg(buf, selectionStart(), selectionCount(), this);
    dlg.exec();
}

void TWgtHexEdit::findAgain(bool backwards) {
    QString text;
    if (imageSize() > 0 && !TDialogHexFind::findAgain(this, backwards, text) && !text.isEmpty())
        emit message(text);
}

// Tab switches between the hex and the text column, as in other hex editors; Ctrl+Tab leaves.
bool TWgtHexEdit::focusNextPrevChild(bool) {
    return false;
}

bool TWgtHexEdit::moveKey(QKeyEvent* event) {
    const bool extend = event->modifiers() & Qt::ShiftModifier;
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    const qint64 page = qint64(visibleRows()) * bytesPerRow;
    qint64 to;
    switch (event->key()) {
    case Qt::Key_Left:
        to = cursor - 1;
        break;
    case Qt::Key_Right:
        to = cursor + 1;
        break;
    case Qt::Key_Up:
        to = cursor - bytesPerRow;
        break;
    case Qt::Key_Down:
        to = cursor + bytesPerRow;
        break;
    case Qt::Key_PageUp:
        to = cursor - page;
        break;
    case Qt::Key_PageDown:
        to = cursor + page;
        break;
    case Qt::Key_Home:
        to = ctrl ? 0 : cursor - cursor % bytesPerRow;
        break;
    case Qt::Key_End:
        to = ctrl ? imageSize() - 1 : cursor - cursor % bytesPerRow + bytesPerRow - 1;
        break;
    default:
        return false;
    }
    // Up and down stay in their column: past either end they stop at the first or last row.
    if ((event->key() == Qt::Key_Up || event->key() == Qt::Key_PageUp) && to < 0) to = cursor % bytesPerRow;
    moveTo(to, extend);
    return true;
}

// Typing overwrites: a hex digit sets the half of the byte under the cursor, a character the whole byte.
bool TWgtHexEdit::typeKey(QKeyEvent* event) {
    if (!buf || imageSize() == 0 || event->text().size() != 1) return false;
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
    const QChar c = event->text().at(0);
    const uchar old = uchar(viewData().at(int(cursor)));
    const qint64 at = cursor;
    if (inText) {
        if (c.unicode() < 0x20 || c.unicode() >= 0x7F) return false;
        buf->setByte(at, char(c.unicode()));
        moveTo(at + 1, false);
        return true;
    }
    bool ok = false;
    const int digit = QString(c).toInt(&ok, 16);
    if (!ok) return false;
    if (!lowNibble) {
        buf->setByte(at, char((old & 0x0F) | (digit << 4)));
        moveTo(at, false);
        lowNibble = true;
        return true;
    }
    buf->setByte(at, char((old & 0xF0) | digit), true);
    moveTo(qMin(at + 1, imageSize() - 1), false);
    return true;
}

QRect TWgtHexEdit::cellRect(qint64 offset, bool text) const {
    const int row = int(offset / bytesPerRow) - firstVisibleRow(), i = int(offset % bytesPerRow);
    const int cw = charWidth(), h = fontMetrics().height();
    return text ? QRect(leftEdge() + textColumn(i) * cw, row * h, cw, h)
                : QRect(leftEdge() + hexColumn(i) * cw, row * h, 2 * cw, h);
}

qint64 TWgtHexEdit::offsetAt(const QPoint& pos, bool& text) const {
    const int row = firstVisibleRow() + pos.y() / qMax(1, fontMetrics().height());
    const int column = (pos.x() - leftEdge()) / qMax(1, charWidth());
    int i = 0;
    text = column >= textColumn(0) - 1;
    if (text) {
        i = qBound(0, column - textColumn(0), bytesPerRow - 1);
    } else {
        while (i + 1 < bytesPerRow && column >= hexColumn(i + 1))
            ++i;
    }
    const qint64 offset = qint64(row) * bytesPerRow + i;
    return imageSize() == 0 ? -1 : qMin(offset, imageSize() - 1);
}

void TWgtHexEdit::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return TWgtHexView::mousePressEvent(event);
    bool text = false;
    const qint64 at = offsetAt(event->pos(), text);
    if (at < 0) return;
    inText = text;
    moveTo(at, event->modifiers() & Qt::ShiftModifier);
}

void TWgtHexEdit::mouseMoveEvent(QMouseEvent* event) {
    if (!(event->buttons() & Qt::LeftButton)) return TWgtHexView::mouseMoveEvent(event);
    bool text = false;
    const qint64 at = offsetAt(event->pos(), text);
    if (at >= 0 && at != cursor) moveTo(at, true);
}

void TWgtHexEdit::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    menu.addAction(Lang.get(LangUndo), [this] { buf->undo(); })->setEnabled(buf && buf->canUndo());
    menu.addAction(Lang.get(LangRedo), [this] { buf->redo(); })->setEnabled(buf && buf->canRedo());
    menu.addSeparator();
    menu.addAction(Lang.get(LangCopy), this, &TWgtHexEdit::copy)->setEnabled(imageSize() > 0);
    menu.addAction(Lang.get(LangPaste), this, &TWgtHexEdit::paste)->setEnabled(imageSize() > 0);
    menu.addAction(Lang.get(LangSelectAll), this, &TWgtHexEdit::selectAll)->setEnabled(imageSize() > 0);
    menu.addSeparator();
    menu.addAction(Lang.get(LangGoTo), this, &TWgtHexEdit::openGoTo)->setEnabled(imageSize() > 0);
    menu.addAction(Lang.get(LangFind), this, &TWgtHexEdit::openFind)->setEnabled(imageSize() > 0);
    menu.addAction(Lang.get(LangFindNext), [this] { findAgain(false); })->setEnabled(imageSize() > 0);
    menu.addAction(Lang.get(LangFindPrevious), [this] { findAgain(true); })->setEnabled(imageSize() > 0);
    menu.addAction(Lang.get(LangFill), this, &TWgtHexEdit::openFill)->setEnabled(imageSize() > 0);
    menu.addAction(Lang.get(LangCRC), this, &TWgtHexEdit::openCRC)->setEnabled(buf != nullptr);
    menu.exec(event->globalPos());
}

void TWgtHexEdit::paintRow(QPainter& painter, int row, int x, int y) {
    const QByteArray& bytes = viewData();
    const int cw = charWidth();
    const QPalette& pal = palette();
    painter.setPen(pal.color(QPalette::Text));
    painter.drawText(x, y, addressText(row));
    const qint64 selFirst = selectionStart(), selLast = selFirst + selectionCount() - 1;
    for (int i = 0; i < bytesPerRow; ++i) {
        const qint64 at = qint64(row) * bytesPerRow + i;
        if (at >= bytes.size()) break;
        const uchar b = uchar(bytes.at(int(at)));
        const QRect hexCell = cellRect(at, false), textCell = cellRect(at, true);
        const bool selected = at >= selFirst && at <= selLast;
        if (selected || isMarked(at)) {
            const QColor back = selected ? pal.color(QPalette::Highlight) : kMarked;
            painter.fillRect(hexCell, back);
            painter.fillRect(textCell, back);
        }
        painter.setPen(selected        ? pal.color(QPalette::HighlightedText)
                       : isChanged(at) ? kChanged
                                       : pal.color(QPalette::Text));
        painter.drawText(hexCell.left(), y, byteHex(b));
        painter.drawText(textCell.left(), y, QString(byteChar(b)));
        if (at == cursor) {
            // The active column gets a frame, the other an underline; a half-typed byte frames its digit.
            const QRect active = inText ? textCell : lowNibble ? hexCell.adjusted(cw, 0, 0, 0) : hexCell;
            painter.setPen(pal.color(QPalette::Text));
            painter.drawRect(active.adjusted(0, 0, -1, -1));
            const QRect other = inText ? hexCell : textCell;
            painter.drawLine(other.bottomLeft(), other.bottomRight());
        }
    }
    const int inRow = int(qMin<qint64>(bytesPerRow, bytes.size() - qint64(row) * bytesPerRow));
    painter.setPen(pal.color(QPalette::Text));
    painter.drawText(x + (textColumn(0) - 1) * cw, y, QStringLiteral("|"));
    painter.drawText(x + textColumn(inRow) * cw, y, QStringLiteral("|"));
}
