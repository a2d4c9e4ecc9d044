#pragma once

#include <QMutex>
#include <QObject>
#include <QString>

// One loaded programmer description file.
class TProg : public QObject {
    Q_OBJECT
public:
    explicit TProg(const QString& fileName, QObject* parent = nullptr);

    QString getFileName() const { return fileName; }
    // Whether the programmer supports the command: "/Commands/<code>", default false.
    bool supportCmd(const QString& code) const;

private:
    mutable QMutex mutex;
    QString fileName;
};
