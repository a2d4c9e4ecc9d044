// The hex editor on a 16 MiB image (the largest 25-series parts): what a user waits for when loading,
// filling, undoing, searching, comparing and scrolling. Prints a Markdown table; best of three rounds.
#include "misc/THexBuffer.h"
#include "ui/TWgtHexEdit.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QWindow>
#include <cstdio>
#include <functional>

namespace {
constexpr qint64 image_size = 16ll << 20;
constexpr int rounds = 3;

QByteArray randomData(qint64 size, quint32 seed) {
    QByteArray data(int(size), 0);
    QRandomGenerator gen(seed);
    gen.fillRange(reinterpret_cast<quint32*>(data.data()), int(size / 4));
    return data;
}

// Best wall time of rounds runs of work, prepare run untimed before each.
double best(const std::function<void()>& prepare, const std::function<void()>& work) {
    double low = 1e9;
    for (int i = 0; i < rounds; ++i) {
        prepare();
        QElapsedTimer t;
        t.start();
        work();
        low = qMin(low, t.nsecsElapsed() / 1e6);
    }
    return low;
}

void row(const char* what, double ms) {
    std::printf("| %s | %.1f |\n", what, ms);
}
} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir dir;
    const QByteArray image = randomData(image_size, 1);
    QByteArray other = image;
    for (qint64 at = 0; at < image_size; at += 4099)
        other[int(at)] = char(~other.at(int(at)));
    THexBuffer buf;
    buf.setData(image);
    QString error;
    const QString ihex = dir.filePath("image.hex");
    if (!buf.save(ihex, "ihex", error)) return std::printf("%s\n", qPrintable(error)), 1;

    std::printf("| Work on a 16 MiB image | ms |\n|---|---|\n");
    const auto nothing = [] {};
    const auto fresh = [&] { buf.setData(image); };
    row("load Intel HEX", best(nothing, [&] { buf.load(ihex, "ihex", error); }));
    row("save Intel HEX", best(fresh, [&] { buf.save(dir.filePath("out.hex"), "ihex", error); }));
    row("fill the whole image", best(fresh, [&] { buf.fill(0, image_size, QByteArray("\xFF", 1)); }));
    row("undo that fill", best([&] { fresh(), buf.fill(0, image_size, "\xFF"); }, [&] { buf.undo(); }));
    const QByteArray missing = QByteArray::fromHex("0123456789ABCDEF0123");
    row("find a missing 10-byte needle", best(fresh, [&] { buf.find(missing, 0); }));
    row("compare, 4,096 runs", best(fresh, [&] { buf.compare(other); }));
    row("CRC-32 of the image", best(fresh, [&] { buf.crc("CRC-32", 0, image_size); }));

    TWgtHexEdit edit;
    edit.setBuffer(&buf);
    edit.resize(800, 600);
    edit.show();
    // Only an exposed window paints.
    while (!edit.windowHandle() || !edit.windowHandle()->isExposed())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    QScrollBar* bar = edit.verticalScrollBar();
    row("100 pages scrolled and painted", best(fresh, [&] {
            for (int i = 0; i < 100; ++i) {
                bar->setValue(bar->value() + bar->pageStep() * 997);
                edit.viewport()->repaint();
            }
        }));
    if (edit.lastPaintedRows() < 10) return std::printf("the editor painted no rows\n"), 1;
    const auto key = [&](Qt::Key code, const char* text) {
        QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier, QString::fromLatin1(text));
        QApplication::sendEvent(&edit, &press);
    };
    row("1,000 bytes typed (2,000 digits)", best([&] { fresh(), edit.goTo(image_size / 2); },
                                                 [&] {
                                                     for (int i = 0; i < 1000; ++i)
                                                         key(Qt::Key_A, "a"), key(Qt::Key_5, "5");
                                                 }));
    return 0;
}
