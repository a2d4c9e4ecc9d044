#pragma once

#include "app/TTypes.h"

#include <QString>

// One configuration: a named, described list of commands (the commands live in the project's list).
class TDataCfg {
public:
    TDataCfg(const QString& name, const QString& desc);

    static void resetUINCounter();

    int getUIN() const { return uin; }
    void setName(const QString& name);
    QString getName() const;
    void setDesc(const QString& desc);
    QString getDesc() const;
    void setStatus(TCodeCfgStatus status);
    TCodeCfgStatus getStatus() const;
    TData getData() const;
    void setData(const TData& data);
    // A configuration made for one run outside the project (the chip panel's actions): it is neither
    // listed, shown nor saved, and changing it does not change the project.
    bool isTransient() const { return transient; }
    void setTransient() { transient = true; }

private:
    mutable TMutex mutex;
    const int uin;
    QString name, desc;
    TCodeCfgStatus status = CfgStatusNone;
    bool transient = false;
};
