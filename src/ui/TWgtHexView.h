#pragma once

#include <QAbstractScrollArea>
#include <QByteArray>

// Read-only hex and text view of a data image. Only the rows in sight are painted, so a 16 MiB image
// scrolls as smoothly as a small one.
class TWgtHexView : public QAbstractScrollArea {
    Q_OBJECT
public:
    static const int bytesPerRow = 16;

    explicit TWgtHexView(QWidget* parent = nullptr);

    void setData(const QByteArray& data);
    const QByteArray& getData() const { return image; }
    int rowCount() const;
    // "AAAAAAAA  hh hh ... hh  |text|": the address, 16 bytes (blanks past the end) and their characters.
    QString rowText(int row) const;
    int firstVisibleRow() const;
    int lastPaintedRows() const { return paintedRows; }
    void scrollToAddress(qint64 address);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void updateScrollBar();
    int visibleRows() const;

    QByteArray image;
    int paintedRows = 0;
};
