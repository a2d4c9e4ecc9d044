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

int TWgtHexView::rowCount() const {
    return int((image.size() + bytesPerRow - 1) / bytesPerRow);
}

QString TWgtHexView::rowText(int row) const {
    const qint64 start = qint64(row) * bytesPerRow;
    QString hex, text;
    for (int i = 0; i < bytesPerRow; ++i) {
        const qint64 at = start + i;
        if (at < image.size()) {
            const unsigned char b = static_cast<unsigned char>(image.at(int(at)));
            hex += QStringLiteral("%1 ").arg(b, 2, 16, QLatin1Char('0')).toUpper();
            text += (b >= 0x20 && b < 0x7F) ? QChar(b) : QLatin1Char('.');
        } else {
            hex += QStringLiteral("   ");
        }
        if (i == 7) hex += QLatin1Char(' ');
    }
    const QString address = QStringLiteral("%1").arg(start, 8, 16, QLatin1Char('0')).toUpper();
    return QStringLiteral("%1  %2 |%3|").arg(address, hex, text);
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
    const int x = 4 - horizontalScrollBar()->value();
    paintedRows = 0;
    for (int row = first; row < last; ++row, ++paintedRows)
        painter.drawText(x, (row - first) * line + fontMetrics().ascent(), rowText(row));
}
