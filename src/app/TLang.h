#pragma once

#include <QString>
#include <QStringList>

// The numbered language table: text number id is the id-th non-comment line of a "*.lng" file.
class TLang {
public:
    void loadData(const QString& file);
    QString get(int id) const;
    int count() const { return texts.size(); }

private:
    QStringList texts;
};

extern TLang Lang;
