// Loading time of projects and project lists at growing sizes, to show that it grows in step with the
// size (a quadratic step shows as a fourfold time for twice the size). Prints a Markdown table.
#include "app/TLang.h"
#include "exec/TRunner.h"
#include "project/TDataPrj.h"
#include "ui/TWgtPrjList.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

namespace {
bool save(const QString& path, const QByteArray& data) {
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(data) == data.size();
}

// One configuration of n commands: a programmer, then delays with a jump every 100 commands, the shape
// that makes every command look back over all before it.
QByteArray project(int n) {
    QByteArray out = "{\"version\": 1, \"configurations\": [{\"name\": \"Main\", \"description\": \"\", "
                     "\"commands\": [\n{\"status\": \"1\", \"cmd\": \"set_prog\", \"prog\": \"None\"}";
    for (int i = 1; i < n; ++i)
        out += i % 100 ? QByteArray(",\n{\"status\": \"1\", \"cmd\": \"delay\", \"value\": \"10\"}")
                       : ",\n{\"status\": \"0\", \"cmd\": \"jamp\", \"to_cmd\": \"" +
                             QByteArray::number(i - 50) + "\"}";
    return out + "]}]}\n";
}

// n entries: folders of 100 projects each.
QByteArray list(int n) {
    QByteArray out = "{\"version\": 1, \"list\": [\n";
    int folder = 0;
    for (int i = 1; i <= n; ++i) {
        if (i % 100 == 1) folder = i;
        const bool isFolder = i == folder;
        out += QStringLiteral("{\"parent\": %1, \"expand\": %2, \"name\": \"E%3\", \"file\": \"%4\"}%5\n")
                   .arg(isFolder ? 0 : folder)
                   .arg(isFolder ? 1 : 0)
                   .arg(i)
                   .arg(isFolder ? QString() : QStringLiteral("p%1.prj").arg(i))
                   .arg(i < n ? "," : "")
                   .toUtf8();
    }
    return out + "]}\n";
}

double seconds(const QElapsedTimer& t) {
    return t.nsecsElapsed() / 1e9;
}
} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir dir;
    std::printf("| Work | Size | Seconds |\n|---|---|---|\n");
    for (int n : {2500, 5000, 10000}) {
        const QString file = dir.filePath(QStringLiteral("p%1.prj").arg(n));
        save(file, project(n));
        FILE* sink = std::fopen("/dev/null", "w");
        QElapsedTimer t;
        t.start();
        TRunner runner(sink, sink);
        runner.list(file);
        std::printf("| tarvelix --list, one configuration | %d commands | %.3f |\n", n, seconds(t));
        std::fclose(sink);
    }
    for (int n : {2500, 5000, 10000}) {
        const QString file = dir.filePath(QStringLiteral("l%1.lst").arg(n));
        save(file, list(n));
        QElapsedTimer t;
        t.start();
        TWgtPrjList tree;
        tree.loadPrjList(file);
        tree.show();
        QApplication::processEvents();
        std::printf("| Project list shown in the window | %d entries | %.3f |\n", n, seconds(t));
    }
    return 0;
}
