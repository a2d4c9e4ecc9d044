#pragma once

#include <QAbstractScrollArea>
#include <QByteArray>

class QPainter;

// Read-only hex and text view of a data image. Only the rows in sight are painted, so a 16 MiB image
// scrolls as smoothly as a small one.
class TWgtHexView : public QAbstractScrollArea {
    Q_OBJECT
public:
    static const int bytesPerRow = 16;

    explicit TWgtHexView(QWidget* parent = nullptr);

    void setData(const QByteArray& data);
    const QByteArray& getData() const { return viewData(); }
    int rowCount() const;
    // "AAAAAAAA  hh hh ... hh  |text|": the address, 16 bytes (blanks past the end) and their characters.
    QString rowText(int row) const;
    int firstVisibleRow() const;
    int lastPaintedRows() const { return paintedRows; }
    void scrollToAddress(qint64 address);

    // Rows show addresses from base on (the device address of the first byte).
    void setAddressBase(qint64 base);

protected:
    // The bytes shown: the view's own copy here, an edited buffer in a subclass.
    virtual const QByteArray& viewData() const { return image; }
    // Paints one row with its text baseline at y and its first column at x.
    virtual void paintRow(QPainter& painter, int row, int x, int y);

    // Character columns of a row's parts: the hex digits of byte i, its character.
    static int hexColumn(int i) { return addressDigits + 2 + 3 * i + (i >= bytesPerRow / 2 ? 1 : 0); }
    static int textColumn(int i) { return addressDigits + 2 + 3 * bytesPerRow + 1 + 2 + i; }
    static QString byteHex(uchar b);
    static QChar byteChar(uchar b);
    QString addressText(int row) const;
    int charWidth() const;
    int leftEdge() const;
    int visibleRows() const;
    void updateScrollBar();

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    static const int addressDigits = 8;

    QByteArray image;
    qint64 addressBase = 0;
    int paintedRows = 0;
};
