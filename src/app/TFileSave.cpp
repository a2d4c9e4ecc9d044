#include "app/TFileSave.h"

#include <QSaveFile>

bool TFileSave::write(const QString& fileName, const QByteArray& data, QString& error) {
    QSaveFile f(fileName);
    // Unbuffered, so that a failing write reports at once with its own reason; a buffered one surfaces
    // only at commit, after the reason is lost.
    if (!f.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        error = f.errorString();
        return false;
    }
    for (qint64 done = 0; done < data.size();) {
        const qint64 n = f.write(data.constData() + done, data.size() - done);
        if (n <= 0) {
            error = f.errorString();
            f.cancelWriting();
            f.commit(); // removes the partial file aside
            return false;
        }
        done += n;
    }
    if (f.commit()) return true;
    error = f.errorString();
    return false;
}
