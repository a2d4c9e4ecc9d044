#include "ui/TWgtHexView.h"

#include "app/TAppData.h"

#include <QPainter>
#include <QScrollBar>

TWgtHexView::TWgtHexView(QWidget* parent) : QAbstractScrollArea(parent) {
    QFont font(AppData.fontMonoName.isEmpty() ? QStringLiteral("Monospace") : AppData.fontMonoName);
    font.setFixedPitch(true);
    font.setStyleHint(QFont::TypeWriter);
    if (AppData.fontMonoSize > 0) font.setPointSize(AppData.fontMonoSize);
    setFont(font);
    // A whole row always fits: the address, the bytes and their text side by side.
    setMinimumWidth(fontMetrics().horizontalAdvance(rowText(0) + QString(bytesPerRow, QLatin1Char('.'))) +
                    verticalScrollBar()->sizeHint().width() + 2 * frameWidth() + 16);
    viewport()->setAutoFillBackground(true);
    viewport()->setBackgroundRole(QPalette::Base);
    verticalScrollBar()->setSingleStep(1);
}

void TWgtHexView::setData(const QByteArray& data) {
    image = data;
    verticalScrollBar()->setValue(0);
    updateScrollBar();
    viewport()->update();
}

void TWgtHexView::setAddressBase(qint64 base) {
    addressBase = base;
    viewport()->update();
}

int TWgtHexView::rowCount() const {
    return int((viewData().size() + bytesPerRow - 1) / bytesPerRow);
}

QString TWgtHexView::byteHex(uchar b) {
    return QStringLiteral("%1").arg(b, 2, 16, QLatin1Char('0')).toUpper();
}

QChar TWgtHexView::byteChar(uchar b) {
    return (b >= 0x20 && b < 0x7F) ? QChar(b) : QLatin1Char('.');
}

QString TWgtHexView::addressText(int row) const {
    return QStringLiteral("%1")
        .arg(addressBase + qint64(row) * bytesPerRow, addressDigits, 16, QLatin1Char('0'))
        .toUpper();
}

QString TWgtHexView::rowText(int row) const {
    const QByteArray& bytes = viewData();
    const qint64 start = qint64(row) * bytesPerRow;
    QString hex, text;
    for (int i = 0; i < bytesPerRow; ++i) {
        const qint64 at = start + i;
        if (at < bytes.size()) {
            const uchar b = static_cast<uchar>(bytes.at(int(at)));
            hex += byteHex(b) + QLatin1Char(' ');
            text += byteChar(b);
        } else {
            hex += QStringLiteral("   ");
        }
        if (i == bytesPerRow / 2 - 1) hex += QLatin1Char(' ');
    }
    return QStringLiteral("%1  %2 |%3|").arg(addressText(row), hex, text);
}

int TWgtHexView::charWidth() const {
    return fontMetrics().horizontalAdvance(QLatin1Char('0'));
}

int TWgtHexView::leftEdge() const {
    return 4 - horizontalScrollBar()->value();
}

int TWgtHexView::visibleRows() const {
    return qMax(1, viewport()->height() / qMax(1, fontMetrics().height()));
}

int TWgtHexView::firstVisibleRow() const {
    return verticalScrollBar()->value();
}

void TWgtHexView::updateScrollBar() {
    verticalScrollBar()->setRange(0, qMax(0, rowCount() - visibleRows()));
    verticalScrollBar()->setPageStep(visibleRows());
    const int width = fontMetrics().horizontalAdvance(rowText(0)) + 8;
    horizontalScrollBar()->setRange(0, qMax(0, width - viewport()->width()));
    horizontalScrollBar()->setPageStep(viewport()->width());
}

void TWgtHexView::scrollToAddress(qint64 address) {
    verticalScrollBar()->setValue(int(address / bytesPerRow));
}

void TWgtHexView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBar();
}

void TWgtHexView::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    painter.setFont(font());
    const int line = fontMetrics().height();
    const int first = firstVisibleRow();
    const int last = qMin(rowCount(), first + visibleRows() + 1);
    paintedRows = 0;
    for (int row = first; row < last; ++row, ++paintedRows)
        paintRow(painter, row, leftEdge(), (row - first) * line + fontMetrics().ascent());
}

void TWgtHexView::paintRow(QPainter& painter, int row, int x, int y) {
    painter.drawText(x, y, rowText(row));
}
