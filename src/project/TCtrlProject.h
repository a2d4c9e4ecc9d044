#pragma once

#include <QByteArray>
#include <QObject>

class TDataPrj;

// Reads "*.prj" files into the project model and writes the model back in the fixed layout.
class TCtrlProject : public QObject {
    Q_OBJECT
public:
    enum LoadResult { Loaded = 0, Unreadable = 1, InvalidJson = 2 };

    explicit TCtrlProject(QObject* parent = nullptr) : QObject(parent) {}

    int load(const QString& fileName, TDataPrj* prj);
    bool save(const QString& fileName, TDataPrj* prj);
    bool file_to_data(const QString& fileName, QByteArray& data);
    bool data_to_project(const QByteArray& data, TDataPrj* prj);
    void create_empty_project(TDataPrj* prj);

    // The file's bytes exactly as save() writes them.
    static QByteArray project_to_data(TDataPrj* prj);

    QString getErrorText() const { return errorText; }

private:
    QString errorText;
};
